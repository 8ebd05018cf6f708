#include "support/SampleFiles.h"

#include <QDir>
#include <QFile>
#include <fcntl.h>
#include <unistd.h>

namespace SampleFiles {

bool make(const QString& folder, const QByteArray& name, int size)
{
    const QByteArray path = QFile::encodeName(folder) + '/' + name;
    const int file = ::open(path.constData(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return false;
    const bool sized = ::ftruncate(file, size) == 0;
    ::close(file);
    return sized;
}

bool make(const QString& folder, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        if (!(QByteArray(name).endsWith('/') ? QDir(folder).mkpath(QFile::decodeName(name))
                                             : make(folder, QByteArray(name))))
            return false;
    }
    return true;
}

bool write(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(contents) == contents.size() && file.flush();
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

bool makeFrames(const QString& folder, const char* pattern, int first, int last)
{
    for (int frame = first; frame <= last; ++frame) {
        if (!make(folder, {QString::asprintf(pattern, frame).toUtf8().constData()}))
            return false;
    }
    return true;
}

} // namespace SampleFiles

SampleFolder::SampleFolder(std::initializer_list<const char*> names)
{
    if (!SampleFiles::make(path(), names))
        qFatal("no sample files");
}

SampleFolder::SampleFolder(const char* pattern, int first, int last)
{
    if (!SampleFiles::makeFrames(path(), pattern, first, last))
        qFatal("no sample frames");
}
