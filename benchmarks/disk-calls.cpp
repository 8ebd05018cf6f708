// Prints what the user interface asks the disk for, step by step, in folders of few and of many files and on
// a disk that takes 1 ms and 50 ms for each question of the worker. Ends with 1 where the number of files or
// the slowness makes a difference. Usage: disk-calls [FILES]

#include "browser/BrowserWindow.h"
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

struct Step
{
    const char* name;
    std::function<void()> run;
};

/// One walk through a folder. What the steps do is done with the controls, as a user does it.
class Walk
{
public:
    explicit Walk(const QString& folder)
        : path(folder)
        , window(folder)
    {
        window.browser.setSequencesEnabled(false);
    }

    std::vector<Step> steps()
    {
        return {
            {"go to the parent", [this] { window.control("upButton")->click(); }},
            {"go back", [this] { window.control("backButton")->click(); }},
            {"scroll", [this] { window.list()->scrollToBottom(); }},
            {"move the mouse", [this] { window.hover(QStringLiteral("sub/")); }},
            {"sort", [this] { window.list()->sortByColumn(1, Qt::DescendingOrder); }},
            {"sort again", [this] { window.list()->sortByColumn(0, Qt::AscendingOrder); }},
            {"click on a file", [this] { click(QStringLiteral("f0003.exr")); }},
            {"type a letter", [this] { QTest::keyClicks(emptiedEdit(), QStringLiteral("f")); }},
            {"complete with Tab", [this] { QTest::keyClick(window.edit(), Qt::Key_Tab); }},
            {"filter", [this] { filter(QStringLiteral("*.exr")); }},
            {"end the filter", [this] { filter(QString()); }},
            {"refresh", [this] { window.model()->refreshList(); }},
            {"type a folder", [this] { QTest::keyClicks(emptiedEdit(), QStringLiteral("s")); }},
            {"click on a folder", [this] { click(QStringLiteral("sub/")); }},
        };
    }

    /// Waits until the names are listed, and their attributes as far as @p milliseconds go.
    bool waitForNames(int milliseconds)
    {
        const bool listed =
            QTest::qWaitFor([this] { return window.rows().contains(QStringLiteral("sub/")); });
        QTest::qWait(milliseconds);
        return listed;
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
    void filter(const QString& pattern) { window.control<QComboBox>("filterCombo")->setEditText(pattern); }

    QString path;
    BrowserWindow window;
};

/// How often each call occurs: "opendir 1, statx 2".
QString summary(const QStringList& calls)
{
    QMap<QString, int> counts;
    for (const QString& call : calls)
        ++counts[call.section(QLatin1Char(' '), 0, 0)];
    QStringList texts;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        texts.append(QStringLiteral("%1 %2").arg(count.key()).arg(count.value()));
    return texts.join(QStringLiteral(", "));
}

/// The calls of each step, in the folder as "folder" and elsewhere as "settings"; nothing where a step hung.
QStringList walk(const QString& folder, int wait)
{
    Walk walk(folder);
    QStringList lines;
    if (!walk.waitForNames(wait))
        return lines;
    takeCalls();
    for (const Step& step : walk.steps()) {
        step.run();
        if (!walk.finishStep())
            return {};
        const QStringList calls = takeCalls();
        const auto isSettings = [](const QString& call) { return call.contains(QLatin1String(".ini")); };
        const bool settings = std::any_of(calls.cbegin(), calls.cend(), isSettings);
        lines.append(QStringLiteral("%1: %2").arg(
            QLatin1String(step.name), settings ? QStringLiteral("settings file") : summary(calls)));
    }
    return lines;
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
    const QStringList first = walk(few.path(), 100);
    faultyCall = "fstatat";
    faults[CallDelay] = Millisecond;
    const QStringList slow = walk(many.path(), files * 3 / 2);
    faults[CallDelay] = 50 * Millisecond;
    const QStringList slower = walk(many.path(), 100);
    std::printf("%s\n", qPrintable(first.join(QLatin1Char('\n'))));
    const bool same = !first.isEmpty() && slow == first && slower == first;
    std::printf("\n%d files, on a slow disk: %s\n", files, same ? "the same" : "DIFFERENT");
    if (!same)
        std::printf("1 ms:\n%s\n\n50 ms:\n%s\n", qPrintable(slow.join(QLatin1Char('\n'))),
                    qPrintable(slower.join(QLatin1Char('\n'))));
    return same ? 0 : 1;
}
