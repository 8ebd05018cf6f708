#include "dialog/Filename.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QDir>
#include <QElapsedTimer>
#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A null text removes the variable.
void setVariable(const char* name, const QByteArray& value)
{
    if (value.isNull())
        qunsetenv(name);
    else
        qputenv(name, value);
}

QByteArray absolute(const char* from, const char* cwd)
{
    char to[256];
    const int length = filename_absolute(to, sizeof to, from, cwd);
    return length == static_cast<int>(strlen(to)) ? QByteArray(to) : QByteArray("wrong length");
}

} // namespace

class FilenameTest : public Test
{
    Q_OBJECT

private slots:
    void namesLastComponent()
    {
        const char* path = "/a/b/";
        QCOMPARE(filename_name(path), path + 5);
        path = "abc";
        QCOMPARE(filename_name(path), path);
        QVERIFY(!filename_name(nullptr));
    }

    void absoluteText_data();
    void absoluteText()
    {
        QFETCH(QByteArray, base);
        QFETCH(bool, isHome);
        QFETCH(QByteArray, from);
        const QByteArray before = qgetenv("HOME");
        setVariable("HOME", isHome ? base : QByteArray("/wrong"));
        const QByteArray to = absolute(from.constData(), isHome ? nullptr : base.constData());
        setVariable("HOME", before);
        QTEST(to, "to");
    }

    void absoluteFromWorkingFolder()
    {
        const QByteArray pwd = qgetenv("PWD");
        const QString before = QDir::currentPath();
        QTemporaryDir folder;
        const QByteArray path = QFile::encodeName(QDir(folder.path()).canonicalPath());
        QVERIFY(QDir::setCurrent(folder.path()));
        setVariable("PWD", "/p/w");
        const QByteArray logical = absolute("../a", nullptr);
        setVariable("PWD", {});
        const QByteArray physical = absolute("./a", nullptr);
        QVERIFY(folder.remove());
        const QByteArray gone = absolute("a", nullptr);
        setVariable("PWD", pwd);
        QVERIFY(QDir::setCurrent(before));
        QCOMPARE(logical, QByteArray("/p/a"));
        QCOMPARE(physical, path + "/a");
        QCOMPARE(gone, QByteArray("/a"));
    }

    void absoluteStaysInItsBuffer()
    {
        const char* joined[] = {nullptr, "",      "/",      "/f",      "/x/",
                                "/x/f",  "/x/y/", "/x/y/f", "/x/y/fo", "/x/y/foo"};
        for (int size = -1; size < 10; ++size) {
            char to[16];
            std::fill(std::begin(to), std::end(to), '#');
            QByteArray expected(size < 1 ? "" : joined[size]);
            QCOMPARE(filename_absolute(to, size, "foo", "/x/y"), expected.size());
            expected.append(size < 1 ? "#" : QByteArray(1, '\0'));
            QCOMPARE(QByteArray(to, expected.size()), expected);
            QVERIFY(std::all_of(to + std::max(size, 0), std::end(to), [](char c) { return c == '#'; }));
        }
        char path[16] = "../ab";
        QCOMPARE(filename_absolute(path, sizeof path, path, "/x/y"), 5);
        QCOMPARE(QByteArray(path), QByteArray("/x/ab"));
        QCOMPARE(filename_absolute(path, sizeof path, "../cd", path), 5);
        QCOMPARE(QByteArray(path), QByteArray("/x/cd"));
        QCOMPARE(filename_absolute(path, 4, path, nullptr), 3);
        QCOMPARE(QByteArray(path), QByteArray("/x/"));
    }

    void matches_data();
    void matches()
    {
        QFETCH(QByteArray, pattern);
        QFETCH(QList<QByteArray>, matching);
        QFETCH(QList<QByteArray>, others);
        for (const QByteArray& name : matching)
            QVERIFY2(filename_match(name.constData(), pattern.constData()), name.constData());
        for (const QByteArray& name : others)
            QVERIFY2(!filename_match(name.constData(), pattern.constData()), name.constData());
    }

