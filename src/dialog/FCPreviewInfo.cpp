#include "dialog/FCPreviewInfo.h"

#include <QRegularExpression>
#include <algorithm>
#include <climits>
#include <cstdlib>

namespace Halvern::UI {

namespace {

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

bool parseRange(QString& path, int* first, int* last)
{
    const int runs = path.indexOf(QLatin1String(" ("));
    const int end = runs < 0 ? path.size() : runs;
    const int space = path.leftRef(end).lastIndexOf(QLatin1Char(' '));
    if (space < 0)
        return false;
    const QByteArray text = path.mid(space + 1, end - space - 1).toLatin1();
    const char* rest = text.constData();
    int from = 0;
    int to = 0;
    if (!readNumber(rest, from) || *rest++ != '-' || !readNumber(rest, to))
        return false;
    path.truncate(space);
    *first = from;
    *last = to;
    return true;
}

void substituteFrame(QString& path, int frame)
{
    int start = path.indexOf(QLatin1Char('#'));
    int length = path.lastIndexOf(QLatin1Char('#')) + 1 - start;
    int width = length;
    if (start < 0) {
        static const QRegularExpression token(QStringLiteral("%([0-9]{0,})d"));
        const QRegularExpressionMatch match = token.match(path);
        if (!match.hasMatch())
            return;
        start = match.capturedStart();
        length = match.capturedLength();
        width = match.captured(1).toInt();
    }
    const int digits = QString::number(std::abs(static_cast<long long>(frame))).size();
    // No name on disk is longer than a path can be, whatever width a strange name asks for.
    const int zeros = width > 1 ? std::clamp(width - digits, 0, PATH_MAX) : 0;
    path.replace(start, length, QString(zeros, QLatin1Char('0')) + QString::number(frame));
}

} // namespace

FCPreviewInfo::FCPreviewInfo(const QString& selected, int wanted)
    : path(selected)
    , frame(wanted)
{
    isSequence = parseRange(path, &first, &last);
    if (isSequence)
        frame = std::max(std::min(frame, last), first);
    substituteFrame(path, frame);
}

} // namespace Halvern::UI
