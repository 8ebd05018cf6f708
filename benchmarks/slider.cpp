// Times the paints of a frame slider over many cached frames, by view, width and margin.
// Usage: slider-benchmark [FRAMES]. Exit status: 0, 1 if a paint takes more than two milliseconds, 2 for a
// wrong argument.

#include "Measuring.h"
#include "widgets/FrameSlider.h"

#include <QApplication>
#include <QImage>
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace {

constexpr int Rounds = 51;
constexpr double Allowed = 2; // milliseconds

struct View
{
    const char* name;
    int first;
    int last;
};

// Milliseconds of processor time, the median of all rounds.
double timePaint(FrameSlider& slider)
{
    QImage image(slider.size(), QImage::Format_RGB32);
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        const std::clock_t start = std::clock();
        slider.render(&image);
        times.push_back(1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    std::nth_element(times.begin(), times.begin() + Rounds / 2, times.end());
    return times[Rounds / 2];
}

// Prints a row for each view with the slowest margin of each width, and returns the slowest of all.
double printTable(FrameSlider& slider, const char* set)
{
    const View views[] = {{"1 frame", 5, 5},
                          {"100 frames", 1, 100},
                          {"1,000 frames", 1, 1000},
                          {"2,000 frames", 1, 2000},
                          {"10,000 frames", 1, 10000},
                          {"100,000 frames", 1, 100000},
                          {"10 million frames", 1, 10000000},
                          {"all frame numbers", INT_MIN, INT_MAX}};
    const int widths[] = {60, 300, 900, 2000, 4000, 8000};
    std::printf("%-22s", set);
    for (const int width : widths)
        std::printf("%8d", width);
    double slowest = 0;
    for (const View& view : views) {
        std::printf("\n%-22s", view.name);
        slider.range(view.first, view.last);
        for (const int width : widths) {
            slider.resize(width, slider.minimumHeight());
            double slowestMargin = 0;
            for (const int margin : {0, width / 4, width}) {
                slider.setMargin(margin);
                slowestMargin = std::max(slowestMargin, timePaint(slider));
            }
            std::printf("%8.3f", slowestMargin);
            slowest = std::max(slowest, slowestMargin);
        }
    }
    std::printf("\n\n");
    return slowest;
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
    const int count = argc > 1 ? std::atoi(argv[1]) : 100000;
    if (count < 1) {
        std::fputs("usage: slider-benchmark [FRAMES]\n", stderr);
        return 2;
    }
    FrameSlider slider(true, nullptr);
    std::printf("Milliseconds of processor time for a paint by width in pixels, %d cached frames and as many "
                "key frames\n\n",
                count);
    double slowest = 0;
    for (const auto& [name, step] : {std::pair("one run", 1), std::pair("every other frame", 2),
                                     std::pair("every hundredth frame", 100)}) {
        const std::set<int> frames = everyFrame(count, step);
        slider.setCacheFrames(frames);
        FrameSlider::SetKeys(frames);
        slowest = std::max(slowest, printTable(slider, name));
    }
    return Measuring::printVerdict("slowest, ms", slowest, Allowed) ? 0 : 1;
}
