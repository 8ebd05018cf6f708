#include "pictures/Program.h"
#include "support/Test.h"

#include <OpenImageIO/imageio.h>
#include <array>
#include <cmath>
#include <functional>

using namespace OIIO;

namespace {

using Pixel = std::array<float, 4>;
using Pixels = std::function<Pixel(int x, int y)>;

float srgb(float light)
{
    const float shown = light <= 0.0031308F ? 12.92F * light : 1.055F * std::pow(light, 1 / 2.4F) - 0.055F;
    return std::clamp(shown, 0.0F, 1.0F);
}

Pixel shown(float r, float g, float b, float a = 1)
{
    return {srgb(r) * a, srgb(g) * a, srgb(b) * a, a};
}

Pixel grey(float value)
{
    return {value, value, value, 1};
}

Pixel translucent(float light, float alpha)
{
    return {0.8F * light, 0.4F * light, 0, alpha};
}

Pixels all(Pixel pixel)
{
    return [pixel](int, int) { return pixel; };
}

float cineon(float code)
{
    const auto light = [](float of) { return std::pow(10.0F, (of - 685) * 0.002F / 0.6F); };
    return srgb(std::max(0.0F, (light(code) - light(95)) / (1 - light(95))));
}

ImageSpec specOf(int width, int height, std::vector<std::string> channels, TypeDesc type)
{
    ImageSpec spec(width, height, int(channels.size()), type);
    spec.channelnames = std::move(channels);
    const auto alpha = std::find(spec.channelnames.begin(), spec.channelnames.end(), "A");
    spec.alpha_channel = alpha == spec.channelnames.end() ? -1 : int(alpha - spec.channelnames.begin());
    return spec;
}

template <class Value>
ImageSpec with(ImageSpec spec, const char* name, const Value& value)
{
    spec.attribute(name, value);
    return spec;
}

ImageSpec within(ImageSpec spec, int x, int y, int fullWidth, int fullHeight)
{
    spec.x = x;
    spec.y = y;
    spec.full_width = fullWidth;
    spec.full_height = fullHeight;
    return spec;
}

ImageSpec tiled(ImageSpec spec)
{
    spec.tile_width = spec.tile_height = 16;
    return spec;
}

// Values of a pixel in the data window, for the channels of the spec.
bool write(ImageOutput& output, const ImageSpec& spec, const Pixels& pixels)
{
    std::vector<float> values;
    for (int y = 0; y < spec.height; ++y) {
        for (int x = 0; x < spec.width; ++x) {
            const Pixel pixel = pixels(x, y);
            for (int c = 0; c < spec.nchannels; ++c)
                values.push_back(pixel[size_t(c % 4)]);
        }
    }
    return output.write_image(TypeDesc::FLOAT, values.data());
}

} // namespace

/// The pixels of files that are read with OpenImageIO, beside values that are computed here.
class PictureColoursTest : public Test
{
    Q_OBJECT

    QString file(const char* name) { return m_folder.filePath(QString::fromLatin1(name)); }

    bool make(const QString& name, const ImageSpec& spec, const Pixels& pixels)
    {
        const auto output = ImageOutput::create(name.toStdString());
        return output && output->open(name.toStdString(), spec) && write(*output, spec, pixels) &&
               output->close();
    }

    // What is wrong with the answer, or an empty text.
    static QString fault(const Program::Answer& answer, const QSize& size, const Pixels& wanted)
    {
        if (!answer.reason.isEmpty() || answer.size != size)
            return QString("%1 %2 x %3")
                .arg(answer.reason)
                .arg(answer.size.width())
                .arg(answer.size.height());
        const auto* byte = reinterpret_cast<const uchar*>(answer.pixels.constData());
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                for (const float value : wanted(x, y)) {
                    if (std::abs(*byte++ - std::lround(value * 255)) > 1)
                        return QString("%1, %2: %3 for %4").arg(x).arg(y).arg(byte[-1]).arg(value * 255);
                }
            }
        }
        return {};
    }

