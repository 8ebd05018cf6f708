#pragma once

#include "browser/FileBrowser.h"

#include <QTimer>

namespace Halvern::UI {

/// What the file list says about itself: why it is empty, and that rows may be missing. It follows the
/// listing; the browser shows the texts.
class ListNotice : public QObject
{
    Q_OBJECT

public:
    /// @p model is the source of @p proxy.
    ListNotice(FileBrowser::DirectoryModel* model, FileBrowser::ProxyModel* proxy, QObject* parent);

    /// In place of rows: "This folder is empty.", or that reading takes long. Empty if there are rows.
    const QString& emptyText() const { return m_emptyText; }
    /// To be shown beside rows: that the folder could not be read to its end. Empty if it could.
    const QString& problemText() const { return m_problemText; }

signals:
    void changed();

private slots:
    void update();

private:
    bool hasNames() const;

    FileBrowser::DirectoryModel* m_model;
    FileBrowser::ProxyModel* m_proxy;
    QTimer m_patience;
    bool m_waitedLong = false; // for the list of the present read
    QString m_emptyText;
    QString m_problemText;
};

} // namespace Halvern::UI
