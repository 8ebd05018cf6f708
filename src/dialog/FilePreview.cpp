#include "dialog/FilePreview.h"

#include "catalogue/FileInfo.h"
#include "dialog/FCPreviewInfo.h"
#include "dialog/Playback.h"
#include "dialog/Preview.h"
#include "dialog/PreviewPictures.h"
#include "dialog/PreviewText.h"
#include "frames/Placeholder.h"
#include "widgets/FrameSlider.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

namespace Halvern::UI {

namespace {

constexpr int ReadingTime = 200; // milliseconds
constexpr double UsualRate = 24; // frames a second
constexpr int FramesAhead = 4;
constexpr int LongestStep = 16; // of frames, from one that is shown to the next, for reading ahead

} // namespace

FilePreview::FilePreview(QWidget* parent, int hostValue)
    : QWidget(parent)
    , m_hostValue(hostValue)
    , m_preview(new Preview(this))
    , m_slider(new FrameSlider(false, nullptr))
    , m_label(new QLabel)
    , m_pictures(new PreviewPictures(this))
    , m_playback(new Playback(this))
{
    m_preview->setObjectName(QStringLiteral("preview"));
    m_slider->setObjectName(QStringLiteral("slider"));
    m_label->setObjectName(QStringLiteral("label"));
    m_slider->setHideInOut(true);
    m_slider->installEventFilter(this);
    // A long text shall not widen the window.
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_label->setTextFormat(Qt::PlainText);
    m_reading.setSingleShot(true);
    m_request.setSingleShot(true);
    connect(m_slider, SIGNAL(sliderMoved(int)), this, SLOT(gotoFrame(int)));
    connect(m_slider, &FrameSlider::sliderMoved, m_playback, &Playback::stop);
    connect(m_playback, &Playback::frameReached, this, &FilePreview::playFrame);
    connect(m_preview, &Preview::resized, this, [this] { m_request.start(0); });
    connect(&m_request, &QTimer::timeout, this, &FilePreview::readPicture);
    connect(&m_reading, &QTimer::timeout, this, [this] {
        m_preview->setReading(true);
        m_label->setUpdatesEnabled(true);
    });
    connect(m_pictures, &PreviewPictures::pictureReady, this, &FilePreview::showPicture);
    connect(m_pictures, &PreviewPictures::pictureFailed, this, &FilePreview::showReason);
    connect(m_pictures, &PreviewPictures::cacheChanged, this, &FilePreview::markCachedFrames);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_preview);
    layout->addWidget(m_label);
    layout->addWidget(m_slider);
    hide();
}

void FilePreview::previewFile(const char* path)
{
    const QString selected = QString::fromUtf8(path);
    select(selected, PreviewText::runsOf(selected));
}

void FilePreview::updateRange(int first, int last)
{
    m_slider->range(first, last);
}

void FilePreview::fileSelected(const Halvern::UI::FileInfo& info, QDir dir)
{
    m_frame = 0;
    if (info.isDirectory())
        return select(QString(), {});
    const auto present = Base::FrameRanges::unite(info.frameRanges());
    select(dir.absolutePath() + QLatin1Char('/') + QString::fromUtf8(info.displayName()),
           present.value_or(Base::FrameRanges()));
}

// A sequence that is selected again leaves the view where the user zoomed it.
void FilePreview::select(const QString& path, const Base::FrameRanges& present)
{
    const FCPreviewInfo before(m_path, 0);
    const FCPreviewInfo now(path, 0);
    m_path = path;
    m_present = present;
    m_lastFrame.reset();
    m_step = 0;
    m_playback->stop();
    m_pictures->forget();
    if (now.isSequence && (now.path != before.path || now.first != before.first || now.last != before.last))
        m_slider->range(now.first, now.last);
    markCachedFrames();
    if (isVisible())
        showSelection();
}

void FilePreview::gotoFrame(int frame)
{
    m_frame = frame;
    if (isVisible())
        showSelection();
}

void FilePreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // An empty label is less high, and the surface would change its size with every frame.
    m_label->setText(tr("No preview available."));
    m_label->setMinimumHeight(m_label->sizeHint().height());
    showSelection();
}

void FilePreview::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (event->spontaneous()) // the window is minimised
        return;
    m_playback->stop();
    m_request.stop();
    m_reading.stop();
    m_pictures->clear();
    m_preview->showText(QString());
    markCachedFrames();
}

bool FilePreview::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_slider && event->type() == QEvent::KeyPress) {
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
    m_file.clear();
    if (m_path.isEmpty()) {
        m_preview->showText(QString());
        say(QString());
        return;
    }
    m_frame = m_slider->value();
    const FCPreviewInfo info(m_path, m_frame);
    if (info.isSequence)
        m_frame = info.frame;
    const QFileInfo file(info.path);
    if (!file.exists()) {
        noPreview(false);
        if (info.isSequence)
            m_preview->showText(tr("Frame %1 is missing.").arg(m_frame));
        return;
    }
    if (!PreviewText::isPreviewable(file.suffix().toLower())) {
        noPreview(true);
        return;
    }
    m_file = info.path;
    m_label->clear();
    m_label->setToolTip(QString());
    // An empty label would flicker while frames are shown one after the other.
    m_label->setUpdatesEnabled(false);
    m_reading.start(ReadingTime);
    m_request.start(0);
}

void FilePreview::noPreview(bool resetSlider)
{
    m_pictures->forget();
    say(tr("No preview available."));
    if (resetSlider) {
        m_slider->range(0, 0);
        m_slider->setValue(0);
    }
    m_preview->showText(QString());
}

void FilePreview::readPicture()
{
    if (m_file.isEmpty() || !isVisible())
        return;
    if (m_lastFrame && *m_lastFrame != m_frame)
        m_step = qint64(m_frame) - *m_lastFrame;
    m_lastFrame = m_frame;
    QStringList ahead;
    const FCPreviewInfo info(m_path, m_frame);
    if (info.isSequence && m_step != 0 && qAbs(m_step) <= LongestStep) {
        const QString pattern = Placeholder::splitRange(m_path)->name;
        for (int i = 1; i <= FramesAhead; ++i) {
            const qint64 frame = m_frame + i * m_step;
            if (frame >= info.first && frame <= info.last)
                ahead << Placeholder::withFrame(pattern, int(frame));
        }
    }
    m_pictures->show(m_file, m_preview->room(), ahead);
}

void FilePreview::showPicture(const Picture& picture)
{
    m_rate = picture.frameRate;
    m_preview->showPicture(picture);
    if (picture.path == m_file)
        say(PreviewText::describe(picture, m_path, m_present));
}

void FilePreview::showReason(const QString& reason)
{
    m_preview->showText(QString());
    say(reason);
}

// Ends the wait for what is to be said.
void FilePreview::say(const QString& text)
{
    m_reading.stop();
    m_preview->setReading(false);
    m_label->setText(text);
    m_label->setToolTip(text);
    m_label->setUpdatesEnabled(true);
}

void FilePreview::markCachedFrames()
{
    const auto sequence = Placeholder::splitRange(m_path);
    m_slider->setCacheFrames(sequence ? PreviewText::framesAmong(m_pictures->cache().paths(), sequence->name)
                                      : std::set<int>());
}

void FilePreview::togglePlayback()
{
    const FCPreviewInfo info(m_path, m_slider->value());
    if (m_playback->isPlaying() || !info.isSequence)
        return m_playback->stop();
    const int first = std::clamp(m_slider->viewStart(), info.first, info.last);
    const int last = std::clamp(m_slider->viewEnd(), first, info.last);
    m_playback->start(first, last, info.frame, m_rate > 0 ? m_rate : UsualRate);
}

// A frame that is missing leaves the picture before it.
void FilePreview::playFrame(int frame)
{
    m_slider->setValue(frame);
    if (m_present.isEmpty() || m_present.contains(frame))
        gotoFrame(frame);
}

} // namespace Halvern::UI
