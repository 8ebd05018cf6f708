#include "catalogue/NaturalOrder.h"

#include "base/Text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Halvern::UI {

namespace {

constexpr char EndOfText = 1;
constexpr int LeastWeight = 2;

// Moves the name after its digits. The length comes first, in two bytes that are never zero.
void appendNumber(const char*& name, std::vector<char>& key)
{
    const char* const begin = name;
    while (Base::isDigit(*name))
        ++name;
    constexpr std::ptrdiff_t Base255 = 255;
    const std::ptrdiff_t length = name - begin;
    key.push_back(static_cast<char>(1 + length / Base255));
    key.push_back(static_cast<char>(1 + length % Base255));
    key.insert(key.end(), begin, name);
}

} // namespace

NaturalOrder::NaturalOrder(Numbers numbers)
    : m_numbers(numbers)
{
    // Upper case has the lower codes, and has to come last.
    std::array<std::pair<unsigned char, int>, 256> order;
    for (int byte = 0; byte < 256; ++byte)
        order[static_cast<std::size_t>(byte)] = {
            static_cast<unsigned char>(Base::lowerCase(static_cast<char>(byte))), -byte};
    std::sort(order.begin(), order.end());
    // All digits weigh the same, which leaves weights for EndOfText and the terminator.
    int weight = LeastWeight;
    for (const auto& [lowered, negative] : order) {
        m_weights[static_cast<std::size_t>(-negative)] = static_cast<char>(weight);
        if (negative == 0 || (lowered >= '0' && lowered < '9'))
            continue;
        ++weight;
    }
    m_numberWeight = m_weights['0'];
}

void NaturalOrder::appendKey(const char* name, std::vector<char>& keys) const
{
    for (const char* at = name; *at != '\0';) {
        if (!Base::isDigit(*at)) {
            keys.push_back(m_weights[static_cast<unsigned char>(*at++)]);
            continue;
        }
        keys.push_back(m_numberWeight);
        if (m_numbers == DecideAtOnce)
            appendNumber(at, keys);
        else
            while (Base::isDigit(*at))
                ++at;
    }
    if (m_numbers == DecideLast) {
        keys.push_back(EndOfText);
        for (const char* at = name; *at != '\0';) {
            if (Base::isDigit(*at))
                appendNumber(at, keys);
            else
                ++at;
        }
    }
    keys.push_back('\0');
}

} // namespace Halvern::UI
