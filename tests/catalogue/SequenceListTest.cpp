#include "catalogue/FileManager.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "support/Test.h"

using namespace Halvern::UI;
using Halvern::Base::FileHandle;

/// How a list of names becomes rows; no disk is involved.
class SequenceListTest : public Test
{
    Q_OBJECT

private slots:
    void buildsRows_data();
    void buildsRows();
    void keepsSplitEntriesAligned();
    void reevaluationTakesTheFirstWidth();
    void summariesFollowAttributes();
    void listsMayBeBuiltBetweenBatches();
    void registersBuiltInExtensions();
    void evaluatorBuildsSequences();
    void evaluatorOutlivesItsManager();
};

namespace {

void insert(FileManager& manager, const QStringList& names)
{
    std::list<std::string> list;
    for (const QString& name : names)
        list.push_back(name.toStdString());
    manager.setFiles(list);
    manager.insertFiles();
}

std::vector<FileInfo*> rows(FileManager& manager, int type)
{
    std::vector<FileInfo*> entries;
    manager.buildRunningList(&entries, static_cast<FileHandle::ListType>(type));
    return entries;
}

QStringList names(FileManager& manager, int type)
{
    QStringList texts;
    for (const FileInfo* entry : rows(manager, type))
        texts.append(QString::fromUtf8(entry->displayName()));
    return texts;
}

QStringList frames(const char* pattern, const QVector<int>& numbers)
{
    QStringList texts;
    for (int number : numbers)
        texts.append(QString::asprintf(pattern, number));
    return texts;
}

std::vector<FileInfoWrapper> attributes(std::size_t count, unsigned long long size, long long firstTime)
{
    std::vector<FileInfoWrapper> records;
    for (std::size_t i = 0; i < count; ++i)
        records.push_back({size, false, firstTime + static_cast<long long>(i)});
    return records;
}

class PassThrough : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override { return files; }
};

} // namespace

void SequenceListTest::buildsRows_data()
{
    QTest::addColumn<QStringList>("input");
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("output");

    const QStringList exr = frames("s.%04d.exr", {1, 2, 3, 4, 5, 8, 9, 12});
    const QStringList txt = frames("n.%d.txt", {1, 2, 4, 5});
    const QStringList input = QStringList("b.exr") + txt + exr + QStringList("lone.7.exr");
    QTest::newRow("all files") << input << 0 << input;
    QTest::newRow("sequences") << input << 1
                               << QStringList{"b.exr", "lone.7.exr", "n.#.txt 1-5", "s.####.exr 1-12"};
    QTest::newRow("split") << input << 2
                           << QStringList{"b.exr",          "lone.7.exr",     "n.#.txt 1-2", "n.#.txt 4-5",
                                          "s.####.exr 1-5", "s.####.exr 8-9", "s.0012.exr"};
    QTest::newRow("registered") << input << 3
                                << QStringList{"b.exr", "lone.7.exr"} + txt + QStringList("s.####.exr 1-12");
    QTest::newRow("registered, split") << input << 4
                                       << QStringList{"b.exr", "lone.7.exr"} + txt +
                                              QStringList{"s.####.exr 1-5", "s.####.exr 8-9", "s.0012.exr"};
    QTest::newRow("letter case separates")
        << QStringList{"a.1.exr", "A.2.exr"} << 3 << QStringList{"A.2.exr", "a.1.exr"};
    QTest::newRow("widths do not") << QStringList{"a.9.exr", "a.10.exr"} << 3 << QStringList{"a.#.exr 9-10"};
    QTest::newRow("second file of a frame")
        << QStringList{"a.1.exr", "a.01.exr"} << 3 << QStringList{"a.##.exr 1-1"};
    QTest::newRow("file named like a pattern")
        << QStringList{"a.#.exr", "a.1.exr", "a.2.exr"} << 3 << QStringList{"a.#.exr"};
    QTest::newRow("nothing") << QStringList() << 4 << QStringList();
}

void SequenceListTest::buildsRows()
{
    QFETCH(QStringList, input);
    QFETCH(int, type);
    FileManager manager;
    insert(manager, input);
    QTEST(names(manager, type), "output");
    QTEST(names(manager, type), "output");
}

void SequenceListTest::keepsSplitEntriesAligned()
{
    FileManager manager;
    insert(manager, frames("a.%d.exr", {1, 2, 5, 6}) + frames("b.%d.txt", {1, 2, 5, 6, 9, 10}) +
                        frames("c.%d.exr", {1, 2, 5, 6}));
    const QStringList expected = QStringList{"a.#.exr 1-2", "a.#.exr 5-6"} +
                                 frames("b.%d.txt", {1, 2, 5, 6, 9, 10}) +
                                 QStringList{"c.#.exr 1-2", "c.#.exr 5-6"};
    QCOMPARE(names(manager, 4), expected);
    for (const FileInfo* run : rows(manager, 2))
        QVERIFY(run->parentSequence());
}

