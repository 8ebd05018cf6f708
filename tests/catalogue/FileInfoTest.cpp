#include "catalogue/FileInfo.h"
#include "catalogue/EntryPool.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QFileInfo>
#include <clocale>
#include <cstring>

using namespace Halvern::UI;

class FileInfoTest : public Test
{
    Q_OBJECT

private slots:
    void namesSequences_data();
    void namesSequences();
    void namesSingleMembersAndExplicitRanges();
    void settlesTheWidth_data();
    void settlesTheWidth();
    void keepsTheFirstMemberOfAFrame();
    void sumsMembers();
    void sumsSplitRuns();
    void recyclesEntries();
    void makesSortKeys();
    void truncatesNames();
    void hashesExtensions();
    void detectsRegisteredSequences();
    void asksTheDiskForDirectories();
    void poolReusesItsBlocks();
};

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

QVector<int> range(int first, int last)
{
    QVector<int> frames;
    for (int frame = first; frame <= last; ++frame)
        frames.append(frame);
    return frames;
}

} // namespace

void FileInfoTest::namesSequences_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QVector<int>>("frames");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("longName");

    QTest::newRow("gap in a padded sequence")
        << "plate.#.dpx" << range(1, 49) + range(61, 100) << 4 << "plate.####.dpx 1-100"
        << "plate.####.dpx 1-100 ( 1-49 61-100 )";
    QTest::newRow("lone last frame") << "x.#.exr" << QVector<int>{1, 2, 4} << 1 << "x.#.exr 1-4"
                                     << "x.#.exr 1-4 ( 1-2 4 )";
    QTest::newRow("lone frame between runs")
        << "x.#.exr" << QVector<int>{1, 2, 7, 9, 10} << 1 << "x.#.exr 1-10"
        << "x.#.exr 1-10 ( 1-2 7 9-10 )";
    QTest::newRow("contiguous") << "#" << range(8, 11) << 2 << "## 8-11"
                                << "## 8-11";
    QTest::newRow("ends of the range") << "x.#" << QVector<int>{0, 2147483647} << 1 << "x.# 0-2147483647"
                                       << "x.# 0-2147483647 ( 0 2147483647 )";
}

void FileInfoTest::namesSequences()
{
    QFETCH(QString, pattern);
    QFETCH(QVector<int>, frames);
    QFETCH(int, width);
    EntryPool pool;
    FileInfo* sequence = makeSequence(pool, pattern.toUtf8().constData(), frames);
    sequence->setFrameInformation(0, 0, width);
    sequence->constructSequenceName();
    QTEST(QString::fromUtf8(sequence->sequenceName()), "name");
    QTEST(sequence->getSequenceLongName(), "longName");
    QCOMPARE(sequence->hasGaps(), !sequence->frameRanges().empty());

    // Built once; a sequence that gained a member is built again when it is told so.
    sequence->insertSequenceFile(2147483647, nullptr);
    sequence->constructSequenceName();
    QTEST(QString::fromUtf8(sequence->sequenceName()), "name");
    sequence->invalidateSequenceName();
    sequence->constructSequenceName();
    QVERIFY(QByteArray(sequence->sequenceName()).endsWith("-2147483647"));
}

void FileInfoTest::namesSingleMembersAndExplicitRanges()
{
    EntryPool pool;
    FileInfo* single = makeSequence(pool, "x.#.exr", {5});
    single->constructSequenceName();
    QCOMPARE(single->sequenceName(), "x.#.exr");

    FileInfo* run = pool.create();
    run->setBasicInformation("x.#.exr", true);
    run->setFrameInformation(3, 9, 2);
    run->constructSequenceName();
    QCOMPARE(run->sequenceName(), "x.##.exr 3-9");

    FileInfo plain("x.#.exr", false);
    plain.constructSequenceName();
    QCOMPARE(plain.sequenceName(), "");
    QCOMPARE(plain.displayName(), "x.#.exr");

    FileInfo withoutPlaceholder("name", true);
    withoutPlaceholder.constructSequenceName();
    QCOMPARE(withoutPlaceholder.displayName(), "name 0-0");
}

