#pragma once

/// The order in which people expect numbered names: digits count as numbers, letters without regard to case.
///
/// Both variants walk the bytes of two names side by side. Where both have a run of ASCII digits, the longer
/// run is larger (leading zeros are digits too), and of two equally long runs the one with the larger first
/// differing digit. Other bytes compare by value in lower case, a lower-case letter before the same letter in
/// upper case, and the first that differs decides. Negative, 0 or positive as of `strcmp`; 0 for equal names
/// only.
namespace Halvern::UI::NaturalOrder {

/// The first difference decides, in a number too: "a1b" comes before "a2a".
int compare(const char* a, const char* b);

/// A difference in a number decides only where the names are equal otherwise, so that all frames of one
/// sequence stand together: "a2a" comes before "a1b", and "a.2.exr" before "a.10.exr". Of several numbers
/// the first that differs counts.
int compareForSequences(const char* a, const char* b);

} // namespace Halvern::UI::NaturalOrder
