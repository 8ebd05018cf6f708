// Times an evaluator in Python that returns every entry, called by native code, beside a list comprehension
// over the same number of strings. Usage: evaluator-benchmark [ENTRIES [ROUNDS]]

// Before Qt, whose keyword "slots" is a name in this header.
#include <Python.h>

#include "Measuring.h"
#include "catalogue/FileInfo.h"
#include "catalogue/FileSequenceEvaluator.h"

#include <QByteArray>
#include <QDir>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <string>
#include <vector>

using Halvern::UI::FileInfo;
using Halvern::UI::FileSequenceEvaluator;

namespace {

constexpr int DefaultEntries = 100000;
constexpr int DefaultRounds = 9;

constexpr const char* Script = "from " PYQT " import sip"
                               R"(
from _HvMirefoldCoreUI import Halvern

class HandOn(Halvern.UI.FileSequenceEvaluator):
    def evaluateFiles(self, files):
        return tuple([file for file in files])

class ReadNames(HandOn):
    def evaluateFiles(self, files):
        names = [file.fileName() for file in files]
        return files

class Keep(HandOn):
    def evaluateFiles(self, files):
        self.files = files
        return tuple([file for file in files])

evaluators = [HandOn(), ReadNames(), Keep()]
addresses = [sip.unwrapinstance(evaluator) for evaluator in evaluators]
strings = [f"shot_{k // 1000:03}.{k % 1000 + 1:04}.exr" for k in range(count)]
)";

[[noreturn]] void fail()
{
    PyErr_Print();
    std::exit(1);
}

PyObject* names()
{
    return PyModule_GetDict(PyImport_AddModule("__main__"));
}

void runPython(const char* script)
{
    PyObject* result = PyRun_String(script, Py_file_input, names(), names());
    if (!result)
        fail();
    Py_DecRef(result);
}

FileSequenceEvaluator& evaluator(Py_ssize_t index)
{
    PyObject* address = PyList_GetItem(PyDict_GetItemString(names(), "addresses"), index);
    void* object = address ? PyLong_AsVoidPtr(address) : nullptr;
    if (!object)
        fail();
    return *static_cast<FileSequenceEvaluator*>(object);
}

// Nanoseconds per entry.
std::vector<double> time(int rounds, int entries, const std::function<void()>& action)
{
    std::vector<double> values;
    action();
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        action();
        values.push_back(Measuring::milliseconds(timer) * 1e6 / entries);
    }
    return values;
}

int argument(int argc, char** argv, int index, int fallback)
{
    return argc > index ? std::max(1, QByteArray(argv[index]).toInt()) : fallback;
}

} // namespace

int main(int argc, char** argv)
{
    const int entries = argument(argc, argv, 1, DefaultEntries);
    const int rounds = argument(argc, argv, 2, DefaultRounds);
    qputenv("PYTHONPATH", MODULE_FOLDER);
    Py_InitializeEx(0);
    runPython(("count = " + std::to_string(entries)).c_str());
    runPython(Script);

    std::deque<FileInfo> store;
    std::vector<FileInfo*> files;
    for (int k = 0; k < entries; ++k) {
        store.emplace_back(("shot." + std::to_string(k) + ".exr").c_str(), false);
        files.push_back(&store.back());
    }
    const auto timeEvaluator = [&](Py_ssize_t index) {
        return time(rounds, entries, [&] {
            if (evaluator(index).evaluateFiles(files) != files)
                fail();
        });
    };
    const std::vector<double> comprehension =
        time(rounds, entries, [] { runPython("kept = [string for string in strings]"); });
    const std::vector<double> calls =
        time(rounds, entries, [] { runPython("kept = [string.upper() for string in strings]"); });
    const double baseline = Measuring::median(comprehension);
    std::printf("%d entries, %d rounds; nanoseconds per entry\n", entries, rounds);
    std::printf("%-52s %9s %9s %9s %8s\n", "", "median", "min", "max", "ratio");
    Measuring::print("list comprehension over strings", comprehension, baseline);
    Measuring::print("list comprehension, one call for each string", calls, baseline);
    Measuring::print("evaluator that hands on every entry", timeEvaluator(0), baseline);
    Measuring::print("evaluator that reads every name", timeEvaluator(1), baseline);
    Measuring::print("evaluator that keeps the last files", timeEvaluator(2), baseline);
    return Py_FinalizeEx();
}
