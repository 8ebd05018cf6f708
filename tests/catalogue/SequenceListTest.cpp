#include "catalogue/FileInfoList.h"
#include "catalogue/SequenceIndex.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <cerrno>

using namespace Halvern::UI;
using Halvern::Base::FileHandle;

namespace {

void insert(SequenceIndex& index, const QStringList& names)
{
    for (const QString& name : names)
        index.add(name.toUtf8().constData(), false);
}

std::vector<FileInfo*> rows(SequenceIndex& index, FileHandle::ListType type)
{
    std::vector<FileInfo*> entries;
    index.rows(entries, type);
    return entries;
}

QStringList names(SequenceIndex& index, FileHandle::ListType type)
{
    QStringList texts;
    for (const FileInfo* entry : rows(index, type))
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

std::vector<FileInfoWrapper> records(std::size_t count, unsigned long long size, long long time)
{
    return std::vector<FileInfoWrapper>(count, {size, false, time});
}

// The entries as texts; those of sequences are marked.
QStringList texts(const FileInfoList& list)
{
    QStringList texts;
    for (const FileInfo& entry : list.entries())
        texts += (entry.isSequence() ? QString("*") : QString()) + QString::fromUtf8(entry.fileName());
    return texts.mid(2);
}

} // namespace

/// How a list of names becomes rows, and how the lister collapses them.
class SequenceListTest : public Test
{
    Q_OBJECT

public:
    SequenceListTest() { FileInfo::addSequenceFileExtension("exr"); }

private slots:
    void buildsRows()
    {
        // The ordinary rows of each list type are in docs/sequences.md, which the documents' test checks.
        const std::tuple<QStringList, FileHandle::ListType, QStringList> table[] = {
            {frames("a.%d.exr", {1, 2, 5, 6, 100}),
             FileHandle::RegisteredSplitSequences,
             {"a.#.exr 1-2", "a.#.exr 5-6", "a.100.exr"}},
            {{"a.1.exr", "A.2.exr"}, FileHandle::RegisteredSequences, {"A.2.exr", "a.1.exr"}},
            {{"a.#.exr", "a.1.exr", "a.2.exr"}, FileHandle::RegisteredSequences, {"a.#.exr"}}};
        for (const auto& [given, type, expected] : table) {
            // Lists may be built between two batches.
            for (int first = 0; first <= given.size(); ++first) {
                SequenceIndex index;
                insert(index, given.mid(0, first));
                names(index, type);
                insert(index, given.mid(first));
                QCOMPARE(names(index, type), expected);
            }
        }
    }

    // The second file of a frame has a row unless its kind is registered.
    void listsSecondFilesOfAFrame()
    {
        const QStringList given{"b.1.txt", "b.01.txt", "b.2.txt", "b.9.txt", "b.09.txt", "b.009.txt", "z"};
        const std::pair<QStringList, QStringList> expected[] = {
            // from Sequences on, of text and of pictures
            {{"b.###.txt 1-9", "b.01.txt", "b.09.txt", "b.009.txt", "z"}, {"b.###.exr 1-9", "z"}},
            {{"b.###.txt 1-2", "b.9.txt", "b.01.txt", "b.09.txt", "b.009.txt", "z"},
             {"b.###.exr 1-2", "b.9.exr", "z"}},
            {given, {"b.###.exr 1-9", "z"}},
            {given, {"b.###.exr 1-2", "b.9.exr", "z"}}};
        int type = FileHandle::Sequences;
        for (const auto& [text, pictures] : expected) {
            SequenceIndex index;
            insert(index, given);
            QCOMPARE(names(index, FileHandle::ListType(type)), text);
            index.clear();
            insert(index, QStringList(given).replaceInStrings(".txt", ".exr"));
            QCOMPARE(names(index, FileHandle::ListType(type++)), pictures);
        }
    }

    void addsMembersInParts()
    {
        SequenceIndex index;
        QVector<int> numbers;
        for (int i = 0; i < 3000; ++i)
            numbers.append(i * 7 % 3000);
        insert(index, frames("a.%d.exr", numbers) + frames("b.%d.exr", numbers));
        for (int part = 1; part <= 6; ++part)
            QCOMPARE(index.settle(1000), part == 6);
        QCOMPARE(names(index, FileHandle::Sequences), (QStringList{"a.#.exr 0-2999", "b.#.exr 0-2999"}));

        // Regrouping takes the first width.
        index.clear();
        insert(index, frames("a.%03d.exr", {9, 10}) + QStringList("a.0011.exr") + frames("b.%d.exr", {1, 2}));
        QCOMPARE(names(index, FileHandle::Sequences), (QStringList{"a.####.exr 9-11", "b.#.exr 1-2"}));
        index.regroup();
        QCOMPARE(names(index, FileHandle::Sequences), (QStringList{"a.###.exr 9-11", "b.#.exr 1-2"}));
    }

