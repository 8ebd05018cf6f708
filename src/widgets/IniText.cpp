#include "widgets/IniText.h"

#include <QStringList>
#include <algorithm>
#include <cctype>
#include <cstring>

namespace Halvern::UI::IniText {

namespace {

constexpr const char* byteOrderMark = "\xef\xbb\xbf";
constexpr const char* simpleEscapes = "abfnrtv\"?'\\";
constexpr const char* escapedCharacters = "\a\b\f\n\r\t\v\"?'\\";

/// A line as QSettings reads it: it goes on in quotes and after a backslash, and a semicolon ends it.
struct Line
{
    int begin = 0;
    int end = 0;
    int equals = -1;
};

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

// The first line after @p from that is neither empty nor a comment. An empty line at the end of the text.
Line nextLine(const QByteArray& ini, int from)
{
    const int size = static_cast<int>(ini.size());
    while (from < size && (isBlank(ini.at(from)) || ini.at(from) == ';')) {
        const bool isComment = ini.at(from) == ';';
        ++from;
        while (isComment && from < size && ini.at(from) != '\n' && ini.at(from) != '\r')
            ++from;
    }
    Line line{from, from, -1};
    bool isQuoted = false;
    for (; line.end < size; ++line.end) {
        const char byte = ini.at(line.end);
        if (!isQuoted && (byte == '\n' || byte == '\r' || byte == ';'))
            break;
        if (byte == '\\')
            ++line.end;
        else if (byte == '"')
            isQuoted = !isQuoted;
        else if (byte == '=' && !isQuoted && line.equals < 0)
            line.equals = line.end;
    }
    line.end = std::min(line.end, size);
    return line;
}

QString decodedKey(const QByteArray& bytes)
{
    QString key;
    for (int i = 0; i < bytes.size(); ++i) {
        const char byte = bytes.at(i);
        const bool isWide = bytes.mid(i + 1, 1).toUpper() == "U";
        const int first = i + (isWide ? 2 : 1);
        const int digits = isWide ? 4 : 2;
        bool valid = false;
        const uint code = bytes.mid(first, digits).toUInt(&valid, 16);
        if (byte == '%' && valid && first + digits <= bytes.size()) {
            key += QChar(static_cast<ushort>(code));
            i = first + digits - 1;
        } else {
            key += byte == '\\' ? QLatin1Char('/') : QLatin1Char(byte);
        }
    }
    return key;
}

QByteArray encodedKey(const QString& key)
{
    QByteArray bytes;
    for (const QChar character : key) {
        const ushort code = character.unicode();
        if (code == '/')
            bytes += '\\';
        else if (code < 0x80 && (std::isalnum(code) || std::strchr("_-.", code)))
            bytes += static_cast<char>(code);
        else
            bytes += QString::asprintf(code <= 0xff ? "%%%02X" : "%%U%04X", unsigned(code)).toLatin1();
    }
    return bytes;
}

// The group of a header with "/" after it; empty for keys without a group.
QString groupOf(const QByteArray& header)
{
    const auto end = header.indexOf(']');
    const QByteArray name = header.mid(1, end < 0 ? -1 : end - 1).trimmed();
    if (name.compare("general", Qt::CaseInsensitive) == 0)
        return QString();
    const bool isEscaped = name.compare("%general", Qt::CaseInsensitive) == 0;
    return decodedKey(isEscaped ? name.mid(1) : name) + QLatin1Char('/');
}

QByteArray headerOf(const QString& group)
{
    const QString name = group.chopped(group.isEmpty() ? 0 : 1);
    if (name.isEmpty())
        return "[General]";
    const bool needsEscape = name.compare(QLatin1String("general"), Qt::CaseInsensitive) == 0;
    return needsEscape ? "[%" + name.toLatin1() + ']' : '[' + encodedKey(name) + ']';
}

// A key without empty parts, as QSettings uses it.
QString normalised(const QString& key)
{
    QStringList parts = key.split(QLatin1Char('/'));
    parts.removeAll(QString());
    return parts.join(QLatin1Char('/'));
}

/// The place of the value of a key, or of its group.
struct Place
{
    int begin = -1; // of the value; negative if there is none
    int end = 0;
    int groupEnd = -1; // negative if there is no such group
};

Place placeOf(const QByteArray& ini, const QString& key, const QString& keyGroup)
{
    Place place;
    QString group;
    Line line =
        nextLine(ini, ini.startsWith(byteOrderMark) ? static_cast<int>(std::strlen(byteOrderMark)) : 0);
    for (; line.begin < ini.size(); line = nextLine(ini, line.end)) {
        if (ini.at(line.begin) == '[')
            group = groupOf(ini.mid(line.begin, line.end - line.begin));
        else if (line.equals >= 0 &&
                 group + decodedKey(ini.mid(line.begin, line.equals - line.begin).trimmed()) == key) {
            // The last one of several is valid.
            place.begin = line.equals + 1;
            place.end = line.end;
        }
        if (group == keyGroup)
            place.groupEnd = line.end;
    }
    return place;
}

} // namespace

std::optional<QByteArray> find(const QByteArray& ini, const QString& key)
{
    const Place place = placeOf(ini, normalised(key), QString());
    if (place.begin < 0)
        return std::nullopt;
    return ini.mid(place.begin, place.end - place.begin).trimmed();
}

QByteArray replaced(const QByteArray& ini, const QString& key, const QByteArray& value)
{
    const QString wanted = normalised(key);
    const QString group = wanted.left(wanted.indexOf(QLatin1Char('/')) + 1);
    const Place place = placeOf(ini, wanted, group);
    QByteArray text = ini;
    if (place.begin >= 0)
        return text.replace(place.begin, place.end - place.begin, value);
    const QByteArray line = encodedKey(wanted.mid(group.size())) + '=' + value + '\n';
    // After the last line of its group, also after a comment in that line.
    const auto lineEnd = text.indexOf('\n', std::max(place.groupEnd, 0));
    if (place.groupEnd >= 0 && lineEnd >= 0)
        return text.insert(lineEnd + 1, line);
    if (!text.isEmpty() && !text.endsWith('\n'))
        text += '\n';
    if (place.groupEnd < 0)
        text += (text.isEmpty() ? "" : "\n") + headerOf(group) + '\n';
    return text + line;
}

// Bytes outside ASCII are UTF-8, as Qt 6 and editors write them, or else Latin-1. Qt 5 writes none.
static QString textOf(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return text.contains(QChar(QChar::ReplacementCharacter)) ? QString::fromLatin1(bytes) : text;
}

std::optional<QString> decoded(const QByteArray& value)
{
    QString text;
    for (int i = 0; i < value.size();) {
        const char byte = value.at(i++);
        if (byte == '"')
            continue;
        if (byte != '\\' || i == value.size()) {
            const int begin = i - 1;
            while (i < value.size() && value.at(i) != '"' && value.at(i) != '\\')
                ++i;
            text += textOf(value.mid(begin, i - begin));
            continue;
        }
        const char escape = value.at(i++);
        const bool isHex = escape == 'x';
        if (isHex || (escape >= '0' && escape < '8')) {
            const int begin = isHex ? i : i - 1;
            const std::size_t digits =
                std::strspn(value.constData() + begin, isHex ? "0123456789abcdefABCDEF" : "01234567");
            i = begin + static_cast<int>(digits);
            const uint code = value.mid(begin, i - begin).right(8).toUInt(nullptr, isHex ? 16 : 8);
            text += QChar(static_cast<ushort>(code));
        } else if (escape != '\n' && escape != '\r') {
            const char* const known = std::strchr(simpleEscapes, escape);
            text += QLatin1Char(known ? escapedCharacters[known - simpleEscapes] : escape);
        }
    }
    if (!text.startsWith(QLatin1Char('@')))
        return text;
    return text.startsWith(QLatin1String("@@")) ? std::optional<QString>(text.mid(1)) : std::nullopt;
}

QByteArray encoded(const QString& text)
{
    QByteArray bytes = text.startsWith(QLatin1Char('@')) ? "@" : "";
    bool needsQuotes = text.startsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char(' '));
    bool followsHex = false;
    for (const QChar character : text) {
        const ushort code = character.unicode();
        const bool looksLikeHex = followsHex && code < 0x80 && std::isxdigit(code);
        followsHex = code < 0x20 || code > 0x7e || looksLikeHex;
        if (followsHex) {
            bytes += "\\x" + QByteArray::number(code, 16);
        } else {
            needsQuotes = needsQuotes || code == ';' || code == ',' || code == '=';
            bytes += code == '"' || code == '\\' ? "\\" : "";
            bytes += static_cast<char>(code);
        }
    }
    return needsQuotes ? '"' + bytes + '"' : bytes;
}

} // namespace Halvern::UI::IniText
