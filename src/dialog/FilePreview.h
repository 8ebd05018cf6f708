#pragma once

#include "base/Export.h"

#include <QDir>
#include <QString>
#include <QWidget>

class FrameSlider;
class QLabel;

namespace Halvern::UI {

class FileInfo;

/// A pane that stands below a file browser and follows its selection: it finds the file that stands for it,
/// for a sequence the frame of its own slider, and says "No preview available." where that file is missing or
/// of a kind that is never shown.
///
/// It is made for FileBrowser::setPreviewWidget(), starts hidden, and looks at the disk only while it is
/// visible: what was selected before is looked at when it is shown. Its slider has no in and out marks, and
/// shows the range of the sequence that was selected last, until its user zooms or its host calls
/// updateRange(); its head stays. A frame outside a sequence's range counts as the nearest inside, without
/// moving the slider. GUI thread only; its controls are found by objectName: "preview" is the drawing
/// surface, "label" the status text, "slider" the slider.
class HVCOREUI_EXPORT FilePreview : public QWidget
{
    Q_OBJECT

public:
    class Preview;

    /// @p parent owns the pane. @p hostValue is kept for the host and has no effect.
    FilePreview(QWidget* parent, int hostValue);

    int hostValue() const { return m_hostValue; }
    /// What is selected: a path, or a sequence's pattern with its range; empty for a directory.
    const QString& path() const { return m_path; }
    /// The frame that is shown, within the range of a sequence.
    int frame() const { return m_frame; }
    /// The file that is shown, of @p path "/shots/img.####.exr 1-100" perhaps "/shots/img.0007.exr"; empty
    /// while there is no preview.
    const QString& file() const { return m_file; }

public slots:
    /// Shows the file or the sequence of a UTF-8 path, nothing for null or an empty one.
    void previewFile(const char* path);
    /// Lets the slider show the frames @p first to @p last.
    void updateRange(int first, int last);
    /// Shows an entry of @p dir; for a directory it shows nothing.
    void fileSelected(const Halvern::UI::FileInfo& info, QDir dir);
    /// Shows the slider's frame. The slider calls it; until the pane is shown, @p frame is only kept.
    void gotoFrame(int frame);

protected slots:
    void showEvent(QShowEvent* event) override;

private:
    void select(const QString& path);
    void showSelection();
    void noPreview(bool resetSlider);

    int m_hostValue;
    Preview* m_preview;
    FrameSlider* m_slider;
    QLabel* m_label;
    QString m_path;
    int m_frame = 0;
    QString m_file;
};

} // namespace Halvern::UI
