#include "catalogue/SequenceIndex.h"
#include "support/Test.h"

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

} // namespace

/// How a list of names becomes rows.
class SequenceListTest : public Test
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Test::initTestCase();
        FileInfo::addSequenceFileExtension("exr");
    }

    void buildsRows()
    {
        // The ordinary rows of each list type are in docs/sequences.md, which the documents' test checks.
        const std::tuple<QStringList, FileHandle::ListType, QStringList> table[] = {
            {frames("s.%04d.exr", {1, 2, 5, 8, 9}),
             FileHandle::SplitSequences,
             {"s.####.exr 1-2", "s.0005.exr", "s.####.exr 8-9"}},
            {{"a.1.exr"}, FileHandle::Sequences, {"a.1.exr"}},
            {{"a.1.exr", "A.2.exr"}, FileHandle::RegisteredSequences, {"A.2.exr", "a.1.exr"}},
            {{"a.#.exr", "a.1.exr", "a.2.exr"}, FileHandle::RegisteredSequences, {"a.#.exr"}}};
        for (const auto& [given, type, expected] : table) {
            SequenceIndex index;
            insert(index, given);
            QCOMPARE(names(index, type), expected);
            QCOMPARE(names(index, type), expected);
        }
    }

    // The second file of a frame has a row unless its kind is registered.
    void listsSecondFilesOfAFrame()
    {
        using Lists = QVector<QStringList>; // from Sequences on
        const QStringList given{"b.1.txt", "b.01.txt", "b.2.txt", "b.9.txt", "b.09.txt", "b.009.txt", "z"};
        const QStringList all{"b.1.txt", "b.01.txt", "b.2.txt", "b.9.txt", "b.09.txt", "b.009.txt", "z"};
        const Lists expected{{"b.###.txt 1-9", "b.01.txt", "b.09.txt", "b.009.txt", "z"},
                             {"b.###.txt 1-2", "b.9.txt", "b.01.txt", "b.09.txt", "b.009.txt", "z"},
                             all,
                             all};
        const Lists registered{{"b.###.exr 1-9", "z"}, {"b.###.exr 1-2", "b.9.exr", "z"}};
        for (const int type : {FileHandle::Sequences, FileHandle::SplitSequences,
                               FileHandle::RegisteredSequences, FileHandle::RegisteredSplitSequences}) {
            SequenceIndex index;
            insert(index, given);
            QCOMPARE(names(index, FileHandle::ListType(type)), expected.at(type - 1));
            SequenceIndex pictures;
            insert(pictures, QStringList(given).replaceInStrings(".txt", ".exr"));
            QCOMPARE(names(pictures, FileHandle::ListType(type)), registered.at((type - 1) % 2));
        }
    }

    void addsMembersInParts()
    {
        SequenceIndex index;
        QVector<int> numbers;
        for (int i = 0; i < 3000; ++i)
            numbers.append(i * 7 % 3000);
        insert(index, frames("a.%d.exr", numbers) + frames("b.%d.exr", numbers));
        int parts = 1;
        while (!index.settle(1000))
            ++parts;
        QCOMPARE(parts, 6);
        QCOMPARE(names(index, FileHandle::Sequences), (QStringList{"a.#.exr 0-2999", "b.#.exr 0-2999"}));
    }

    void regroupingTakesTheFirstWidth()
    {
        SequenceIndex index;
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
        for (int i = 0; i < 3; ++i) {
            index.regroup();
            QCOMPARE(rows(index, FileHandle::SplitSequences).size(), std::size_t(3003));
        }
        QCOMPARE(index.pool().blockCount(), blocks);
    }

    void listsMayBeBuiltBetweenBatches()
    {
        SequenceIndex index;
        const std::pair<QVector<int>, QStringList> batches[] = {
            {{1, 2, 5}, {"a.#.exr 1-2", "a.5.exr"}}, {{6, 100}, {"a.#.exr 1-2", "a.#.exr 5-6", "a.100.exr"}}};
        for (const auto& [numbers, expected] : batches) {
            insert(index, frames("a.%d.exr", numbers));
            QCOMPARE(names(index, FileHandle::RegisteredSplitSequences), expected);
        }
    }

    void forgetsEverything()
    {
        SequenceIndex index;
        for (int round = 0; round < 3; ++round) {
            insert(index, frames("a.%d.exr", {1, 2}) + QStringList("b"));
            index.apply(records(2, 5, 5));
            QCOMPARE(names(index, FileHandle::Sequences), (QStringList{"a.#.exr 1-2", "b"}));
            QCOMPARE(rows(index, FileHandle::Sequences).at(0)->size(), 10ULL);
            index.clear();
            QVERIFY(rows(index, FileHandle::Sequences).empty() && index.size() == 0 &&
                    index.knownCount() == 0);
        }
    }
};

QTEST_APPLESS_MAIN(SequenceListTest)
#include "SequenceListTest.moc"
