#include "pictures/Program.h"
#include "support/SampleFiles.h"
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

Pixel light(float value)
{
    return grey(srgb(value));
}

Pixel translucent(float light, float alpha)
{
    return {0.8F * light, 0.4F * light, 0, alpha};
}

Pixels all(Pixel pixel)
{
    return [pixel](int, int) { return pixel; };
}

// The colours of 0, 1 / steps, 2 / steps, …
Pixels across(float steps, Pixel (*colour)(float))
{
    return [=](int x, int) { return colour(float(x) / steps); };
}

Pixels turned(const Pixels& pixels)
{
    return [=](int x, int y) { return pixels(y, x); };
}

float cineon(float code)
{
    const auto light = [](float of) { return std::pow(10.0F, (of - 685) * 0.002F / 0.6F); };
    return srgb(std::max(0.0F, (light(code) - light(95)) / (1 - light(95))));
}

ImageSpec named(ImageSpec spec, std::vector<std::string> channels)
{
    spec.channelnames = std::move(channels);
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
    spec.set_roi_full(ROI(0, fullWidth, 0, fullHeight));
    return spec;
}

// Values of a pixel in the data window, for the channels of the spec.
bool write(ImageOutput& output, const ImageSpec& spec, const Pixels& pixels)
{
    std::vector<float> values;
    for (int i = 0; i < spec.width * spec.height; ++i) {
        const Pixel pixel = pixels(i % spec.width, i / spec.width);
        for (int c = 0; c < spec.nchannels; ++c)
            values.push_back(pixel[size_t(c % 4)]);
    }
    return output.write_image(TypeFloat, values.data());
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
            return QString::asprintf("%d x %d ", answer.size.width(), answer.size.height()) + answer.reason;
        const auto* byte = reinterpret_cast<const uchar*>(answer.pixels.constData());
        for (int i = 0; i < size.width() * size.height(); ++i) {
            for (const float value : wanted(i % size.width(), i / size.width())) {
                if (std::abs(*byte++ - std::lround(value * 255)) > 1)
                    return QString("pixel %1: %2 for %3").arg(i).arg(byte[-1]).arg(value * 255);
            }
        }
        return {};
    }

