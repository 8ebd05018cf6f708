#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Halvern::UI {

/// Names as a directory gave them, close together in memory: two threads read those of a million files.
class NameBatch
{
public:
    struct Name
    {
        const char* text; ///< Bytes, terminated.
        bool isDirectory;
    };

    /// Throws `std::bad_alloc`, which leaves the names as they were.
    void add(const char* name, bool isDirectory)
    {
        const auto begin = static_cast<std::uint32_t>(m_bytes.size());
        m_bytes.push_back(isDirectory ? DirectoryMark : OtherMark);
        m_bytes.append(name).push_back('\0');
        m_begins.push_back(begin);
    }
    /// Gives back memory that was obtained ahead of use.
    void squeeze()
    {
        m_bytes.shrink_to_fit();
        m_begins.shrink_to_fit();
    }
    std::size_t size() const { return m_begins.size(); }
    Name operator[](std::size_t index) const
    {
        const char* const mark = m_bytes.data() + m_begins[index];
        return {mark + 1, *mark == DirectoryMark};
    }

private:
    static constexpr char DirectoryMark = 'd';
    static constexpr char OtherMark = 'f';

    std::string m_bytes;                 // of each name its mark, the name and its terminator
    std::vector<std::uint32_t> m_begins; // of the marks
};

} // namespace Halvern::UI
