#pragma once

#include "pictures/Picture.h"

#include <QByteArray>
#include <optional>

/// What an application and a program that reads pictures say to each other through the program's standard
/// input and output. Both send frames: the length in bytes as a big-endian quint32, then that many bytes, the
/// payload, in the format of QDataStream::Qt_5_12.
///
/// The program sends a hello, and then answers to the requests that it reads, until its input ends. If
/// several requests are waiting it takes the newest and drops the others. A dropped request has no answer,
/// and requests are answered in the order in which they came: after the answer to one, no older one is
/// answered.
namespace Halvern::UI::PictureProtocol {

/// Bytes of the longest payload of a hello, of a request, and of an answer without its pixels.
inline constexpr int LongestText = 0x20000;
/// The largest width and height of pixels that a request may want.
inline constexpr quint32 LongestSide = 8192;

/// The name of a file, and the room for its picture.
struct Request
{
    quint32 id = 0;     ///< Larger than those before it.
    QByteArray path;    ///< The bytes that the system knows the file by.
    quint32 width = 0;  ///< In pixels, at most LongestSide.
    quint32 height = 0; ///< If it or the width is 0, only the description of the picture is wanted.
    FileVersion known;  ///< Of the picture that the application has. It is not read again if it is the same.
    /// In milliseconds. The application waits no longer, and the program ends itself soon after it.
    quint32 timeLimit = 10000;
};

/// A picture and what its file says about it.
struct Answer : PictureDescription
{
    quint32 id = 0;           ///< That of the request.
    FileVersion version;      ///< Of the file, looked up before it was read.
    bool isUnchanged = false; ///< The file is the one that the request knows. The answer says nothing else.
    QString reason;           ///< Why there is no picture, in words; empty if there is one.
    QSize size{0, 0};         ///< Of the pixels: fits the request's, with square pixels; never enlarged.
    QByteArray pixels;        ///< Rows from the top, without padding, as in Picture::image.
};

/// Frames, with their length, ready to be sent.
QByteArray hello();
QByteArray frame(const Request& request);
/// Texts that are too long for the frame are cut.
QByteArray frame(const Answer& answer);

/// Whether @p payload is the hello of a program that speaks this version.
bool isHello(const QByteArray& payload);
/// The contents of a payload. Nothing if they are not what they should be: they are damaged, a size does not
/// match the pixels, a side is longer than LongestSide, the aspect or the rate is not a number that makes
/// sense.
std::optional<Request> readRequest(const QByteArray& payload);
std::optional<Answer> readAnswer(const QByteArray& payload);

/// Bytes of the longest payload of an answer to @p request.
int longestAnswer(const Request& request);

/// Takes a stream of bytes in pieces of any size, and gives the frames' payloads.
class Frames
{
public:
    /// Sets the longest payload that is accepted from now on, in bytes. LongestText by default.
    void setLongest(int bytes) { m_longest = bytes; }

    /// Adds the next bytes of the stream. What is added after a frame that is refused is dropped.
    void add(const QByteArray& bytes);
    /// Takes the payload of the oldest frame that is complete; nothing if none is.
    std::optional<QByteArray> take();
    /// Whether the stream announced a payload that is longer than the longest. It cannot be read any further.
    bool isRefused() const { return m_isRefused; }

private:
    QByteArray m_bytes;
    int m_longest = LongestText;
    bool m_isRefused = false;
};

} // namespace Halvern::UI::PictureProtocol
