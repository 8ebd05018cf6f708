#pragma once

#include <QRegularExpression>
#include <QString>
#include <utility>
#include <vector>

namespace Halvern::UI {

/// The text of the filter box as a test for names: matches() gives what QDir::match() gives for the same
/// text.
///
/// The patterns are kept as a tree that shares what they have in common at their beginning. A name is walked
/// along all branches at once, so its time hardly grows with the number of patterns, and never more than with
/// the product of the lengths. For one thread at a time.
class NameFilter
{
public:
    /// Matches every name.
    NameFilter() = default;
    /// @p text holds wildcard patterns, separated by semicolons or, if there are none, by blanks: "*.exr
    /// *.dpx". Letter case makes no difference. A pattern that cannot be read, such as "[a", matches nothing.
    /// An empty text matches every name.
    explicit NameFilter(const QString& text);

    /// The text as it was given.
    const QString& text() const { return m_text; }
    /// Whether the whole of @p name matches one of the patterns: "A.EXR" matches "*.exr".
    bool matches(const QString& name) const;

private:
    /// A place between two characters of one or several patterns, with the places that come after it: their
    /// indexes, 0 for none.
    struct Node
    {
        bool isStar = false;                    ///< Behind a "*": stays here for every character but "/".
        bool isEnd = false;                     ///< A pattern ends here.
        int star = 0;                           ///< Reached by nothing, through a "*".
        int any = 0;                            ///< Reached by a character other than "/", through a "?".
        int set = 0;                            ///< Reached by a character, through a "[…]".
        std::vector<std::pair<uint, int>> next; ///< Reached by one character; sorted.
        /// What decides about the patterns with a "[…]" that end here.
        std::vector<QRegularExpression> expressions;
    };

    void add(const QString& pattern);
    int child(int node, uint character);
    void reach(int node, std::vector<int>& reached) const;

    QString m_text;
    std::vector<Node> m_nodes;                // the first is the beginning of all patterns
    std::vector<QRegularExpression> m_others; // patterns that the tree cannot hold
    mutable quint64 m_round = 0;              // counts the characters that were looked at
    mutable std::vector<quint64> m_reachedIn; // by node, the last round
};

} // namespace Halvern::UI
