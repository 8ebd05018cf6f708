#pragma once

#include "favorites/Favorite.h"

#include <QList>
#include <string>
#include <vector>

/// The format of the favourites file: a header, a line for each persistent favourite, a footer. Each line is
///
///     add_favorite_dir [OPTION...] NAME NAME ICON [TOOLTIP] FOLDER/
///
/// with an option for each kind of browser ("-image", "-script", "-project", "-python", "-font", "-geo",
/// "-misc", "-sequence"). A field that is empty or holds a space stands between double quotes. There is no
/// escaping, so that a field cannot hold quote characters. It ends at the first line end of its text, and
/// after 4000 characters. Texts are bytes: they are written in the encoding of the locale, and read as UTF-8.
namespace Halvern::UI::FavoritesFile {

/// Bytes of a line. A file with a longer one is not a favourites file.
inline constexpr std::size_t MostLineBytes = 64 << 10;

/// The text that stores @p favorites. Those that are not persistent, and drives, are left out.
std::string format(const QList<Favorite>& favorites, const QString& productName);

/// The favourites in @p text, in its order; all are persistent and none is resolved.
///
/// Nothing is an error. Each single space ends a field, and both kinds of quotes group; one that never closes
/// reaches to the end of its line. Lines whose first field does not hold "add_favorite_dir" are skipped.
/// Fields that are missing are empty. The name is read where the key text could stand. Folders are cleaned:
/// "/shots//a/../b/" gives "/shots/b". Options and fields without a meaning here are kept.
QList<Favorite> parse(const std::string& text);

bool hasOverlongLine(const std::string& text);

/// @p text as a line can hold it: up to its first line end, at most 4000 characters, with typographic
/// apostrophes in place of both kinds of quote characters. Example: "the \"big\" one" gives "the ’big’ one".
QString holdable(const QString& text);
/// The same for a name, which an option would be read in place of: "-old" gives "_-old".
QString holdableName(const QString& text);

/// What the file holds of each persistent favourite, as it is read back. Equal lines give equal keys.
using Keys = std::vector<std::string>;
Keys keys(const QList<Favorite>& favorites);

/// The text that stores @p mine beside what other programs did to the file. @p known is what @p mine began
/// with, and @p theirs is the file as it is now.
///
/// What others added is kept, and so are lines that are no favourites, each after the line that it follows in
/// @p theirs. What others removed is left out if it did not change here. What was removed here is left out.
/// If both sides changed one favourite, both of its new versions are kept.
std::string merge(const std::string& theirs, const Keys& known, const QList<Favorite>& mine,
                  const QString& productName);

} // namespace Halvern::UI::FavoritesFile
