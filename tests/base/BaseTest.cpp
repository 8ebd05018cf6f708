#include "base/FileSystem.h"
#include "base/Text.h"
#include "paths/Path.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <climits>

using namespace Halvern;

/// The small helpers.
class BaseTest : public Test
{
    Q_OBJECT

private slots:
    void refusesWhatIsNoNumber()
    {
        QVERIFY(Base::toNumber("-9223372036854775808") == LLONG_MIN);
        for (const char* text : {"", "-", "+1", " 1", "1x", "9223372036854775808"})
            QVERIFY2(!Base::toNumber(text), text);
    }

    void normalisesPaths()
    {
        const std::pair<const char*, const char*> rows[] = {{"", ""},          {"//a/./b//", "/a/b"},
                                                            {"/a/../..", "/"}, {"a/../../b", "../b"},
                                                            {"a/..", "."},     {"...", "..."}};
        for (const auto& row : rows)
            QCOMPARE(Base::normalisedPath(row.first), std::string(row.second));
    }

    void changesTheFileSystem()
    {
        const SampleFolder folder{"other"};
        const std::string root = folder.path().toStdString();
        QVERIFY(Base::makeDirectories(root + "/a/b/c") && Base::makeDirectories(root + "/a/b"));
        QVERIFY(SampleFiles::make(folder.path(), "a/file", 7) && !Base::makeDirectories(root + "/a/file/d"));
        // A link is not followed, neither in walking nor in removing.
        QVERIFY(QFile::link(folder.path(), folder.filePath(QStringLiteral("a/b/up"))));
        int visits = 0;
        QVERIFY(Base::walk(root + "/a", [&](const std::string&) { ++visits; }) && visits == 4);
        QVERIFY(Base::renameFile(root + "/a/file", root + "/other"));
        QVERIFY(Base::removeAll(root + "/a") && Base::removeAll(root + "/a"));
        QCOMPARE(Base::fileStatus((root + "/other").c_str())->st_size, off_t(7));
    }
};

QTEST_GUILESS_MAIN(BaseTest)
#include "BaseTest.moc"