void SequenceListTest::reevaluationTakesTheFirstWidth()
{
    FileManager manager;
    insert(manager, frames("a.%03d.exr", {9, 10}) + QStringList("a.0011.exr") + frames("b.%d.exr", {1, 2}));
    QCOMPARE(names(manager, 1), (QStringList{"a.####.exr 9-11", "b.#.exr 1-2"}));
    manager.reevaluateSequences();
    QCOMPARE(names(manager, 1), (QStringList{"a.###.exr 9-11", "b.#.exr 1-2"}));
    manager.reevaluateSequences();
    QCOMPARE(names(manager, 1), (QStringList{"a.###.exr 9-11", "b.#.exr 1-2"}));
    manager.cleanData();
    manager.reevaluateSequences();
    QCOMPARE(names(manager, 1), QStringList());
}

void SequenceListTest::summariesFollowAttributes()
{
    FileManager manager;
    insert(manager, frames("a.%d.exr", {1, 2, 3, 6, 7}) + QStringList("lone.1.exr"));
    const FileInfo* sequence = rows(manager, 3).at(0);
    const std::vector<FileInfo*> runs = rows(manager, 4);
    QSignalSpy updated(&manager, SIGNAL(infoUpdated(int, int)));

    const auto first = attributes(3, 10, 100);
    manager.updateInfo(&first, true);
    QCOMPARE(sequence->size(), 30ULL);
    QCOMPARE(sequence->modificationTime(), 102LL);
    QCOMPARE(runs.at(0)->size(), 30ULL);
    QCOMPARE(runs.at(1)->size(), 0ULL);

    const auto second = attributes(9, 100, 50);
    manager.updateInfo(&second, true);
    QCOMPARE(sequence->size(), 230ULL);
    QCOMPARE(sequence->modificationTime(), 102LL);
    QCOMPARE(runs.at(0)->size(), 30ULL);
    QCOMPARE(runs.at(1)->size(), 200ULL);
    QCOMPARE(runs.at(1)->modificationTime(), 51LL);
    QCOMPARE(updated, (QList<QList<QVariant>>{{0, 3}, {3, 3}}));

    manager.updateInfo(nullptr, true);
    manager.updateInfo(&second, false);
    QCOMPARE(updated.size(), 2);
}

void SequenceListTest::listsMayBeBuiltBetweenBatches()
{
    FileManager manager;
    insert(manager, frames("a.%d.exr", {1, 2, 5}));
    QCOMPARE(names(manager, 4), (QStringList{"a.#.exr 1-2", "a.5.exr"}));
    insert(manager, frames("a.%d.exr", {6, 100}));
    QCOMPARE(names(manager, 4), (QStringList{"a.#.exr 1-2", "a.#.exr 5-6", "a.100.exr"}));
    QCOMPARE(names(manager, 3), QStringList("a.#.exr 1-100"));
    FileInfo host("a.50.exr", false);
    manager.createSecondarySequence(manager.createEntry(), "a.#.exr", 2, false, 50, &host);
    manager.createSecondarySequence(manager.createEntry(), "a.#.exr", 2, false, 51, &host);
    QCOMPARE(names(manager, 4).size(), 4);
}

void SequenceListTest::registersBuiltInExtensions()
{
    const FileManager manager;
    for (const char* extension : {"EXR", ".exr", "exr", "arri", "tiff16", "yuv", "cr2"})
        QVERIFY2(FileInfo::isSequenceExtension(extension), extension);
    QVERIFY(!FileInfo::isSequenceExtension("txt"));
}

void SequenceListTest::evaluatorBuildsSequences()
{
    FileManager manager;
    insert(manager, frames("a.%d.exr", {1, 2, 3}));
    PassThrough evaluator;
    evaluator.setManager(&manager);
    const auto files = evaluator.evaluateFiles(rows(manager, 0));
    FileInfo* built = evaluator.buildFileSequence("shot A", {1, 2, 3, 4}, files);
    QCOMPARE(built->displayName(), "shot A");
    QCOMPARE(built->sequenceFileCount(), 3);
    QVERIFY(built->isInfoValid() && !built->isDirectory());
    FileInfo* withNull = evaluator.buildFileSequence("gap", {1, 2}, {files[0], nullptr});
    QCOMPARE(withNull->sequenceFileCount(), 2);

    const auto records = attributes(3, 7, 70);
    manager.updateInfo(&records, true);
    QCOMPARE(built->size(), 21ULL);
    QCOMPARE(built->modificationTime(), 72LL);
    QCOMPARE(withNull->size(), 7ULL);
    QCOMPARE(evaluator.buildFileSequence("late", {1, 2}, files)->size(), 14ULL);
}

void SequenceListTest::evaluatorOutlivesItsManager()
{
    PassThrough evaluator;
    FileInfo file("a.1.exr", false);
    file.setAdditionalInfo({5, false, 6});
    {
        FileManager manager;
        evaluator.setManager(&manager);
    }
    const PassThrough copy(evaluator);
    for (const PassThrough* one : {static_cast<const PassThrough*>(&evaluator), &copy})
        QCOMPARE(one->buildFileSequence("s", {1}, {&file})->size(), 5ULL);
}

QTEST_GUILESS_MAIN(SequenceListTest)
#include "SequenceListTest.moc"
