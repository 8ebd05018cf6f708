#include "pictures/program/Service.h"

#include "base/FileSystem.h"

#include <poll.h>
#include <unistd.h>

namespace Halvern::UI {

using namespace PictureProtocol;

static bool sendAll(int output, const QByteArray& bytes)
{
    for (ssize_t sent = 0; sent < bytes.size();) {
        const auto left = size_t(bytes.size() - sent);
        const ssize_t part =
            Base::uninterrupted([&] { return write(output, bytes.constData() + sent, left); });
        if (part <= 0)
            return false;
        sent += part;
    }
    return true;
}

static bool isWaiting(int input)
{
    pollfd descriptor = {input, POLLIN, 0};
    return Base::uninterrupted([&] { return poll(&descriptor, 1, 0); }) > 0;
}

static FileVersion versionOf(const QByteArray& path)
{
    struct stat status = {};
    if (Base::uninterrupted([&] { return stat(path.constData(), &status); }) != 0)
        return {};
    return {status.st_size, qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec};
}

static Answer answerTo(const Request& request, const std::function<Answer(const Request& request)>& read)
{
    const FileVersion version = versionOf(request.path);
    Answer answer;
    if (version.isKnown() && version == request.known)
        answer.isUnchanged = true;
    else
        answer = read(request);
    answer.id = request.id;
    answer.version = version;
    return answer;
}

bool serve(int input, int output, const std::function<Answer(const Request& request)>& read)
{
    if (!sendAll(output, hello()))
        return false;
    Frames frames;
    QByteArray piece(LongestText, Qt::Uninitialized);
    std::optional<Request> newest;
    for (;;) {
        if (newest && !isWaiting(input)) {
            if (!sendAll(output, frame(answerTo(*newest, read))))
                return false;
            newest.reset();
        }
        const ssize_t size =
            Base::uninterrupted([&] { return ::read(input, piece.data(), size_t(piece.size())); });
        if (size <= 0)
            return size == 0;
        frames.add(piece.left(int(size)));
        while (const auto payload = frames.take()) {
            newest = readRequest(*payload);
            if (!newest)
                return false;
        }
        if (frames.isRefused())
            return false;
    }
}

} // namespace Halvern::UI
