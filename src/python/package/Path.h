#pragma once

#include "python/Conversions.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <optional>
#include <string>

namespace Python {

/// A path on its way from Python into a call of this library, which takes it in the form that it wants.
struct Path
{
    QString text;

    operator QString() const { return text; }
    operator QDir() const { return QDir(text); }
    operator std::string() const { return text.toStdString(); }
};

/// Whether @p object is text or an os.PathLike.
bool isPath(PyObject* object);
/// The bytes of such an object. Nothing, with a Python error, for what is no path.
std::optional<QByteArray> toBytes(PyObject* object);
/// Reads such an object by the encoding of the file system. False with a Python error if that fails.
bool toPath(PyObject* object, Path& path);
/// The path as text.
PyObject* fromPath(const Path& path);

} // namespace Python
