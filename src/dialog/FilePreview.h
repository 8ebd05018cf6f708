#pragma once

#include "base/Export.h"
#include "frames/FrameRanges.h"

#include <QDir>
#include <QString>
#include <QWidget>
#include <memory>

namespace Halvern::UI {

class FileInfo;
struct Picture;

/// A pane that stands below a file browser and shows the picture of what is selected: that of a file, or of
/// the frame of a sequence that its own slider chooses.
///
/// It is made for FileBrowser::setPreviewWidget(), starts hidden, and looks at the disk only while it is
/// visible: what was selected before is looked at when it is shown. PictureReader reads the pictures; while
/// the pane is hidden it has no process and keeps no picture. The picture before stays until the next one is
/// read. The label is empty until then, and then says what is shown, or why nothing is: "No preview
/// available." if the file is missing or of a kind that is never shown. A text that is too long for the pane
/// is painted with "…" at its end; the label's tooltip is the whole text.
///
/// The slider has no in and out marks. It shows the range of the sequence that was selected last, until its
/// user zooms or its host calls updateRange(); its head stays. If the sequence grows, which is selected again
/// with another range that has frames in common, then frame, playback and zoom stay too. A frame outside a
/// sequence's range counts as the nearest inside, without moving the slider. Its row of cached frames has
/// those that are shown at once. While the slider has the focus, Space plays the frames in view at the rate
/// that the file says, or 24 a second, again and again, and stops it.
///
/// GUI thread only; its controls are found by objectName: "preview" is the drawing surface, "label" the
/// status text, "slider" the slider.
class HVCOREUI_EXPORT FilePreview : public QWidget
{
    Q_OBJECT

public:
    class Preview;

    /// @p parent owns the pane. @p hostValue is kept for the host and has no effect.
    FilePreview(QWidget* parent, int hostValue);
    ~FilePreview() override;

    /// What is selected: a path, or a sequence's pattern with its range; empty for a directory.
    const QString& path() const;
    /// The frame that is shown, within the range of a sequence.
    int frame() const;
    /// The file of that frame, of @p path "/shots/img.####.exr 1-100" perhaps "/shots/img.0007.exr"; empty
    /// while there is no preview.
    const QString& file() const;

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

protected:
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void select(const QString& path, const Base::FrameRanges& present);
    bool grow(const QString& path, const Base::FrameRanges& present);
    void showSelection();
    void noPreview(bool resetSlider);
    void readPicture();
    void showPicture(const Picture& picture);
    void showReason(const QString& reason);
    void say(const QString& text);
    void markCachedFrames();
    void togglePlayback();
    void playFrame(int frame);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Halvern::UI
