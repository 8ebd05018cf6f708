#include "browser/RowChanges.h"

#include "catalogue/FileInfo.h"

#include <algorithm>
#include <unordered_map>

namespace Halvern::UI {

namespace {

constexpr int None = -1;
using Keys = std::vector<RowKey>;
using Name = std::string_view RowKey::*;

const RowKey& at(const Keys& keys, int row)
{
    return keys[static_cast<std::size_t>(row)];
}

bool haveCommonFrames(const RowKey& a, const RowKey& b)
{
    return a.firstFrame <= b.lastFrame && b.firstFrame <= a.lastFrame;
}

bool isSame(const RowKey& a, const RowKey& b)
{
    return a.kind == b.kind && a.name == b.name && haveCommonFrames(a, b);
}

/// Finds the rows before that are the rows after, one pair after the other.
class Matching
{
public:
    Matching(const Keys& before, const Keys& after)
        : m_keysBefore(before)
        , m_keysAfter(after)
        , m_placeOf(before.size(), None)
        , m_rowAt(after.size(), None)
    {
        int row = 0;
        int place = 0;
        while (findNear(row, place))
            pair(row++, place++);
        auto lastRow = static_cast<int>(before.size());
        auto lastPlace = static_cast<int>(after.size());
        while (lastRow > row && lastPlace > place &&
               isSame(at(before, lastRow - 1), at(after, lastPlace - 1)))
            pair(--lastRow, --lastPlace);
        match(&RowKey::name);
        match(&RowKey::firstFile);
        matchFrames(m_keysBefore, m_placeOf, m_keysAfter, m_rowAt,
                    [this](int file, int sequence) { pair(file, sequence); });
        matchFrames(m_keysAfter, m_rowAt, m_keysBefore, m_placeOf,
                    [this](int file, int sequence) { pair(sequence, file); });
    }

    int placeOf(int row) const { return m_placeOf[static_cast<std::size_t>(row)]; }
    bool isNew(int row) const { return m_rowAt[static_cast<std::size_t>(row)] == None; }

private:
    void pair(int row, int place)
    {
        m_placeOf[static_cast<std::size_t>(row)] = place;
        m_rowAt[static_cast<std::size_t>(place)] = row;
        ++m_pairs;
    }
    bool areAllPaired() const { return m_pairs == std::min(m_placeOf.size(), m_rowAt.size()); }

    // Most rows stay in their order. Moves on to the next pair, past rows that vanish and new ones. False if
    // no pair is near.
    bool findNear(int& row, int& place) const
    {
        constexpr int Near = 32;
        const auto rows = static_cast<int>(m_keysBefore.size());
        const auto places = static_cast<int>(m_keysAfter.size());
        const auto isPair = [&](int rowsPassed, int placesPassed) {
            if (row + rowsPassed >= rows || place + placesPassed >= places ||
                !isSame(at(m_keysBefore, row + rowsPassed), at(m_keysAfter, place + placesPassed)))
                return false;
            row += rowsPassed;
            place += placesPassed;
            return true;
        };
        for (int passed = 0; passed <= Near; ++passed) {
            if (isPair(passed, 0) || isPair(0, passed) || isPair(passed, passed))
                return true;
        }
        return false;
    }