    void matchesInBoundedTime()
    {
        const QByteArray name(255, 'a');
        const QByteArray patterns[] = {
            QByteArray("*a").repeated(100),
            QByteArray("{*a,*a}").repeated(40),
            QByteArray("{*,{*a,").repeated(20) + QByteArray("}").repeated(40),
            QByteArray("*{,").repeated(100) + QByteArray("}").repeated(100),
            QByteArray("*{[b-z,").repeated(50),
            "{*," + QByteArray("a,").repeated(150) + "}*",
        };
        for (const QByteArray& pattern : patterns) {
            QElapsedTimer timer;
            timer.start();
            QVERIFY2(!filename_match(name.constData(), (pattern + "b").constData()), pattern.constData());
            QVERIFY2(timer.elapsed() < 1000, pattern.constData());
        }
    }

    void examinesFiles()
    {
        QTemporaryDir folder;
        const QByteArray path = QFile::encodeName(folder.path());
        const QByteArray file = path + "/h\xc3\xb6he";
        const QByteArray latin = path + "/latin-\xf6";
        QVERIFY(SampleFiles::make(folder.path(), "h\xc3\xb6he", 13));
        QVERIFY(SampleFiles::make(folder.path(), "latin-\xf6", 14));
        const std::int64_t latinSize = filename_size(latin.constData());
        // The temporary folder can't remove a name that is not UTF-8.
        QCOMPARE(::unlink(latin.constData()), 0);
        QCOMPARE(latinSize, std::int64_t(14));

        QVERIFY(filename_isdir(path.constData()) && filename_exists(path.constData()));
        QVERIFY(!filename_isdir(file.constData()) && filename_exists(file.constData()));
        QCOMPARE(filename_size(file.constData()), std::int64_t(13));
        const QByteArray endless = path + QByteArray("/.").repeated(3000) + "/h\xc3\xb6he";
        for (const char* name : {"/no/such", "", static_cast<const char*>(nullptr), endless.constData()}) {
            QVERIFY(!filename_isdir(name) && !filename_exists(name));
            QVERIFY(filename_size(name) == 0 && filename_mtime(name) == 0);
        }
    }

    void examinesAgainAfterAnotherName()
    {
        QTemporaryDir folder;
        QByteArray name = QFile::encodeName(folder.path()) + "/file";
        QVERIFY(SampleFiles::make(folder.path(), "file", 5));
        QCOMPARE(filename_size(name.constData()), std::int64_t(5));
        QVERIFY(SampleFiles::make(folder.path(), "file", 6));
        QVERIFY(!filename_exists("") && !filename_isdir(nullptr));
        QCOMPARE(filename_size(name.constData()), std::int64_t(5));
        QVERIFY(filename_isdir("/"));
        QCOMPARE(filename_size(name.constData()), std::int64_t(6));

        // The cache has a copy of the name: the caller's buffer may become another name.
        name[name.size() - 1] = 'a';
        QVERIFY(!filename_exists(name.constData()));
    }

    void takesAnotherTimeForTheEpoch()
    {
        QTemporaryDir folder;
        const QByteArray name = QFile::encodeName(folder.path()) + "/file";
        QVERIFY(SampleFiles::make(folder.path(), "file"));
        const auto mtime = [&name](time_t access, time_t modification) {
            const timespec times[] = {{access, 0}, {modification, 0}};
            const bool set = ::utimensat(AT_FDCWD, name.constData(), times, 0) == 0;
            return set && filename_exists("/") ? filename_mtime(name.constData()) : -1;
        };
        QCOMPARE(mtime(3000, 2000), std::int64_t(2000));
        QCOMPARE(mtime(3000, 0), std::int64_t(3000));
        QVERIFY(std::abs(mtime(0, 0) - QDateTime::currentSecsSinceEpoch()) < 60);
    }
};

