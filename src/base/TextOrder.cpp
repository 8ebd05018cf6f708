#include "base/TextOrder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Halvern::Base {

namespace {

constexpr std::size_t WordSize = sizeof(std::uint64_t);

constexpr std::ptrdiff_t Ahead = 16; // texts that are fetched from memory meanwhile

struct Item
{
    std::uint64_t word; // of the text, its first byte highest
    const char* text;
    int index;
};

using Items = std::vector<Item>::iterator;

std::uint64_t wordOf(const char* text)
{
    std::uint64_t word = 0;
    std::size_t i = 0;
    for (; i < WordSize && text[i] != '\0'; ++i)
        word = word << 8 | static_cast<unsigned char>(text[i]);
    return i == 0 ? 0 : word << 8 * (WordSize - i);
}

bool goesOn(std::uint64_t word)
{
    return (word & 0xff) != 0;
}

class Ranking
{
public:
    explicit Ranking(const std::vector<const char*>& texts)
        : m_ranks(texts.size())
    {
        std::vector<Item> items(texts.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i] = {0, texts[i], static_cast<int>(i)};
        if (!items.empty())
            rank(items.begin(), items.end(), 0);
    }

    std::vector<int> take() { return std::move(m_ranks); }

private:
    // All texts from here to there are equal up to the depth, and go on there.
    void rank(Items from, Items to, std::size_t depth)
    {
        for (bool alike = true; alike; depth += WordSize) {
            for (Items item = from; item != to; ++item) {
                if (to - item > Ahead)
                    __builtin_prefetch(item[Ahead].text + depth);
                item->word = wordOf(item->text + depth);
                alike = alike && item->word == from->word;
            }
            if (alike && (to - from == 1 || !goesOn(from->word))) {
                give(from, to);
                return;
            }
        }
        std::sort(from, to, [](const Item& a, const Item& b) { return a.word < b.word; });
        while (from != to) {
            const auto differs = [word = from->word](const Item& item) { return item.word != word; };
            const Items end = std::find_if(from, to, differs);
            if (end - from > 1 && goesOn(from->word))
                rank(from, end, depth);
            else
                give(from, end);
            from = end;
        }
    }

    void give(Items from, Items to)
    {
        for (; from != to; ++from)
            m_ranks[static_cast<std::size_t>(from->index)] = m_next;
        ++m_next;
    }

    std::vector<int> m_ranks;
    int m_next = 0;
};

} // namespace

std::vector<int> textRanks(const std::vector<const char*>& texts)
{
    return Ranking(texts).take();
}

} // namespace Halvern::Base