    // Pairs rows of one name and kind. Rows of a name form a chain in their order. Of a sequence the runs
    // come by rising frames, so that a run that ends before the one looked for is passed for good.
    void match(Name name)
    {
        if (areAllPaired())
            return;
        std::unordered_map<std::string_view, int> chains[RowKey::Sequence + 1];
        std::vector<int> next(m_keysBefore.size(), None);
        for (auto row = static_cast<int>(m_keysBefore.size()) - 1; row >= 0; --row) {
            const RowKey& key = at(m_keysBefore, row);
            if (placeOf(row) != None || isLeftOut(key, name))
                continue;
            const auto [chain, isNew] = chains[key.kind].emplace(key.*name, row);
            if (!isNew) {
                next[static_cast<std::size_t>(row)] = chain->second;
                chain->second = row;
            }
        }
        for (int place = 0; place < static_cast<int>(m_keysAfter.size()); ++place) {
            const RowKey& key = at(m_keysAfter, place);
            if (!isNew(place) || isLeftOut(key, name))
                continue;
            const auto chain = chains[key.kind].find(key.*name);
            if (chain == chains[key.kind].end())
                continue;
            int& row = chain->second;
            while (row != None && at(m_keysBefore, row).lastFrame < key.firstFrame)
                row = next[static_cast<std::size_t>(row)];
            if (row == None || !haveCommonFrames(at(m_keysBefore, row), key))
                continue;
            pair(row, place);
            row = next[static_cast<std::size_t>(row)];
        }
    }

    // Pairs files of one state that are alone in it with the sequences of the other that they are in.
    template <class Pair>
    void matchFrames(const Keys& files, const std::vector<int>& pairedFiles, const Keys& sequences,
                     const std::vector<int>& pairedSequences, Pair pairRows)
    {
        if (areAllPaired())
            return;
        std::unordered_map<std::string_view, int> left;
        for (std::size_t row = 0; row < files.size(); ++row) {
            if (files[row].kind == RowKey::File && pairedFiles[row] == None)
                left.emplace(files[row].name, static_cast<int>(row));
        }
        for (std::size_t row = 0; row < sequences.size() && !left.empty(); ++row) {
            if (pairedSequences[row] != None || !sequences[row].frames)
                continue;
            for (const auto& [frame, file] : *sequences[row].frames) {
                const auto found = file ? left.find(file->fileName()) : left.end();
                if (found == left.end())
                    continue;
                pairRows(found->second, static_cast<int>(row));
                left.erase(found);
                break;
            }
        }
    }

    static bool isLeftOut(const RowKey& key, Name name)
    {
        return name == &RowKey::firstFile && key.firstFile.empty();
    }

    const Keys& m_keysBefore;
    const Keys& m_keysAfter;
    std::vector<int> m_placeOf;
    std::vector<int> m_rowAt;
    std::size_t m_pairs = 0;
};

void extend(std::vector<RowChanges::Range>& ranges, int row)
{
    if (!ranges.empty() && ranges.back().first + ranges.back().count == row)
        ++ranges.back().count;
    else
        ranges.push_back({row, 1});
}

} // namespace

RowChanges::RowChanges(const Keys& before, const Keys& after)
    : m_before(static_cast<int>(before.size()))
    , m_after(static_cast<int>(after.size()))
{
    const Matching matching(before, after);
    int end = m_after;
    for (int row = 0; row < m_before; ++row)
        m_places.push_back(matching.placeOf(row) == None ? end++ : matching.placeOf(row));
    for (int row = 0; row < m_after; ++row) {
        if (matching.isNew(row))
            m_places.push_back(row);
    }
}

bool RowChanges::keepsOrder() const
{
    int last = None;
    for (int row = 0; row < m_before; ++row) {
        const int place = m_places[static_cast<std::size_t>(row)];
        if (place >= m_after)
            continue;
        if (place < last)
            return false;
        last = place;
    }
    return true;
}

bool RowChanges::isNone() const
{
    return m_places.size() == static_cast<std::size_t>(m_before) && m_before == m_after && keepsOrder();
}

std::vector<RowChanges::Range> RowChanges::vanishing() const
{
    std::vector<Range> ranges;
    for (int row = 0; row < m_before; ++row) {
        if (vanishes(row))
            extend(ranges, row);
    }
    return ranges;
}

std::vector<RowChanges::Range> RowChanges::added() const
{
    std::vector<Range> ranges;
    for (auto place = m_places.begin() + m_before; place != m_places.end(); ++place)
        extend(ranges, *place);
    return ranges;
}

} // namespace Halvern::UI