private slots:
    void showsRightPixels()
    {
        const auto row = [&](const char* title, const char* name, const ImageSpec& spec,
                             const Pixels& written, const Pixels& wanted, const QSize& room = {4096, 4096},
                             const QSize& size = {}) {
            QVERIFY2(make(file(name), spec, written), title);
            const Program::Answer answer =
                m_program.ask(file(name), quint32(room.width()), quint32(room.height()));
            const QSize full(spec.full_width, spec.full_height);
            QCOMPARE(title + fault(answer, size.isEmpty() ? full : size, wanted), QString(title));
        };
        const std::vector<std::string> rgb{"R", "G", "B"};
        const std::vector<std::string> rgba{"R", "G", "B", "A"};
        const Pixels ramp = [](int x, int) { return Pixel{float(x) / 255, float(255 - x) / 255, 0.5F, 1}; };

        row("8 bit png", "a.png", specOf(256, 1, rgb, TypeDesc::UINT8), ramp, ramp);
        row("16 bit tiff", "a.tif", specOf(256, 1, rgb, TypeDesc::UINT16), ramp, ramp);
        row(
            "alpha of png", "a.png", with(specOf(256, 1, rgba, TypeDesc::UINT8), "oiio:UnassociatedAlpha", 1),
            [](int x, int) { return translucent(1, float(x) / 255); },
            [](int x, int) { return translucent(float(x) / 255, float(x) / 255); });
        const Pixels bright = [](int x, int) { return Pixel{float(x) / 16, float(x) / 64, 0, 1}; };
        const Pixels brightShown = [](int x, int) { return shown(float(x) / 16, float(x) / 64, 0); };
        row("half floats beyond 1", "a.exr", specOf(64, 1, rgb, TypeDesc::HALF), bright, brightShown);
        row("floats of tiff", "a.tif", specOf(64, 1, rgb, TypeDesc::FLOAT), bright, brightShown);
        row(
            "alpha of exr, and light without alpha", "a.exr", specOf(65, 1, rgba, TypeDesc::FLOAT),
            [](int x, int) {
                const float a = float(x) / 64;
                return x == 0 ? Pixel{0.5F, 0, 0, 0} : Pixel{0.5F * a, 0.25F * a, 0, a};
            },
            [](int x, int) {
                return x == 0 ? Pixel{srgb(0.5F), 0, 0, srgb(0.5F)} : shown(0.5F, 0.25F, 0, float(x) / 64);
            });
        row(
            "not a number, and infinite", "a.exr", specOf(3, 1, rgb, TypeDesc::HALF),
            [](int x, int) { return x == 0   ? grey(NAN)
                                    : x == 1 ? grey(INFINITY)
                                             : grey(-INFINITY); },
            [](int x, int) { return grey(x == 1 ? 1 : 0); });
        row(
            "log code values", "a.dpx",
            with(with(specOf(1024, 1, rgb, TypeDesc::UINT16), "oiio:BitsPerSample", 10), "oiio:ColorSpace",
                 "KodakLog"),
            [](int x, int) { return grey(float(x) / 1023); },
            [](int x, int) { return grey(cineon(float(x))); });
        row(
            "linear dpx", "a.dpx",
            with(with(specOf(64, 1, rgb, TypeDesc::UINT16), "oiio:BitsPerSample", 10), "oiio:ColorSpace",
                 "Linear"),
            [](int x, int) { return grey(float(x) / 64); },
            [](int x, int) { return grey(srgb(float(x) / 64)); });

        row("data window beyond the display window", "a.exr",
            within(specOf(4, 3, rgba, TypeDesc::HALF), -2, -1, 4, 5), all(grey(1)), [](int x, int y) {
                return x < 2 && y < 2 ? grey(1) : Pixel{0, 0, 0, 0};
            });
        row("data window elsewhere", "a.exr", within(specOf(4, 4, rgba, TypeDesc::HALF), 100, 100, 4, 4),
            all(grey(1)), all({0, 0, 0, 0}));
        const Pixels columns = [](int x, int) { return grey(float(x) / 8); };
        const Pixels columnsShown = [](int x, int) { return grey(srgb(float(x) / 8)); };
        row("pixels twice as wide", "a.exr",
            with(specOf(8, 4, rgb, TypeDesc::HALF), "PixelAspectRatio", 2.0F), columns, columnsShown,
            {4096, 4096}, {8, 2});
        row(
            "pixels half as wide", "a.exr", with(specOf(4, 8, rgb, TypeDesc::HALF), "PixelAspectRatio", 0.5F),
            [](int, int y) { return grey(float(y) / 8); },
            [](int, int y) { return grey(srgb(float(y) / 8)); }, {4096, 4096}, {2, 8});
        // Every pixel of the result is the mean of 4 by 4.
        const Pixels fine = [](int x, int y) {
            return grey(float(x % 4 + y % 4) / 8 + float(y / 4 % 7) / 32);
        };
        const Pixels mean = [](int, int y) { return grey(srgb(3.0F / 8 + float(y % 7) / 32)); };
        row("scaled down from rows", "a.exr", specOf(16, 2048, rgb, TypeDesc::HALF), fine, mean, {4, 512},
            {4, 512});
        row("scaled down from tiles", "a.exr", tiled(specOf(16, 2048, rgb, TypeDesc::HALF)), fine, mean,
            {4, 8192}, {4, 512});
        row(
            "lying on its side", "a.tif", with(specOf(2, 1, rgb, TypeDesc::UINT8), "Orientation", 6),
            [](int x, int) { return grey(float(x)); }, [](int, int y) { return grey(float(y)); },
            {4096, 4096}, {1, 2});

        row("turned in no way", "a.exr", with(specOf(2, 1, rgb, TypeDesc::HALF), "Orientation", 9),
            all(grey(1)), all(grey(1)));

        const Pixels values = all({0.5F, 0.25F, 0.125F, 0.5F});
        row("one channel", "a.exr", specOf(1, 1, {"Z"}, TypeDesc::FLOAT), values, all(grey(srgb(0.5F))));
        row("grey and alpha", "a.exr", specOf(1, 1, {"Y", "A"}, TypeDesc::FLOAT), all({0.25F, 0.5F, 0, 0}),
            all(shown(0.5F, 0.5F, 0.5F, 0.5F)));
        row("two channels", "a.exr", specOf(1, 1, {"u", "v"}, TypeDesc::FLOAT), values,
            all(grey(srgb(0.5F))));
        row("a layer beside others", "a.exr",
            specOf(1, 1, {"N.X", "beauty.R", "beauty.G", "beauty.B", "x.Y"}, TypeDesc::HALF), values,
            all(shown(0.25F, 0.125F, 0.5F)));
    }

    void readsASmallerLevel()
    {
        const std::string path = file("mip.exr").toStdString();
        auto output = ImageOutput::create(path);
        ImageSpec spec = tiled(specOf(64, 64, {"R", "G", "B"}, TypeDesc::HALF));
        spec.attribute("textureformat", "Plain Texture");
        for (int side = 64; side > 0; side /= 2) {
            spec.width = spec.height = spec.full_width = spec.full_height = side;
            const float value = side == 64 ? 0.125F : side == 32 ? 0.25F : 0.5F;
            QVERIFY(output->open(path, spec, side == 64 ? ImageOutput::Create : ImageOutput::AppendMIPLevel));
            QVERIFY(write(*output, spec, all(grey(value))));
        }
        output.reset();
        const std::pair<int, float> rows[] = {{64, 0.125F}, {40, 0.125F}, {32, 0.25F}, {16, 0.5F}, {1, 0.5F}};
        for (const auto& [side, value] : rows) {
            const auto answer = m_program.ask(file("mip.exr"), quint32(side), quint32(side));
            QCOMPARE(fault(answer, {side, side}, all(grey(srgb(value)))), QString());
        }
    }

    void followsAConfiguration()
    {
        QFile config(file("config.ocio"));
        QVERIFY(config.open(QIODevice::WriteOnly));
        // Files that are called dark are half as bright as others. The display shows squares.
        config.write(
            "ocio_profile_version: 2\n"
            "roles: {default: light, scene_linear: light}\n"
            "file_rules:\n"
            "  - !<Rule> {name: dark, pattern: \"*dark*\", extension: \"*\", colorspace: dim}\n"
            "  - !<Rule> {name: Default, colorspace: default}\n"
            "displays:\n"
            "  screen:\n"
            "    - !<View> {name: plain, colorspace: shown}\n"
            "colorspaces:\n"
            "  - !<ColorSpace> {name: light}\n"
            "  - !<ColorSpace> {name: dim, to_reference: !<MatrixTransform> "
            "{matrix: [0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1]}}\n"
            "  - !<ColorSpace> {name: shown, from_reference: !<ExponentTransform> {value: [2, 2, 2, 1]}}\n");
        config.close();
        Program program(QString("coreui-pictures-oiio"), config.fileName());
        const Pixels written = [](int x, int) { return grey(float(x) / 15); };
        for (const char* name : {"dark.exr", "other.exr", "other.jpg", "dark.dpx"}) {
            const bool isDark = name[0] == 'd';
            QVERIFY(make(file(name), specOf(16, 1, {"R", "G", "B"}, TypeDesc::HALF), written));
            const Program::Answer answer = program.ask(file(name));
            QCOMPARE(answer.colourSpace, isDark ? QString("dim") : QString("light"));
            const auto wanted = [=](int x, int) {
                const float light = float(x) / 15 / (isDark ? 2.0F : 1.0F);
                return grey(light * light);
            };
            if (!answer.compression.contains(QLatin1String("jpeg")))
                QCOMPARE(fault(answer, {16, 1}, wanted), QString());
        }
        Program lost(QString("coreui-pictures-oiio"), file("none.ocio"));
        for (const char* name : {"dark.exr", "other.exr"})
            QVERIFY(lost.ask(file(name)).reason.startsWith(QLatin1String("The OCIO configuration cannot")));
    }

    void describesFiles()
    {
        ImageSpec spec = within(specOf(8, 4, {"R", "G", "B", "depth.Z"}, TypeDesc::HALF), 2, 1, 16, 8);
        const int rate[] = {24000, 1001};
        const unsigned code[] = {0x01020304, 0};
        spec.attribute("FramesPerSecond", TypeRational, rate);
        spec.attribute("smpte:TimeCode", TypeTimeCode, code);
        spec.attribute("compression", "piz");
        QVERIFY(make(file("a.exr"), spec, all(grey(1))));
        const Program::Answer answer = m_program.ask(file("a.exr"), 0, 0);
        QCOMPARE(answer.reason, QString());
        QVERIFY(answer.pixels.isEmpty());
        QCOMPARE(answer.fullSize, QSize(16, 8));
        QCOMPARE(answer.dataWindow, QRect(2, 1, 8, 4));
        QCOMPARE(answer.channels.join(QLatin1Char(' ')), QString("R G B depth.Z"));
        QCOMPARE(
            QStringList({answer.depth, answer.compression, answer.colourSpace, answer.timeCode}),
            QStringList({QString("half float"), QString("piz"), QString("linear"), QString("01:02:03:04")}));
        QVERIFY(std::abs(answer.frameRate - 23.976) < 0.001);
        QVERIFY(QFile::copy(file("a.exr"), file("a?b.exr")));
        QCOMPARE(m_program.ask(file("a?b.exr")).depth, QString("half float"));

        // What is left of a file is described, too.
        QFile cut(file("a.exr"));
        QVERIFY(cut.resize(cut.size() - 60));
        const Program::Answer part = m_program.ask(file("a.exr"));
        QVERIFY(!part.reason.isEmpty() && part.pixels.isEmpty());
    }

private:
    QTemporaryDir m_folder;
    Program m_program{QString("coreui-pictures-oiio")};
};

QTEST_GUILESS_MAIN(PictureColoursTest)
#include "PictureColoursTest.moc"
