// Times the paints of a frame slider over many cached frames, whole and of the band that follows the mouse.
// Usage: slider-benchmark [WIDTH [FRAMES]]

#include "widgets/FrameSlider.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int Rounds = 200;

struct View
{
    const char* name;
    int first;
    int last;
};

struct Times
{
    double median = 0; // milliseconds
    double worst = 0;
};

Times timePaints(FrameSlider& slider, const QRect& part)
{
    QImage image(part.size(), QImage::Format_RGB32);
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        slider.render(&image, QPoint(), QRegion(part));
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.back()};
}

void printTable(FrameSlider& slider, const char* set)
{
    const View views[] = {{"1 frame", 5, 5},
                          {"100 frames", 1, 100},
                          {"1,000 frames", 1, 1000},
                          {"2,000 frames", 1, 2000},
                          {"10,000 frames", 1, 10000},
                          {"100,000 frames", 1, 100000},
                          {"10 million frames", 1, 10000000},
                          {"all frame numbers", INT_MIN, INT_MAX}};
    std::printf("%s\n%-20s %10s %10s %12s\n", set, "view", "median ms", "worst ms", "band, median");
    for (const View& view : views) {
        slider.range(view.first, view.last);
        const Times whole = timePaints(slider, slider.rect());
        const Times band = timePaints(slider, QRect(slider.width() / 2, 0, 34, slider.height()));
        std::printf("%-20s %10.3f %10.3f %12.3f\n", view.name, whole.median, whole.worst, band.median);
    }
}

std::set<int> everyFrame(int count, int step)
{
    std::set<int> frames;
    for (int i = 0; i < count; ++i)
        frames.insert(frames.end(), 1 + i * step);
    return frames;
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const int width = argc > 1 ? std::atoi(argv[1]) : 2000;
    const int count = argc > 2 ? std::atoi(argv[2]) : 100000;
    if (width < 1 || count < 1) {
        std::fputs("usage: slider-benchmark [WIDTH [FRAMES]]\n", stderr);
        return 2;
    }
    FrameSlider slider(true, nullptr);
    slider.resize(width, slider.minimumHeight());
    std::printf("%d pixels wide, %d cached frames and as many key frames, %d paints each\n", width, count,
                Rounds);
    for (const auto& [name, step] : {std::pair("one run", 1), std::pair("every other frame", 2),
                                     std::pair("every hundredth frame", 100)}) {
        const std::set<int> frames = everyFrame(count, step);
        slider.setCacheFrames(frames);
        FrameSlider::SetKeys(frames);
        printTable(slider, name);
    }
    return 0;
}
