#include "catalogue/FileManager.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "support/Test.h"

using namespace Halvern::UI;
using Halvern::Base::FileHandle;

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

class PassThrough : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override { return files; }
};

} // namespace

/// How a list of names becomes rows; no disk is involved.
class SequenceListTest : public Test
{
    Q_OBJECT

private slots:
    void buildsRows()
    {
        // The ordinary rows of each list type are in docs/sequences.md, which the documents' test checks.
        const std::tuple<QStringList, int, QStringList> table[] = {
            {frames("s.%04d.exr", {1, 2, 5, 8, 9}), 2, {"s.####.exr 1-2", "s.0005.exr", "s.####.exr 8-9"}},
            {{"a.1.exr", "A.2.exr"}, 3, {"A.2.exr", "a.1.exr"}},
            {{"a.1.exr", "a.01.exr"}, 3, {"a.##.exr 1-1"}},
            {{"a.#.exr", "a.1.exr", "a.2.exr"}, 3, {"a.#.exr"}}};
        for (const auto& [given, type, expected] : table) {
            FileManager manager;
            insert(manager, given);
            QCOMPARE(names(manager, type), expected);
            QCOMPARE(names(manager, type), expected);
        }
    }

    void reevaluationTakesTheFirstWidth()
    {
        FileManager manager;
        insert(manager,
               frames("a.%03d.exr", {9, 10}) + QStringList("a.0011.exr") + frames("b.%d.exr", {1, 2}));
        QCOMPARE(names(manager, 1), (QStringList{"a.####.exr 9-11", "b.#.exr 1-2"}));
        manager.reevaluateSequences();
        QCOMPARE(names(manager, 1), (QStringList{"a.###.exr 9-11", "b.#.exr 1-2"}));
    }

    void summariesFollowAttributes()
    {
        FileManager manager;
        insert(manager, frames("a.%d.exr", {1, 2, 3, 6, 7}));
        const FileInfo* sequence = rows(manager, 3).at(0);
        const std::vector<FileInfo*> runs = rows(manager, 4);

        // The second batch has more records than there are files left.
        const std::vector<FileInfoWrapper> first(3, {10, false, 100});
        const std::vector<FileInfoWrapper> second(9, {100, false, 50});
        manager.updateInfo(&first, true);
        QCOMPARE(runs.at(1)->size(), 0ULL);
        manager.updateInfo(&second, true);
        QCOMPARE(sequence->size(), 230ULL);
        QCOMPARE(sequence->modificationTime(), 100LL);
        QCOMPARE(runs.at(1)->size(), 200ULL);

        // Files that come later, to a sequence that is known and to a file that was alone.
        insert(manager, frames("a.%d.exr", {9, 4}) + frames("b.%d.exr", {1}));
        manager.updateInfo(&first, true);
        insert(manager, frames("b.%d.exr", {2}));
        manager.updateInfo(&first, true);
        QCOMPARE(sequence->size(), 250ULL);
        QCOMPARE(rows(manager, 3).at(1)->size(), 20ULL);
    }

    void listsMayBeBuiltBetweenBatches()
    {
        FileManager manager;
        insert(manager, frames("a.%d.exr", {1, 2, 5}));
        QCOMPARE(names(manager, 4), (QStringList{"a.#.exr 1-2", "a.5.exr"}));
        insert(manager, frames("a.%d.exr", {6, 100}));
        QCOMPARE(names(manager, 4), (QStringList{"a.#.exr 1-2", "a.#.exr 5-6", "a.100.exr"}));
    }

    void evaluatorBuildsSequencesAndOutlivesItsManager()
    {
        PassThrough evaluator;
        {
            FileManager manager;
            insert(manager, frames("a.%d.exr", {1, 2, 3}));
            evaluator.setManager(&manager);
            const auto files = rows(manager, 0);
            // Neither a frame without a file nor a null file does harm.
            FileInfo* built = evaluator.buildFileSequence("shot A", {1, 2, 3, 4}, files);
            FileInfo* withNull = evaluator.buildFileSequence("gap", {1, 2}, {files[0], nullptr});
            const std::vector<FileInfoWrapper> records(3, {7, false, 70});
            manager.updateInfo(&records, true);
            QCOMPARE(built->size(), 21ULL);
            QCOMPARE(withNull->size(), 7ULL);
        }
        FileInfo file("a.1.exr", false);
        file.setAdditionalInfo({5, false, 6});
        QCOMPARE(PassThrough(evaluator).buildFileSequence("s", {1}, {&file})->size(), 5ULL);
    }
};

QTEST_GUILESS_MAIN(SequenceListTest)
#include "SequenceListTest.moc"
