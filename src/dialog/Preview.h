#pragma once

#include "dialog/FilePreview.h"

#include <QGLWidget>

namespace Halvern::UI {

/// The drawing surface of a preview pane: the place where a picture goes. It draws nothing, so that it stays
/// blank; FilePreview::file() is what there is to draw.
class FilePreview::Preview : public QGLWidget
{
    Q_OBJECT

public:
    explicit Preview(QWidget* parent);

protected:
    void glDraw() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
};

} // namespace Halvern::UI
