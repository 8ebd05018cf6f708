// Where the browser is: directories, history and the filename field.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"
#include "browser/ProxyModel.h"
#include "catalogue/FileInfo.h"
#include "paths/Path.h"
#include "widgets/FilePathEdit.h"

#include <QComboBox>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

namespace Halvern::UI {

// Qt has the resources of the program in directories that begin with a colon, which no read can list.
bool FileBrowser::Private::isOnDisk(const QDir& dir)
{
    return dir.exists() && !dir.path().startsWith(QLatin1Char(':'));
}

QDir FileBrowser::directory() const
{
    return d->m_directory;
}

void FileBrowser::setDirectory(QDir dir, bool keepFilename, bool doRefresh)
{
    if (!d->m_history.isEmpty() && dir == d->m_directory) {
        if (doRefresh && !d->m_listed)
            refresh();
        return;
    }
    if (!Private::isOnDisk(dir))
        return;
    d->m_directory = dir;
    d->m_listed = false;
    d->m_awaited = {};
    d->m_awaitsTop = true;
    d->m_history.visit(dir);
    d->m_controls.forwardButton->setEnabled(d->m_history.canGoForward());
    d->m_controls.backButton->setEnabled(d->m_history.canGoBack());
    d->m_controls.upButton->setEnabled(dir != QDir(QDir::rootPath()));
    if (!keepFilename) {
        d->m_controls.filenameEdit->setText(Base::withSeparator(dir.absolutePath()));
        emit fileSelected(FileInfo(dir.path().toUtf8().constData(), false), d->m_directory);
    }
    if (doRefresh)
        refresh();
    emit choiceChanged();
}

void FileBrowser::navigateBack()
{
    if (!d->m_history.canGoBack())
        return;
    const QDir left = d->m_directory;
    setDirectory(d->m_history.goBack(), false, true);
    d->awaitFolder(left);
}

void FileBrowser::navigateForwards()
{
    if (d->m_history.canGoForward())
        setDirectory(d->m_history.goForward(), false, true);
}

// The folder that was left becomes the current row, if the list that comes has it.
void FileBrowser::Private::awaitFolder(const QDir& left)
{
    const QFileInfo folder(left.absolutePath());
    if (folder.path() == m_directory.absolutePath())
        m_awaited.current = {folder.fileName().toUtf8(), {}};
}

void FileBrowser::navigateUp()
{
    constexpr int MostSteps = 100;
    const QDir left = d->m_directory;
    QDir parent = left;
    bool found = parent.cdUp();
    for (int step = 0; !found && step < MostSteps; ++step) {
        parent.setPath(parent.absolutePath() + QLatin1String("/.."));
        parent.makeAbsolute();
        found = parent.exists();
    }
    if (!found)
        return;
    setDirectory(parent, false, true);
    d->awaitFolder(left);
}

void FileBrowser::setFilename(const QString& name)
{
    const bool hasFolder = name.contains(QLatin1Char('/'));
    const QFileInfo info = hasFolder ? QFileInfo(name) : QFileInfo(d->m_directory, name);
    setDirectory(info.dir(), false, true);
    const QString path = info.filePath();
    const auto nameLength = static_cast<int>(info.fileName().length());
    d->m_controls.filenameEdit->setText(path);
    d->m_controls.filenameEdit->setFocus(Qt::OtherFocusReason);
    d->m_controls.filenameEdit->setSelection(static_cast<int>(path.length()) - nameLength, nameLength);
    if (!name.isEmpty() && !name.endsWith(QLatin1Char('/')))
        setFilterBlock(true);
    emit choiceChanged();
}

// Typing and filtering narrow the listing again after setFilename().
void FileBrowser::Private::clearFilterBlock()
{
    if (!m_filterBlock)
        return;
    m_filterBlock = false;
    m_proxy->setFilterBlocked(false);
}

void FileBrowser::autoComplete(QString text)
{
    QFileInfo info(text);
    d->clearFilterBlock();
    const bool home = text == QLatin1String("~/");
    if (home) {
        setDirectory(QDir(QDir::homePath()), false, true);
        info = QFileInfo(QDir::home().absolutePath() + QLatin1Char('/'));
    }
    if (!home && text.endsWith(QLatin1Char('/'))) {
        QString folder = text;
        if (text.startsWith(QLatin1String("./")) && !Private::s_classWide.defaultPath.isEmpty())
            folder.replace(0, 1, Private::s_classWide.defaultPath);
        setDirectory(QDir(folder), true, true);
    } else {
        setDirectory(info.dir(), true, true);
    }
    emit fileSelected(FileInfo(info), d->m_directory);
    refresh();
}

bool FileBrowser::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (!event || event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
        d->m_filesList->setCurrentIndex(d->m_filesList->rowAbove());
        return true;
    case Qt::Key_Down:
        d->m_filesList->setCurrentIndex(d->m_filesList->rowBelow());
        return true;
    case Qt::Key_Tab:
        d->completeTypedName();
        return true;
    default:
        return false;
    }
}

