#include "python/Conversions.h"

#include <algorithm>
#include <exception>

namespace Python {

namespace {

// The length is only a hint: __len__ may be wrong, raise, or return more than there is memory for.
std::size_t expectedCount(PyObject* iterable)
{
    constexpr Py_ssize_t Most = 1 << 20;
    const Py_ssize_t length = PyObject_Size(iterable);
    PyErr_Clear();
    return static_cast<std::size_t>(std::clamp<Py_ssize_t>(length, 0, Most));
}

bool toNumber(PyObject* item, int& number)
{
    if (!PyLong_Check(item)) {
        PyErr_SetString(PyExc_TypeError, "object in iterable cannot be converted to float");
        return false;
    }
    const long value = PyLong_AsLong(item);
    number = static_cast<int>(value);
    return value != -1 || !PyErr_Occurred();
}

void releaseStorage(PyObject* capsule)
{
    delete static_cast<std::shared_ptr<const void>*>(PyCapsule_GetPointer(capsule, nullptr));
}

} // namespace

void printError()
{
    if (!PyErr_ExceptionMatches(PyExc_SystemExit)) {
        PyErr_Print();
        return;
    }
    // PyErr_Print() would end the process.
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (traceback)
        PyException_SetTraceback(value, traceback);
    PyErr_Display(type, value, traceback);
    for (PyObject* part : {type, value, traceback})
        Py_DecRef(part);
}

bool isName(const char* text, int argument)
{
    if (!text)
        PyErr_Format(PyExc_TypeError, "argument %d has unexpected type 'NoneType'", argument);
    else if (std::any_of(text, text + std::char_traits<char>::length(text),
                         [](unsigned char byte) { return byte > 127; }))
        PyErr_Format(PyExc_ValueError, "argument %d is not ASCII", argument);
    else
        return true;
    return false;
}

bool isText(PyObject* object)
{
    return object == Py_None || PyUnicode_Check(object) || PyBytes_Check(object);
}

std::string toText(PyObject* object)
{
    if (object == Py_None)
        return {};
    Owned encoded;
    if (PyUnicode_Check(object)) {
        encoded.reset(PyUnicode_AsUTF8String(object));
        object = encoded.get();
    }
    char* text = nullptr;
    Py_ssize_t length = 0;
    if (!object || PyBytes_AsStringAndSize(object, &text, &length) != 0) {
        PyErr_Print();
        return {};
    }
    return {text, static_cast<std::size_t>(length)};
}

PyObject* fromText(const std::string& text)
{
    PyObject* whole = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr);
    if (whole)
        return whole;
    PyErr_Clear();
    return PyUnicode_FromString(text.c_str());
}

PyObject* fromFileName(const char* name)
{
    return PyUnicode_DecodeASCII(name, static_cast<Py_ssize_t>(std::char_traits<char>::length(name)),
                                 "surrogateescape");
}

bool isIterable(PyObject* object)
{
    const Owned iterator(PyObject_GetIter(object));
    PyErr_Clear();
    return iterator != nullptr;
}

bool toNumbers(PyObject* iterable, std::vector<int>& numbers)
{
    const Owned iterator(PyObject_GetIter(iterable));
    if (!iterator)
        return false;
    try {
        numbers.reserve(expectedCount(iterable));
        while (const Owned item{PyIter_Next(iterator.get())}) {
            int number = 0;
            if (!toNumber(item.get(), number))
                return false;
            numbers.push_back(number);
        }
    } catch (const std::exception&) {
        PyErr_NoMemory();
    }
    return !PyErr_Occurred();
}

PyObject* keeper(std::shared_ptr<const void> storage)
{
    auto held = std::make_unique<std::shared_ptr<const void>>(std::move(storage));
    PyObject* capsule = PyCapsule_New(held.get(), nullptr, &releaseStorage);
    if (capsule)
        static_cast<void>(held.release());
    return capsule;
}

PyObject* fromNumbers(const std::vector<int>& numbers)
{
    Owned tuple(PyTuple_New(static_cast<Py_ssize_t>(numbers.size())));
    for (std::size_t i = 0; tuple && i < numbers.size(); ++i) {
        PyObject* number = PyLong_FromLong(numbers[i]);
        if (!number)
            return nullptr;
        PyTuple_SetItem(tuple.get(), static_cast<Py_ssize_t>(i), number);
    }
    return tuple.release();
}

} // namespace Python
