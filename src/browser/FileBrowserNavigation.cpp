// Where the browser is: directories, history and the filename field.

#include "browser/FileBrowser.h"

#include "browser/FilesList.h"
#include "browser/ProxyModel.h"
#include "catalogue/FileInfo.h"
#include "paths/Path.h"
#include "widgets/FilePathEdit.h"

#include <QComboBox>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace Halvern::UI {

// Qt has the resources of the program in directories that begin with a colon, which no read can list.
bool FileBrowser::isOnDisk(const QDir& dir)
{
    return dir.exists() && !dir.path().startsWith(QLatin1Char(':'));
}

void FileBrowser::setDirectory(QDir dir, bool keepFilename, bool doRefresh)
{
    if ((hasDirectory && dir == currentDirectory) || !isOnDisk(dir))
        return;
    currentDirectory = dir;
    hasDirectory = true;
    listed = false;
    // Back and forward set the index first and find the directory there already.
    if (historyIndex < 0 || history.value(historyIndex) != dir) {
        while (history.size() > historyIndex + 1)
            history.removeLast();
        history.append(dir);
        ++historyIndex;
    }
    updateNavigationButtons();
    if (!keepFilename) {
        const QPointer<FileBrowser> self(this);
        filenameEdit->setText(Base::withSeparator(dir.absolutePath()));
        if (self)
            emit fileSelected(FileInfo(dir.path().toUtf8().constData(), false), currentDirectory);
        if (!self)
            return;
    }
    if (doRefresh)
        refresh();
}

void FileBrowser::updateNavigationButtons()
{
    forwardButton->setEnabled(historyIndex < history.size() - 1);
    backButton->setEnabled(historyIndex >= 1);
    upButton->setEnabled(currentDirectory != QDir(QDir::rootPath()));
}

void FileBrowser::navigateBack()
{
    if (historyIndex > 0)
        setDirectory(history.at(--historyIndex), false, true);
}

void FileBrowser::navigateForwards()
{
    if (historyIndex < history.size() - 1)
        setDirectory(history.at(++historyIndex), false, true);
}

void FileBrowser::navigateUp()
{
    constexpr int MostSteps = 100;
    QDir parent = currentDirectory;
    bool found = parent.cdUp();
    for (int step = 0; !found && step < MostSteps; ++step) {
        parent.setPath(parent.absolutePath() + QLatin1String("/.."));
        parent.makeAbsolute();
        found = parent.exists();
    }
    if (found)
        setDirectory(parent, false, true);
}

void FileBrowser::setFilename(const QString& name)
{
    const bool hasFolder = name.contains(QLatin1Char('/'));
    const QFileInfo info = hasFolder ? QFileInfo(name) : QFileInfo(currentDirectory, name);
    setDirectory(info.dir(), false, true);
    const QString path = info.filePath();
    const int nameLength = info.fileName().length();
    filenameEdit->setText(path);
    filenameEdit->setFocus(Qt::OtherFocusReason);
    filenameEdit->setSelection(path.length() - nameLength, nameLength);
    if (!name.isEmpty() && !name.endsWith(QLatin1Char('/')))
        setFilterBlock(true);
}

// Typing and filtering narrow the listing again after setFilename().
void FileBrowser::clearFilterBlock()
{
    if (!filterBlock)
        return;
    filterBlock = false;
    proxyModel->setFilterBlocked(false);
}

void FileBrowser::autoComplete(QString text)
{
    QFileInfo info(text);
    clearFilterBlock();
    const bool home = text == QLatin1String("~/");
    if (home) {
        setDirectory(QDir(QDir::homePath()), false, true);
        info = QFileInfo(QDir::home().absolutePath() + QLatin1Char('/'));
    }
    if (!home && text.endsWith(QLatin1Char('/'))) {
        QString folder = text;
        if (text.startsWith(QLatin1String("./")) && !_defaultPath.isEmpty())
            folder.replace(0, 1, _defaultPath);
        setDirectory(QDir(folder), true, true);
    } else {
        setDirectory(info.dir(), true, true);
    }
    emit fileSelected(FileInfo(info), currentDirectory);
    refresh();
}

bool FileBrowser::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (!event || event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
        filesList->setCurrentIndex(filesList->rowAbove());
        return true;
    case Qt::Key_Down:
        filesList->setCurrentIndex(filesList->rowBelow());
        return true;
    case Qt::Key_Tab:
        completeTypedName();
        return true;
    default:
        return false;
    }
}

void FileBrowser::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QWidget* focus = focusWidget();
    const bool answersOpen = focus == filenameEdit && openButton->isVisible();
    const bool filters = focus == filterCombo || focus == filterCombo->lineEdit();
    if (!isReturn || (!answersOpen && !filters))
        QWidget::keyPressEvent(event);
}

void FileBrowser::completeTypedName()
{
    QString prefix = getCommonPrefix();
    if (prefix.isEmpty())
        return;
    if (prefix.endsWith(QLatin1Char('/')))
        prefix.chop(1);
    // Of the texts: Qt takes a name that begins with a colon for a path of its own.
    QString path = Base::withSeparator(currentDirectory.path()) + prefix;
    if (QFileInfo(path).isDir())
        path += QLatin1Char('/');
    filenameEdit->setText(path);
    autoComplete(path);
}

QString FileBrowser::getCommonPrefix() const
{
    const int rows = proxyModel->rowCount();
    if (rows < 1)
        return {};
    const QString first = proxyModel->index(0, 0).data().toString();
    const QString firstLower = first.toLower();
    int length = first.length();
    for (int row = 1; row < rows; ++row) {
        const QString other = proxyModel->index(row, 0).data().toString().toLower();
        length = qMin(length, other.length());
        if (length < 1)
            break;
        int agreeing = 0;
        while (agreeing < length && agreeing < firstLower.length() &&
               firstLower.at(agreeing) == other.at(agreeing))
            ++agreeing;
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
    if (!currentDirectory.mkdir(name)) {
        auto* box = new QMessageBox(QMessageBox::Warning, tr("New Folder"), tr("Can't create folder ") + name,
                                    QMessageBox::Ok, this);
        box->setTextFormat(Qt::PlainText);
        // It is gone with the browser where the host closed that in the meantime.
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->exec();
        return;
    }
    QDir created = currentDirectory;
    if (created.cd(name))
        setDirectory(created, false, true);
    refresh();
}

} // namespace Halvern::UI
