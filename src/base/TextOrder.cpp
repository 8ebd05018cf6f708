#include "base/TextOrder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Halvern::Base {

namespace {

constexpr std::size_t WordSize = sizeof(std::uint64_t);

struct Item
{
    std::uint64_t word; // of the text, its first byte highest
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

// All texts from here to there are equal up to the depth.
void sortFrom(Items from, Items to, std::size_t depth, const std::vector<const char*>& texts)
{
    for (bool alike = true; alike; depth += WordSize) {
        for (Items item = from; item != to; ++item) {
            item->word = wordOf(texts[static_cast<std::size_t>(item->index)] + depth);
            alike = alike && item->word == from->word;
        }
        if (alike && !goesOn(from->word))
            return;
    }
    std::sort(from, to, [](const Item& a, const Item& b) { return a.word < b.word; });
    while (from != to) {
        const auto differs = [word = from->word](const Item& item) { return item.word != word; };
        const Items end = std::find_if(from, to, differs);
        if (end - from > 1 && goesOn(from->word))
            sortFrom(from, end, depth, texts);
        from = end;
    }
}

} // namespace

std::vector<int> textOrder(const std::vector<const char*>& texts)
{
    std::vector<Item> items;
    items.reserve(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        items.push_back({0, static_cast<int>(i)});
    if (items.size() > 1)
        sortFrom(items.begin(), items.end(), 0, texts);
    std::vector<int> order;
    order.reserve(items.size());
    for (const Item& item : items)
        order.push_back(item.index);
    return order;
}

} // namespace Halvern::Base
