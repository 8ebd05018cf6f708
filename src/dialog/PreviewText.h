#pragma once

#include "frames/FrameRanges.h"
#include "pictures/Picture.h"

#include <QStringList>
#include <set>

/// What the preview pane knows from names, and what it says. Texts only; nothing is read from disk.
namespace Halvern::UI::PreviewText {

/// Whether files with @p extension, in lower case, may have a picture: fonts, and all but those of a list.
bool isPreviewable(const QString& extension);

/// The frames of a sequence that are among @p paths: of "/a/shot.####.exr", "/a/shot.0042.exr" is frame 42.
std::set<int> framesAmong(const QStringList& paths, const QString& pattern);

/// The runs at the end of a selected name: "/a/shot.####.exr 1-9 ( 1-4 6-9 )" gives 1 to 4 and 6 to 9. No
/// frames if there are none.
Base::FrameRanges runsOf(const QString& selected);

/// Says what @p picture shows of the selected name: "1920 x 1080, half float RGBA, ACEScg, frame 42 of 1-100,
/// 2 frames missing", or the name of a font. @p present are the frames of a sequence with gaps; none stand
/// for all of them.
QString describe(const Picture& picture, const QString& selected, const Base::FrameRanges& present);

} // namespace Halvern::UI::PreviewText
