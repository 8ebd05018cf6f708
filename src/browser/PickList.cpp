#include "browser/PickList.h"

namespace Halvern::UI {

void PickList::append(const QString& path)
{
    m_paths.append(path);
    m_known.insert(path);
}

void PickList::remove(const QStringList& paths)
{
    QHash<QString, int> left;
    for (const QString& path : paths)
        ++left[path];
    const QStringList before = std::exchange(m_paths, {});
    m_known.clear();
    for (const QString& path : before) {
        const auto found = left.find(path);
        if (found == left.end() || *found == 0)
            append(path);
        else
            --*found;
    }
}

void PickList::replace(const QHash<QString, QString>& successors)
{
    const QStringList before = std::exchange(m_paths, {});
    m_known.clear();
    for (const QString& path : before)
        append(successors.value(path, path));
}

} // namespace Halvern::UI
