// Opens the file dialog on a directory and prints what was chosen.
//
// Exit status: 0 after Open, 1 after Cancel, 2 for a directory that does not exist or a wrong option.

#include "dialog/FileDialog.h"
#include "dialog/FilePreview.h"
#include "widgets/AppSettings.h"

#include <QApplication>
#include <QCheckBox>
#include <QCommandLineParser>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPalette>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTreeView>
#include <iostream>
#include <optional>

using Halvern::UI::FileBrowser;
using Halvern::UI::FileDialog;
using Halvern::UI::FilePreview;

namespace {

enum ExitStatus
{
    Opened = 0,
    Cancelled = 1,
    Failed = 2
};

int fail(const QString& message)
{
    std::cerr << "browse: " << message.toLocal8Bit().constData() << std::endl;
    return Failed;
}

void printLine(const QString& text)
{
    std::cout << QFile::encodeName(text).constData() << '\n';
}

// Waits until all rows have a time, or until nothing has changed for a while (a broken link never gets one).
// False if there are no rows.
bool waitForRows(QAbstractItemModel& rows)
{
    constexpr int ListingTime = 120000; // milliseconds
    constexpr int QuietTime = 1000;     // milliseconds
    constexpr int ModifiedColumn = 2;
    bool listed = false;
    QElapsedTimer quiet;
    quiet.start();
    QObject::connect(&rows, &QAbstractItemModel::modelReset, &rows, [&] {
        listed = true;
        quiet.restart();
    });
    QObject::connect(&rows, &QAbstractItemModel::dataChanged, &rows, [&] { quiet.restart(); });
    const auto complete = [&] {
        for (int row = 0; row < rows.rowCount(); ++row) {
            const QDateTime modified = rows.index(row, ModifiedColumn).data().toDateTime();
            if (!modified.isValid() || modified.toSecsSinceEpoch() == 0)
                return false;
        }
        return true;
    };
    while (!(listed && complete()) && quiet.elapsed() < (listed ? QuietTime : ListingTime))
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    rows.disconnect(&rows);
    return listed;
}

void printRows(const QAbstractItemModel& rows)
{
    for (int row = 0; row < rows.rowCount(); ++row)
        printLine(rows.index(row, 0).data().toString().replace(QLatin1Char('\n'), QLatin1String("\\n")));
    std::cout.flush();
}

struct Options
{
    bool list = false;
    bool expanded = false;
    bool multiple = false;
    bool directories = false;
    QString screenshot;
    QString filter;
    QString directory;

