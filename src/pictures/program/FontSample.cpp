#include "pictures/program/FontSample.h"

#include "pictures/program/QtPictures.h"

#include <QFile>
#include <QGlyphRun>
#include <QPainter>
#include <QPainterPath>
#include <QRawFont>
#include <algorithm>

namespace Halvern::UI {

using namespace PictureProtocol;

namespace {

constexpr int LargestFont = 0x4000000;
constexpr int PixelSize = 96; // of the sample in its full size
constexpr int Margin = 24;

// The glyphs of the sample text in one line, without those that the font does not have. If it has none of
// them, its first glyphs.
QGlyphRun sampleLine(const QRawFont& font)
{
    QVector<quint32> glyphs = font.glyphIndexesForString(QStringLiteral("Hamburgefonstiv 0123456789"));
    glyphs.erase(std::remove(glyphs.begin(), glyphs.end(), 0U), glyphs.end());
    for (quint32 glyph = 1; glyphs.isEmpty() && glyph <= 20; ++glyph)
        glyphs << glyph;
    const QVector<QPointF> advances = font.advancesForGlyphIndexes(glyphs);
    QVector<QPointF> positions;
    QPointF next(Margin, Margin + font.ascent());
    for (const QPointF& advance : advances) {
        positions << next;
        next += advance;
    }
    QGlyphRun run;
    run.setRawFont(font);
    run.setGlyphIndexes(glyphs);
    run.setPositions(positions);
    const double height = 2 * Margin + font.ascent() + font.descent();
    run.setBoundingRect(QRectF(0, 0, next.x() + Margin, height));
    return run;
}

} // namespace

bool isFont(QFile& file)
{
    const QByteArray start = file.peek(4);
    return start == QByteArray("\0\1\0\0", 4) || start == "OTTO" || start == "true" || start == "ttcf";
}

Answer readFont(QFile& file, const Request& request)
{
    Answer answer;
    if (file.size() > LargestFont) {
        answer.reason = QStringLiteral("The font is larger than 64 MB.");
        return answer;
    }
    const QRawFont font(file.readAll(), PixelSize, QFont::PreferNoHinting);
    const QGlyphRun line = font.isValid() ? sampleLine(font) : QGlyphRun();
    const QSize size = line.boundingRect().size().toSize();
    if (size.isEmpty() || std::max(size.width(), size.height()) > int(LongestSide)) {
        answer.reason = QStringLiteral("The font cannot be read.");
        return answer;
    }
    answer.font = (font.familyName() + QLatin1Char(' ') + font.styleName()).trimmed();
    answer.fullSize = size;
    answer.dataWindow = QRect(QPoint(), size);
    const QSize fitted = fittingSize(size, 1, request);
    if (fitted.isEmpty())
        return answer;

    QImage image(fitted, QImage::Format_RGBA8888_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(double(fitted.width()) / size.width(), double(fitted.height()) / size.height());
    // Outlines: the glyphs are the font's own, whatever its hints and the settings of the user.
    for (int i = 0; i < line.glyphIndexes().size(); ++i) {
        const QPainterPath outline = font.pathForGlyph(line.glyphIndexes()[i]);
        painter.fillPath(outline.translated(line.positions()[i]), QColor(220, 220, 220));
    }
    painter.end();
    setPixels(answer, image);
    return answer;
}

} // namespace Halvern::UI
