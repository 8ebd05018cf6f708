// A host that embeds Python. It opens the file dialog natively and runs a script. The script imports the same
// library, which is loaded already, so the script can change the dialog. Usage: host SCRIPT DIRECTORY
// [--list]
//
// Prints the chosen paths, or with --list the rows. Exit status: 0 after Open and after --list, 1 after
// Cancel, 2 for a wrong argument or a script that raised an error.

// Before Qt, whose keyword "slots" is a name in this header.
#include <Python.h>

#include "dialog/FileDialog.h"

#include <QApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <QTreeView>
#include <cstdio>
#include <dlfcn.h>
#include <memory>

using Halvern::UI::FileBrowser;
using Halvern::UI::FileDialog;

namespace {

enum ExitStatus
{
    Opened = 0,
    Cancelled = 1,
    Failed = 2
};

struct Release
{
    void operator()(PyObject* object) const { Py_DecRef(object); }
};

using Owned = std::unique_ptr<PyObject, Release>;

// Lets Python find the module in the folder of the library that this program is linked with.
void makeModuleKnown()
{
    Dl_info library;
    if (::dladdr(&FileBrowser::staticMetaObject, &library) == 0)
        return;
    const QByteArray folder =
        QFile::encodeName(QFileInfo(QFile::decodeName(library.dli_fname)).absolutePath());
    const Owned entry(PyUnicode_DecodeFSDefault(folder.constData()));
    PyList_Insert(PySys_GetObject("path"), 0, entry.get());
}

// Returns the names that the script defines, or null after printing its error.
Owned runScript(const QByteArray& path)
{
    const Owned runner(PyImport_ImportModule("runpy"));
    const Owned name(PyUnicode_DecodeFSDefault(path.constData()));
    Owned names;
    if (runner && name)
        names.reset(PyObject_CallMethod(runner.get(), "run_path", "O", name.get()));
    if (!names)
        PyErr_Print();
    return names;
}

void printLine(const QString& text)
{
    std::puts(QFile::encodeName(text).constData());
}

// Shows the dialog and waits for its rows.
int list(FileDialog& dialog)
{
    const QAbstractItemModel* rows = dialog.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    QEventLoop listing;
    QObject::connect(rows, &QAbstractItemModel::modelReset, &listing, &QEventLoop::quit);
    QTimer::singleShot(60000, &listing, [&listing] { listing.exit(Failed); });
    dialog.show();
    const int status = listing.exec();
    for (int row = 0; row < rows->rowCount(); ++row)
        printLine(rows->index(row, 0).data().toString());
    return status;
}

int choose(FileDialog& dialog)
{
    if (dialog.exec() != QDialog::Accepted)
        return Cancelled;
    for (const QString& path : dialog.selectedFiles())
        printLine(path);
    return Opened;
}

int run(const QStringList& arguments)
{
    makeModuleKnown();
    FileDialog dialog;
    dialog.setSequencesEnabled(true);
    dialog.setDirectory(QDir(arguments.at(2)), false, false);
    const Owned names = runScript(QFile::encodeName(arguments.at(1)));
    if (!names)
        return Failed;
    // While the dialog is open, other threads may run Python. The library takes the lock when it calls a
    // script.
    PyThreadState* const state = PyEval_SaveThread();
    const int status = arguments.size() == 4 ? list(dialog) : choose(dialog);
    PyEval_RestoreThread(state);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const bool listing = arguments.size() == 4 && arguments.at(3) == QLatin1String("--list");
    if (!(arguments.size() == 3 || listing) || !QFileInfo(arguments.at(2)).isDir()) {
        std::fputs("usage: host SCRIPT DIRECTORY [--list]\n", stderr);
        return Failed;
    }
    Py_InitializeEx(0);
    const int status = run(arguments);
    return Py_FinalizeEx() == 0 ? status : Failed;
}
