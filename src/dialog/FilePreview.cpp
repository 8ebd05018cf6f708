#include "dialog/FilePreview.h"

#include "catalogue/FileInfo.h"
#include "dialog/FCPreviewInfo.h"
#include "dialog/Playback.h"
#include "dialog/Preview.h"
#include "dialog/PreviewPictures.h"
#include "dialog/PreviewText.h"
#include "dialog/StatusLine.h"
#include "frames/Placeholder.h"
#include "widgets/FrameSlider.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>

namespace Halvern::UI {

namespace {

constexpr int ReadingTime = 200; // milliseconds
constexpr double UsualRate = 24; // frames a second
constexpr int FramesAhead = 4;
constexpr int LongestStep = 16; // of frames, from one that is shown to the next, for reading ahead

} // namespace

struct FilePreview::Private
{
    int hostValue = 0; // only kept
    Preview* preview = nullptr;
    FrameSlider* slider = nullptr;
    StatusLine* label = nullptr;
    PreviewPictures* pictures = nullptr;
    Playback* playback = nullptr;
    QTimer reading; // until the label and the surface say that no picture came for a while
    QTimer request; // reads when the events at hand, perhaps a change of size, are handled
    QString path;
    Base::FrameRanges present; // the frames of a sequence with gaps
    int frame = 0;
    QString file;
    std::optional<int> lastFrame; // was read before, of the same selection
    qint64 step = 0;              // from the frame before it, in the direction in which it is scrubbed
    double rate = 0;              // of the picture that is shown, 0 if its file does not say
};

FilePreview::FilePreview(QWidget* parent, int hostValue)
    : QWidget(parent)
    , d(std::make_unique<Private>())
{
    d->hostValue = hostValue;
    d->preview = new Preview(this);
    d->slider = new FrameSlider(false, nullptr);
    d->label = new StatusLine;
    d->pictures = new PreviewPictures(this);
    d->playback = new Playback(this);
    d->preview->setObjectName(QStringLiteral("preview"));
    d->slider->setObjectName(QStringLiteral("slider"));
    d->label->setObjectName(QStringLiteral("label"));
    d->slider->setHideInOut(true);
    d->slider->installEventFilter(this);
    d->reading.setSingleShot(true);
    d->request.setSingleShot(true);
    connect(d->slider, SIGNAL(sliderMoved(int)), this, SLOT(gotoFrame(int)));
    connect(d->slider, &FrameSlider::sliderMoved, d->playback, &Playback::stop);
    connect(d->playback, &Playback::frameReached, this, &FilePreview::playFrame);
    connect(d->preview, &Preview::resized, this, [this] { d->request.start(0); });
    connect(&d->request, &QTimer::timeout, this, &FilePreview::readPicture);
    connect(&d->reading, &QTimer::timeout, this, [this] {
        d->preview->setReading(true);
        d->label->setUpdatesEnabled(true);
    });
    connect(d->pictures, &PreviewPictures::pictureReady, this, &FilePreview::showPicture);
    connect(d->pictures, &PreviewPictures::pictureFailed, this, &FilePreview::showReason);
    connect(d->pictures, &PreviewPictures::cacheChanged, this, &FilePreview::markCachedFrames);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(d->preview);
    layout->addWidget(d->label);
    layout->addWidget(d->slider);
    hide();
}

FilePreview::~FilePreview() = default;

const QString& FilePreview::path() const
{
    return d->path;
}

int FilePreview::frame() const
{
    return d->frame;
}

const QString& FilePreview::file() const
{
    return d->file;
}

void FilePreview::previewFile(const char* path)
{
    const QString selected = QString::fromUtf8(path);
    const Base::FrameRanges present = PreviewText::runsOf(selected);
    if (!grow(selected, present))
        select(selected, present);
}

void FilePreview::updateRange(int first, int last)
{
    d->slider->range(first, last);
}

void FilePreview::fileSelected(const Halvern::UI::FileInfo& info, QDir dir)
{
    const QString name = QString::fromUtf8(info.displayName());
    // A browser that enters a folder sends its path, without looking at the disk.
    const bool isFolder =
        info.isDirectory() || QDir::cleanPath(dir.absoluteFilePath(name)) == dir.absolutePath();
    const QString path = isFolder ? QString() : QString(dir.absolutePath() + QLatin1Char('/') + name);
    const auto present = (isFolder ? std::nullopt : Base::FrameRanges::unite(info.frameRanges()))
                             .value_or(Base::FrameRanges());
    if (grow(path, present))
        return;
    d->frame = 0;
    select(path, present);
}

// Whether @p path is what is selected, in a later state with other frames. The disk is asked only for a frame
// that is not shown yet.
bool FilePreview::grow(const QString& path, const Base::FrameRanges& present)
{
    const auto before = Placeholder::splitRange(d->path);
    const auto now = Placeholder::splitRange(path);
    const bool isSame = before && now && before->name == now->name && before->first <= now->last &&
                        now->first <= before->last;
    if (!isSame || (before->first == now->first && before->last == now->last))
        return false;
    d->path = path;
    d->present = present;
    if (d->slider->viewStart() == before->first && d->slider->viewEnd() == before->last)
        d->slider->range(now->first, now->last);
    if (!isVisible() || d->playback->isPlaying())
        return true;
    const int frame = FCPreviewInfo(path, d->slider->value()).frame;
    if (frame == d->frame && !d->file.isEmpty())
        d->request.start(0); // its label has the range
    else if (frame != d->frame || present.isEmpty() || present.contains(frame))
        showSelection();
    return true;
}

// A sequence that is selected again leaves the view where the user zoomed it.
void FilePreview::select(const QString& path, const Base::FrameRanges& present)
{
    const FCPreviewInfo before(d->path, 0);
    const FCPreviewInfo now(path, 0);
    d->path = path;
    d->present = present;
    d->lastFrame.reset();
    d->step = 0;
    d->rate = 0;
    d->playback->stop();
    d->pictures->forget();
    if (now.isSequence && (now.path != before.path || now.first != before.first || now.last != before.last))
        d->slider->range(now.first, now.last);
    markCachedFrames();
    if (isVisible())
        showSelection();
}

void FilePreview::gotoFrame(int frame)
{
    d->frame = frame;
    if (isVisible())
        showSelection();
}

void FilePreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // An empty label is less high, and the surface would change its size with every frame.
    d->label->setText(tr("No preview available."));
    d->label->setMinimumHeight(d->label->sizeHint().height());
    showSelection();
}

