#include "catalogue/DirectoryNotices.h"

#include <new>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace Halvern::UI {

namespace {

void add(const char* name, ChangedNames& names)
{
    try {
        if (names)
            names->insert(name);
    } catch (const std::bad_alloc&) {
        names.reset();
    }
}

} // namespace

DirectoryNotices::DirectoryNotices()
    : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
}

DirectoryNotices::~DirectoryNotices()
{
    ::close(m_descriptor);
}

int DirectoryNotices::follow(const std::string& path)
{
    // IN_MASK_ADD: without it the system loses what happens while it replaces a mask by the same one.
    constexpr unsigned Changes = IN_CREATE | IN_DELETE | IN_MOVE | IN_CLOSE_WRITE | IN_ATTRIB |
                                 IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD;
    const int before = std::exchange(m_followed, ::inotify_add_watch(m_descriptor, path.c_str(), Changes));
    if (before != None && before != m_followed)
        ::inotify_rm_watch(m_descriptor, before);
    return m_followed;
}

// Notices without a name are about the directory itself, or tell that others were lost.
void DirectoryNotices::take(ChangedNames& names) const
{
    alignas(inotify_event) char events[1 << 14];
    for (ssize_t size; (size = ::read(m_descriptor, events, sizeof events)) > 0;) {
        for (const char* next = events; next < events + size;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(next);
            if (event.len == 0)
                names.reset();
            else
                add(event.name, names);
            next += sizeof event + event.len;
        }
    }
}

} // namespace Halvern::UI
