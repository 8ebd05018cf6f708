#pragma once

#include <cstddef>
#include <vector>

namespace Halvern::Base {

/// Many sort keys in one piece of memory, which is faster to walk than scattered texts. Each entry is a
/// zero-terminated key, optionally followed by the name. Sorting moves both.
class SortKeys
{
public:
    void reserve(std::size_t count, std::size_t bytesOfEach);

    /// Appends @p key and the name @p following, each with its terminator. Neither may point into the keys.
    void append(const char* key, const char* following);
    /// Appends the entry that @p write adds, terminators included, to the bytes that it is given.
    template <class Write>
    void appendFrom(Write write)
    {
        m_begins.push_back(m_bytes.size());
        write(m_bytes);
    }

    std::size_t size() const { return m_begins.size(); }
    /// Valid until the next entry is appended.
    const char* operator[](std::size_t index) const { return m_bytes.data() + m_begins[index]; }
    /// After the last terminator.
    const char* end() const { return m_bytes.data() + m_bytes.size(); }

    SortKeys inOrder(const std::vector<int>& indexes) const;

private:
    std::vector<char> m_bytes;
    std::vector<std::size_t> m_begins;
};

/// The indexes of @p keys in the order of `strcmp`; equal keys keep their order: "b", "a", "c", "a" give 1,
/// 3, 0, 2. Keys are compared eight bytes at a time, and each part once. The time hardly depends on how long
/// their common beginnings are, nor on their order.
std::vector<int> ordered(const SortKeys& keys);

} // namespace Halvern::Base
