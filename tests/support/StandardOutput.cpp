#include "support/StandardOutput.h"

#include <cstdio>
#include <unistd.h>

QByteArray standardOutputOf(const std::function<void()>& work)
{
    std::FILE* file = std::tmpfile();
    std::fflush(stdout);
    const int previous = ::dup(STDOUT_FILENO);
    ::dup2(::fileno(file), STDOUT_FILENO);
    work();
    std::fflush(stdout);
    ::dup2(previous, STDOUT_FILENO);
    ::close(previous);
    QByteArray text(static_cast<int>(::lseek(::fileno(file), 0, SEEK_END)), '\0');
    const ssize_t read = ::pread(::fileno(file), text.data(), static_cast<std::size_t>(text.size()), 0);
    std::fclose(file);
    return text.left(static_cast<int>(read));
}
