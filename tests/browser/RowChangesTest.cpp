#include "browser/RowChanges.h"
#include "catalogue/FileInfo.h"
#include "support/Test.h"

#include <algorithm>
#include <iterator>

using namespace Halvern::UI;

namespace {

// The names are borrowed.
std::vector<RowKey> files(const std::vector<std::string_view>& names)
{
    std::vector<RowKey> keys;
    std::transform(names.begin(), names.end(), std::back_inserter(keys), [](std::string_view name) {
        return RowKey{RowKey::File, name};
    });
    return keys;
}

RowKey run(const char* name, int first, int last, const char* firstFile = "")
{
    return {RowKey::Sequence, name, first, last, firstFile};
}

} // namespace

/// Which rows of a directory are those of a later state.
class RowChangesTest : public Test
{
    Q_OBJECT

private slots:
    void findsRowsAgain()
    {
        using Keys = std::vector<RowKey>;
        const RowKey folder{RowKey::Folder, "a"};
        FileInfo second("s2", false);
        const std::map<int, FileInfo*> frames = {{1, nullptr}, {2, &second}};
        RowKey sequence{RowKey::Sequence, "s#"};
        sequence.frames = &frames;
        // Rows before, rows after, places.
        const std::tuple<Keys, Keys, std::vector<int>> table[] = {
            {{}, {}, {}},
            {files({"a", "b"}), files({"b", "c"}), {2, 0, 1}},
            {files({"a", "b", "c"}), files({"c", "a", "b"}), {1, 2, 0}},
            {files({"a", "c"}), files({"a", "b", "c"}), {0, 2, 1}},
            {files({"a", "a", "b"}), files({"b", "a", "a"}), {1, 2, 0}},
            {files({"a"}), {folder}, {1, 0}},
            {{RowKey(), folder}, {folder, RowKey()}, {1, 0}},
            // A sequence that grows, one that is split, runs that join, and one that another took the place
            // of.
            {{{RowKey::Sequence, "s"}}, {folder, {RowKey::Sequence, "s"}}, {1, 0}},
            {{run("s", 1, 9)}, {run("s", 1, 3), run("s", 5, 9)}, {0, 1}},
            {{run("s", 1, 3), run("s", 5, 9)}, {run("s", 1, 9)}, {0, 1}},
            {{folder, run("s", 5, 9)}, {run("s", 1, 2), run("s", 4, 9)}, {2, 1, 0}},
            {{run("s", 1, 3), folder}, {folder, run("s", 5, 9)}, {2, 0, 1}},
            // A single frame that others join, and that is left of them.
            {files({"s1", "s2", "t"}), {folder, sequence}, {2, 1, 3, 0}},
            {{sequence}, files({"a", "s2"}), {1, 0}},
            // An evaluator's names may change with each file.
            {{run("2 of f", 1, 2, "f"), run("x", 1, 2, "g")},
             {run("x", 1, 3, "g"), run("3 of f", 1, 3, "f")},
             {1, 0}}};
        for (const auto& [before, after, places] : table)
            QCOMPARE(RowChanges(before, after).places(), places);
    }
};

QTEST_APPLESS_MAIN(RowChangesTest)
#include "RowChangesTest.moc"
