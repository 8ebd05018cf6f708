// Times the preview pane beside OpenImageIO that reads and resizes the same files in this program.
// Usage: pictures-benchmark [selection | scrubbing | memory]..., all of them by default.
// Exit status: 0 if every row holds, 1 if not, 2 if the files can't be written.

#include "Measuring.h"
#include "MemoryWatch.h"
#include "dialog/FilePreview.h"
#include "dialog/Preview.h"
#include "widgets/FrameSlider.h"

#include <OpenImageIO/imagebufalgo.h>
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QThread>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <unistd.h>

using namespace Halvern::UI;
using Measuring::median;
using Measuring::milliseconds;

namespace {

constexpr int Rounds = 7;
constexpr int ScrubbedFrames = 100;
constexpr int WatchedPictures = 10000;
constexpr double MostOfOiio = 1.25;
constexpr double MostFromCache = 2;          // milliseconds
constexpr double MostOfAllCores = 1 / 0.9;   // times as long for a picture
constexpr double LongestTurn = 16;           // milliseconds
constexpr long long AllowedGrowth = 1 << 20; // bytes

struct Kind
{
    const char* name;
    const char* extension;
    OIIO::TypeDesc type;
    const char* compression;
    int channels;
};

// A picture with detail, so that it does not compress to nothing.
bool write(const QString& file, const Kind& kind, int width, int height)
{
    OIIO::ImageSpec spec(width, height, kind.channels, kind.type);
    if (*kind.compression)
        spec.attribute("compression", kind.compression);
    if (kind.type == OIIO::TypeDesc::UINT16)
        spec.attribute("oiio:BitsPerSample", 10);
    OIIO::ImageBuf picture(OIIO::ImageSpec(width, height, kind.channels, OIIO::TypeDesc::FLOAT));
    const float corners[4][4] = {{0, 0, 0, 1}, {1, 0, 0.2F, 1}, {0, 1, 0.4F, 1}, {0.7F, 0.6F, 1, 1}};
    OIIO::ImageBufAlgo::fill(picture, corners[0], corners[1], corners[2], corners[3]);
    OIIO::ImageBufAlgo::noise(picture, "gaussian", 0.0F, 0.02F, false, 7);
    picture.set_write_format(kind.type);
    const auto output = OIIO::ImageOutput::create(file.toStdString());
    return output && output->open(file.toStdString(), spec) && picture.write(output.get());
}

// What an application without the pane would do, with the filter that is used for the pane.
bool readAndResize(const std::string& file, const QSize& room, int threads)
{
    OIIO::ImageBuf picture(file);
    if (!picture.read(0, 0, true, OIIO::TypeDesc::FLOAT))
        return false;
    const QSize size = QSize(picture.spec().width, picture.spec().height).scaled(room, Qt::KeepAspectRatio);
    const OIIO::ROI roi(0, size.width(), 0, size.height(), 0, 1, 0, picture.nchannels());
    const OIIO::ImageBuf small = OIIO::ImageBufAlgo::resize(picture, "box", 0, roi, threads);
    std::vector<unsigned char> pixels(size_t(roi.npixels()) * size_t(roi.nchannels()));
    return small.get_pixels(roi, OIIO::TypeDesc::UINT8, pixels.data());
}

// Milliseconds of processor time of this thread.
double threadTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1000 + double(time.tv_nsec) / 1e6;
}

/// A visible pane.
class Pane : public QObject
{
public:
    Pane()
        : m_pane(nullptr, 0)
        , m_label(*m_pane.findChild<QLabel*>(QStringLiteral("label")))
        , m_surface(*m_pane.findChild<FilePreview::Preview*>())
        , m_slider(*m_pane.findChild<FrameSlider*>())
    {
        m_surface.installEventFilter(this);
        m_pane.resize(960, 600);
        m_pane.show();
        while (QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents)) {
        }
    }

    QSize room() const { return m_surface.room(); }
    double longestTurn() const { return m_longest; }
    // Milliseconds of processor time of this thread, in the turn with most of them.
    double mostWork() const { return m_mostWork; }

    // Milliseconds until the picture is painted.
    double show(const QString& path)
    {
        QElapsedTimer timer;
        timer.start();
        m_pane.previewFile(QFile::encodeName(path).constData());
        waitFor(QStringLiteral(" x "));
        return milliseconds(timer);
    }

    // Milliseconds for a frame, scrubbing forwards.
    double scrub(const QString& sequence)
    {
        show(sequence);
        m_longest = 0;
        m_mostWork = 0;
        QElapsedTimer timer;
        timer.start();
        for (int frame = 1; frame <= ScrubbedFrames; ++frame) {
            m_slider.setValue(frame);
            m_pane.gotoFrame(frame);
            waitFor(QStringLiteral("frame %1 of").arg(frame));
        }
        return milliseconds(timer) / ScrubbedFrames;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == &m_surface && event->type() == QEvent::Paint)
            m_isPainted = m_label.text().contains(m_words);
        return false;
    }

private:
    // Waits until the label says these words and the surface was painted after it.
    void waitFor(const QString& words)
    {
        m_words = words;
        m_isPainted = false;
        while (!m_isPainted) {
            QElapsedTimer turn;
            turn.start();
            const double work = threadTime();
            const bool wasBusy = QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents);
            m_longest = std::max(m_longest, milliseconds(turn));
            m_mostWork = std::max(m_mostWork, threadTime() - work);
            if (!wasBusy)
                QThread::usleep(50);
        }
    }

    FilePreview m_pane;
    QLabel& m_label;
    FilePreview::Preview& m_surface;
    FrameSlider& m_slider;
    QString m_words;
    bool m_isPainted = false;
    double m_longest = 0;
    double m_mostWork = 0;
};