private slots:
    void showsRightPixels()
    {
        const auto row = [&](const char* title, const char* name, const ImageSpec& spec,
                             const Pixels& written, const Pixels& wanted, const QSize& size = {},
                             const QSize& room = {4096, 4096}) {
            QVERIFY2(make(file(name), spec, written), title);
            const QSize shown = size.isEmpty() ? QSize(spec.full_width, spec.full_height) : size;
            QCOMPARE(title + fault(m_program.ask(file(name), room), shown, wanted), QString(title));
        };
        const Pixels ramp = across(255, [](float value) { return Pixel{value, 1 - value, 0.5F, 1}; });
        row("8 bit png", "a.png", ImageSpec(256, 1, 3, TypeUInt8), ramp, ramp);
        row("16 bit tiff", "a.tif", ImageSpec(256, 1, 3, TypeUInt16), ramp, ramp);
        row("alpha of png", "a.png", with(ImageSpec(256, 1, 4, TypeUInt8), "oiio:UnassociatedAlpha", 1),
            across(255, [](float alpha) { return translucent(1, alpha); }),
            across(255, [](float alpha) { return translucent(alpha, alpha); }));
        const Pixels bright = across(16, [](float value) { return Pixel{value, value / 4, 0, 1}; });
        const Pixels brightShown = across(16, [](float value) { return shown(value, value / 4, 0); });
        row("half floats beyond 1", "a.exr", ImageSpec(64, 1, 3, TypeHalf), bright, brightShown);
        row("floats of tiff", "a.tif", ImageSpec(64, 1, 3, TypeFloat), bright, brightShown);
        row("alpha of exr", "a.exr", ImageSpec(65, 1, 4, TypeFloat),
            across(64, [](float a) { return translucent(0.625F * a, a); }),
            across(64, [](float a) { return shown(0.5F, 0.25F, 0, a); }));
        row("light without alpha", "a.exr", ImageSpec(1, 1, 4, TypeFloat), all({0.5F, 0, 0, 0}),
            all({srgb(0.5F), 0, 0, srgb(0.5F)}));
        row("not a number", "a.exr", ImageSpec(1, 1, 3, TypeHalf), all(grey(NAN)), all(grey(0)));
        row("infinite", "a.exr", ImageSpec(2, 1, 3, TypeHalf),
            across(1, [](float x) { return grey(x > 0 ? INFINITY : -INFINITY); }), across(1, grey));
        const ImageSpec dpx = with(ImageSpec(1024, 1, 3, TypeUInt16), "oiio:BitsPerSample", 10);
        row("log code values", "a.dpx", with(dpx, "oiio:ColorSpace", "KodakLog"), across(1023, grey),
            across(1, [](float code) { return grey(cineon(code)); }));
        row("linear dpx", "a.dpx", with(dpx, "oiio:ColorSpace", "Linear"), across(1023, grey),
            across(1023, light));

        row("data window beyond the display window", "a.exr",
            within(ImageSpec(4, 3, 4, TypeHalf), -2, -1, 4, 5), all(grey(1)), [](int x, int y) {
                return x < 2 && y < 2 ? grey(1) : Pixel{0, 0, 0, 0};
            });
        row("data window elsewhere", "a.exr", within(ImageSpec(4, 4, 4, TypeHalf), 100, 100, 4, 4),
            all(grey(1)), all({0, 0, 0, 0}));
        row("pixels twice as wide", "a.exr", with(ImageSpec(8, 4, 3, TypeHalf), "PixelAspectRatio", 2.0F),
            across(8, grey), across(8, light), {8, 2});
        row("pixels half as wide", "a.exr", with(ImageSpec(4, 8, 3, TypeHalf), "PixelAspectRatio", 0.5F),
            turned(across(8, grey)), turned(across(8, light)), {2, 8});
        // Every pixel of the result is the mean of 4 by 4.
        const Pixels fine = [](int x, int y) {
            return grey(float(x % 4 + y % 4) / 8 + float(y / 4 % 7) / 32);
        };
        const Pixels mean = [](int, int y) { return light(3.0F / 8 + float(y % 7) / 32); };
        const ImageSpec high(16, 2048, 3, TypeHalf);
        row("scaled down from rows", "a.exr", high, fine, mean, {4, 512}, {4, 512});
        ImageSpec tiled = high;
        tiled.tile_width = tiled.tile_height = 16;
        row("scaled down from tiles", "a.exr", tiled, fine, mean, {4, 512}, {4, 8192});
        row("lying on its side", "a.tif", with(ImageSpec(2, 1, 3, TypeUInt8), "Orientation", 6),
            across(1, grey), turned(across(1, grey)), {1, 2});
        row("turned in no way", "a.exr", with(ImageSpec(2, 1, 3, TypeHalf), "Orientation", 9), all(grey(1)),
            all(grey(1)));

        const Pixels values = all({0.5F, 0.25F, 0.125F, 0.5F});
        row("one channel", "a.exr", named(ImageSpec(1, 1, 1, TypeFloat), {"Z"}), values, all(light(0.5F)));
        row("grey and alpha", "a.exr", named(ImageSpec(1, 1, 2, TypeFloat), {"Y", "A"}),
            all({0.25F, 0.5F, 0, 0}), all(shown(0.5F, 0.5F, 0.5F, 0.5F)));
        row("two channels", "a.exr", named(ImageSpec(1, 1, 2, TypeFloat), {"u", "v"}), values,
            all(light(0.5F)));
        row("a layer beside others", "a.exr",
            named(ImageSpec(1, 1, 5, TypeHalf), {"N.X", "beauty.R", "beauty.G", "beauty.B", "x.Y"}), values,
            all(shown(0.25F, 0.125F, 0.5F)));
    }

    void readsASmallerLevel()
    {
        const std::string path = file("mip.exr").toStdString();
        auto output = ImageOutput::create(path);
        ImageSpec spec(64, 64, 3, TypeHalf);
        spec.tile_width = spec.tile_height = 16;
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
            const QSize size(side, side);
            QCOMPARE(fault(m_program.ask(file("mip.exr"), size), size, all(light(value))), QString());
        }
    }

    void followsAConfiguration()
    {
        // Files that are called dark are half as bright as others. The display shows squares.
        const QByteArray config =
            "ocio_profile_version: 2\n"
            "roles: {default: light, scene_linear: light}\n"
            "file_rules:\n"
            "  - !<Rule> {name: dark, pattern: '*dark*', extension: '*', colorspace: dim}\n"
            "  - !<Rule> {name: Default, colorspace: default}\n"
            "displays: {screen: [!<View> {name: plain, colorspace: shown}]}\n"
            "colorspaces:\n"
            "  - !<ColorSpace> {name: light}\n"
            "  - !<ColorSpace> {name: dim, to_reference: !<CDLTransform> {slope: [0.5, 0.5, 0.5]}}\n"
            "  - !<ColorSpace> {name: shown, from_reference: !<ExponentTransform> {value: [2, 2, 2, 1]}}\n";
        QVERIFY(SampleFiles::write(file("config.ocio"), config));
        Program program(QString("coreui-pictures-oiio"), file("config.ocio"));
        for (const char* name : {"dark.exr", "other.exr", "other.jpg", "dark.dpx"}) {
            const bool isDark = name[0] == 'd';
            QVERIFY(make(file(name), ImageSpec(16, 1, 3, TypeHalf), across(15, grey)));
            const Program::Answer answer = program.ask(file(name));
            QCOMPARE(answer.colourSpace, isDark ? QString("dim") : QString("light"));
            const Pixels wanted = across(isDark ? 30 : 15, [](float light) { return grey(light * light); });
            if (!answer.compression.contains(QLatin1String("jpeg")))
                QCOMPARE(fault(answer, {16, 1}, wanted), QString());
        }
        Program lost(QString("coreui-pictures-oiio"), file("none.ocio"));
        for (const char* name : {"dark.exr", "other.exr"})
            QVERIFY(lost.ask(file(name)).reason.startsWith(QLatin1String("The OCIO configuration cannot")));
    }

    void describesFiles()
    {
        ImageSpec spec = within(ImageSpec(8, 4, 4, TypeHalf), 2, 1, 16, 8);
        spec.channelnames[3] = "depth.Z";
        const int rate[] = {24000, 1001};
        const unsigned code[] = {0x01020304, 0};
        spec.attribute("FramesPerSecond", TypeRational, rate);
        spec.attribute("smpte:TimeCode", TypeTimeCode, code);
        spec.attribute("compression", "piz");
        QVERIFY(make(file("a.exr"), spec, all(grey(1))));
        const Program::Answer answer = m_program.ask(file("a.exr"), {0, 0});
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
