#include "pictures/Program.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <OpenImageIO/imageio.h>

namespace {

QByteArray littleEndian(std::initializer_list<quint32> numbers)
{
    QByteArray bytes;
    for (const quint32 number : numbers) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes += char(number >> shift);
    }
    return bytes;
}

// 2 by 1 pixels of three channels, then a colour table, resources and layers of no length.
QByteArray photoshop()
{
    return QByteArray::fromHex("384250530001000000000000000300000001000000020008000300000000"
                               "00000000000000000000101030305050");
}

// The negative of a camera: 64 by 64 pixels of 16 bits with the same brightness. Their filters are red and
// green in one row, green and blue in the next.
QByteArray cameraRaw()
{
    constexpr quint32 byte = 1, ascii = 2, shortNumber = 3, number = 4;
    const quint32 fields[][4] = {
        {256, number, 1, 64},          {257, number, 1, 64},
        {258, shortNumber, 1, 16},     {259, shortNumber, 1, 1}, // not compressed
        {262, shortNumber, 1, 32803},                            // filters
        {271, ascii, 4, 0x00656e4f},                             // "One"
        {272, ascii, 4, 0x006f7754},   {273, number, 1, 256},    // where the pixels begin
        {277, shortNumber, 1, 1},      {278, number, 1, 64},
        {279, number, 1, 64 * 64 * 2}, {33421, shortNumber, 2, 0x00020002},
        {33422, byte, 4, 0x02010100}, // red, green, green, blue
        {50706, byte, 4, 0x00000401}};
    QByteArray file = QByteArray("II*\0", 4) + littleEndian({8}) + QByteArray("\x0e\0", 2);
    for (const auto& [tag, type, count, value] : fields)
        file += littleEndian({tag | type << 16, count, value});
    return file.leftJustified(256, '\0') + QByteArray("\0\x60", 2).repeated(64 * 64);
}

QByteArray chunk(const char* name, const QByteArray& contents)
{
    return name + littleEndian({quint32(contents.size())}) + contents;
}

// 16 by 16 pixels, not compressed: a red picture and a blue one.
QByteArray movie()
{
    constexpr quint32 side = 16, bytes = side * side * 3;
    const QByteArray header = littleEndian({41667, 0, 0, 0, 2, 0, 1, bytes, side, side, 0, 0, 0, 0});
    const QByteArray stream =
        "vidsDIB " + littleEndian({0, 0, 0, 1, 24, 0, 2, bytes, 0, 0, 0, side | side << 16});
    const QByteArray format = littleEndian({40, side, side, 1 | 24 << 16, 0, bytes, 0, 0, 0, 0});
    const auto picture = [](const QByteArray& bgr) {
        return chunk("00db", QByteArray::fromHex(bgr).repeated(side * side));
    };
    const QByteArray streams = chunk("LIST", "strl" + chunk("strh", stream) + chunk("strf", format));
    return chunk("RIFF", "AVI " + chunk("LIST", "hdrl" + chunk("avih", header) + streams) +
                             chunk("LIST", "movi" + picture("0000ff") + picture("ff0000")));
}

} // namespace

/// Files of single colours, in formats that OpenImageIO reads and does not write.
class PictureFormatsTest : public Test
{
    Q_OBJECT

private slots:
    void reads_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QByteArray>("colour");
        const auto row = [](const char* format, const char* name, const QByteArray& contents, QSize size,
                            const char* colour) {
            QTest::newRow(format) << QString(name) << contents << size << QByteArray::fromHex(colour);
        };
        row("psd", "a.psd", photoshop(), {2, 1}, "103050ff");
        row("raw", "a.dng", cameraRaw(), {64, 64}, "a5a5a5ff"); // 3/8 of white, in sRGB
        row("ffmpeg", "a.avi", movie(), {16, 16}, "ff0000ff");
    }

    void reads()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, contents);
        QFETCH(QSize, size);
        QFETCH(QByteArray, colour);
        const QString formats = QString::fromStdString(OIIO::get_string_attribute("format_list"));
        if (!formats.split(',').contains(QTest::currentDataTag()))
            QSKIP("This OpenImageIO was built without a reader for it.");
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::write(folder.filePath(name), contents));
        Program program(QStringLiteral("coreui-pictures-oiio"));
        const Program::Answer answer = program.ask(folder.filePath(name));
        QCOMPARE(answer.reason, QString());
        QCOMPARE(answer.size, size);
        QCOMPARE(answer.pixels, colour.repeated(size.width() * size.height()));
    }
};

QTEST_GUILESS_MAIN(PictureFormatsTest)
#include "PictureFormatsTest.moc"
