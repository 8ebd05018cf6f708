#include <base/Text.h>
#include <frames/FrameRanges.h>
#include <iostream>
#include <paths/Path.h>

using namespace Halvern::Base;

int main()
{
    const auto frames = FrameRanges::parse("1-9x2, 20-22, 5");
    if (!frames)
        return 1;
    std::cout << frames->text() << ": " << frames->count() << " frames" << std::endl;
    for (const int frame : *frames)
        std::cout << normalisedPath("/shots/./a/../") + "/img." + zeroPadded(frame, 4) + ".exr" << std::endl;
}
