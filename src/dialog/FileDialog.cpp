#include "dialog/FileDialog.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "browser/ProxyModel.h"
#include "widgets/AppSettings.h"
#include "widgets/FilePathEdit.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

namespace Halvern::UI {

FileDialog::FileDialog(QWidget* parent, const char* acceptText, const char* acceptTooltip)
    : QDialog(parent)
    , browser(new FileBrowser(this))
{
    if (acceptText)
        browser->setAcceptButtonText(QString::fromLatin1(acceptText));
    if (acceptTooltip)
        browser->setAcceptButtonTooltip(QString::fromLatin1(acceptTooltip));
    // A file that is dropped on a field is dropped on the dialog, not written into the text as a URL.
    browser->filenameEdit->setAcceptDrops(false);
    browser->filterCombo->lineEdit()->setAcceptDrops(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(browser);

    connect(browser->filesList->selectionModel(),
            SIGNAL(selectionChanged(const QItemSelection&, const QItemSelection&)), this,
            SLOT(fileSelectionChanged()));
    connect(browser, SIGNAL(fileSelected(const Halvern::UI::FileInfo&, QDir)), this,
            SLOT(fileSelectionChanged()));
    // What takes the selection away with the rows, or changes the pick list, announces the rows alone.
    // Queued, because the list may put the selection back.
    for (const char* signal : {SIGNAL(modelReset()), SIGNAL(layoutChanged())})
        connect(browser->proxyModel, signal, this, SLOT(rowsChanged()), Qt::QueuedConnection);
    connect(browser, SIGNAL(fileDoubleClick(const Halvern::UI::FileInfo&)), this,
            SLOT(fileDoubleClicked(const Halvern::UI::FileInfo&)));
    connect(browser, SIGNAL(accepted()), this, SLOT(accept()));
    connect(browser, SIGNAL(rejected()), this, SLOT(reject()));
    connect(browser, SIGNAL(previewClosed()), this, SLOT(onPreviewClosed()), Qt::QueuedConnection);
    connect(browser, SIGNAL(previewOpening()), this, SLOT(onPreviewOpening()));

    if (const std::optional<QSize> stored = AppSettings::Size(FileBrowser::_sizeIdentifier))
        resize(stored->boundedTo(QGuiApplication::primaryScreen()->availableVirtualSize()));
    setAcceptDrops(true);
    decidedOn = grounds();
}

FileDialog::~FileDialog()
{
    AppSettings::Store({{FileBrowser::_sizeIdentifier, size()}});
    // Before the rest of the dialog goes, to which its last signals are connected.
    delete browser;
}

void FileDialog::setFilterBlock(bool block)
{
    browser->setFilterBlock(block);
}

void FileDialog::setDirectory(const QDir& dir, bool keepFilename, bool doRefresh)
{
    browser->setDirectory(dir, keepFilename, doRefresh);
}

void FileDialog::setFilename(const QString& name)
{
    browser->setFilename(name);
}

void FileDialog::setFilters(QStringList& filters, bool doRefresh)
{
    browser->setFilters(filters, doRefresh);
}

void FileDialog::setPreviewWidget(QWidget* widget)
{
    browser->setPreviewWidget(widget);
}

void FileDialog::setSelectionType(FileBrowser::SelectionType type)
{
    browser->setSelectionType(type);
}

void FileDialog::setSequencesEnabled(bool enabled)
{
    browser->setSequencesEnabled(enabled);
}

void FileDialog::setMayNotExist(bool may)
{
    browser->setMayNotExist(may);
}

void FileDialog::setMultipleSelections(bool multiple)
{
    browser->setMultipleSelections(multiple);
}

void FileDialog::buildSettingsNamespace(const QString& ns)
{
    browser->buildSettingsNamespace(ns);
}

QDir FileDialog::directory() const
{
    return browser->directory();
}

QStringList FileDialog::selectedFiles() const
{
    return browser->selectedFiles();
}

void FileDialog::refreshWidget()
{
    browser->refresh();
    fileSelectionChanged();
}

// A dialog that opens gives its first field the focus as if by Tab, which selects the whole text: the first
// key would then replace the directory that the field begins with.
void FileDialog::setVisible(bool visible)
{
    FilePathEdit& edit = *browser->filenameEdit;
    const int cursor = edit.cursorPosition();
    const int start = edit.selectionStart();
    const int length = edit.selectedText().length();
    QDialog::setVisible(visible);
    if (length > 0)
        edit.setSelection(start, length);
    else
        edit.setCursorPosition(cursor);
}

// The base class goes on to the next signal in a dialog that a listener of the one before has destroyed.
void FileDialog::done(int result)
{
    const QPointer<FileDialog> self(this);
    const bool wereBlocked = blockSignals(true);
    QDialog::done(result);
    if (!self)
        return;
    blockSignals(wereBlocked);
    if (result == Accepted)
        emit accepted();
    else if (result == Rejected)
        emit rejected();
    if (self)
        emit finished(result);
}

bool FileDialog::isAcceptable(const FileInfo& info) const
{
    using SelectionType = FileBrowser::SelectionType;
    switch (browser->selectionType) {
    case SelectionType::Files:
        return !info.isDirSafe(directory());
    case SelectionType::Directories:
        return info.isDirSafe(directory());
    case SelectionType::FilesAndDirectories:
        return true;
    }
    return false;
}

// Whether what is selected, or without a selection what is typed, can be opened.
bool FileDialog::selectionIsAcceptable() const
{
    const int selected = browser->filesList->selectionModel()->selectedRows().size();
    if (selected == 0) {
        const bool wantsDirectories =
            browser->selectionType == FileBrowser::SelectionType::Directories ||
            browser->selectionType == FileBrowser::SelectionType::FilesAndDirectories;
        return wantsDirectories && QFileInfo(browser->filenameEdit->text()).isDir();
    }
    if (selected > 1 && !browser->multipleSelections)
        return false;
    const QModelIndexList rows = browser->selectedSourceRows();
    return rows.size() == selected && std::all_of(rows.begin(), rows.end(), [this](const QModelIndex& row) {
               return isAcceptable(*browser->directoryModel->fileInfo(row));
           });
}

FileDialog::Grounds FileDialog::grounds() const
{
    // Asking for the rows takes a while where there are many.
    int selected = 0;
    for (const QItemSelectionRange& range : browser->filesList->selectionModel()->selection())
        selected += range.height();
    return {selected,
            browser->filenameEdit->text(),
            browser->selectionType,
            browser->multipleSelections,
            browser->mayNotExist,
            browser->pickList.isEmpty()};
}

void FileDialog::fileSelectionChanged()
{
    const bool acceptable = selectionIsAcceptable();
    const bool queued = browser->multipleSelections && !browser->pickList.isEmpty();
    browser->setNextButtonEnabled(acceptable && browser->multipleSelections);
    browser->setAcceptButtonEnabled(acceptable || browser->mayNotExist || queued);
    decidedOn = grounds();
}

// Attributes come in many batches, and deciding asks the disk for each selected row.
void FileDialog::rowsChanged()
{
    if (decidedOn != grounds())
        fileSelectionChanged();
}

void FileDialog::fileDoubleClicked(const FileInfo& /*info*/)
{
    accept();
}

void FileDialog::resetFileFilter()
{
    browser->proxyModel->setFilterPattern(QString());
    browser->proxyModel->apply();
}

void FileDialog::onPreviewOpening()
{
    sizeBeforePreview = size();
}

void FileDialog::onPreviewClosed()
{
    if (sizeBeforePreview.isValid())
        resize(sizeBeforePreview);
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
