#pragma once

#include <cstddef>
#include <vector>

namespace Halvern::Base {

/// Many texts one behind the other in one piece of memory, so that what walks over them hardly waits for it.
/// A text is bytes and ends at its first zero byte; another may follow it and goes where it goes.
class Texts
{
public:
    void reserve(std::size_t count, std::size_t bytesOfEach);

    /// Neither may be one of these. What follows the text stands behind its terminator and has one of its
    /// own.
    void append(const char* text, const char* following);
    /// Appends the text that @p write adds, terminators included, to the bytes that it is given.
    template <class Write>
    void appendFrom(Write write)
    {
        m_begins.push_back(m_bytes.size());
        write(m_bytes);
    }

    std::size_t size() const { return m_begins.size(); }
    /// Valid until the next text is appended.
    const char* operator[](std::size_t index) const { return m_bytes.data() + m_begins[index]; }
    /// Behind the last terminator.
    const char* end() const { return m_bytes.data() + m_bytes.size(); }

    /// The texts of @p indexes, in that order.
    Texts inOrder(const std::vector<int>& indexes) const;

private:
    std::vector<char> m_bytes;
    std::vector<std::size_t> m_begins;
};

/// The indexes of @p texts in the order of `strcmp`, equal texts as they came: "b", "a", "c", "a" give 1, 3,
/// 0, 2. The texts are looked at eight bytes at a time and none twice at the same place, so that the time
/// hardly depends on how much of them is equal, nor on the order in which they come.
std::vector<int> ordered(const Texts& texts);

} // namespace Halvern::Base
