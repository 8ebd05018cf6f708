#include "paths/Filename.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <fcntl.h>
#include <sys/stat.h>

class FilenameTest : public Test
{
    Q_OBJECT

private slots:
    void makesNamesAbsolute()
    {
        // Folder, name, result.
        const char* rows[][3] = {{"/x/y", "/a/./b", "/a/./b"},
                                 {"/x/y/", "", "/x/y/"},
                                 {"/x/y", "./../a/../b", "/x/a/../b"},
                                 {"/x/y", "../../../z", "/../z"},
                                 {"/x/y/", "../z", "/x/y/z"},
                                 {"/x/y", "../..", "/x/.."},
                                 {"/x/y", "~/a", "/x/y/~/a"},
                                 {nullptr, "../a", "/p/a"},
                                 {nullptr, "~", "/h/ann/"},
                                 {nullptr, "~bob/a", "/h/bob/a"},
                                 {nullptr, "~../a", "/a"}};
        qputenv("PWD", "/p/w");
        qputenv("HOME", "/h/ann");
        for (const auto& [folder, from, expected] : rows) {
            char to[256];
            QCOMPARE(filename_absolute(to, sizeof to, from, folder), static_cast<int>(strlen(expected)));
            QCOMPARE(QByteArray(to), QByteArray(expected));
        }

        // A buffer that is too small has the beginning, and nothing is written after it.
        const char* joined[] = {"", "/", "/f", "/x/", "/x/f", "/x/y/", "/x/y/f", "/x/y/fo", "/x/y/foo"};
        for (int size = 0; size < 10; ++size) {
            QByteArray to(16, '#');
            const QByteArray expected = size == 0 ? "" : QByteArray(joined[size - 1]) + '\0';
            QCOMPARE(filename_absolute(to.data(), size, "foo", "/x/y"), qMax(expected.size() - 1, 0));
            QCOMPARE(to.left(expected.size()) + to.mid(size), expected + QByteArray(16 - size, '#'));
        }
        char path[16] = "../ab";
        QCOMPARE(filename_absolute(path, sizeof path, path, "/x/y"), 5);
        QCOMPARE(QByteArray(path), QByteArray("/x/ab"));
    }

    void matches()
    {
        // Pattern, matching names, others. Two blanks have the empty name between them.
        const char* rows[][3] = {{"x?z", "xyz x/z", "xz xyyz x\xc3\xa4z"},
                                 {"*a*?", "ab aab a/b", "a ba b"},
                                 {"[!a-c]x", "dx !x", "ax cx x"},
                                 {"[]^-]", "] ^ -", "a ]] "},
                                 {"[a-c", "a b c", "d [a-c "},
                                 {"[a-\xff]", "a", "b \xff"},
                                 {"{a,{b,c|}d}*e", "ae bde cdxe de", "be bd cd"},
                                 {"{a\\,b,c\\}}d", "a,bd c}d", "ad bd cd"},
                                 {"{a{b,c", "ab ac", "a abc {a"},
                                 {"{[,]}x", ",x ]x", "x [x"},
                                 {"a,{b}\\}c}d", "ad", "a acd ac}d"},
                                 {"\\*\\\\a\\", "*\\a\\", "\\a x\\a\\"}};
        for (const auto& [pattern, matching, others] : rows) {
            for (const bool expected : {true, false}) {
                for (const QByteArray& name : QByteArray(expected ? matching : others).split(' '))
                    QVERIFY2(filename_match(name.data(), pattern) == expected,
                             (pattern + (' ' + name)).data());
            }
        }
        // Unbounded, each would take more than the limit of the test.
        const std::string name(255, 'a');
        for (const char* part : {"*a", "{*a,*a}", "*{[b-z,", "{*,*a}", "*[!b-z]", "{*a,{*a,*a}}", "{", "*{"})
            QVERIFY2(!filename_match(name.c_str(), ('*' + QByteArray(part).repeated(24) + 'b').data()), part);
    }

    void examinesAgainAfterAnotherName()
    {
        const QTemporaryDir folder;
        std::string name = folder.path().toStdString() + "/h\xc3\xb6he";
        for (const int size : {5, 6}) {
            QVERIFY(SampleFiles::make(folder.path(), "h\xc3\xb6he", size));
            QVERIFY(!filename_exists("") && !filename_isdir(nullptr));
            QCOMPARE(filename_size(name.c_str()), std::int64_t(5));
        }
        QVERIFY(filename_isdir("/") && !filename_isdir(name.c_str()));
        QCOMPARE(filename_size(name.c_str()), std::int64_t(6));
        // The access time stands in for a modification at the epoch.
        const timespec times[] = {{3000, 0}, {0, 0}};
        QVERIFY(filename_isdir("/") && ::utimensat(AT_FDCWD, name.c_str(), times, 0) == 0);
        QCOMPARE(filename_mtime(name.c_str()), std::int64_t(3000));
        // The cache has a copy of the name: the caller's buffer may become another name.
        name.back() = 'a';
        QVERIFY(!filename_exists(name.c_str()));
    }
};

QTEST_MAIN(FilenameTest)
#include "FilenameTest.moc"