void FilenameTest::absoluteText_data()
{
    QTest::addColumn<QByteArray>("base");
    QTest::addColumn<bool>("isHome");
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    const auto row = [](const char* base, bool isHome, const char* from, const char* to) {
        QTest::addRow("%s in %s %s", from, isHome ? "home" : "folder", base ? base : "unset")
            << QByteArray(base) << isHome << QByteArray(from) << QByteArray(to);
    };
    row("/x/y", false, "a/b", "/x/y/a/b");
    row("/x/y", false, "/a/./b", "/a/./b");
    row("/x/y/", false, "", "/x/y/");
    row("", false, "a", "/a");
    row("/x/y", false, "././../a/../b", "/x/a/../b");
    row("/x/y", false, "../../z", "/z");
    row("/x/y", false, "../../../z", "/../z");
    row("/x/y", false, "../../.././z", "/.././z");
    row("/x/y/", false, "../z", "/x/y/z");
    row("x", false, "../z", "/z");
    row("/x/y", false, "../..", "/x/..");
    row("/x/y", false, ".a", "/x/y/.a");
    row("/x/y", false, "~/a", "/x/y/~/a");
    row("/h/ann", true, "~/a", "/h/ann/a");
    row("/h/ann", true, "~", "/h/ann/");
    row("/h/ann/", true, "~", "/h/ann/");
    row("/h/ann", true, "~/../a", "/h/a");
    row("/h/ann", true, "~bob/a", "/h/bob/a");
    row("/h/ann", true, "~../a", "/a");
    row("/", true, "~bob", "/bob");
    row("", true, "~/a", "/~/a");
    row(nullptr, true, "~/a", "~/a");
}

void FilenameTest::matches_data()
{
    QTest::addColumn<QByteArray>("pattern");
    QTest::addColumn<QList<QByteArray>>("matching");
    QTest::addColumn<QList<QByteArray>>("others");
    // Names are separated by blanks; two blanks have the empty name between them.
    const auto row = [](const char* pattern, const char* matching, const char* others) {
        const auto names = [](const char* text) {
            return text ? QByteArray(text).split(' ') : QList<QByteArray>();
        };
        QTest::newRow(pattern) << QByteArray(pattern) << names(matching) << names(others);
    };
    row("", "", "a");
    row("abc", "abc", " ab abcd Abc");
    row("x?z", "xyz x/z", "xz xyyz x\xc3\xa4z");
    row("**", " a .a a/b", nullptr);
    row("*a*b", "ab aab acb xaxbb", "a b ba abx");
    row("a*?", "ab abc", "a b");
    row("[!a-c]x", "dx !x", "ax cx x");
    row("[^a-c]x", "dx ^x", "ax cx x");
    row("[]]", "]", "a ]] ");
    row("[!]]", "a [", "] ");
    row("[a-]", "a -", "b ]");
    row("[-a]", "- a", "b");
    row("[c-a]", "c", "a b ");
    row("[a-c", "a b c", "d [a-c ");
    row("x[", nullptr, "x x[ xa");
    row("[\\]", "\\", "] a");
    row("[\x80-\x7f]", "a \xff", "");
    row("[a-\xff]", "a", "b \xff");
    row("*.{cxx,h}", "a.cxx a.h .h", "a.c a.cxx,h a.");
    row("{a,{b,c|}d}e", "ae bde cde de", "be abde e");
    row("{a*,*b}c", "ac axc bc xbc", "ab c");
    row("{a\\,b,c\\}}d", "a,bd c}d", "ad bd cd");
    row("{a{b,c", "ab ac", "a abc {a");
    row("{[,]}x", ",x ]x", "x [x");
    row("{}", "", "{}");
    row("a,b", "a", "b a,b ab");
    row("|b", "", "b |b");
    row("a,{b}\\}c}d", "ad", "a acd ac}d");
    row("a}b", "ab", "a}b a");
    row("\\*\\{a\\,b", "*{a,b", "{a *{a");
    row("\\\\a\\", "\\a\\", "\\a \\\\a\\");
}

QTEST_MAIN(FilenameTest)
#include "FilenameTest.moc"
