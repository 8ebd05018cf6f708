#include "python/package/Path.h"

namespace Python {

bool isPath(PyObject* object)
{
    return PyUnicode_Check(object) || PyObject_HasAttrString(object, "__fspath__");
}

bool toPath(PyObject* object, Path& path)
{
    PyObject* name = nullptr;
    if (!PyUnicode_FSConverter(object, &name))
        return false;
    path.text = QFile::decodeName(PyBytes_AsString(name));
    Py_DecRef(name);
    return true;
}

PyObject* fromPath(const Path& path)
{
    const QByteArray name = QFile::encodeName(path.text);
    return PyUnicode_DecodeFSDefaultAndSize(name.constData(), name.size());
}

} // namespace Python
