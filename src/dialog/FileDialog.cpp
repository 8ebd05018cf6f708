#include "dialog/FileDialog.h"

#include "widgets/AppSettings.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>
#include <utility>

namespace Halvern::UI {

namespace {

const QString SizeKey = QStringLiteral("FileBrowser/size");

} // namespace

FileDialog::FileDialog(QWidget* parent, const char* acceptText, const char* acceptTooltip)
    : QDialog(parent)
    , m_browser(new FileBrowser(this))
    , m_filenameEdit(m_browser->findChild<QLineEdit*>(QStringLiteral("filenameEdit")))
{
    if (acceptText)
        m_browser->setAcceptButtonText(QString::fromLatin1(acceptText));
    if (acceptTooltip)
        m_browser->setAcceptButtonTooltip(QString::fromLatin1(acceptTooltip));
    // A file dropped on a field goes to the dialog. The field would insert its URL as text.
    m_filenameEdit->setAcceptDrops(false);
    m_browser->findChild<QComboBox*>(QStringLiteral("filterCombo"))->lineEdit()->setAcceptDrops(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_browser);

    connect(m_browser, SIGNAL(choiceChanged()), this, SLOT(fileSelectionChanged()));
    connect(m_browser, SIGNAL(fileSelected(const Halvern::UI::FileInfo&, QDir)), this,
            SLOT(fileSelectionChanged()));
    connect(m_browser, SIGNAL(fileDoubleClick(const Halvern::UI::FileInfo&)), this,
            SLOT(fileDoubleClicked(const Halvern::UI::FileInfo&)));
    connect(m_browser, SIGNAL(accepted()), this, SLOT(accept()));
    connect(m_browser, SIGNAL(rejected()), this, SLOT(reject()));
    connect(m_browser, &FileBrowser::previewClosed, this,
            [this] { m_sizeIsDue = std::exchange(m_previewOpen, false) || m_sizeIsDue; });
    connect(m_browser, SIGNAL(previewClosed()), this, SLOT(onPreviewClosed()), Qt::QueuedConnection);
    connect(m_browser, SIGNAL(previewOpening()), this, SLOT(onPreviewOpening()));

    if (const std::optional<QSize> stored = AppSettings::Size(SizeKey))
        resize(stored->boundedTo(QGuiApplication::primaryScreen()->availableVirtualSize()));
    setAcceptDrops(true);
}

FileDialog::~FileDialog()
{
    const bool grown = (m_previewOpen || m_sizeIsDue) && size() == m_sizeWithPreview;
    if (m_wasShown)
        AppSettings::Store(
            {{SizeKey, grown && m_sizeBeforePreview.isValid() ? m_sizeBeforePreview : size()}});
    // First, because its last signals are connected to the rest of the dialog.
    delete m_browser;
}

// QDialog focuses its first field as if by Tab, with all text selected. The first key would replace it.
void FileDialog::setVisible(bool visible)
{
    const int cursor = m_filenameEdit->cursorPosition();
    const int start = m_filenameEdit->selectionStart();
    const int length = m_filenameEdit->selectionLength();
    const bool firstShow = visible && !m_wasShown;
    m_wasShown = m_wasShown || visible;
    // The user may have set the size after the preview was opened.
    if (firstShow && m_previewOpen)
        m_sizeBeforePreview = testAttribute(Qt::WA_Resized) ? size() : QSize();
    QDialog::setVisible(visible);
    if (firstShow)
        noteSizeWithPreview();
    if (length > 0)
        m_filenameEdit->setSelection(start, length);
    else
        m_filenameEdit->setCursorPosition(cursor);
}

void FileDialog::fileSelectionChanged()
{
    const FileBrowser::Acceptance acceptance = m_browser->acceptance();
    m_browser->setNextButtonEnabled(acceptance == FileBrowser::Acceptance::OpenAndNext);
    m_browser->setAcceptButtonEnabled(acceptance != FileBrowser::Acceptance::None);
}

void FileDialog::onPreviewOpening()
{
    // If the preview is closed and opened at once, the dialog still has the larger size.
    if (!std::exchange(m_sizeIsDue, false))
        m_sizeBeforePreview = size();
    m_previewOpen = true;
    QMetaObject::invokeMethod(this, "noteSizeWithPreview", Qt::QueuedConnection);
}

void FileDialog::onPreviewClosed()
{
    if (!std::exchange(m_sizeIsDue, false))
        return;
    if (m_sizeBeforePreview.isValid())
        resize(m_sizeBeforePreview);
    else
        adjustSize();
}

void FileDialog::noteSizeWithPreview()
{
    if (!m_previewOpen || !isVisible())
        return;
    layout()->activate();
    m_sizeWithPreview = size();
}

// Only spontaneous events come from a resize by the user.
void FileDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    if (m_previewOpen && event->spontaneous())
        m_sizeBeforePreview = event->size();
}

void FileDialog::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() != 1 || urls.first().toLocalFile().isEmpty()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void FileDialog::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty())
        return;
    setFilename(urls.first().toLocalFile());
    event->accept();
}

} // namespace Halvern::UI