    void sumsFollowAttributes()
    {
        SequenceIndex index;
        insert(index, frames("a.%d.exr", {1, 2, 3, 6, 7}));
        const FileInfo* sequence = rows(index, FileHandle::RegisteredSequences).at(0);
        const std::vector<FileInfo*> runs = rows(index, FileHandle::RegisteredSplitSequences);

        // The second batch has more records than there are files left.
        QCOMPARE(index.apply(records(3, 10, 100)), std::size_t(3));
        QCOMPARE(runs.at(1)->size(), 0ULL);
        QCOMPARE(index.apply(records(9, 100, 50)), std::size_t(2));
        QCOMPARE(sequence->size(), 230ULL);
        QCOMPARE(sequence->modificationTime(), 100LL);
        QCOMPARE(runs.at(1)->size(), 200ULL);

        // Files that come later, to a sequence that is known and to a file that was alone.
        insert(index, frames("a.%d.exr", {9, 4}) + frames("b.%d.exr", {1}));
        index.apply(records(3, 10, 100));
        insert(index, frames("b.%d.exr", {2}));
        index.apply(records(1, 10, 100));
        QCOMPARE(sequence->size(), 250ULL);
        QCOMPARE(rows(index, FileHandle::RegisteredSequences).at(1)->size(), 20ULL);
        // What a host wrote before does not count twice.
        insert(index, frames("a.%d.exr", {20}));
        rows(index, FileHandle::AllFiles).back()->setAdditionalInfo(1000, 0, false, false);
        index.apply(records(1, 10, 100));
        QCOMPARE(sequence->size(), 260ULL);
    }

    void recycledEntriesBeginAnew()
    {
        SequenceIndex index;
        insert(index, frames("a.%04d.exr", {1, 2}) + frames("b.%d.exr", {1, 2, 5, 6}));
        index.apply(records(6, 21, 7));
        const std::vector<FileInfo*> before = rows(index, FileHandle::SplitSequences);
        // A renamed file is no member any more, and the first sequence is that of b now.
        for (FileInfo* file : rows(index, FileHandle::AllFiles)) {
            if (*file->fileName() == 'a')
                file->setFileName("plain");
        }
        index.regroup();
        const FileInfo* sequence = rows(index, FileHandle::Sequences).at(0);
        QCOMPARE(sequence, before.at(0));
        QCOMPARE(sequence->displayName(), "b.#.exr 1-6");
        QCOMPARE(sequence->size(), 84ULL);

        // Neither sequences nor runs need new memory.
        for (int i = 0; i < 3000; ++i)
            insert(index, frames("c.%d.exr", {3 * i, 3 * i + 1}));
        rows(index, FileHandle::SplitSequences);
        const std::size_t blocks = index.pool().blockCount();
        index.regroup();
        QCOMPARE(rows(index, FileHandle::SplitSequences).size(), std::size_t(3003));
        QCOMPARE(index.pool().blockCount(), blocks);
    }

    void collapsesAndSplits()
    {
        // The files, the collapsed and the split entries.
        const std::tuple<QStringList, QStringList, QStringList> rows[] = {
            {{"x.01.exr", "x.02.exr", "x.05.exr", "x.08.exr", "x.09.exr"},
             {"*x.##.exr 1-9 ( 1-2  5-5  8-9 )"},
             {"*x.##.exr 1-2", "x.05.exr", "*x.##.exr 8-9"}},
            {{"a1b", "a2a"}, {"a2a", "a1b"}, {"a2a", "a1b"}},
            {{"x.1.exr", "x.2.exr", "x.4.exr"}, {"*x.#.exr 1-4 ( 1-2 )"}, {"*x.#.exr 1-2"}},
            {{"x.000.exr", "x.003.exr", "x.005.exr"}, {"*x.###.exr 0-5 ( 0-3 )"}, {"*x.###.exr 0-3"}},
            {{"x.1.exr", "x.3.exr", "x.7.exr", "x.9.exr"},
             {"*x.#.exr 1-9,2 ( 1-3  7-9 )"},
             {"*x.#.exr 1-3", "*x.#.exr 7-9"}},
            {{"x.01.exr", "x.02.exr", "x.002.exr"},
             {"*x.##.exr 1-2", "x.002.exr"},
             {"*x.##.exr 1-2", "x.002.exr"}},
            {{"x\u0661.exr", "x\u0662.exr"}, {"x\u0661.exr", "x\u0662.exr"}, {"x\u0661.exr", "x\u0662.exr"}}};
        for (const auto& [names, collapsed, split] : rows) {
            const QTemporaryDir folder;
            for (const QString& name : names)
                QVERIFY(SampleFiles::make(folder.path(), name.toUtf8()));
            FileInfoList list;
            list.setSequencesEnabled(true);
            QCOMPARE(list.fill(folder.path()), names.size() + 2);
            QCOMPARE(texts(list), collapsed);
            list.setSplitSequences(true);
            list.fill(folder.path());
            QCOMPARE(texts(list), split);
            QVERIFY(list.fill(folder.filePath("missing")) < 0);
            QCOMPARE(errno, ENOENT);
            QVERIFY(list.entries().empty());
        }
    }

    // Growing the run anew from each of them would take minutes.
    void keepsManyNumberedDirectoriesSeparate()
    {
        QVERIFY(make({"take02500", "take02501"}));
        QVERIFY(SampleFiles::makeFrames(path(), "take%05d/", 0, 2499));
        FileInfoList list;
        list.setSequencesEnabled(true);
        list.fill(path());
        QCOMPARE(texts(list).indexOf(QString("*take##### 2500-2501")), 2500);
    }

    void walksOncePerListing()
    {
        FileInfoList list;
        QSignalSpy ends(&list, SIGNAL(fileInfoAvailable()));
        // The step of the first walk that is still in the queue belongs to no walk any more.
        list.fill(path());
        list.fill(path());
        QTRY_COMPARE(ends.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(ends.size(), 1);
        // Nor does a walk that nobody could hear of keep the next one waiting.
        list.blockSignals(true);
        list.fill(path());
        list.blockSignals(false);
        list.fill(path());
        QTRY_COMPARE(ends.size(), 2);
    }
};

QTEST_GUILESS_MAIN(SequenceListTest)
#include "SequenceListTest.moc"
