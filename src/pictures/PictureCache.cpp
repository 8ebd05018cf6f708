#include "pictures/PictureCache.h"

#include <QCache>

namespace Halvern::UI {

namespace {

constexpr int Megabyte = 1024; // kilobytes, in which the cache counts
constexpr int LeastCost = 16;  // keeps the number of small pictures within bounds

} // namespace

struct PictureCache::Private
{
    QCache<QString, Picture> pictures;
};

PictureCache::PictureCache(int megabytes)
    : d(std::make_unique<Private>())
{
    d->pictures.setMaxCost(megabytes * Megabyte);
}

PictureCache::~PictureCache() = default;

void PictureCache::insert(const Picture& picture)
{
    const auto kilobytes = int(picture.image.sizeInBytes() / 1024);
    d->pictures.remove(picture.path); // or the cache would make room for both
    d->pictures.insert(picture.path, new Picture(picture), LeastCost + kilobytes);
}

const Picture* PictureCache::find(const QString& path)
{
    return d->pictures.object(path);
}

bool PictureCache::contains(const QString& path, const QSize& room) const
{
    const Picture* picture = d->pictures.object(path);
    return picture && picture->room == room;
}

QStringList PictureCache::paths() const
{
    return d->pictures.keys();
}

void PictureCache::clear()
{
    d->pictures.clear();
}

} // namespace Halvern::UI
