#include "catalogue/FileInfoList.h"
#include "catalogue/FrameName.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <cerrno>

using namespace Halvern::UI;

class FileInfoListTest : public Test
{
    Q_OBJECT

private slots:
    void listsEntries_data();
    void listsEntries();
    void keepsDirectoriesSeparate();
    void listsManyNumberedDirectories();
    void saysWhatItRead();
    void walksOncePerListing();
};

namespace {

// The entries as texts; those of sequences are marked.
QStringList texts(const FileInfoList& list)
{
    QStringList texts;
    for (const FileInfo& entry : list.entries()) {
        const QString text = QString::fromUtf8(entry.fileName());
        if (text != QLatin1String(".") && text != QLatin1String(".."))
            texts += entry.isSequence() ? QLatin1Char('*') + text : text;
    }
    return texts;
}

} // namespace

// Digits in braces stand for a range of frames: "x.{1-3}.exr" is three files, "x.{08-11}.exr" four.
void FileInfoListTest::listsEntries_data()
{
    QTest::addColumn<QString>("files");
    QTest::addColumn<QStringList>("collapsed");
    QTest::addColumn<QStringList>("split"); // empty: as collapsed

    const auto row = [](const char* name, const char* files, const QStringList& collapsed,
                        const QStringList& split = {}) {
        QTest::newRow(name) << QString::fromUtf8(files) << collapsed << split;
    };
    row("contiguous", "x.{1-4}.exr", {"*x.#.exr 1-4"});
    row("step", "x.1.exr x.3.exr x.5.exr x.7.exr", {"*x.#.exr 1-7,2"});
    row("gap", "x.{0001-0049}.exr x.{0061-0100}.exr", {"*x.####.exr 1-100 ( 1-49  61-100 )"},
        {"*x.####.exr 1-49", "*x.####.exr 61-100"});
    row("lone last frame", "x.1.exr x.2.exr x.4.exr", {"*x.#.exr 1-4 ( 1-2 )"}, {"*x.#.exr 1-2"});
    row("lone frames", "x.{01-02}.exr x.05.exr x.{08-11}.exr", {"*x.##.exr 1-11 ( 1-2  5-5  8-11 )"},
        {"*x.##.exr 1-2", "x.05.exr", "*x.##.exr 8-11"});
    row("lone frame of unpadded numbers", "x.{8-9}.exr x.15.exr x.{20-21}.exr",
        {"*x.#.exr 8-21 ( 8-9  15-15  20-21 )"}, {"*x.#.exr 8-9", "x.15.exr", "*x.#.exr 20-21"});
    row("lone frame 0", "x.000.exr x.{003-004}.exr x.{006-007}.exr", {"*x.###.exr 0-7 ( 0-4  6-7 )"},
        {"*x.###.exr 0-4", "*x.###.exr 6-7"});
    row("gap in a step", "x.1.exr x.3.exr x.7.exr x.9.exr", {"*x.#.exr 1-9,2 ( 1-3  7-9 )"},
        {"*x.#.exr 1-3", "*x.#.exr 7-9"});
    row("smaller step in mid-run", "x.1.exr x.3.exr x.4.exr x.5.exr", {"*x.#.exr 1-5"});
    row("smaller step with a gap", "x.1.exr x.4.exr x.6.exr x.7.exr", {"*x.#.exr 1-7 ( 1-4  6-7 )"},
        {"*x.#.exr 1-4", "*x.#.exr 6-7"});
    row("widths", "x.{98-101}.exr", {"*x.#.exr 98-101"});
    row("no extension", "file.{9-10}", {"*file.# 9-10"});
    row("single numbered file", "x.7.exr y.7.exr", {"x.7.exr", "y.7.exr"});
    row("frame twice", "x.1.exr x.2.exr x.01.exr x.02.exr x.03.exr", {"*x.#.exr 1-2", "*x.##.exr 1-3"});
    row("pattern of a name that was not taken", "x.01.exr x.02.exr x.002.exr x.y",
        {"*x.##.exr 1-2", "x.002.exr", "x.y"});
    row("several numbers", "s1.{1-2}.exr s2.{1-2}.exr", {"*s1.#.exr 1-2", "*s2.#.exr 1-2"});
    row("ends of the range", "x.0.exr x.1.exr x.2147483647.exr", {"*x.#.exr 0-2147483647 ( 0-1 )"},
        {"*x.#.exr 0-1"});
    row("names beyond ASCII", "\u00e9t\u00e9.{1-2}.exr \u00e9",
        {QString::fromUtf8("\u00e9"), QString::fromUtf8("*\u00e9t\u00e9.#.exr 1-2")});
    row("hidden", ".a1.exr .a2.exr .5", {".5", "*.a#.exr 1-2"});
}

