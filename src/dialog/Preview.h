#pragma once

#include "base/QtVersion.h"
#include "dialog/FilePreview.h"

#include <QImage>
#include HVCOREUI_DRAWING_SURFACE_HEADER

namespace Halvern::UI {

/// The drawing surface of a preview pane. It shows an opaque picture, fitted and never larger than its
/// pixels, or a sentence, or nothing, which is black.
class FilePreview::Preview : public Base::DrawingSurface
{
    Q_OBJECT

public:
    explicit Preview(QWidget* parent);

    /// The room for a picture, in pixels of the screen.
    QSize room() const;
    void showPicture(const Picture& picture);
    /// Shows @p text, which may be empty, in place of a picture.
    void showText(const QString& text);
    /// Marks that another picture is being read.
    void setReading(bool reading);

signals:
    void resized();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void resizeGL(int width, int height) override;
    void paintGL() override;

private:
    QRect pictureRect() const;

    QImage m_image;
    QSizeF m_wholeSize; // of the picture in the file, with square pixels
    QString m_text;
    bool m_isReading = false;
};

} // namespace Halvern::UI
