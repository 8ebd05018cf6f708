#pragma once

#include <array>
#include <vector>

namespace Halvern::UI {

/// The order in which people expect numbered names: digits count as numbers, letters without regard to case.
///
/// Two names are compared byte by byte. Where both have a run of ASCII digits, the longer run is larger
/// (leading zeros are digits too), and of two equally long runs the one with the larger first differing
/// digit. Other bytes compare by value in lower case, a lower-case letter before the same letter in upper
/// case, and the first that differs decides.
///
/// Names are turned into keys once, and the keys are what is compared: in the order of `strcmp` they are in
/// the natural order of their names, and only equal names have equal keys.
class NaturalOrder
{
public:
    enum Numbers
    {
        /// The first difference decides, in a number too: "a1b" comes before "a2a".
        DecideAtOnce,
        /// A difference in a number decides only where the names are equal otherwise, so that all frames of
        /// one sequence stand together: "a2a" comes before "a1b", and "a.2.exr" before "a.10.exr". Of several
        /// numbers the first that differs counts.
        DecideLast
    };

    /// Letters are lowered as the C library's locale has it at this moment.
    explicit NaturalOrder(Numbers numbers);

    /// Appends the key of @p name, terminator included, to @p keys. Both are bytes.
    void appendKey(const char* name, std::vector<char>& keys) const;

private:
    Numbers m_numbers;
    std::array<char, 256> m_weights; // by byte; larger than those that end and count
    char m_numberWeight;
};

} // namespace Halvern::UI