void FileInfoListTest::listsEntries()
{
    QFETCH(QString, files);
    QFETCH(QStringList, collapsed);
    QFETCH(QStringList, split);
    const QTemporaryDir folder;
    QStringList names;
    for (const QString& file : files.split(QLatin1Char(' '))) {
        const QRegularExpressionMatch braces =
            QRegularExpression(QStringLiteral("\\{(\\d+)-(\\d+)\\}")).match(file);
        if (!braces.hasMatch()) {
            names += file;
            continue;
        }
        for (int frame = braces.captured(1).toInt(); frame <= braces.captured(2).toInt(); ++frame) {
            QString name = file;
            names += name.replace(braces.captured(0), QString::number(frame).rightJustified(
                                                          braces.capturedLength(1), QLatin1Char('0')));
        }
    }
    for (const QString& name : names)
        QVERIFY(SampleFiles::make(folder.path(), name.toUtf8()));

    FileInfoList list;
    QCOMPARE(list.fill(folder.path()), names.size() + 2);
    QStringList plain = texts(list);
    names.sort();
    plain.sort();
    QCOMPARE(plain, names);
    list.setSequencesEnabled(true);
    QCOMPARE(list.fill(folder.path()), names.size() + 2);
    QCOMPARE(texts(list), collapsed);
    list.setSplitSequences(true);
    list.fill(folder.path());
    QCOMPARE(texts(list), split.isEmpty() ? collapsed : split);
}

void FileInfoListTest::keepsDirectoriesSeparate()
{
    const QTemporaryDir folder;
    QDir dir(folder.path());
    for (const char* name : {"take01", "take02", "take03"})
        QVERIFY(dir.mkdir(QLatin1String(name)));
    QVERIFY(
        QFile::link(folder.filePath(QStringLiteral("take01")), folder.filePath(QStringLiteral("take04"))));
    QVERIFY(SampleFiles::make(folder.path(), {"take05", "take06"}));
    FileInfoList list;
    list.setSequencesEnabled(true);
    list.fill(folder.path());
    QCOMPARE(texts(list), (QStringList{"take01", "take02", "take03", "take04", "*take## 5-6"}));
    QVERIFY(!list.entries().front().isInfoValid());
}

// Growing the run anew from each of them would take minutes.
void FileInfoListTest::listsManyNumberedDirectories()
{
    constexpr int count = 5000;
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    for (int i = 0; i < count; ++i)
        QVERIFY(dir.mkdir(QStringLiteral("take%1").arg(i, 5, 10, QLatin1Char('0'))));
    FileInfoList list;
    list.setSequencesEnabled(true);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(list.fill(folder.path()), count + 2);
    QVERIFY(timer.elapsed() < 2000);
    QCOMPARE(texts(list).size(), count);
}

void FileInfoListTest::saysWhatItRead()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"a1b", "a2a", "x.01.exr", "x.02.exr"}));
    FileInfoList list;
    QSignalSpy steps(&list, SIGNAL(lazyStatFetchNext()));
    list.fill(folder.path());
    QCOMPARE(texts(list), (QStringList{"a1b", "a2a", "x.01.exr", "x.02.exr"}));
    QCOMPARE(list.path(), folder.path());
    QCOMPARE(steps.size(), 1);
    list.setSequencesEnabled(true);
    list.fill(folder.path());
    QCOMPARE(texts(list), (QStringList{"a2a", "a1b", "*x.##.exr 1-2"}));
    QCOMPARE(FrameName::smallestPaddedWidth(), 2);

    const QString missing = folder.filePath(QStringLiteral("missing"));
    QVERIFY(list.fill(missing) < 0);
    QCOMPARE(errno, ENOENT);
    QVERIFY(list.entries().empty());
    QCOMPARE(list.path(), missing);
    QCOMPARE(steps.size(), 2);
}

void FileInfoListTest::walksOncePerListing()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"a", "b", "c"}));
    FileInfoList list;
    QSignalSpy steps(&list, SIGNAL(lazyStatFetchNext()));
    QSignalSpy ends(&list, SIGNAL(fileInfoAvailable()));
    list.onLazyStatFetchNext();
    list.fill(folder.path());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(ends.size(), 0);
    // The step of the first walk that is still in the queue belongs to no walk any more.
    list.fill(folder.path());
    QTRY_COMPARE(ends.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(ends.size(), 1);
    list.onLazyStatFetchNext();
    QCOMPARE(ends.size(), 2);
}

QTEST_GUILESS_MAIN(FileInfoListTest)
#include "FileInfoListTest.moc"
