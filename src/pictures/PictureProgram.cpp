#include "pictures/PictureProgram.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <dlfcn.h>

namespace Halvern::UI {

// The folder of the file that this code was loaded from: the library, or a program that is linked with its
// objects. The library is also known by a link in the folder of the Python modules.
static QDir ownFolder()
{
    Dl_info info = {};
    QString path;
    if (dladdr(reinterpret_cast<const void*>(&pictureProgram), &info) && info.dli_fname)
        path = QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath();
    // A program's own name may be one that was looked up in PATH.
    if (path.isEmpty())
        path = QCoreApplication::applicationFilePath();
    return QFileInfo(path).dir();
}

QString pictureProgram()
{
    QString chosen = qEnvironmentVariable("COREUI_PICTURES");
    if (!chosen.isEmpty())
        return chosen;
    const QDir folder = ownFolder();
    for (const char* place : {COREUI_LIBEXEC_FROM_LIB, "../bin"}) {
        for (const char* name : {"coreui-pictures-oiio", "coreui-pictures"}) {
            const QFileInfo program(folder, QLatin1String(place) + QLatin1Char('/') + QLatin1String(name));
            if (program.isFile() && program.isExecutable())
                return QDir::cleanPath(program.absoluteFilePath());
        }
    }
    return {};
}

} // namespace Halvern::UI
