#pragma once

#include "base/Export.h"
#include "frames/FrameRange.h"

#include <QString>
#include <QStringView>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What stands for the frame number in the name of a sequence, "####" or the printf token "%04d", and the
/// range that follows such a name. Texts only; nothing is read from disk.
namespace Halvern::UI::Placeholder {

/// What listed names have for each digit of the frame number.
constexpr char Hash = '#';

/// The name with the text from its first "#" to its last as a printf token: "img.####.exr" gives
/// "img.%04d.exr", "img.#.exr" gives "img.%d.exr". A name without "#" stays as it is.
HVCOREUI_EXPORT QString withToken(const QString& name);

/// The name with "#" in place of printf tokens, as many for each as the first one is wide: "shot.%04d" gives
/// "shot.####". A name without a token stays as it is.
HVCOREUI_EXPORT QString withHashes(const QString& name);

/// The name with @p frame in place of the text from its first "#" to its last or, if it has no "#", in place
/// of its first printf token. Zeros fill the number up to that width; a frame with more digits is written
/// whole. "shot.####.exr" and 7 give "shot.0007.exr", "a.#.b.##.exr" and 5 give "a.000005.exr". Folders
/// before the name stay as they are.
HVCOREUI_EXPORT QString withFrame(const QString& path, int frame);

/// A pattern with its first "#" widened to @p hashes of them: "img.#.exr" and 4 give "img.####.exr".
HVCOREUI_EXPORT std::string widened(std::string_view pattern, int hashes);

/// The text of a pattern before its first "#" and after its last; all of it, both times, if it has none. They
/// refer to @p pattern. Example: "f.##.exr" gives "f." and ".exr".
QStringView before(const QString& pattern);
QStringView after(const QString& pattern);

/// A name and the range that it carried.
struct NameWithRange
{
    QString name;
    int first = 0;
    int last = 0;
};

/// Takes the range off the name of a sequence, and the list of runs after it: "shot.%04d.exr 1-100 ( 1-50
/// 60-100 )" gives "shot.%04d.exr", 1 and 100. Numbers beyond int become the largest or the smallest one.
/// Nothing if no range follows the last blank, or the last before the first " (". Folders stay as they are.
HVCOREUI_EXPORT std::optional<NameWithRange> splitRange(const QString& path);

/// The range as listed names carry it: "1-100".
std::string rangeText(int first, int last);

/// The runs of a sequence with gaps, as its row shows them after the range: " ( 1-49 60 62-100 )". Empty
/// without runs. FrameRun has the form of FileInfoList.
std::string runsText(const std::vector<FrameRange>& runs);

} // namespace Halvern::UI::Placeholder
