#pragma once

// Before Qt, whose keyword "slots" it would stumble over.
#include <Python.h>

#include <memory>
#include <string>
#include <vector>

/// How values cross between Python and this library, within what every Python from 3.7 on offers to extension
/// modules. The caller holds the interpreter lock. Functions that return an object give a new reference, or
/// null with a Python error set; nothing throws.
namespace Python {

/// Prints the pending error and clears it, as PyErr_Print() does; SystemExit too is only printed.
void printError();

/// Whether @p text is there and ASCII, as names are taken; otherwise false, with a Python error that names
/// @p argument, counted from 1.
bool isName(const char* text, int argument);

/// Whether toText() takes @p object: text, bytes or None.
bool isText(PyObject* object);
/// Text as UTF-8 in full length, the bytes as they are, None as an empty text. What has no encoding is
/// printed as an error and gives an empty text.
std::string toText(PyObject* object);
/// Reads UTF-8; text that is none is read up to its first NUL, and raises UnicodeDecodeError if that is none
/// either.
PyObject* fromText(const std::string& text);

/// A name as ASCII; other bytes are escaped as Python escapes them in its own file names, so that
/// os.fsencode() gives them back.
PyObject* fromFileName(const char* name);

/// Whether an iterator can be made of @p object.
bool isIterable(PyObject* object);
/// Appends all integers of an iterable, cut to 32 bits. False with a Python error set for an item that is no
/// integer or exceeds 64 bits, and where the iteration fails.
bool toNumbers(PyObject* iterable, std::vector<int>& numbers);
/// An object that holds @p storage until it is destroyed.
PyObject* keeper(std::shared_ptr<const void> storage);

/// A tuple of the numbers.
PyObject* fromNumbers(const std::vector<int>& numbers);

} // namespace Python
