#pragma once

#include <array>
#include <vector>

namespace Halvern::UI {

/// The order in which people expect numbered names: digits count as numbers, letters without regard to case.
///
/// Two names are compared byte by byte. If both have a run of ASCII digits, the longer run is larger (leading
/// zeros count), and of two equally long runs the one with the larger first differing digit. Other bytes
/// compare by value in lower case, a lower-case letter before the same letter in upper case.
///
/// Names are turned into keys once. `strcmp` orders the keys, and only equal names have equal keys.
class NaturalOrder
{
public:
    enum Numbers
    {
        /// The first difference decides, in a number too: "a1b" comes before "a2a".
        DecideAtOnce,
        /// A number decides only if the names are equal otherwise, so that all frames of a sequence stand
        /// together: "a2a" comes before "a1b", and "a.2.exr" before "a.10.exr". Of several numbers the first
        /// that differs counts.
        DecideLast
    };

    /// Letters are lowered as the C library's locale has it at this moment.
    explicit NaturalOrder(Numbers numbers);

    /// Appends the key of @p name, terminator included, to @p keys. Both are bytes.
    void appendKey(const char* name, std::vector<char>& keys) const;

private:
    Numbers m_numbers;
    std::array<char, 256> m_weights; // by byte
    char m_numberWeight;
};

} // namespace Halvern::UI
