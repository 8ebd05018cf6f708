#include "browser/SequenceFaults.h"

#include "browser/FileBrowser.h"
#include "catalogue/FileInfo.h"

#include <QStringList>
#include <vector>

namespace Halvern::UI {

namespace {

constexpr int MostNamed = 8;

// A file that vanished before it was asked for has no time either.
bool isEmptyFile(const FileInfo& file)
{
    return file.isInfoValid() && file.size() == 0 && file.modificationTime() != 0;
}

QString joined(QStringList items, bool areAll)
{
    if (!areAll)
        items.append(QString(QChar(0x2026)));
    return items.join(QLatin1String(", "));
}

} // namespace

QString textOfFaults(const FileInfo& info)
{
    if (!info.isSequence() || info.isDirectory())
        return {};
    const FileInfo* const whole = info.parentSequence();
    const auto& members = (whole ? whole : &info)->sequenceFiles();
    auto member = whole ? members.lower_bound(info.startFrame()) : members.begin();
    const auto end = whole ? members.upper_bound(info.endFrame()) : members.end();
    int emptyCount = 0;
    QStringList empty;
    int gapCount = 0;
    QStringList gaps;
    for (long long next = member == end ? 0 : member->first; member != end; ++member) {
        const auto [frame, file] = *member;
        if (frame > next && ++gapCount <= MostNamed)
            gaps.append(frame - next == 1 ? QString::number(next)
                                          : QString(QStringLiteral("%1-%2").arg(next).arg(frame - 1)));
        if (file && isEmptyFile(*file) && ++emptyCount <= MostNamed)
            empty.append(QString::number(frame));
        next = frame + 1LL;
    }
    QStringList lines;
    if (emptyCount == 1)
        lines.append(FileBrowser::tr("1 frame is empty: %1").arg(empty.first()));
    else if (emptyCount > 1)
        lines.append(FileBrowser::tr("%1 frames are empty: %2")
                         .arg(emptyCount)
                         .arg(joined(empty, emptyCount <= MostNamed)));
    if (gapCount > 0)
        lines.append(FileBrowser::tr("Missing: %1").arg(joined(gaps, gapCount <= MostNamed)));
    return lines.join(QLatin1Char('\n'));
}

} // namespace Halvern::UI
