// Prints the system calls of the user interface for files, step by step: in folders of few and of many files,
// on disks that take 1 ms and 50 ms for each call of the worker, and in a dialog with 20,000 files. Exit
// status: 1 if a step makes other calls than listed here, for any number of files. Usage: disk-calls [FILES]

#include "browser/BrowserWindow.h"
#include "dialog/FileDialog.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"

#include <QSettings>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr int FewFiles = 20;
constexpr int DefaultFiles = 1500;
constexpr int DialogFiles = 20000;

struct Step
{
    const char* name;
    const char* calls; ///< The expected calls, as summary() prints them.
    std::function<void()> run;
};

/// One walk through a folder. The steps use the controls, as a user does.
class Walk
{
public:
    explicit Walk(const QString& folder)
        : path(folder)
        , window(folder, false, false)
    {
        window.browser.setSequencesEnabled(false);
    }

    /// @p wait is the time for attributes to arrive, in milliseconds.
    std::vector<Step> steps(int wait)
    {
        return {
            {"receive attributes", "none", [wait] { QTest::qWait(wait); }},
            {"go to a folder", "access 1, opendir 1, realpath 6, statx 8",
             [this] { window.browser.setDirectory(QDir(path + "/sub"), false, true); }},
            {"go to the parent", "access 1, opendir 1, realpath 6, statx 9",
             [this] { window.control("upButton")->click(); }},
            {"go back", "access 1, opendir 1, realpath 4, statx 6",
             [this] { window.control("backButton")->click(); }},
            {"go forward", "access 1, opendir 1, realpath 4, statx 6",
             [this] { window.control("forwardButton")->click(); }},
            {"scroll", "none", [this] { window.list()->scrollToBottom(); }},
            {"move the mouse", "none", [this] { window.hover(QStringLiteral("sub/")); }},
            {"sort", "settings file", [this] { window.list()->sortByColumn(1, Qt::DescendingOrder); }},
            {"sort again", "settings file", [this] { window.list()->sortByColumn(0, Qt::AscendingOrder); }},
            {"click on a file", "statx 1", [this] { click(QStringLiteral("f0003.exr")); }},
            {"select by key", "none", [this] { QTest::keyClick(window.list(), Qt::Key_Down); }},
            {"change a check box", "settings file", [this] { changeCheckBox(); }},
            {"type a letter", "access 1, opendir 1, statx 3",
             [this] { QTest::keyClicks(emptiedEdit(), QStringLiteral("f")); }},
            {"complete with Tab", "access 1, opendir 1, statx 4",
             [this] { QTest::keyClick(window.edit(), Qt::Key_Tab); }},
            {"filter", "opendir 1", [this] { filter(QStringLiteral("*.exr")); }},
            {"end the filter", "opendir 1", [this] { filter(QString()); }},
            {"refresh", "access 1, opendir 1, statx 1", [this] { window.model()->refreshList(); }},
            {"type a folder", "access 1, opendir 1, statx 3",
             [this] { QTest::keyClicks(emptiedEdit(), QStringLiteral("s")); }},
            {"click on a folder", "access 1, opendir 1, realpath 6, statx 9",
             [this] { click(QStringLiteral("sub/")); }},
        };
    }

    bool waitForNames()
    {
        return QTest::qWaitFor([this] { return window.rows().contains(QStringLiteral("sub/")); });
    }

    bool finishStep()
    {
        return QTest::qWaitFor([this] { return window.model()->isListReady(); });
    }

private:
    FilePathEdit* emptiedEdit()
    {
        window.edit()->setText(path + QLatin1Char('/'));
        return window.edit();
    }
    void click(const QString& name)
    {
        window.list()->scrollTo(window.row(name));
        window.clickRow(name);
    }
    void changeCheckBox()
    {
        window.browser.setSequencesEnabled(true);
        window.control<QCheckBox>("sequencesCheck")->click();
        window.control<QCheckBox>("sequencesCheck")->click();
        window.browser.setSequencesEnabled(false);
    }
    void filter(const QString& pattern) { window.control<QComboBox>("filterCombo")->setEditText(pattern); }

    QString path;
    BrowserWindow window;
};