void FileInfoTest::settlesTheWidth_data()
{
    QTest::addColumn<QStringList>("numbers");
    QTest::addColumn<bool>("assumePadding");
    QTest::addColumn<int>("hashes");

    QTest::newRow("padded, then wider") << QStringList{"0009", "0010", "11"} << false << 4;
    QTest::newRow("padded later") << QStringList{"10", "11", "009"} << false << 3;
    QTest::newRow("one width") << QStringList{"10", "11"} << false << 1;
    QTest::newRow("one width, assumed") << QStringList{"10", "11"} << true << 2;
    QTest::newRow("two widths, assumed") << QStringList{"99", "100"} << true << 1;
    QTest::newRow("widths that meet 1 again") << QStringList{"10", "100", "5", "11"} << true << 1;
}

void FileInfoTest::settlesTheWidth()
{
    QFETCH(QStringList, numbers);
    QFETCH(bool, assumePadding);
    FileInfo sequence("x.#.exr", true);
    for (const QString& number : numbers)
        sequence.setNumberOfHashes(number.size(), number.startsWith(QLatin1Char('0')), assumePadding);
    QTEST(sequence.numberOfHashes(), "hashes");
}

void FileInfoTest::keepsTheFirstMemberOfAFrame()
{
    FileInfo first("a.5.exr", false);
    FileInfo second("a.05.exr", false);
    FileInfo sequence("a.#.exr", true);
    sequence.insertSequenceFile(5, &first);
    sequence.insertSequenceFile(5, &second);
    QCOMPARE(sequence.sequenceFileCount(), 2);
    QCOMPARE(sequence.sequenceFiles().at(5), &first);
}

void FileInfoTest::sumsMembers()
{
    EntryPool pool;
    FileInfo* sequence = makeSequence(pool, "x.#.exr", {1, 2, 3});
    sequence->insertSequenceFile(9, nullptr);
    sequence->setAdditionalInfo({77, false, 77});
    sequence->synchSequenceData();
    QCOMPARE(sequence->size(), 30ULL);
    QCOMPARE(sequence->modificationTime(), 1003LL);

    FileInfo* single = makeSequence(pool, "y.#.exr", {1});
    single->setAdditionalInfo({77, false, 78});
    single->synchSequenceData();
    QCOMPARE(single->size(), 77ULL);
    QCOMPARE(single->modificationTime(), 78LL);
}

void FileInfoTest::sumsSplitRuns()
{
    EntryPool pool;
    FileInfo* parent = makeSequence(pool, "x.#.exr", {1, 2, 3, 7, 8});
    FileInfo run("x.#.exr", true);
    run.setParentSequence(parent);
    run.setFrameInformation(2, 7, 1);
    run.setAdditionalInfo({5, false, 0});
    run.synchSequenceData();
    QCOMPARE(run.size(), 35ULL);
    QCOMPARE(run.modificationTime(), 1007LL);
    run.setFrameInformation(3, 3, 1);
    run.synchSequenceData();
    QCOMPARE(run.size(), 35ULL);
}

void FileInfoTest::recyclesEntries()
{
    EntryPool pool;
    FileInfo* entry = makeSequence(pool, "x.#.exr", {1, 3});
    entry->setFrameInformation(4, 5, 6);
    entry->setParentSequence(entry);
    entry->setAdditionalInfo(12, 34, true, true);
    entry->constructSequenceName();
    entry->detectAutoSequence();
    entry->setBasicInformation("b.#.exr", true);
    QCOMPARE(entry->flags(), unsigned(FileInfo::Sequence));
    QVERIFY(entry->sequenceFiles().empty());
    QVERIFY(entry->frameRanges().empty());
    QCOMPARE(entry->sequenceFileCount() + entry->startFrame() + entry->endFrame(), 0);
    QCOMPARE(entry->parentSequence(), nullptr);
    QCOMPARE(entry->numberOfHashes(), 6);
    QCOMPARE(entry->size(), 12ULL);
    QCOMPARE(entry->modificationTime(), 34LL);
}

