// What reads text that others wrote, as targets for libFuzzer; FUZZ_TARGET names the one that is built.

#include "browser/NameFilter.h"
#include "catalogue/FileManager.h"
#include "dialog/FCPreviewInfo.h"
#include "favorites/FavoritesFile.h"
#include "frames/FrameName.h"
#include "frames/FrameRanges.h"
#include "frames/Placeholder.h"
#include "paths/Filename.h"

#include <QDir>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fnmatch.h>

using namespace Halvern::UI;
using Halvern::Base::FrameRanges;

namespace {

#define REQUIRE(condition) ((condition) ? void() : std::abort())

// No favourite is lost between writing and reading.
[[maybe_unused]] void favorites(const QByteArray& text)
{
    const QList<Favorite> read = FavoritesFile::parse(text.toStdString());
    REQUIRE(FavoritesFile::parse(FavoritesFile::format(read, "p")).size() == read.size());
    const FavoritesFile::Keys keys = FavoritesFile::keys(read);
    for (const auto& [known, mine] :
         {std::pair(keys, read), std::pair(FavoritesFile::Keys(), QList<Favorite>())}) {
        const std::string merged = FavoritesFile::merge(text.toStdString(), known, mine, "p");
        REQUIRE(FavoritesFile::keys(FavoritesFile::parse(merged)) == keys);
    }
}

// The two readers agree about names; every name gets a row, in a sequence or alone.
[[maybe_unused]] void names(const QByteArray& text)
{
    std::list<std::string> lines;
    for (const QByteArray& line : text.split('\n')) {
        const std::string name = line.left(FileInfo::NameSize - 1).constData();
        lines.push_back(name);
        char pattern[FileInfo::NameSize];
        QString wide;
        int frame = 0, digits = 0, wideFrame = 0;
        bool padded = false;
        const bool read = FrameName::read(name.c_str(), frame, pattern, digits, padded);
        REQUIRE(read == FrameName::read(QString::fromLatin1(name.c_str()), wide, wideFrame));
        REQUIRE(!read ||
                (frame == wideFrame && std::strlen(pattern) + std::size_t(digits) == name.size() + 1));
    }
    static FileManager manager;
    manager.cleanData();
    manager.setFiles(lines);
    manager.insertFiles();
    for (int type = 0; type <= 4; ++type) {
        std::vector<FileInfo*> rows;
        manager.buildRunningList(&rows, static_cast<Halvern::Base::FileHandle::ListType>(type));
        REQUIRE(type == 0 ? rows.size() == lines.size() : !rows.empty() && rows.size() <= lines.size());
    }
}

[[maybe_unused]] void previews(const QByteArray& text)
{
    for (const int frame : {INT_MIN, 0, 1001, INT_MAX}) {
        const FCPreviewInfo info(QString::fromUtf8(text), frame);
        REQUIRE(info.path.size() < text.size() + PATH_MAX + 16);
        REQUIRE(!info.isSequence || info.first > info.last ||
                qBound(info.first, frame, info.last) == info.frame);
    }
}

[[maybe_unused]] void ranges(const QByteArray& text)
{
    for (const auto& read :
         {FrameRanges::parse(text.toStdString()), FrameRanges::parseDisplayName(text.toStdString())}) {
        const auto again = read ? FrameRanges::parse(read->text()) : read;
        REQUIRE(!read || (again->text() == read->text() && again->count() == read->count()));
    }
}

// A pattern in the first line, a name in the second.
[[maybe_unused]] void globs(const QByteArray& text)
{
    const std::string pattern = text.split('\n').value(0).left(500).constData();
    const std::string name = text.split('\n').value(1).left(255).constData();
    const bool matches = filename_match(name.c_str(), pattern.c_str());
    const bool hasOthers = pattern.find_first_of("[]{}\\,|") != std::string::npos;
    REQUIRE(hasOthers || matches == (::fnmatch(pattern.c_str(), name.c_str(), 0) == 0));
    const QString wide = QString::fromLatin1(pattern.c_str());
    const QString wideName = QString::fromLatin1(name.c_str());
    REQUIRE(wide.isEmpty() || wide.count('*') > 2 ||
            NameFilter(wide).matches(wideName) == QDir::match(wide, wideName));
}

[[maybe_unused]] void tokens(const QByteArray& text)
{
    const QString name = QString::fromUtf8(text);
    const QString token = Placeholder::withToken(name);
    const QString hashes(qMin(name.count('#'), 1000), '#');
    if (!name.contains('%') && name.count('#') == hashes.size() && name.contains(hashes))
        REQUIRE(Placeholder::withHashes(token) == name);
    REQUIRE(!token.contains('#') && Placeholder::withHashes(name).size() <= 1024 * (name.size() + 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t size)
{
    // Ranges that cannot be read are told there.
    static const bool quiet = std::freopen("/dev/null", "w", stdout);
    REQUIRE(quiet), FUZZ_TARGET(QByteArray(bytes, int(size)));
    return 0;
}
