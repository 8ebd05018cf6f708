#include "pictures/program/Pictures.h"

#include "base/FileSystem.h"
#include "pictures/program/FontSample.h"
#include "pictures/program/QtPictures.h"
#ifdef COREUI_WITH_OPENIMAGEIO
#include "pictures/program/OiioPictures.h"
#endif

#include <QFile>
#include <cstring>
#include <new>

namespace Halvern::UI {

using namespace PictureProtocol;

// Sets the reason, and returns false, if @p path cannot be opened as a plain file. A pipe or a device is
// never opened: it could block for ever.
static bool openPlainFile(QFile& file, const QByteArray& path, QString& reason)
{
    const auto status = Base::fileStatus(path.constData());
    const auto systemReason = [] { return QString::fromLocal8Bit(std::strerror(errno)) + QLatin1Char('.'); };
    if (!status) {
        reason = systemReason();
        return false;
    }
    if (!S_ISREG(status->st_mode)) {
        reason = QStringLiteral("It is not a file.");
        return false;
    }
    if (status->st_size == 0) {
        reason = QStringLiteral("The file is empty.");
        return false;
    }
    const int descriptor =
        Base::uninterrupted([&] { return ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); });
    if (descriptor < 0) {
        reason = systemReason();
        return false;
    }
    return file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
}

static Answer readAny(const Request& request)
{
    Answer answer;
    QFile file;
    if (!openPlainFile(file, request.path, answer.reason))
        return answer;
    if (isFont(file))
        return readFont(file, request);
#ifdef COREUI_WITH_OPENIMAGEIO
    if (!isReadBestWithQt(file)) {
        if (auto read = readWithOiio(request))
            return *read;
    }
#endif
    return readWithQt(file, request);
}

Answer readPicture(const Request& request)
{
    Answer answer;
    try {
        answer = readAny(request);
    } catch (const std::bad_alloc&) {
        answer = {};
        answer.reason = QStringLiteral("It needs more memory than is allowed.");
    } catch (const std::exception& error) {
        answer = {};
        answer.reason = QString::fromUtf8(error.what());
    }
    return answer;
}

} // namespace Halvern::UI