    bool isInteractive() const { return !list && screenshot.isEmpty(); }
    bool needsWindow() const { return !list || !screenshot.isEmpty(); }
};

// Reads the command line. Returns an exit status if the program ends here.
std::optional<int> parse(const QStringList& arguments, Options& options)
{
    const auto text = [](const char* latin) { return QString::fromLatin1(latin); };
    const QCommandLineOption list(text("list"), text("Print the rows and exit."));
    const QCommandLineOption screenshot(text("screenshot"), text("Write a picture of the window and exit."),
                                        text("FILE"));
    const QCommandLineOption filter(
        text("filter"), text("List matching files only, for example \"*.exr *.dpx\"."), text("PATTERNS"));
    const QCommandLineOption expanded(text("expanded"), text("List every frame of a sequence."));
    const QCommandLineOption multiple(text("multiple"), text("Choose several files."));
    const QCommandLineOption directories(text("directories"), text("Choose directories."));
    const QCommandLineOption otherwise(text("default"), text("The directory to open where none is named."),
                                       text("DIRECTORY"), text("."));
    QCommandLineParser parser;
    parser.setApplicationDescription(text("Opens the file dialog and prints the chosen paths."));
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({list, screenshot, filter, expanded, multiple, directories, otherwise});
    parser.addPositionalArgument(text("directory"), text("The directory to open."), text("[DIRECTORY]"));

    const bool understood = parser.parse(arguments);
    if (parser.isSet(help)) {
        std::cout << parser.helpText().toLocal8Bit().constData();
        return Opened;
    }
    if (!understood)
        return fail(parser.errorText());
    const QStringList named = parser.positionalArguments();
    if (named.size() > 1)
        return fail(text("more than one directory"));
    options.list = parser.isSet(list);
    options.expanded = parser.isSet(expanded);
    options.multiple = parser.isSet(multiple);
    options.directories = parser.isSet(directories);
    options.screenshot = parser.value(screenshot);
    options.filter = parser.value(filter);
    options.directory = named.isEmpty() ? parser.value(otherwise) : named.first();
    if (!QFileInfo(options.directory).isDir())
        return fail(options.directory + text(": no such directory"));
    if (!QFileInfo(options.directory).isReadable())
        return fail(options.directory + text(": cannot be read"));
    return std::nullopt;
}

void configure(FileDialog& dialog, const Options& options)
{
    dialog.setWindowTitle(QStringLiteral("Browse"));
    dialog.setSelectionType(options.directories ? FileBrowser::SelectionType::Directories
                                                : FileBrowser::SelectionType::Files);
    dialog.setMultipleSelections(options.multiple);
    dialog.setSequencesEnabled(true);
    dialog.setWatched(true);
    if (options.expanded)
        dialog.findChild<QCheckBox*>(QStringLiteral("sequencesCheck"))->setChecked(false);
    if (!options.filter.isEmpty()) {
        QStringList patterns(options.filter);
        dialog.setFilters(patterns, false);
    }
    if (options.needsWindow()) {
        dialog.setPreviewWidget(new FilePreview(&dialog, 0));
        // Open, unless the user closed it.
        if (Halvern::UI::AppSettings::Flag(QStringLiteral("FileBrowser/preview")).value_or(true))
            dialog.findChild<QAbstractButton*>(QStringLiteral("previewButton"))->setChecked(true);
    }
    dialog.setDirectory(QDir(options.directory), false, false);
}

// Prints the rows and writes a picture, without a user.
int report(FileDialog& dialog, const Options& options)
{
    if (options.needsWindow()) {
        dialog.resize(1100, 600);
        dialog.show();
    } else {
        dialog.refreshWidget();
    }
    QAbstractItemModel& rows = *dialog.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    if (!waitForRows(rows))
        return fail(options.directory + QStringLiteral(": the directory does not answer"));
    if (options.list)
        printRows(rows);
    if (!options.screenshot.isEmpty() && !dialog.grab().save(options.screenshot))
        return fail(options.screenshot + QStringLiteral(": cannot write the picture"));
    return Opened;
}

int choose(FileDialog& dialog)
{
    if (dialog.exec() != QDialog::Accepted)
        return Cancelled;
    for (const QString& path : dialog.selectedFiles())
        printLine(path);
    std::cout.flush();
    return Opened;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    {
        // The kind of application depends on the command line.
        const QCoreApplication reader(argc, argv);
        if (const auto status = parse(reader.arguments(), options))
            return *status;
    }
    if (!options.needsWindow())
        qputenv("QT_QPA_PLATFORM", "offscreen");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    const QApplication application(argc, argv);
    FileBrowser::SetUseLastSavedDir(false);
    FileBrowser::SetAssumeZeroPadding(true);
    QString settings = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    // Without a user, settings and favourites are not written.
    std::optional<QTemporaryDir> own;
    if (!options.isInteractive()) {
        settings = own.emplace().path();
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings);
    }
    QDir().mkpath(settings);
    FileBrowser::SetPreferencesPath(settings + QStringLiteral("/HvMirefoldCoreUI.favorites"),
                                    QStringLiteral("browse"));
    // For the row under the mouse. The default is for hosts with a black surface.
    FileBrowser::SetHighlightColor(QApplication::palette().color(QPalette::Midlight));
    FileDialog dialog;
    configure(dialog, options);
    return options.isInteractive() ? choose(dialog) : report(dialog, options);
}
