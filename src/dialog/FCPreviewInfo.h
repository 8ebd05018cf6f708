#pragma once

#include "base/Export.h"

#include <QString>

namespace Halvern::UI {

/// The one file on disk that stands for a selected name: the file itself, or a frame of a sequence. A plain
/// value; it reads nothing from disk.
struct HVCOREUI_EXPORT FCPreviewInfo
{
    /// What first and last are without a range.
    static constexpr int NoFrame = 2147483647;

    /// Takes the range off @p selected, puts @p wanted into that range and then into the name.
    ///
    /// "shot.####.exr 1-100" and 150 give "shot.0100.exr"; "shot.%04d.exr 1-100 ( 1-50 60-100 )" and 7 give
    /// "shot.0007.exr". A placeholder reaches from the first to the last "#": "a.#.b.##.exr" and 5 give
    /// "a.000005.exr". Frames with more digits than the placeholder are written whole. A name without a range
    /// is no sequence, but its placeholder is replaced too. Folders stay as they are.
    FCPreviewInfo(const QString& selected, int wanted);

    QString path; ///< The concrete file.
    int first = NoFrame;
    int last = NoFrame;
    int frame = NoFrame; ///< The wanted frame, within the range if there is one.
    bool isSequence = false;
};

} // namespace Halvern::UI
