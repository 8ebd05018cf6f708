// A window with a frame slider that prints its signals.
//
// Exit status: 0, or 2 for a wrong option or a picture that cannot be written.

#include "widgets/FrameSlider.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <iostream>

namespace {

constexpr int Failed = 2;

int fail(const QString& message)
{
    std::cerr << "timeline: " << message.toLocal8Bit().constData() << std::endl;
    return Failed;
}

// Reads "1001-1200"; either number may be negative.
bool readRange(const QString& text, int& first, int& last)
{
    static const QRegularExpression form(QStringLiteral("^(-?\\d+)-(-?\\d+)$"));
    const QRegularExpressionMatch match = form.match(text);
    bool firstFits = false;
    bool lastFits = false;
    first = match.captured(1).toInt(&firstFits);
    last = match.captured(2).toInt(&lastFits);
    return firstFits && lastFits;
}

std::set<int> framesBetween(int first, int last)
{
    std::set<int> frames;
    for (int frame = first; frame <= last; ++frame)
        frames.insert(frames.end(), frame);
    return frames;
}

void fillWithShot(FrameSlider& slider)
{
    std::set<int> cached = framesBetween(1001, 1058);
    cached.merge(framesBetween(1064, 1090));
    slider.setCacheFrames(cached);
    FrameSlider::SetKeys({1001, 1024, 1047, 1052, 1053, 1060, 1100, 1150, 1200});
    slider.set_frame_range(1001, 1200);
    slider.setinout(1020, 1180);
    slider.setValue(1050);
}

template <typename... Values>
void print(const char* name, Values... values)
{
    std::cout << name;
    (std::cout << ... << values) << std::endl;
}

void printSignals(FrameSlider& slider)
{
    QObject::connect(&slider, &FrameSlider::sliderMoved, &slider,
                     [](int value) { print("sliderMoved ", value); });
    QObject::connect(&slider, &FrameSlider::sliderRangeChanged, &slider, [&slider] {
        print("sliderRangeChanged ", slider.viewStart(), " to ", slider.viewEnd());
    });
    QObject::connect(&slider, &FrameSlider::sliderInOutChanged, &slider, [&slider] {
        print("sliderInOutChanged ", slider.inPoint(), " to ", slider.outPoint());
    });
    QObject::connect(&slider, &FrameSlider::scrubbingChanged, &slider,
                     [](bool scrubbing) { print("scrubbingChanged ", scrubbing ? "true" : "false"); });
    QObject::connect(&slider, &FrameSlider::sliderRangeReset, &slider, [&slider] {
        print("sliderRangeReset");
        slider.zoomToSubrange();
    });
}

} // namespace

int main(int argc, char** argv)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows a timeline of the frames 1001 to 1200 and prints its signals."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption view(QStringLiteral("view"), QStringLiteral("Show these frames at first."),
                                  QStringLiteral("FIRST-LAST"));
    const QCommandLineOption wide(QStringLiteral("width"), QStringLiteral("The width of the window."),
                                  QStringLiteral("PIXELS"), QStringLiteral("900"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Write a picture of the window and exit."),
                                        QStringLiteral("FILE"));
    parser.addOptions({view, wide, screenshot});
    if (!parser.parse(QApplication::arguments()))
        return fail(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp();

    QWidget window;
    window.setWindowTitle(QStringLiteral("Timeline"));
    auto* slider = new FrameSlider(true, &window);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(slider);
    fillWithShot(*slider);
    int first = 0;
    int last = 0;
    if (parser.isSet(view) && !readRange(parser.value(view), first, last))
        return fail(parser.value(view) + QStringLiteral(": not a range like 1001-1200"));
    if (parser.isSet(view))
        slider->range(first, last);
    bool isNumber = false;
    const int width = parser.value(wide).toInt(&isNumber);
    if (!isNumber || width < 1)
        return fail(parser.value(wide) + QStringLiteral(": not a width"));
    window.resize(width, window.sizeHint().height());

    const QString file = parser.value(screenshot);
    if (parser.isSet(screenshot))
        return window.grab().save(file) ? 0 : fail(file + QStringLiteral(": cannot write the picture"));
    printSignals(*slider);
    window.show();
    return QApplication::exec();
}
