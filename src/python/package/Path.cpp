#include "python/package/Path.h"

namespace Python {

bool isPath(PyObject* object)
{
    return PyUnicode_Check(object) || PyObject_HasAttrString(object, "__fspath__");
}

std::optional<QByteArray> toBytes(PyObject* object)
{
    PyObject* encoded = nullptr;
    if (!PyUnicode_FSConverter(object, &encoded))
        return std::nullopt;
    return QByteArray(PyBytes_AsString(Owned(encoded).get()));
}

bool toPath(PyObject* object, Path& path)
{
    const auto bytes = toBytes(object);
    path.text = QFile::decodeName(bytes.value_or(QByteArray()));
    return bytes.has_value();
}

PyObject* fromPath(const Path& path)
{
    const QByteArray name = QFile::encodeName(path.text);
    return PyUnicode_DecodeFSDefaultAndSize(name.constData(), name.size());
}

} // namespace Python
