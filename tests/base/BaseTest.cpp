#include "base/FileSystem.h"
#include "base/Locale.h"
#include "base/Path.h"
#include "base/Text.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <climits>

using namespace Halvern;

/// The small helpers.
class BaseTest : public Test
{
    Q_OBJECT

private slots:
    void handlesText();
    void normalisesPaths();
    void knowsUtf8Locales_data();
    void knowsUtf8Locales();
    void changesTheFileSystem();
};

void BaseTest::handlesText()
{
    QVERIFY(Base::trimmed(" \t a b\n") == "a b" && Base::trimmed(" \r\n").empty() &&
            Base::trimmed("").empty());
    for (const char* text : {"", ",", "a,,b", "a,"}) {
        const auto parts = Base::split(text, ',');
        QCOMPARE(parts.size(), static_cast<std::size_t>(QByteArray(text).count(',') + 1));
        QCOMPARE(Base::join({parts.begin(), parts.end()}, ","), std::string(text));
    }
    QCOMPARE(Base::join({}, ","), std::string());
    QVERIFY(Base::toNumber("-9223372036854775808") == LLONG_MIN);
    for (const char* text : {"", "-", "+1", " 1", "1 ", "1x", "9223372036854775808"})
        QVERIFY2(!Base::toNumber(text), text);
    const std::pair<std::pair<long long, int>, const char*> padded[] = {
        {{42, 4}, "0042"}, {{-7, 3}, "-007"}, {{12345, 4}, "12345"}, {{0, 1}, "0"}, {{0, -1}, "0"}};
    for (const auto& row : padded)
        QCOMPARE(Base::zeroPadded(row.first.first, row.first.second), std::string(row.second));
}

void BaseTest::normalisesPaths()
{
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},      {"/", "/"},  {"//a/./b//", "/a/b"}, {"/..", "/"},   {"a/../../b", "../b"},
        {"a/..", "."}, {"./", "."}, {"a/b/..", "a"},       {"...", "..."}, {"/a/../..", "/"}};
    for (const auto& row : rows)
        QCOMPARE(Base::normalisedPath(row.first), std::string(row.second));
    QCOMPARE(Base::withSeparator(QStringLiteral("/")), QStringLiteral("/"));
    QCOMPARE(Base::withSeparator(QStringLiteral("/a")), QStringLiteral("/a/"));
}

void BaseTest::knowsUtf8Locales_data()
{
    QTest::addColumn<QByteArrayList>("values"); // of LC_ALL, LC_CTYPE and LANG
    QTest::addColumn<bool>("utf8");
    QTest::newRow("none") << QByteArrayList{"", "", ""} << false;
    QTest::newRow("last") << QByteArrayList{"", "", "de_DE.utf8"} << true;
    QTest::newRow("middle") << QByteArrayList{"", "en_US.UTF-8", "C"} << true;
    QTest::newRow("the first decides") << QByteArrayList{"C", "en_US.UTF-8", "en_US.UTF-8"} << false;
}

void BaseTest::knowsUtf8Locales()
{
    QFETCH(QByteArrayList, values);
    const char* const variables[] = {"LC_ALL", "LC_CTYPE", "LANG"};
    QByteArrayList before;
    for (int i = 0; i < 3; ++i) {
        before += qgetenv(variables[i]);
        qputenv(variables[i], values.at(i));
    }
    const bool found = Base::isUtf8Locale();
    for (int i = 0; i < 3; ++i)
        qputenv(variables[i], before.at(i));
    QTEST(found, "utf8");
}

void BaseTest::changesTheFileSystem()
{
    const QTemporaryDir folder(QLatin1String(Base::TemporaryDirectory) + QLatin1String("BaseTest-XXXXXX"));
    QVERIFY(folder.isValid());
    const std::string root = folder.path().toStdString();
    QVERIFY(Base::makeDirectories(root + "/a/b/c") && Base::makeDirectories(root + "/a/b"));
    QVERIFY(SampleFiles::make(folder.path(), QByteArray("a/file"), 7));
    QVERIFY(!Base::makeDirectories(root + "/a/file/d"));
    QVERIFY(QFile::link(folder.path(), folder.filePath(QStringLiteral("a/b/up"))));
    QCOMPARE(Base::fileStatus((root + "/a/file").c_str())->st_size, off_t(7));
    QVERIFY(!Base::fileStatus((root + "/none").c_str()));
    QVERIFY(Base::isDirectory((root + "/a/b/up").c_str()) && !Base::isDirectory((root + "/a/file").c_str()));
    QVERIFY(Base::isReadable(root) && Base::isWritable(root) && !Base::isReadable(root + "/none"));

    QSet<QByteArray> visited;
    const auto visit = [&](const std::string& path) {
        visited.insert(QByteArray::fromStdString(path.substr(root.size())));
    };
    QVERIFY(Base::walk(root, visit));
    QCOMPARE(visited, (QSet<QByteArray>{"/a", "/a/b", "/a/b/c", "/a/b/up", "/a/file"}));
    QVERIFY(!Base::walk(root + "/a/file", visit));

    QVERIFY(SampleFiles::make(folder.path(), {"other"}));
    QVERIFY(Base::renameFile(root + "/a/file", root + "/other") &&
            !Base::renameFile(root + "/none", root + "/x"));
    QVERIFY(Base::removeAll(root + "/a") && Base::removeAll(root + "/a"));
    QCOMPARE(Base::fileStatus((root + "/other").c_str())->st_size, off_t(7));
}

QTEST_GUILESS_MAIN(BaseTest)
#include "BaseTest.moc"
