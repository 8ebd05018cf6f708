#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>

namespace Halvern::UI {

/// The paths that a user collects across folders, in the order in which they were added. A path may stand in
/// it several times. Asking whether a path is in it takes the same time however long it is.
class PickList
{
public:
    const QStringList& paths() const { return m_paths; }
    bool isEmpty() const { return m_paths.isEmpty(); }
    bool contains(const QString& path) const { return m_known.contains(path); }

    void append(const QString& path);
    /// Removes, for each of @p paths, the first one that is equal to it.
    void remove(const QStringList& paths);
    /// Puts the values of @p successors in place of the paths that are their keys.
    void replace(const QHash<QString, QString>& successors);

private:
    QStringList m_paths;
    QSet<QString> m_known; // the same paths
};

} // namespace Halvern::UI