void FilePreview::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous()) // the window is minimised
        return;
    d->playback->stop();
    d->request.stop();
    d->reading.stop();
    d->pictures->clear();
    d->preview->showText(QString());
    markCachedFrames();
}

bool FilePreview::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == d->slider && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier) {
            if (!key->isAutoRepeat())
                togglePlayback();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FilePreview::showSelection()
{
    d->file.clear();
    if (d->path.isEmpty()) {
        d->preview->showText(QString());
        say(QString());
        return;
    }
    d->frame = d->slider->value();
    const FCPreviewInfo info(d->path, d->frame);
    if (info.isSequence)
        d->frame = info.frame;
    const QFileInfo file(info.path);
    if (!file.exists()) {
        noPreview(false);
        if (info.isSequence)
            d->preview->showText(tr("Frame %1 is missing.").arg(d->frame));
        return;
    }
    if (!PreviewText::isPreviewable(file.suffix().toLower())) {
        noPreview(true);
        return;
    }
    d->file = info.path;
    d->label->say(QString());
    // An empty label would flicker while frames are shown one after the other.
    d->label->setUpdatesEnabled(false);
    if (!d->reading.isActive())
        d->reading.start(ReadingTime);
    if (d->pictures->cache().contains(d->file, d->preview->room()))
        readPicture();
    else
        d->request.start(0);
}

void FilePreview::noPreview(bool resetSlider)
{
    d->pictures->forget();
    say(tr("No preview available."));
    if (resetSlider) {
        d->slider->range(0, 0);
        d->slider->setValue(0);
    }
    d->preview->showText(QString());
}

void FilePreview::readPicture()
{
    if (d->file.isEmpty() || !isVisible())
        return;
    if (d->lastFrame && *d->lastFrame != d->frame)
        d->step = qint64(d->frame) - *d->lastFrame;
    d->lastFrame = d->frame;
    QStringList ahead;
    const FCPreviewInfo info(d->path, d->frame);
    if (info.isSequence && d->step != 0 && qAbs(d->step) <= LongestStep) {
        const QString pattern = Placeholder::splitRange(d->path)->name;
        for (int i = 1; i <= FramesAhead; ++i) {
            const qint64 frame = d->frame + i * d->step;
            if (frame >= info.first && frame <= info.last)
                ahead << Placeholder::withFrame(pattern, int(frame));
        }
    }
    d->pictures->show(d->file, d->preview->room(), ahead);
}

void FilePreview::showPicture(const Picture& picture)
{
    d->rate = picture.frameRate;
    d->preview->showPicture(picture);
    if (picture.path == d->file)
        say(PreviewText::describe(picture, d->path, d->present));
    else if (d->reading.isActive())
        d->reading.start();
}

void FilePreview::showReason(const QString& reason)
{
    d->preview->showText(QString());
    say(reason);
}

// Ends the wait for what is to be said.
void FilePreview::say(const QString& text)
{
    d->reading.stop();
    d->preview->setReading(false);
    d->label->say(text);
    d->label->setUpdatesEnabled(true);
}

void FilePreview::markCachedFrames()
{
    const auto sequence = Placeholder::splitRange(d->path);
    d->slider->setCacheFrames(
        sequence ? PreviewText::framesAmong(d->pictures->cache().paths(), sequence->name) : std::set<int>());
}

void FilePreview::togglePlayback()
{
    const FCPreviewInfo info(d->path, d->slider->value());
    if (d->playback->isPlaying() || !info.isSequence)
        return d->playback->stop();
    const int first = std::clamp(d->slider->viewStart(), info.first, info.last);
    const int last = std::clamp(d->slider->viewEnd(), first, info.last);
    d->playback->start(first, last, info.frame, d->rate > 0 ? d->rate : UsualRate);
}

// A frame that is missing leaves the picture before it.
void FilePreview::playFrame(int frame)
{
    d->slider->setValue(frame);
    if (d->present.isEmpty() || d->present.contains(frame))
        gotoFrame(frame);
}

} // namespace Halvern::UI
