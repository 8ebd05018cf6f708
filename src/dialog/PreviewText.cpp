#include "dialog/PreviewText.h"

#include "dialog/FCPreviewInfo.h"
#include "frames/Placeholder.h"

#include <QCoreApplication>
#include <algorithm>

namespace Halvern::UI::PreviewText {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("PreviewText", text);
}

// "RGBA", "RGB and 3 more channels", "2 channels".
QString channelText(const QStringList& channels)
{
    QString letters;
    for (const QString& channel : channels) {
        if (channel.size() == 1)
            letters += channel;
    }
    const auto others = channels.size() - letters.size();
    if (others == 0)
        return letters;
    if (letters.isEmpty())
        return others == 1 ? channels.first() : tr("%1 channels").arg(others);
    return others == 1 ? tr("%1 and 1 more channel").arg(letters)
                       : tr("%1 and %2 more channels").arg(letters).arg(others);
}

QString missingText(qint64 count)
{
    if (count <= 0)
        return {};
    return count == 1 ? tr("1 frame missing") : tr("%1 frames missing").arg(count);
}

} // namespace

bool isPreviewable(const QString& extension)
{
    static const std::set<QString> fonts = {QStringLiteral("ttf"), QStringLiteral("otf"),
                                            QStringLiteral("dfont"), QStringLiteral("pfa"),
                                            QStringLiteral("pfb")};
    static const std::set<QString> never = [] {
        std::set<QString> all;
        for (const char* one :
             {"3dl",   "abc",  "aif",   "aiff", "autosave", "blut", "cc",  "ccc", "chan", "cms",
              "cpp",   "csp",  "csv",   "cub",  "cube",     "dll",  "dmg", "doc", "docx", "dtex",
              "dylib", "edl",  "exe",   "fbx",  "htm",      "html", "ini", "log", "mb",   "mp3",
              "mtl",   "ocio", "pdf",   "ptx",  "py",       "pyc",  "rib", "rtf", "so",   "txt",
              "wav",   "wave", "xls",   "xml",  "zip", // the suite's own from here on
              "hvs",   "hvp",  "hvarc", "hvvf"})
            all.insert(QLatin1String(one));
        return all;
    }();
    return fonts.count(extension) > 0 || never.count(extension) == 0;
}

std::set<int> framesAmong(const QStringList& paths, const QString& pattern)
{
    // The two names differ from the first character of the frame to the last.
    const QString least = Placeholder::withFrame(pattern, 0);
    const QString greatest = Placeholder::withFrame(pattern, FCPreviewInfo::NoFrame);
    const auto before = std::mismatch(least.begin(), least.end(), greatest.begin(), greatest.end());
    const auto after = std::mismatch(least.rbegin(), least.rend(), greatest.rbegin(), greatest.rend());
    const auto start = int(before.first - least.begin());
    const auto tail = int(after.first - least.rbegin());
    std::set<int> frames;
    for (const QString& path : paths) {
        QString number = path.mid(start, path.size() - start - tail);
        while (number.size() > 1 && number.startsWith(QLatin1Char('0')))
            number.remove(0, 1);
        bool isNumber = false;
        const int frame = number.toInt(&isNumber);
        if (isNumber && Placeholder::withFrame(pattern, frame) == path)
            frames.insert(frame);
    }
    return frames;
}

Base::FrameRanges runsOf(const QString& selected)
{
    const QString name = selected.mid(selected.lastIndexOf(QLatin1Char('/')) + 1);
    if (!name.contains(QLatin1String(" (")) || !name.endsWith(QLatin1Char(')')) ||
        !Placeholder::splitRange(selected))
        return {};
    return Base::FrameRanges::parseDisplayName(name.toStdString()).value_or(Base::FrameRanges());
}

QString describe(const Picture& picture, const QString& selected, const Base::FrameRanges& present)
{
    if (!picture.font.isEmpty())
        return picture.font;
    QStringList parts;
    parts << tr("%1 x %2").arg(picture.fullSize.width()).arg(picture.fullSize.height());
    if (picture.pixelAspect != 1)
        parts << tr("pixel aspect %1").arg(picture.pixelAspect);
    parts << (picture.depth + QLatin1Char(' ') + channelText(picture.channels)).trimmed()
          << picture.colourSpace << picture.timeCode;
    const auto sequence = Placeholder::splitRange(selected);
    const auto frames = sequence ? framesAmong({picture.path}, sequence->name) : std::set<int>();
    for (const int frame : frames)
        parts << tr("frame %1 of %2-%3").arg(frame).arg(sequence->first).arg(sequence->last);
    if (!frames.empty() && !present.isEmpty())
        parts << missingText(qint64(sequence->last) - sequence->first + 1 - present.count());
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

} // namespace Halvern::UI::PreviewText
