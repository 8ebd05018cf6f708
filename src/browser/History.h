#pragma once

#include <QDir>
#include <QList>

namespace Halvern::UI {

/// The directories that a browser went to, with a cursor at the present one. "Forward" goes to the next.
class History
{
public:
    bool isEmpty() const { return m_directories.isEmpty(); }
    bool canGoBack() const { return m_position > 0; }
    bool canGoForward() const { return m_position + 1 < m_directories.size(); }
    /// Move the cursor and return the directory there. Only if canGoBack() or canGoForward().
    QDir goBack() { return m_directories.at(--m_position); }
    QDir goForward() { return m_directories.at(++m_position); }

    /// Enters @p dir after the cursor, in place of all that follow it. Nothing changes if the cursor is at
    /// @p dir already, as it is after goBack() and goForward().
    void visit(const QDir& dir)
    {
        if (m_position >= 0 && m_directories.at(m_position) == dir)
            return;
        while (m_directories.size() > m_position + 1)
            m_directories.removeLast();
        m_directories.append(dir);
        ++m_position;
    }

private:
    QList<QDir> m_directories;
    int m_position = -1;
};

} // namespace Halvern::UI
