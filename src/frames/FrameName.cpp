#include "frames/FrameName.h"

#include "base/Text.h"
#include "frames/Placeholder.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace Halvern::UI::FrameName {

namespace {

constexpr int WidestSmallestPadding = 4;
int paddedWidth = WidestSmallestPadding;

struct DigitRun
{
    int begin = 0;
    int length = 0; // 0 where there is no frame number
};

// Searches for the frame number. lastDot is the index of the last dot, or negative.
template <class IsDigit>
DigitRun findFrameDigits(int length, int lastDot, IsDigit isDigit)
{
    if (length == 0 || lastDot == 0)
        return {};
    const bool numericExtension = lastDot > 0 && lastDot + 1 < length && isDigit(lastDot + 1);
    int end = lastDot < 0 || numericExtension ? length - 1 : lastDot;
    // The last digit of the number never stands first in the name: "1.exr" is no frame, "01.exr" is one.
    while (end > 0 && !isDigit(end))
        --end;
    if (end <= 0)
        return {};
    int begin = end;
    while (begin > 0 && isDigit(begin - 1))
        --begin;
    return {begin, end + 1 - begin};
}

} // namespace

bool read(const char* name, int& frame, char* pattern, int& digits, bool& padded)
{
    const int length = static_cast<int>(std::strlen(name));
    const char* dot = std::strrchr(name, '.');
    const DigitRun run = findFrameDigits(length, dot ? static_cast<int>(dot - name) : -1,
                                         [name](int i) { return Base::isDigit(name[i]); });
    if (run.length == 0)
        return false;
    const long number = std::strtol(name + run.begin, nullptr, 10);
    if (number > INT_MAX)
        return false;
    frame = static_cast<int>(number);
    digits = run.length;
    padded = run.length > 1 && name[run.begin] == '0';
    std::memcpy(pattern, name, static_cast<std::size_t>(run.begin));
    pattern[run.begin] = Placeholder::Hash;
    const char* suffix = name + run.begin + run.length;
    std::memcpy(pattern + run.begin + 1, suffix, std::strlen(suffix) + 1);
    return true;
}

bool read(const QString& name, QString& pattern, int& frame)
{
    const DigitRun run =
        findFrameDigits(static_cast<int>(name.size()), static_cast<int>(name.lastIndexOf(QLatin1Char('.'))),
                        [&name](int i) { return name.at(i).isDigit(); });
    if (run.length == 0)
        return false;
    qint64 number = 0;
    for (int i = run.begin; i < run.begin + run.length; ++i) {
        number = 10 * number + name.at(i).digitValue();
        if (number > INT_MAX)
            return false;
    }
    frame = static_cast<int>(number);
    pattern = name;
    pattern.replace(run.begin, run.length, QString(run.length, QLatin1Char(Placeholder::Hash)));
    if (run.length > 1 && name.at(run.begin) == QLatin1Char('0'))
        paddedWidth = qMin(paddedWidth, run.length);
    return true;
}

bool reconcilePatterns(QString& a, QString& b)
{
    if (a == b)
        return true;
    using Placeholder::after, Placeholder::before;
    if (before(a) != before(b) || after(a) != after(b))
        return false;
    const QString common = before(b).toString() + QLatin1Char(Placeholder::Hash) + after(b).toString();
    a = b = common;
    return true;
}

int smallestPaddedWidth()
{
    return paddedWidth;
}

void resetSmallestPaddedWidth()
{
    paddedWidth = WidestSmallestPadding;
}

} // namespace Halvern::UI::FrameName
