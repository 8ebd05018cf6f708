#include "catalogue/FileInfoList.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <cerrno>

using namespace Halvern::UI;

namespace {

// The entries as texts; those of sequences are marked.
QStringList texts(const FileInfoList& list)
{
    QStringList texts;
    for (const FileInfo& entry : list.entries())
        texts += (entry.isSequence() ? QString("*") : QString()) + QString::fromUtf8(entry.fileName());
    return texts.mid(2);
}

} // namespace

class FileInfoListTest : public Test
{
    Q_OBJECT

private slots:
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
        const int count = 2500;
        const QTemporaryDir folder;
        for (int i = 0; i < count; ++i)
            QVERIFY(QDir(folder.path()).mkdir(QString::asprintf("take%05d", i)));
        QVERIFY(SampleFiles::make(folder.path(), {"take02500", "take02501"}));
        FileInfoList list;
        list.setSequencesEnabled(true);
        QElapsedTimer timer;
        timer.start();
        list.fill(folder.path());
        QVERIFY(timer.elapsed() < 2000);
        QCOMPARE(texts(list).indexOf(QString("*take##### 2500-2501")), count);
    }

    void walksOncePerListing()
    {
        const QTemporaryDir folder;
        FileInfoList list;
        QSignalSpy ends(&list, SIGNAL(fileInfoAvailable()));
        list.fill(folder.path());
        QCoreApplication::sendPostedEvents();
        QCOMPARE(ends.size(), 0);
        // The step of the first walk that is still in the queue belongs to no walk any more.
        list.fill(folder.path());
        QTRY_COMPARE(ends.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(ends.size(), 1);
        // Nor does a walk that nobody could hear of keep the next one waiting.
        {
            const QSignalBlocker blocker(&list);
            list.fill(folder.path());
        }
        list.fill(folder.path());
        QTRY_COMPARE(ends.size(), 2);
    }
};

QTEST_GUILESS_MAIN(FileInfoListTest)
#include "FileInfoListTest.moc"