void FileBrowser::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QWidget* focus = focusWidget();
    const bool answersOpen = focus == d->m_controls.filenameEdit && d->m_controls.openButton->isVisible();
    const bool filters = focus == d->m_controls.filterCombo || focus == d->m_controls.filterCombo->lineEdit();
    if (!isReturn || (!answersOpen && !filters))
        QWidget::keyPressEvent(event);
}

void FileBrowser::Private::completeTypedName()
{
    QString prefix = getCommonPrefix();
    if (prefix.isEmpty())
        return;
    if (prefix.endsWith(QLatin1Char('/')))
        prefix.chop(1);
    // Of the texts: Qt takes a name that begins with a colon for a path of its own.
    QString path = Base::withSeparator(m_directory.path()) + prefix;
    if (QFileInfo(path).isDir())
        path += QLatin1Char('/');
    m_controls.filenameEdit->setText(path);
    q->autoComplete(path);
}

// The displayed name of a row; of a sequence without its runs, which no path has.
QString FileBrowser::Private::completionText(int row) const
{
    const QModelIndex index = m_proxy->index(row, 0);
    const FileInfo* info = m_model->entry(m_proxy->mapToSource(index).row());
    const bool hasRuns = info && info->isSequence() && !info->isDirectory();
    return hasRuns ? normalizeFile(QString::fromUtf8(info->displayName())) : index.data().toString();
}

QString FileBrowser::Private::getCommonPrefix() const
{
    const int rows = m_proxy->rowCount();
    if (rows < 1)
        return {};
    const QString first = completionText(0);
    const QString firstLower = first.toLower();
    auto length = first.length();
    for (int row = 1; row < rows; ++row) {
        const QString other = completionText(row).toLower();
        length = qMin(length, other.length());
        const auto* const end = firstLower.constBegin() + qMin(length, firstLower.length());
        const auto agreeing = static_cast<decltype(length)>(
            std::mismatch(firstLower.constBegin(), end, other.constBegin()).first - firstLower.constBegin());
        // A row that shares nothing ends the comparison with the length that was reached before it.
        if (agreeing == 0)
            break;
        length = agreeing;
    }
    return first.left(length);
}

void FileBrowser::newFolder()
{
    const QString name = QInputDialog::getText(this, tr("New Folder"), tr("New Folder Name"),
                                               QLineEdit::Normal, QStringLiteral("New Folder"));
    if (name.isEmpty())
        return;
    if (!d->m_directory.mkdir(name)) {
        auto* box = new QMessageBox(QMessageBox::Warning, tr("New Folder"), tr("Can't create folder ") + name,
                                    QMessageBox::Ok, this);
        box->setTextFormat(Qt::PlainText);
        // The host may have closed the browser in the meantime, and the box with it.
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->exec();
        return;
    }
    QDir created = d->m_directory;
    if (created.cd(name))
        setDirectory(created, false, true);
    refresh();
}

} // namespace Halvern::UI
