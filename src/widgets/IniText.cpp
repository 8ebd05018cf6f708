#include "widgets/IniText.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace Halvern::UI::IniText {

namespace {

constexpr const char* simpleEscapes = "abfnrtv\"?'\\";
constexpr const char* escapedCharacters = "\a\b\f\n\r\t\v\"?'\\";

/// Where the value of a key stands, or where its line belongs.
struct Place
{
    int begin = -1; // of the value; negative if there is none
    int end = 0;
    int groupEnd = -1; // where a line can be added to the group; negative if there is no such group
};

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

QByteArray groupOf(const QString& key)
{
    return encodedKey(key.section(QLatin1Char('/'), 0, 0));
}

QByteArray nameOf(const QString& key)
{
    return encodedKey(key.section(QLatin1Char('/'), 1));
}

Place placeOf(const QByteArray& ini, const QString& key)
{
    const QByteArray group = '[' + groupOf(key) + ']';
    const QByteArray name = nameOf(key);
    Place place;
    bool isInGroup = false;
    for (int begin = 0; begin < ini.size();) {
        int end = ini.indexOf('\n', begin);
        end = end < 0 ? ini.size() : end;
        const QByteArray line = ini.mid(begin, end - begin);
        const QByteArray text = line.trimmed();
        const int equals = line.indexOf('=');
        if (text.startsWith('['))
            isInGroup = text == group;
        else if (isInGroup && equals >= 0 && line.left(equals).trimmed() == name) {
            // Of several, the last one counts.
            place.begin = begin + equals + 1;
            place.end = end;
        }
        if (isInGroup && !text.isEmpty())
            place.groupEnd = std::min(end + 1, ini.size());
        begin = end + 1;
    }
    return place;
}

} // namespace

std::optional<QByteArray> find(const QByteArray& ini, const QString& key)
{
    const Place place = placeOf(ini, key);
    if (place.begin < 0)
        return std::nullopt;
    return ini.mid(place.begin, place.end - place.begin).trimmed();
}

QByteArray replaced(const QByteArray& ini, const QString& key, const QByteArray& value)
{
    const Place place = placeOf(ini, key);
    QByteArray text = ini;
    if (place.begin >= 0)
        return text.replace(place.begin, place.end - place.begin, value);
    const QByteArray line = nameOf(key) + '=' + value + '\n';
    if (!text.isEmpty() && !text.endsWith('\n'))
        text += '\n';
    if (place.groupEnd < 0)
        return text + (text.isEmpty() ? "" : "\n") + '[' + groupOf(key) + "]\n" + line;
    return text.insert(place.groupEnd == ini.size() ? text.size() : place.groupEnd, line);
}

std::optional<QString> decoded(const QByteArray& value)
{
    QString text;
    for (int i = 0; i < value.size();) {
        const char byte = value.at(i++);
        if (byte == '"')
            continue;
        if (byte != '\\' || i == value.size()) {
            text += QLatin1Char(byte);
            continue;
        }
        const char escape = value.at(i++);
        const auto digits = [&](int base) {
            const auto isDigit = [base](char c) {
                return base == 16 ? std::isxdigit(static_cast<unsigned char>(c)) != 0 : c >= '0' && c < '8';
            };
            const int begin = i;
            while (i < value.size() && isDigit(value.at(i)))
                ++i;
            return QChar(static_cast<ushort>(value.mid(begin, i - begin).right(8).toUInt(nullptr, base)));
        };
        if (escape == 'x') {
            text += digits(16);
        } else if (escape >= '0' && escape < '8') {
            --i;
            text += digits(8);
        } else {
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
