// Opens the file browser on a directory and prints what was chosen.
//
// Exit status: 0 after Open, 1 after Cancel, 2 for a directory that does not exist or a wrong option.

#include "browser/FileBrowser.h"

#include <QApplication>
#include <QCheckBox>
#include <QCommandLineParser>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>
#include <QTreeView>
#include <cstdio>
#include <iostream>

using Halvern::UI::FileBrowser;

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

// Waits until the rows and their attributes are there: each row has a time, or nothing has changed for a
// while (a link that points nowhere never gets one).
void waitForRows(QAbstractItemModel& rows)
{
    constexpr int QuietTime = 1000; // milliseconds
    constexpr int ModifiedColumn = 2;
    bool listed = false;
    QElapsedTimer quiet;
    quiet.start();
    QObject::connect(&rows, &QAbstractItemModel::modelReset, &rows, [&] {
        listed = true;
        quiet.restart();
    });
    const auto complete = [&] {
        for (int row = 0; row < rows.rowCount(); ++row) {
            const QDateTime modified = rows.index(row, ModifiedColumn).data().toDateTime();
            if (!modified.isValid() || modified.toSecsSinceEpoch() == 0)
                return false;
        }
        return true;
    };
    while (!(listed && complete()) && quiet.elapsed() < QuietTime)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    rows.disconnect(&rows);
}

void printRows(const QAbstractItemModel& rows)
{
    for (int row = 0; row < rows.rowCount(); ++row)
        printLine(rows.index(row, 0).data().toString().replace(QLatin1Char('\n'), QLatin1String("\\n")));
    std::cout.flush();
}

// The browser leaves it to its host when Open may be pressed.
void enableOpenAsChosen(FileBrowser& browser, FileBrowser::SelectionType type)
{
    QObject::connect(&browser, &FileBrowser::filenameTextChanged, &browser,
                     [&browser, type](const QString& text) {
                         const bool directory = text.endsWith(QLatin1Char('/')) || QFileInfo(text).isDir();
                         const bool wanted = (type == FileBrowser::SelectionType::Directories) == directory;
                         browser.setAcceptButtonEnabled(!text.isEmpty() && wanted);
                     });
}

int run(FileBrowser& browser)
{
    int status = Cancelled;
    QObject::connect(&browser, &FileBrowser::accepted, &browser, [&] {
        for (const QString& path : browser.selectedFiles())
            printLine(path);
        std::cout.flush();
        status = Opened;
        browser.close();
    });
    QObject::connect(&browser, &FileBrowser::rejected, &browser, &QWidget::close);
    browser.activateWindow();
    QApplication::exec();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Opens the file browser and prints the chosen paths."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption list(QStringLiteral("list"), QStringLiteral("Print the rows and exit."));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Write a picture of the window and exit."),
                                        QStringLiteral("FILE"));
    const QCommandLineOption filter(QStringLiteral("filter"),
                                    QStringLiteral("List matching files only, for example \"*.exr *.dpx\"."),
                                    QStringLiteral("PATTERNS"));
    const QCommandLineOption expanded(QStringLiteral("expanded"),
                                      QStringLiteral("List every frame of a sequence."));
    const QCommandLineOption multiple(QStringLiteral("multiple"), QStringLiteral("Choose several files."));
    const QCommandLineOption directories(QStringLiteral("directories"),
                                         QStringLiteral("Choose directories."));
    const QCommandLineOption otherwise(QStringLiteral("default"),
                                       QStringLiteral("The directory to open where none is named."),
                                       QStringLiteral("DIRECTORY"), QStringLiteral("."));
    parser.addOptions({list, screenshot, filter, expanded, multiple, directories, otherwise});
    parser.addPositionalArgument(QStringLiteral("directory"), QStringLiteral("The directory to open."),
                                 QStringLiteral("[DIRECTORY]"));
    const bool understood = parser.parse(arguments);
    if (parser.isSet(help)) {
        std::cout << parser.helpText().toLocal8Bit().constData();
        return Opened;
    }
    if (!understood)
        return fail(parser.errorText());
    if (parser.positionalArguments().size() > 1)
        return fail(QStringLiteral("more than one directory"));
    const QString path = parser.positionalArguments().isEmpty() ? parser.value(otherwise)
                                                                : parser.positionalArguments().first();
    if (!QFileInfo(path).isDir())
        return fail(path + QStringLiteral(": no such directory"));

    const bool printsOnly = parser.isSet(list) && !parser.isSet(screenshot);
    if (printsOnly)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);

    const auto type = parser.isSet(directories) ? FileBrowser::SelectionType::Directories
                                                : FileBrowser::SelectionType::Files;
    FileBrowser::SetUseLastSavedDir(false);
    const QString settings = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    QDir().mkpath(settings);
    FileBrowser::SetPreferencesPath(settings + QStringLiteral("/HvMirefoldCoreUI.favorites"),
                                    QStringLiteral("browse"));
    FileBrowser browser;
    browser.setWindowTitle(QStringLiteral("Browse"));
    browser.setSelectionType(type);
    browser.setMultipleSelections(parser.isSet(multiple));
    browser.setSequencesEnabled(true);
    if (parser.isSet(expanded))
        browser.findChild<QCheckBox*>(QStringLiteral("sequencesCheck"))->setChecked(false);
    if (parser.isSet(filter)) {
        QStringList patterns(parser.value(filter));
        browser.setFilters(patterns, false);
    }
    enableOpenAsChosen(browser, type);
    browser.setDirectory(QDir(path), false, false);
    browser.resize(1100, 600);
    if (printsOnly)
        QMetaObject::invokeMethod(&browser, "refresh");
    else
        browser.show();
    if (!parser.isSet(list) && !parser.isSet(screenshot))
        return run(browser);

    QAbstractItemModel& rows = *browser.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    waitForRows(rows);
    if (parser.isSet(list))
        printRows(rows);
    if (parser.isSet(screenshot) && !browser.grab().save(parser.value(screenshot)))
        return fail(parser.value(screenshot) + QStringLiteral(": cannot write the picture"));
    return Opened;
}
