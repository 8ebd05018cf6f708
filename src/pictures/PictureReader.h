#pragma once

#include "base/Export.h"
#include "pictures/Picture.h"

#include <QObject>
#include <memory>

namespace Halvern::UI {

/// Reads pictures from files, in processes of its own: whatever a file does to the code that decodes it, the
/// application is safe. There are up to two processes, which run the program "coreui-pictures" that comes
/// with the library, or the program that the environment variable COREUI_PICTURES names. They are started
/// when they are needed, and end with the reader.
///
/// The newest request wins: an older one that has not begun is dropped, and one that has begun is finished.
/// A process that takes too long, dies, or sends something wrong is killed, and started anew for the next
/// request. After three such failures in ten seconds that waits until the ten seconds are over. The file that
/// was read at a failure is not read ahead again.
///
/// All calls return at once; signals come from the event loop, and a slot may destroy the reader. GUI thread
/// only. It needs no widget.
class HVCOREUI_EXPORT PictureReader : public QObject
{
    Q_OBJECT

public:
    explicit PictureReader(QObject* parent = nullptr);
    /// Kills the processes, and waits for their end for less than a tenth of a second.
    ~PictureReader() override;

    /// Reads the picture of @p path so that it fits into @p room, in pixels. If the file still has the
    /// version @p known, it is not read again, and pictureUnchanged() says so. Then reads the pictures of
    /// @p ahead for the same room in their order, until the next call; they are announced as all others.
    void read(const QString& path, const QSize& room, const FileVersion& known = {},
              const QStringList& ahead = {});
    /// Drops the requests that have not begun.
    void cancel();
    /// Drops all requests and ends the processes. The next request starts them again.
    void stop();

    /// How long a request may take, in milliseconds; 10,000 by default.
    void setTimeLimit(int milliseconds);
    /// The time in which three failures make the next start wait, in milliseconds; 10,000 by default.
    void setFailureTime(int milliseconds);

signals:
    /// A picture was read: that of the newest request, of an older one that had begun, or one read ahead.
    void pictureRead(const Halvern::UI::Picture& picture);
    /// The file still has the version that the request knew.
    void pictureUnchanged(const QString& path);
    /// The file was not read. @p reason is a sentence in the user's language; a file that is not a picture
    /// and a missing program give one too. While a start waits, newest requests fail at once, and are read as
    /// soon as the program can be started.
    void pictureFailed(const QString& path, const QString& reason);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Halvern::UI