void FileInfoTest::makesSortKeys()
{
    const FileInfo lower("alpha.exr", false);
    const FileInfo upper("ALPHA.exr", false);
    QCOMPARE(lower.getStringSortName(), upper.getStringSortName());
    QVERIFY(std::strcmp(lower.getStringSortName(), FileInfo("beta", false).getStringSortName()) < 0);

    FileInfo longName(QByteArray(200, 'a').constData(), false);
    QCOMPARE(longName.getStringSortName(), "");
    QCOMPARE(longName.getFilenameLength(), std::size_t(200));
    FileInfo renamed("alpha.exr", false);
    renamed.setFileName(QByteArray(128, 'z').constData());
    QCOMPARE(renamed.getStringSortName(), lower.getStringSortName());

    // Keys are longer than names in most locales, whichever of them the system has.
    for (const char* locale : {"C.UTF-8", "en_US.UTF-8", "C"}) {
        if (!std::setlocale(LC_COLLATE, locale))
            continue;
        const FileInfo widest(QByteArray(127, 'w').constData(), false);
        QVERIFY(std::strlen(widest.getStringSortName()) <= 127);
        QVERIFY(std::strlen(widest.getStringSortName()) > 0);
    }
}

void FileInfoTest::truncatesNames()
{
    const QByteArray name(3000, 'n');
    FileInfo info(name.constData(), false);
    QCOMPARE(info.getFilenameLength(), std::size_t(1023));
    info.setSequenceName(name.constData());
    QCOMPARE(std::strlen(info.sequenceName()), std::size_t(1023));
    FileInfo wide("x.#", true);
    wide.setFrameInformation(1, 2, 5000);
    wide.constructSequenceName();
    QCOMPARE(std::strlen(wide.sequenceName()), std::size_t(1023));
}

void FileInfoTest::hashesExtensions()
{
    QVERIFY(!FileInfo::isSequenceExtension("oddkind"));
    FileInfo::addSequenceFileExtension(".OddKind");
    for (const char* spelling : {"oddkind", ".oddkind", "ODDKIND"})
        QVERIFY(FileInfo::isSequenceExtension(spelling));
    QVERIFY(!FileInfo::isSequenceExtension("..oddkind"));
    for (const char* nothing : {static_cast<const char*>(nullptr), "", "."})
        QVERIFY(!FileInfo::isSequenceExtension(nothing));
}

void FileInfoTest::detectsRegisteredSequences()
{
    FileInfo::addSequenceFileExtension("known");
    const auto detected = [](const char* pattern, const QVector<int>& frames) {
        EntryPool pool;
        FileInfo* sequence = makeSequence(pool, pattern, frames);
        sequence->detectAutoSequence();
        return sequence->isAutoSequenceChecked() && sequence->isAutoSequence();
    };
    QVERIFY(detected("x.#.known", {1, 2}));
    QVERIFY(!detected("x.#.known", {1}));
    QVERIFY(!detected("x.#.other", {1, 2}));
    QVERIFY(!detected("x#", {1, 2}));
    QVERIFY(!detected(".known", {1, 2}));
}

void FileInfoTest::asksTheDiskForDirectories()
{
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    QVERIFY(dir.mkdir(QStringLiteral("sub")));
    QVERIFY(dir.mkdir(QString::fromUtf8("\xc3\xa9t\xc3\xa9")));
    QVERIFY(SampleFiles::make(folder.path(), {"file"}));
    QVERIFY(FileInfo("sub", false).isDirSafe(dir));
    QVERIFY(FileInfo("\xc3\xa9t\xc3\xa9", false).isDirSafe(dir));
    QVERIFY(!FileInfo("file", false).isDirSafe(dir));
    QVERIFY(!FileInfo("missing", false).isDirSafe(dir));
    QVERIFY(!FileInfo("sub", true).isDirSafe(dir));

    const FileInfo probed(QFileInfo(dir, QStringLiteral("sub")));
    QVERIFY(probed.isDirectory() && probed.isInfoValid() && probed.isWritable());
    QVERIFY(probed.modificationTime() > 0);
}

void FileInfoTest::poolReusesItsBlocks()
{
    EntryPool pool;
    for (int round = 0; round < 3; ++round) {
        for (std::size_t i = 0; i < EntryPool::BlockSize + 1; ++i)
            pool.create()->insertSequenceFile(1, nullptr);
        QCOMPARE(pool.blockCount(), std::size_t(2));
        pool.clear();
    }
    QCOMPARE(pool.create()->sequenceFileCount(), 0);
}

QTEST_GUILESS_MAIN(FileInfoTest)
#include "FileInfoTest.moc"
