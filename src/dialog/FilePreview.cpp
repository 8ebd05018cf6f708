#include "dialog/FilePreview.h"

#include "catalogue/FileInfo.h"
#include "dialog/FCPreviewInfo.h"
#include "dialog/Preview.h"
#include "widgets/FrameSlider.h"

#include <QFileInfo>
#include <QLabel>
#include <QVBoxLayout>
#include <set>

namespace Halvern::UI {

namespace {

const QString* fontExtensions()
{
    static const QString extensions[] = {QStringLiteral("ttf"),   QStringLiteral("otf"),
                                         QStringLiteral("dfont"), QStringLiteral("pfa"),
                                         QStringLiteral("pfb"),   QString()};
    return extensions;
}

bool isFont(const QString& extension)
{
    const QString* font = fontExtensions();
    while (!font->isEmpty() && *font != extension)
        ++font;
    return !font->isEmpty();
}

bool isNeverPreviewed(const QString& extension)
{
    static const std::set<QString> extensions = [] {
        std::set<QString> all;
        for (const char* one :
             {"3dl",   "abc",  "aif",   "aiff", "autosave", "blut", "cc",  "ccc", "chan", "cms",
              "cpp",   "csp",  "csv",   "cub",  "cube",     "dll",  "dmg", "doc", "docx", "dtex",
              "dylib", "edl",  "exe",   "fbx",  "htm",      "html", "ini", "log", "mb",   "mp3",
              "mtl",   "ocio", "pdf",   "ptx",  "py",       "pyc",  "rib", "rtf", "so",   "txt",
              "wav",   "wave", "xls",   "xml",  "zip", // the suite's own from here on
              "hvs",   "hvp",  "hvarc", "hvvf"})
            all.insert(QLatin1String(one));
        return all;
    }();
    return extensions.count(extension) > 0;
}

} // namespace

FilePreview::FilePreview(QWidget* parent, int hostValue)
    : QWidget(parent)
    , m_hostValue(hostValue)
    , m_preview(new Preview(this))
    , m_slider(new FrameSlider(false, nullptr))
    , m_label(new QLabel)
{
    m_preview->setObjectName(QStringLiteral("preview"));
    m_slider->setObjectName(QStringLiteral("slider"));
    m_label->setObjectName(QStringLiteral("label"));
    m_slider->setHideInOut(true);
    connect(m_slider, SIGNAL(sliderMoved(int)), this, SLOT(gotoFrame(int)));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_preview);
    layout->addWidget(m_label);
    layout->addWidget(m_slider);
    hide();
}

void FilePreview::previewFile(const char* path)
{
    select(QString::fromUtf8(path));
}

void FilePreview::updateRange(int first, int last)
{
    m_slider->range(first, last);
}

void FilePreview::fileSelected(const Halvern::UI::FileInfo& info, QDir dir)
{
    m_frame = 0;
    select(info.isDirectory()
               ? QString()
               : dir.absolutePath() + QLatin1Char('/') + QString::fromUtf8(info.displayName()));
}

// A sequence that is selected again leaves the view where the user zoomed it.
void FilePreview::select(const QString& path)
{
    const FCPreviewInfo before(m_path, 0);
    const FCPreviewInfo now(path, 0);
    m_path = path;
    if (now.isSequence && (now.path != before.path || now.first != before.first || now.last != before.last))
        m_slider->range(now.first, now.last);
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
    showSelection();
}

void FilePreview::showSelection()
{
    m_file.clear();
    if (m_path.isEmpty()) {
        m_label->clear();
        m_preview->update();
        return;
    }
    m_frame = m_slider->value();
    const FCPreviewInfo info(m_path, m_frame);
    if (info.isSequence)
        m_frame = info.frame;
    const QFileInfo file(info.path);
    if (!file.exists()) {
        noPreview(false);
        return;
    }
    const QString extension = file.suffix().toLower();
    if (!isFont(extension) && isNeverPreviewed(extension)) {
        noPreview(true);
        return;
    }
    m_file = info.path;
    m_label->clear();
    m_preview->update();
}

void FilePreview::noPreview(bool resetSlider)
{
    m_label->setText(tr("No preview available."));
    if (resetSlider) {
        m_slider->range(0, 0);
        m_slider->setValue(0);
    }
    m_preview->update();
}

} // namespace Halvern::UI
