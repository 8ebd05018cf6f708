#include "catalogue/NaturalOrder.h"

#include "base/Text.h"

namespace Halvern::UI::NaturalOrder {

namespace {

int byteDifference(char a, char b)
{
    const int lowered =
        static_cast<unsigned char>(Base::lowerCase(a)) - static_cast<unsigned char>(Base::lowerCase(b));
    // Upper case has the lower codes, and comes last.
    return lowered != 0 ? lowered : static_cast<unsigned char>(b) - static_cast<unsigned char>(a);
}

// Moves both names behind their digits.
int numberDifference(const char*& a, const char*& b)
{
    int difference = 0;
    for (; Base::isDigit(*a) && Base::isDigit(*b); ++a, ++b) {
        if (difference == 0)
            difference = *a - *b;
    }
    const char* const aCommonEnd = a;
    const char* const bCommonEnd = b;
    while (Base::isDigit(*a))
        ++a;
    while (Base::isDigit(*b))
        ++b;
    if (a != aCommonEnd)
        return 1;
    return b != bCommonEnd ? -1 : difference;
}

template <bool numbersDecideAtOnce>
int compareNames(const char* a, const char* b)
{
    int firstNumber = 0;
    for (;;) {
        if (Base::isDigit(*a) && Base::isDigit(*b)) {
            const int number = numberDifference(a, b);
            if (numbersDecideAtOnce && number != 0)
                return number;
            if (firstNumber == 0)
                firstNumber = number;
        } else if (*a != *b) {
            return byteDifference(*a, *b);
        } else if (*a == '\0') {
            return firstNumber;
        } else {
            ++a;
            ++b;
        }
    }
}

} // namespace

int compare(const char* a, const char* b)
{
    return compareNames<true>(a, b);
}

int compareForSequences(const char* a, const char* b)
{
    return compareNames<false>(a, b);
}

} // namespace Halvern::UI::NaturalOrder