// Names of one file that no cache knows.
QString anotherName(const QString& file, const QString& name)
{
    QString link = QFileInfo(file).path() + QLatin1Char('/') + name;
    if (::link(QFile::encodeName(file).constData(), QFile::encodeName(link).constData()) != 0)
        std::exit(2);
    return link;
}

bool compareSelection(Pane& pane, const QString& file)
{
    const QString name = QFileInfo(file).completeBaseName();
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> cached;
    const QString suffix = QLatin1Char('.') + QFileInfo(file).suffix();
    for (int round = 0; round <= Rounds; ++round) {
        const QString one = anotherName(file, QStringLiteral("%1 %2%3").arg(name).arg(round).arg(suffix));
        const QString other = anotherName(file, QStringLiteral("%1 %2b%3").arg(name).arg(round).arg(suffix));
        ours.push_back(pane.show(one));
        QElapsedTimer timer;
        timer.start();
        if (!readAndResize(one.toStdString(), pane.room(), 0))
            std::exit(2);
        theirs.push_back(milliseconds(timer));
        pane.show(other);
        cached.push_back(pane.show(one));
    }
    for (auto* times : {&ours, &theirs, &cached})
        times->erase(times->begin()); // not warm
    std::printf("%s: %.1f ms, OpenImageIO %.1f ms\n", qPrintable(name), median(ours), median(theirs));
    const bool fast = Measuring::printVerdict("  to OpenImageIO", median(ours) / median(theirs), MostOfOiio);
    return Measuring::printVerdict("  from the cache, ms", median(cached), MostFromCache) && fast;
}

// Milliseconds for a frame with all cores.
double readAllFrames(const std::vector<std::string>& files, const QSize& room)
{
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        for (size_t i = next++; i < files.size(); i = next++)
            readAndResize(files[i], room, 1);
    };
    QElapsedTimer timer;
    timer.start();
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
    return milliseconds(timer) / double(files.size());
}

bool compareScrubbing(Pane& pane, const QString& file)
{
    std::vector<double> ratios;
    std::vector<double> turns;
    std::vector<double> work;
    for (int round = 0; round < 3; ++round) {
        std::vector<std::string> files;
        for (int frame = 1; frame <= ScrubbedFrames; ++frame)
            files.push_back(
                anotherName(file, QString::asprintf("scrub%d.%04d.exr", round, frame)).toStdString());
        const double ours = pane.scrub(
            QFileInfo(file).path() + QStringLiteral("/scrub%1.####.exr 1-%2").arg(round).arg(ScrubbedFrames));
        turns.push_back(pane.longestTurn());
        work.push_back(pane.mostWork());
        OIIO::attribute("threads", 1);
        const double theirs = readAllFrames(files, pane.room());
        OIIO::attribute("threads", 0);
        std::printf("scrubbing: %.1f pictures a second, all cores %.1f\n", 1000 / ours, 1000 / theirs);
        ratios.push_back(ours / theirs);
    }
    const bool fast =
        Measuring::printVerdict("  to all cores, time for a picture", median(ratios), MostOfAllCores);
    Measuring::printVerdict("  most processor time of a turn, ms", median(work), 0);
    return Measuring::printVerdict("  longest turn of the event loop, ms", median(turns), LongestTurn) &&
           fast;
}

// Scrubs through frames with new names, so that each picture is read. The cache is full before the warm-up
// ends.
bool watchMemory(Pane& pane, const QString& file)
{
    constexpr int rounds = WatchedPictures / ScrubbedFrames;
    MemoryWatch watch("rounds of 100 pictures", rounds, AllowedGrowth);
    for (int round = 1; round <= rounds; ++round) {
        for (int frame = 1; frame <= ScrubbedFrames; ++frame)
            anotherName(file, QString::asprintf("memory%d.%04d.png", round, frame));
        pane.scrub(QFileInfo(file).path() +
                   QStringLiteral("/memory%1.####.png 1-%2").arg(round).arg(ScrubbedFrames));
        watch.finishRound(round);
    }
    return watch.isSteady();
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    const QStringList parts = QCoreApplication::arguments().mid(1);
    const auto isWanted = [&](const char* part) {
        return parts.isEmpty() || parts.contains(QLatin1String(part));
    };
    const Kind kinds[] = {{"EXR half zip", "exr", OIIO::TypeDesc::HALF, "zip", 4},
                          {"EXR half piz", "exr", OIIO::TypeDesc::HALF, "piz", 4},
                          {"DPX 10 bit", "dpx", OIIO::TypeDesc::UINT16, "", 3},
                          {"PNG", "png", OIIO::TypeDesc::UINT8, "", 4},
                          {"JPEG", "jpg", OIIO::TypeDesc::UINT8, "", 3}};
    const auto written = [&](const Kind& kind, const QSize& size) {
        QString file = folder.filePath(QStringLiteral("%1 %2 x %3.%4")
                                           .arg(kind.name)
                                           .arg(size.width())
                                           .arg(size.height())
                                           .arg(kind.extension));
        if (!write(file, kind, size.width(), size.height())) {
            std::fprintf(stderr, "pictures-benchmark: %s can't be written\n", qPrintable(file));
            std::exit(2);
        }
        return file;
    };
    Pane pane;
    bool holds = true;
    for (const QSize size : {QSize(1920, 1080), QSize(4096, 2160)}) {
        for (const Kind& kind : kinds) {
            if (isWanted("selection"))
                holds = compareSelection(pane, written(kind, size)) && holds;
        }
    }
    if (isWanted("scrubbing"))
        holds = compareScrubbing(pane, written(kinds[0], {1920, 1080})) && holds;
    if (isWanted("memory"))
        holds = watchMemory(pane, written(kinds[3], {480, 270})) && holds;
    return holds ? 0 : 1;
}
