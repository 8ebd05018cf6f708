#pragma once

#include "base/Export.h"
#include "pictures/Picture.h"

#include <memory>

namespace Halvern::UI {

/// Pictures that were shown recently, one for each path. If they need more memory than the cache may use, it
/// drops those that were asked for longest ago. It reads nothing from disk: whether a picture is still that
/// of its file is what PictureReader::read() finds out with the picture's version. One thread at a time.
class HVCOREUI_EXPORT PictureCache
{
public:
    /// Uses at most @p megabytes.
    explicit PictureCache(int megabytes = 256);
    ~PictureCache();
    PictureCache(const PictureCache&) = delete;
    PictureCache& operator=(const PictureCache&) = delete;

    /// Keeps a picture in place of the one with the same path. One that is too large on its own is not kept.
    void insert(const Picture& picture);
    /// The picture of @p path, whatever room it was read for. Null if there is none; valid until the next
    /// call that is not const.
    const Picture* find(const QString& path);
    /// Whether it has the picture of @p path for a room of that size. This counts as asking for it.
    bool contains(const QString& path, const QSize& room) const;
    /// The paths of all pictures, in no order.
    QStringList paths() const;
    void clear();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Halvern::UI
