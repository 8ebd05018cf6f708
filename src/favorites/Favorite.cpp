#include "favorites/Favorite.h"

#include <tuple>

namespace Halvern::UI {

namespace {

auto record(const Favorite& favorite)
{
    return std::tie(favorite.path, favorite.name, favorite.keyText, favorite.iconPath, favorite.tooltip,
                    favorite.type, favorite.requestedFlags, favorite.isDrive, favorite.persistent,
                    favorite.unknownOptions, favorite.unknownFields);
}

} // namespace

bool Favorite::hasFolder() const
{
    // A QDir of no path is one of the working directory.
    return resolved || dir.path() != QLatin1String(".");
}

bool Favorite::isSame(const Favorite& other) const
{
    return record(*this) == record(other);
}

FavoriteExpressionEvaluator::~FavoriteExpressionEvaluator() = default;

QString FavoriteExpressionEvaluator::evaluate(const Favorite& favorite)
{
    return favorite.path;
}

} // namespace Halvern::UI
