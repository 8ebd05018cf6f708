#include "base/SortKeys.h"

#include <QtEndian>
#include <algorithm>
#include <boost/sort/spreadsort/integer_sort.hpp>
#include <cstdint>
#include <cstring>

namespace Halvern::Base {

namespace {

constexpr std::size_t WordSize = sizeof(std::uint64_t);

constexpr std::size_t Ahead = 16; // texts that are fetched from memory meanwhile

struct Item
{
    std::uint64_t word; // of the text, its first byte highest
    const char* text;
    int index;
};

using Items = std::vector<Item>::iterator;

// The eight bytes from here on, with zeros from the terminator on. Nothing is read from the end on.
std::uint64_t wordOf(const char* text, const char* end)
{
    char last[WordSize] = {};
    const auto left = static_cast<std::size_t>(end - text);
    if (left < WordSize) {
        std::memcpy(last, text, left);
        text = last;
    }
    const auto word = qFromBigEndian<quint64>(text);
    constexpr std::uint64_t Low = 0x7f7f7f7f7f7f7f7f;
    const std::uint64_t zeros = ~(((word & Low) + Low) | word | Low); // the top bit of each zero byte
    if (zeros == 0)
        return word;
    const int before = __builtin_clzll(zeros);
    return before == 0 ? 0 : word >> (64 - before) << (64 - before);
}

bool goesOn(std::uint64_t word)
{
    return (word & 0xff) != 0;
}

class Ordering
{
public:
    explicit Ordering(const SortKeys& texts)
        : m_end(texts.end())
    {
        m_indexes.reserve(texts.size());
        std::vector<Item> items(texts.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i] = {0, texts[i], static_cast<int>(i)};
        if (!items.empty())
            order(items.begin(), items.end(), 0);
    }

    std::vector<int> take() { return std::move(m_indexes); }

private:
    // Orders texts that are equal up to the depth, and go on there.
    void order(Items from, Items to, std::size_t depth)
    {
        for (bool alike = true; alike; depth += WordSize) {
            for (Items item = from; item != to; ++item) {
                if (to - item > static_cast<std::ptrdiff_t>(Ahead))
                    __builtin_prefetch(item[Ahead].text + depth);
                item->word = wordOf(item->text + depth, m_end);
                alike = alike && item->word == from->word;
            }
            if (alike && (to - from == 1 || !goesOn(from->word))) {
                give(from, to);
                return;
            }
        }
        boost::sort::spreadsort::integer_sort(
            from, to, [](const Item& item, unsigned shift) { return item.word >> shift; },
            [](const Item& a, const Item& b) { return a.word < b.word; });
        while (from != to) {
            const auto differs = [word = from->word](const Item& item) { return item.word != word; };
            const Items end = std::find_if(from, to, differs);
            if (end - from > 1 && goesOn(from->word))
                order(from, end, depth);
            else
                give(from, end);
            from = end;
        }
    }

    // Appends the indexes of texts that are equal.
    void give(Items from, Items to)
    {
        const auto first = m_indexes.insert(m_indexes.end(), static_cast<std::size_t>(to - from), 0);
        std::transform(from, to, first, [](const Item& item) { return item.index; });
        std::sort(first, m_indexes.end());
    }

    const char* m_end;
    std::vector<int> m_indexes;
};

} // namespace

void SortKeys::reserve(std::size_t count, std::size_t bytesOfEach)
{
    m_begins.reserve(count);
    m_bytes.reserve(count * bytesOfEach);
}

void SortKeys::append(const char* text, const char* following)
{
    appendFrom([&](std::vector<char>& bytes) {
        for (const char* part : {text, following})
            bytes.insert(bytes.end(), part, part + std::strlen(part) + 1);
    });
}

// Fetches the begin of each text from memory first, then the text.
SortKeys SortKeys::inOrder(const std::vector<int>& indexes) const
{
    const auto at = [&](std::size_t i) { return static_cast<std::size_t>(indexes[i]); };
    SortKeys texts;
    texts.m_begins.reserve(indexes.size());
    texts.m_bytes.reserve(m_bytes.size());
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        if (i + 2 * Ahead < indexes.size())
            __builtin_prefetch(&m_begins[at(i + 2 * Ahead)]);
        if (i + Ahead < indexes.size())
            __builtin_prefetch((*this)[at(i + Ahead)]);
        const char* begin = (*this)[at(i)];
        const char* end = at(i) + 1 < size() ? (*this)[at(i) + 1] : this->end();
        texts.m_begins.push_back(texts.m_bytes.size());
        texts.m_bytes.insert(texts.m_bytes.end(), begin, end);
    }
    return texts;
}

std::vector<int> ordered(const SortKeys& keys)
{
    return Ordering(keys).take();
}

} // namespace Halvern::Base
