#pragma once

#include "favorites/Favorite.h"

#include <QList>
#include <string>

/// The format of the favourites file: a header, a line for each persistent favourite, a footer. Each line is
///
///     add_favorite_dir [OPTION...] NAME NAME ICON [TOOLTIP] FOLDER/
///
/// with an option for each kind of browser ("-image", "-script", "-project", "-python", "-font", "-geo",
/// "-misc", "-sequence"). A field that is empty or holds a space stands between double quotes. There is no
/// escaping, so that a field cannot hold quote characters or line ends.
namespace Halvern::UI::FavoritesFile {

/// The text that stores @p favorites. Those that are not persistent, and drives, are left out.
QString format(const QList<Favorite>& favorites, const QString& productName);

/// The favourites in @p text, which is UTF-8, in its order; all are persistent and none is resolved.
///
/// Nothing is an error. Each single space ends a field, and both kinds of quotes group; one that never closes
/// reaches to the end of its line. Lines whose first field does not hold "add_favorite_dir" are skipped, and
/// so are unknown options. Fields that are missing are empty. The name is read where the key text could
/// stand. Folders are cleaned: "/shots//a/../b/" gives "/shots/b".
QList<Favorite> parse(const std::string& text);

} // namespace Halvern::UI::FavoritesFile
