#include "browser/ListNotice.h"

#include "browser/DirectoryModel.h"
#include "browser/ProxyModel.h"

namespace Halvern::UI {

namespace {

// "permission denied", as it follows a colon.
QString errorText(int error)
{
    const QString text = qt_error_string(error);
    return text.left(1).toLower() + text.mid(1);
}

} // namespace

ListNotice::ListNotice(FileBrowser::DirectoryModel* model, FileBrowser::ProxyModel* proxy, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_proxy(proxy)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(300); // milliseconds
    connect(model, &FileBrowser::DirectoryModel::readStarted, this, [this] {
        m_patience.start();
        m_waitedLong = false;
        update();
    });
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_waitedLong = true;
        update();
    });
    for (const char* signal : {SIGNAL(readFailed()), SIGNAL(rowsUpdated()), SIGNAL(updated(int, bool))})
        connect(model, signal, this, SLOT(update()));
    for (const char* signal : {SIGNAL(modelReset()), SIGNAL(layoutChanged())})
        connect(proxy, signal, this, SLOT(update()));
}

void ListNotice::update()
{
    QString empty;
    QString problem;
    if (!m_model->isListReady()) {
        if (m_waitedLong)
            empty = FileBrowser::tr("Reading ") + QChar(0x2026);
    } else {
        const int readError = m_model->readError();
        const int error = readError != 0 ? readError : m_model->updateError();
        if (error != 0) {
            const bool isIncomplete = hasNames();
            const QString text = isIncomplete && readError != 0
                                     ? FileBrowser::tr("Not all of this folder could be read: %1")
                                     : FileBrowser::tr("This folder can't be read: %1");
            (isIncomplete ? problem : empty) = text.arg(errorText(error));
        }
        if (empty.isEmpty() && m_proxy->rowCount() == 0)
            empty = m_proxy->reasonForNoRows();
    }
    if (empty == m_emptyText && problem == m_problemText)
        return;
    m_emptyText = empty;
    m_problemText = problem;
    emit changed();
}

// Whether anything was read that is not hidden, "." and ".." included.
bool ListNotice::hasNames() const
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (m_model->entry(row) && m_model->displayName(row)[0] != '.')
            return true;
    }
    return false;
}

} // namespace Halvern::UI
