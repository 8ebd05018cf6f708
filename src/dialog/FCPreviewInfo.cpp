#include "dialog/FCPreviewInfo.h"

#include "frames/Placeholder.h"

#include <algorithm>

namespace Halvern::UI {

FCPreviewInfo::FCPreviewInfo(const QString& selected, int wanted)
    : path(selected)
    , frame(wanted)
{
    if (const auto split = Placeholder::splitRange(selected)) {
        path = split->name;
        first = split->first;
        last = split->last;
        isSequence = true;
        frame = std::max(std::min(frame, last), first);
    }
    path = Placeholder::withFrame(path, frame);
}

} // namespace Halvern::UI