/// How often each call occurs: "opendir 1, statx 2". The calls for a settings file depend on the machine and
/// are printed as "settings file".
QString summary(const QStringList& calls, const QString& folder)
{
    const auto isSettings = [](const QString& call) { return call.contains(QLatin1String(".ini")); };
    const bool settings = std::any_of(calls.cbegin(), calls.cend(), isSettings);
    QStringList texts;
    if (settings)
        texts.append(QStringLiteral("settings file"));
    QMap<QString, int> counts;
    for (const QString& call : calls) {
        if (!settings || call.contains(folder) || call.startsWith(QLatin1String("readdir")))
            ++counts[call.section(QLatin1Char(' '), 0, 0)];
    }
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        texts.append(QStringLiteral("%1 %2").arg(count.key()).arg(count.value()));
    return texts.isEmpty() ? QStringLiteral("none") : texts.join(QStringLiteral(", "));
}

/// Prints the calls of each step. False if they are not as expected, or if a step does not end.
bool walk(const std::vector<Step>& steps, const std::function<bool()>& finish, const QString& folder)
{
    bool asExpected = true;
    takeCalls();
    for (const Step& step : steps) {
        step.run();
        const bool finished = finish();
        const QString calls = summary(takeCalls(), folder);
        std::printf("%s: %s\n", step.name, qPrintable(calls));
        if (finished && calls == QLatin1String(step.calls))
            continue;
        std::printf("    EXPECTED: %s\n", finished ? step.calls : "an end");
        asExpected = false;
    }
    return asExpected;
}

bool walkBrowser(const QString& folder, int wait)
{
    Walk browser(folder);
    return browser.waitForNames() && walk(
                                         browser.steps(wait), [&] { return browser.finishStep(); }, folder);
}

/// In a dialog, whose buttons depend on the selection.
bool walkDialog(const QString& folder)
{
    using Halvern::UI::FileBrowser;
    Halvern::UI::FileDialog dialog;
    dialog.setMultipleSelections(true);
    dialog.setSequencesEnabled(false);
    dialog.setDirectory(QDir(folder), false, true);
    dialog.show();
    auto& list = *dialog.findChild<FileBrowser::FilesList*>();
    const auto& model = *dialog.findChild<FileBrowser::DirectoryModel*>();
    const auto isKnown = [&] {
        return model.isListReady() && model.rowCount() > DialogFiles && model.hasAllAttributes();
    };
    const auto click = [&](int row) {
        const QPoint place = list.visualRect(list.model()->index(row, 0)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    };
    const auto queue = [&] { QMetaObject::invokeMethod(dialog.fileBrowser(), "nextClicked"); };
    return QTest::qWaitFor([&] { return isKnown(); }) &&
           walk({{"click on a file", "statx 1", [&] { click(3); }},
                 {"select by key", "none", [&] { QTest::keyClick(&list, Qt::Key_Down); }},
                 {"select all", "none", [&] { list.selectAll(); }},
                 {"queue all", "none", queue}},
                isKnown, folder);
}

bool makeFiles(const QString& folder, int files)
{
    return SampleFiles::makeFrames(folder, "f%04d.exr", 1, files) &&
           QDir(folder).mkdir(QStringLiteral("sub"));
}

} // namespace

int main(int argc, char** argv)
{
    const int files = argc > 1 ? std::atoi(argv[1]) : DefaultFiles;
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    const QTemporaryDir few;
    const QTemporaryDir many;
    if (!makeFiles(few.path(), FewFiles) || files < FewFiles || !makeFiles(many.path(), files)) {
        std::fprintf(stderr, "disk-calls: cannot make %d files\n", files);
        return 2;
    }
    constexpr int Millisecond = 1000;
    std::printf("%d files\n", FewFiles);
    bool asExpected = walkBrowser(few.path(), 100);
    faultyCall = "fstatat";
    faults[CallDelay] = Millisecond;
    std::printf("\n%d files, at 1 ms for each question\n", files);
    asExpected = walkBrowser(many.path(), files * 3 / 2) && asExpected;
    faults[CallDelay] = 50 * Millisecond;
    std::printf("\n%d files, at 50 ms\n", files);
    asExpected = walkBrowser(many.path(), 100) && asExpected;
    endFaults();
    const QTemporaryDir large;
    std::printf("\n%d files, in a dialog\n", DialogFiles);
    asExpected = makeFiles(large.path(), DialogFiles) && walkDialog(large.path()) && asExpected;
    std::printf("\n%s\n", asExpected ? "as expected" : "NOT AS EXPECTED");
    return asExpected ? 0 : 1;
}
