#include "browser/NameFilter.h"

#include <QDir>
#include <algorithm>

namespace Halvern::UI {

namespace {

// What stands for wildcards among the characters of a pattern; no character has these values.
constexpr uint Star = 0x110000;
constexpr uint Any = Star + 1;
constexpr uint Set = Star + 2;

using Path = std::vector<uint>;

// The index of the "]" of the set whose "[" is at @p begin; the end of the pattern for sets that are left to
// Qt.
int endOfSet(const QVector<uint>& pattern, int begin)
{
    const int first = begin + (pattern.value(begin + 1) == '!' ? 2 : 1);
    const int size = static_cast<int>(pattern.size());
    if (pattern.value(begin + 1) == '^') // for Qt a "]" after it is a member
        return size;
    for (int i = first; i < size; ++i) {
        if (pattern[i] == ']' && i > first)
            return i;
        if (pattern[i] == '/' || pattern[i] == '[')
            break;
    }
    return size;
}

// The pattern as characters in one letter case and wildcards; empty if it is left to Qt.
Path pathOf(const QString& text)
{
    const QVector<uint> pattern = text.toUcs4();
    Path path;
    for (int i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '\\')
            return {};
        if (pattern[i] == '[') {
            i = endOfSet(pattern, i);
            if (i == pattern.size())
                return {};
            path.push_back(Set);
        } else {
            path.push_back(pattern[i] == '*'   ? Star
                           : pattern[i] == '?' ? Any
                                               : QChar::toCaseFolded(pattern[i]));
        }
    }
    return path;
}

// Of many "*", each but the last takes no more than it must and never gives it back. The text between two "*"
// has a fixed length, so the first place that it fits is as good as any. To try all takes exponential time.
QRegularExpression expressionOf(const QString& pattern)
{
    constexpr int FewStars = 2;
    const QLatin1String star("[^/]*");
    QString text = QRegularExpression::wildcardToRegularExpression(pattern);
    QStringList parts = text.split(star);
    if (parts.size() > FewStars + 1) {
        const QString end = star + parts.takeLast();
        text = parts.takeFirst();
        for (const QString& part : qAsConst(parts))
            text += QLatin1String("(?>[^/]*?") + part + QLatin1Char(')');
        text += end;
    }
    return QRegularExpression(text, QRegularExpression::CaseInsensitiveOption);
}

bool anyFinds(const std::vector<QRegularExpression>& expressions, const QString& name)
{
    return std::any_of(expressions.begin(), expressions.end(),
                       [&name](const QRegularExpression& one) { return one.match(name).hasMatch(); });
}

std::size_t at(int node)
{
    return static_cast<std::size_t>(node);
}

} // namespace

NameFilter::NameFilter(const QString& text)
    : m_text(text)
    , m_nodes(1)
{
    const QStringList patterns = text.isEmpty() ? QStringList() : QDir::nameFiltersFromString(text);
    for (const QString& pattern : patterns)
        add(pattern);
    m_reachedIn.assign(m_nodes.size(), 0);
}

void NameFilter::add(const QString& pattern)
{
    const Path path = pathOf(pattern);
    const bool isLeftToQt = path.empty() && !pattern.isEmpty();
    int node = 0;
    for (const uint character : path)
        node = child(node, character);
    if (!isLeftToQt && std::find(path.begin(), path.end(), Set) == path.end()) {
        m_nodes[at(node)].isEnd = true;
        return;
    }
    // Qt would warn at each use of one that it cannot read.
    const QRegularExpression expression = expressionOf(pattern);
    if (expression.isValid())
        (isLeftToQt ? m_others : m_nodes[at(node)].expressions).push_back(expression);
}

int NameFilter::child(int node, uint character)
{
    Node& parent = m_nodes[at(node)];
    int* place = character == Star ? &parent.star : character == Any ? &parent.any : &parent.set;
    if (character < Star) {
        const auto next = std::lower_bound(parent.next.begin(), parent.next.end(), std::pair(character, 0));
        const bool isNew = next == parent.next.end() || next->first != character;
        place = &(isNew ? parent.next.insert(next, {character, 0}) : next)->second;
    }
    if (*place != 0)
        return *place;
    const int made = static_cast<int>(m_nodes.size());
    *place = made;
    m_nodes.emplace_back().isStar = character == Star;
    return made;
}

// Adds the node, and those that follow from it without a character.
void NameFilter::reach(int node, std::vector<int>& reached) const
{
    do {
        if (m_reachedIn[at(node)] == m_round)
            return;
        m_reachedIn[at(node)] = m_round;
        reached.push_back(node);
        node = m_nodes[at(node)].star;
    } while (node != 0);
}

bool NameFilter::matches(const QString& name) const
{
    if (m_text.isEmpty())
        return true;
    std::vector<int> left;
    std::vector<int> reached;
    ++m_round;
    reach(0, reached);
    for (const uint character : name.toUcs4()) {
        left.swap(reached);
        reached.clear();
        ++m_round;
        const std::pair<uint, int> wanted(QChar::toCaseFolded(character), 0);
        for (const int one : left) {
            const Node& node = m_nodes[at(one)];
            if (node.isStar && character != '/')
                reach(one, reached);
            if (node.any != 0 && character != '/')
                reach(node.any, reached);
            if (node.set != 0)
                reach(node.set, reached);
            const auto next = std::lower_bound(node.next.begin(), node.next.end(), wanted);
            if (next != node.next.end() && next->first == wanted.first)
                reach(next->second, reached);
        }
        if (reached.empty())
            break;
    }
    const bool found = std::any_of(reached.begin(), reached.end(), [&](int one) {
        const Node& node = m_nodes[at(one)];
        return node.isEnd || anyFinds(node.expressions, name);
    });
    return found || anyFinds(m_others, name);
}

} // namespace Halvern::UI
