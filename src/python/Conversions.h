#pragma once

// Before Qt, whose keyword "slots" is a name in this header.
#include <Python.h>

#include <memory>
#include <string>
#include <vector>

/// Conversions of values between Python and C++. They use only the stable interface of Python 3.7. The caller
/// holds the interpreter lock. Functions that return an object return a new reference, or null with a Python
/// error set. Nothing throws.
namespace Python {

struct Release
{
    void operator()(PyObject* object) const { Py_DecRef(object); }
};

/// A reference that is given up at its end.
using Owned = std::unique_ptr<PyObject, Release>;

/// Prints the pending error and clears it, as PyErr_Print() does. SystemExit is only printed, too.
void printError();

/// Whether @p text is not null and ASCII. If not, a Python error names the number @p argument, from 1.
bool isName(const char* text, int argument);

/// Whether toText() accepts @p object: text, bytes or None.
bool isText(PyObject* object);
/// Returns text as UTF-8, bytes unchanged, and None as an empty text. Text that cannot be encoded gives an
/// empty text, and the error is printed.
std::string toText(PyObject* object);
/// Reads UTF-8. If @p text is not UTF-8, only the part before its first NUL is read. If that is not UTF-8
/// either, UnicodeDecodeError is raised.
PyObject* fromText(const std::string& text);

/// A name as ASCII. Other bytes become surrogates, as in Python's file names, for os.fsencode() to turn back.
PyObject* fromFileName(const char* name);

/// Whether an iterator can be made of @p object.
bool isIterable(PyObject* object);
/// Appends all integers of an iterable, cut to 32 bits. False, with a Python error set, if an item is no
/// integer or exceeds 64 bits, or if the iteration fails.
bool toNumbers(PyObject* iterable, std::vector<int>& numbers);
/// An object that holds @p storage until it is destroyed.
PyObject* keeper(std::shared_ptr<const void> storage);

/// A tuple of the numbers.
PyObject* fromNumbers(const std::vector<int>& numbers);

} // namespace Python
