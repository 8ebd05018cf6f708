#include "frames/Placeholder.h"

#include <QRegularExpression>
#include <QStringBuilder>
#include <algorithm>
#include <climits>
#include <cstdlib>

namespace Halvern::UI::Placeholder {

namespace {

const QLatin1Char HashCharacter(Hash);

// No name on disk is longer, whatever width a token asks for.
constexpr int MostDigits = 1024;

const QRegularExpression& tokenExpression()
{
    static const QRegularExpression expression(QStringLiteral("%([0-9]*)d"));
    return expression;
}

int beginOfName(const QString& path)
{
    return static_cast<int>(path.lastIndexOf(QLatin1Char('/'))) + 1;
}

// Reads a number as "%d" does, except that what is too large becomes the largest int.
bool readNumber(const char*& text, int& number)
{
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text)
        return false;
    number = static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
    text = end;
    return true;
}

} // namespace

QString withToken(const QString& name)
{
    const auto first = name.indexOf(HashCharacter);
    if (first < 0)
        return name;
    const auto width = name.lastIndexOf(HashCharacter) + 1 - first;
    const QString digits = width > 1 ? QLatin1Char('0') + QString::number(width) : QString();
    return before(name).toString() % QLatin1Char('%') % digits % QLatin1Char('d') % after(name).toString();
}

QString withHashes(const QString& name)
{
    const QRegularExpressionMatch token = tokenExpression().match(name);
    if (!token.hasMatch())
        return name;
    const int width = std::clamp(token.captured(1).toInt(), 1, MostDigits);
    return QString(name).replace(tokenExpression(), QString(width, HashCharacter));
}

QString withFrame(const QString& path, int frame)
{
    const int name = beginOfName(path);
    auto start = path.indexOf(HashCharacter, name);
    auto length = path.lastIndexOf(HashCharacter) + 1 - start;
    auto width = static_cast<int>(length);
    if (start < 0) {
        const QRegularExpressionMatch token = tokenExpression().match(path, name);
        if (!token.hasMatch())
            return path;
        start = token.capturedStart();
        length = token.capturedLength();
        width = token.captured(1).toInt();
    }
    const auto digits = static_cast<int>(QString::number(std::abs(static_cast<long long>(frame))).size());
    const QString zeros(std::max(std::min(width, MostDigits) - digits, 0), QLatin1Char('0'));
    return QString(path).replace(start, length, zeros + QString::number(frame));
}

std::string widened(std::string_view pattern, int hashes)
{
    std::string name(pattern);
    const std::size_t hash = name.find(Hash);
    if (hash != std::string::npos)
        name.replace(hash, 1, static_cast<std::size_t>(std::max(hashes, 0)), Hash);
    return name;
}

QStringView before(const QString& pattern)
{
    const auto hash = pattern.indexOf(HashCharacter);
    return hash < 0 ? QStringView(pattern) : QStringView(pattern).left(hash);
}

QStringView after(const QString& pattern)
{
    return QStringView(pattern).mid(pattern.lastIndexOf(HashCharacter) + 1);
}

std::optional<NameWithRange> splitRange(const QString& path)
{
    const int name = beginOfName(path);
    const auto runs = path.indexOf(QLatin1String(" ("), name);
    const auto end = runs < 0 ? path.size() : runs;
    const auto blank = path.left(end).lastIndexOf(QLatin1Char(' '));
    if (blank < name)
        return std::nullopt;
    const QByteArray range = path.mid(blank + 1, end - blank - 1).toLatin1();
    const char* rest = range.constData();
    NameWithRange split{path.left(blank), 0, 0};
    if (!readNumber(rest, split.first) || *rest++ != '-' || !readNumber(rest, split.last))
        return std::nullopt;
    return split;
}

std::string rangeText(int first, int last)
{
    return std::to_string(first) + '-' + std::to_string(last);
}

std::string runsText(const std::vector<FrameRange>& runs)
{
    if (runs.empty())
        return {};
    std::string text = " ( ";
    for (const FrameRange& run : runs)
        text += (run.isSingle() ? std::to_string(run.first) : rangeText(run.first, run.last)) + ' ';
    return text + ')';
}

} // namespace Halvern::UI::Placeholder
