#include "catalogue/FileInfo.h"
#include "catalogue/EntryPool.h"
#include "support/Test.h"

#include <QFile>
#include <cstring>

using namespace Halvern::UI;

namespace {

// A sequence with members at the given frames, which the pool owns.
FileInfo* makeSequence(EntryPool& pool, const char* pattern, const QVector<int>& frames)
{
    FileInfo* sequence = pool.create();
    sequence->setBasicInformation(pattern, true);
    for (int frame : frames) {
        FileInfo* member = pool.create();
        member->setAdditionalInfo({10, false, 1000LL + frame});
        sequence->insertSequenceFile(frame, member);
    }
    return sequence;
}

} // namespace

class FileInfoTest : public Test
{
    Q_OBJECT

private slots:
    void namesSequences()
    {
        EntryPool pool;
        FileInfo* sequence = makeSequence(pool, "x.#.exr", {0, 1, 4, 6, 7});
        sequence->setFrameInformation(0, 0, 4);
        sequence->constructSequenceName();
        sequence->insertSequenceFile(2147483647, nullptr);
        sequence->invalidateSequenceName();
        sequence->constructSequenceName();
        QCOMPARE(sequence->sequenceName(), "x.####.exr 0-2147483647");

        // Names that are too long are cut.
        FileInfo wide(QByteArray(3000, 'n').append(".#").constData(), true);
        QCOMPARE(wide.getFilenameLength(), std::size_t(1023));
        wide.setFileName("x.#");
        wide.setFrameInformation(1, 2, 5000);
        wide.constructSequenceName();
        QCOMPARE(std::strlen(wide.sequenceName()), std::size_t(1023));
    }

    void recyclesEntries()
    {
        EntryPool pool;
        FileInfo* entry = makeSequence(pool, "x.#.exr", {1, 3});
        entry->setParentSequence(entry);
        entry->constructSequenceName();
        entry->setBasicInformation("b.#.exr", true);
        QCOMPARE(entry->flags(), unsigned(FileInfo::Sequence));
        QVERIFY(entry->sequenceFiles().empty() && entry->frameRanges().empty() && !entry->parentSequence());
        // A block is prepared only if it would be filled.
        constexpr std::size_t Wanted = 2 * EntryPool::BlockSize;
        QVERIFY(!pool.prepare(Wanted - 1) && pool.prepare(Wanted) && !pool.prepare(Wanted));
        pool.clear();
        for (std::size_t i = 0; i < Wanted; ++i)
            QCOMPARE(pool.create()->sequenceFileCount(), 0);
        QCOMPARE(pool.blockCount(), std::size_t(2));
    }

    // Most of the pages of a large directory are given back when a small one has been read.
    void poolsGivePagesBack()
    {
        const auto resident = [] {
            QFile file(QString("/proc/self/statm"));
            return file.open(QFile::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() * 4096 : 0;
        };
        constexpr std::size_t Blocks = 20;
        constexpr long long BlockBytes = EntryPool::BlockSize * sizeof(FileInfo);
        EntryPool pool;
        for (std::size_t i = 0; i < Blocks * EntryPool::BlockSize; ++i)
            pool.create()->insertSequenceFile(1, nullptr);
        QVERIFY(pool.blockCount() == Blocks && !pool.trimming());
        pool.clear();
        pool.create();
        const long long before = resident();
        pool.trimming()();
        QVERIFY(before - resident() > 14 * BlockBytes && !pool.trimming());
    }

    void detectsRegisteredSequences()
    {
        FileInfo::addSequenceFileExtension(".Known");
        QVERIFY(FileInfo::isSequenceExtension("KNOWN") && !FileInfo::isSequenceExtension("..known"));
        const std::tuple<const char*, QVector<int>, bool> rows[] = {
            {"x.#.known", {1, 2}, true}, {"x#", {1, 2}, false}, {".known", {1, 2}, false}};
        for (const auto& [pattern, frames, expected] : rows) {
            EntryPool pool;
            FileInfo* sequence = makeSequence(pool, pattern, frames);
            sequence->detectAutoSequence();
            QCOMPARE(sequence->isAutoSequence(), expected);
        }
    }
};

QTEST_GUILESS_MAIN(FileInfoTest)
#include "FileInfoTest.moc"
