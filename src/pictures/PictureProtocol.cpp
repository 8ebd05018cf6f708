#include "pictures/PictureProtocol.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>
#include <algorithm>
#include <cmath>

namespace Halvern::UI::PictureProtocol {

namespace {

constexpr quint32 Magic = 0x43555049; // "CUPI"
constexpr quint32 Version = 2;
constexpr int LengthBytes = 4;
constexpr int LongestName = 1024;
constexpr int LongestChannel = 255;
constexpr int MostChannels = 128;
constexpr int FarthestPixel = 1 << 28;
constexpr double LargestAspect = 100;

QDataStream& operator<<(QDataStream& stream, const FileVersion& version)
{
    return stream << version.size << version.modified;
}

QDataStream& operator>>(QDataStream& stream, FileVersion& version)
{
    return stream >> version.size >> version.modified;
}

template <class Write>
QByteArray framed(Write write)
{
    QByteArray frame;
    QDataStream stream(&frame, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_12);
    stream << quint32(0);
    write(stream);
    qToBigEndian(quint32(frame.size() - LengthBytes), frame.data());
    return frame;
}

template <class Read>
bool readWhole(const QByteArray& payload, Read read)
{
    QDataStream stream(payload);
    stream.setVersion(QDataStream::Qt_5_12);
    read(stream);
    return stream.status() == QDataStream::Ok && stream.atEnd();
}

// A list of texts as the stream reads it reserves whatever length it finds.
void writeList(QDataStream& stream, const QStringList& texts)
{
    const int count = std::min(int(texts.size()), MostChannels);
    stream << quint32(count);
    for (int i = 0; i < count; ++i)
        stream << texts[i].left(LongestChannel);
}

QStringList readList(QDataStream& stream)
{
    quint32 count = 0;
    stream >> count;
    QStringList texts;
    while (count-- > 0 && stream.status() == QDataStream::Ok) {
        QString text;
        stream >> text;
        texts << text;
    }
    return texts;
}

bool isPlausible(const Answer& answer)
{
    const auto isSide = [](int side) { return side >= 0 && side <= int(LongestSide); };
    if (!isSide(answer.size.width()) || !isSide(answer.size.height()))
        return false;
    int left = 0, top = 0, right = 0, bottom = 0;
    answer.dataWindow.getCoords(&left, &top, &right, &bottom);
    for (const int place : {left, top, right, bottom, answer.fullSize.width(), answer.fullSize.height()}) {
        if (place < -FarthestPixel || place > FarthestPixel)
            return false;
    }
    const int bytes = answer.size.width() * answer.size.height() * 4;
    return answer.pixels.size() == bytes && answer.pixelAspect >= 1 / LargestAspect &&
           answer.pixelAspect <= LargestAspect && std::isfinite(answer.frameRate) && answer.frameRate >= 0;
}

} // namespace

QByteArray hello()
{
    return framed([](QDataStream& stream) { stream << Magic << Version; });
}

QByteArray frame(const Request& request)
{
    return framed([&](QDataStream& stream) {
        stream << request.id << request.path << request.width << request.height << request.known
               << request.timeLimit;
    });
}

QByteArray frame(const Answer& answer)
{
    return framed([&](QDataStream& stream) {
        const auto text = [](const QString& of) { return of.left(LongestName); };
        stream << answer.id << answer.version << answer.isUnchanged << text(answer.reason) << answer.fullSize
               << answer.dataWindow << answer.pixelAspect;
        writeList(stream, answer.channels);
        stream << text(answer.depth) << text(answer.compression) << text(answer.colourSpace)
               << text(answer.timeCode) << text(answer.font) << answer.frameRate << answer.size
               << answer.pixels;
    });
}

bool isHello(const QByteArray& payload)
{
    quint32 magic = 0;
    quint32 version = 0;
    return readWhole(payload, [&](QDataStream& stream) { stream >> magic >> version; }) && magic == Magic &&
           version == Version;
}

std::optional<Request> readRequest(const QByteArray& payload)
{
    Request request;
    const bool isWhole = readWhole(payload, [&](QDataStream& stream) {
        stream >> request.id >> request.path >> request.width >> request.height >> request.known >>
            request.timeLimit;
    });
    if (!isWhole || request.width > LongestSide || request.height > LongestSide)
        return {};
    return request;
}

std::optional<Answer> readAnswer(const QByteArray& payload)
{
    Answer answer;
    const bool isWhole = readWhole(payload, [&](QDataStream& stream) {
        stream >> answer.id >> answer.version >> answer.isUnchanged >> answer.reason >> answer.fullSize >>
            answer.dataWindow >> answer.pixelAspect;
        answer.channels = readList(stream);
        stream >> answer.depth >> answer.compression >> answer.colourSpace >> answer.timeCode >>
            answer.font >> answer.frameRate >> answer.size >> answer.pixels;
    });
    if (!isWhole || !isPlausible(answer))
        return {};
    return answer;
}

int longestAnswer(const Request& request)
{
    return LongestText +
           int(std::min(request.width, LongestSide) * std::min(request.height, LongestSide) * 4);
}

void Frames::add(const QByteArray& bytes)
{
    if (!m_isRefused)
        m_bytes += bytes;
}

std::optional<QByteArray> Frames::take()
{
    if (m_isRefused || m_bytes.size() < LengthBytes)
        return {};
    const auto length = qFromBigEndian<quint32>(m_bytes.constData());
    if (length > quint32(m_longest)) {
        m_isRefused = true;
        m_bytes.clear();
        return {};
    }
    const int end = LengthBytes + int(length);
    if (m_bytes.size() < end) {
        m_bytes.reserve(end);
        return {};
    }
    const QByteArray payload = m_bytes.mid(LengthBytes, int(length));
    m_bytes.remove(0, end);
    return payload;
}

} // namespace Halvern::UI::PictureProtocol
