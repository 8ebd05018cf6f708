#include "pictures/Program.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QImage>
#include <cmath>
#include <sys/stat.h>

using namespace Halvern::UI;
using namespace Halvern::UI::PictureProtocol;

/// The protocol, and what the program answers without OpenImageIO.
class PictureProgramTest : public Test
{
    Q_OBJECT

private slots:
    void takesFramesApart()
    {
        Answer sent;
        sent.id = 7;
        sent.size = {2, 1};
        sent.pixels = "12345678";
        sent.pixelAspect = 2;
        sent.depth = QString(5000, QLatin1Char('x'));
        for (int i = 0; i < 1000; ++i)
            sent.channels << QString(1000, QChar(0x20ac));
        const QByteArray stream = hello() + frame(sent) + frame(Request{8, "a\xff", 3, 4, {}});
        Frames frames;
        QList<QByteArray> payloads;
        for (const char byte : stream) {
            frames.add(QByteArray(1, byte));
            while (const auto payload = frames.take())
                payloads << *payload;
        }
        QCOMPARE(payloads.size(), 3);
        QVERIFY(isHello(payloads[0]));
        QVERIFY(!isHello(payloads[0] + "x"));
        const auto answer = readAnswer(payloads[1]);
        QVERIFY(answer && payloads[1].size() <= LongestText + 8);
        QCOMPARE(answer->pixels, sent.pixels);
        QVERIFY(answer->depth.startsWith(QLatin1String("xxx")));
        QCOMPARE(readRequest(payloads[2])->path, QByteArray("a\xff"));

        // Too long a frame, announced after a good one, and every damaged answer.
        frames.add(hello() + QByteArray("\x00\x02\x00\x01", 4));
        QVERIFY(frames.take());
        QVERIFY(!frames.take());
        QVERIFY(frames.isRefused());
        for (int i = 0; i < payloads[1].size(); i += 97)
            QVERIFY(!readAnswer(payloads[1].left(i)));
        QVERIFY(!readRequest(frame(Request{1, "a", LongestSide + 1, 1, {}}).mid(4)));
        std::vector<Answer> damaged(7, sent);
        damaged[0].size = {3, 1};
        damaged[1].size = {-2, -1};
        damaged[2].size = {1 << 30, 1 << 30};
        damaged[3].pixelAspect = std::nan("");
        damaged[4].dataWindow = {INT_MIN, 0, 1, 1};
        damaged[5].frameRate = -1;
        damaged[6].pixelAspect = 1e-300;
        for (const Answer& one : damaged)
            QVERIFY(!readAnswer(frame(one).mid(4)));
    }

    void readsPicturesWithQt()
    {
        QImage image(256, 2, QImage::Format_RGBA8888);
        for (int x = 0; x < 256; ++x) {
            image.setPixelColor(x, 0, QColor(x, 255 - x, 128));
            image.setPixelColor(x, 1, QColor(200, 100, 0, x));
        }
        const QString png = m_folder.filePath(QStringLiteral("\u00fcber.png"));
        QVERIFY(image.save(png));
        Answer answer = m_program.ask(png);
        QCOMPARE(answer.reason, QString());
        const QImage wanted = image.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        QCOMPARE(answer.pixels, QByteArray(reinterpret_cast<const char*>(wanted.constBits()), 256 * 2 * 4));
        QCOMPARE(answer.depth, QStringLiteral("8 bit"));
        QCOMPARE(answer.channels.join(QString()), QStringLiteral("RGBA"));

        answer = m_program.ask(png, {0, 100});
        QCOMPARE(answer.fullSize, QSize(256, 2));
        QCOMPARE(answer.size, QSize(0, 0));
        QCOMPARE(m_program.ask(png, {64, 64}).size, QSize(64, 1));

        QImage lying(64, 32, QImage::Format_RGB32);
        lying.fill(Qt::red);
        const QString jpeg = m_folder.filePath(QStringLiteral("red.jpg"));
        QVERIFY(lying.save(jpeg, nullptr, 100));
        answer = m_program.ask(jpeg, {16, 16});
        QCOMPARE(answer.size, QSize(16, 8));
        QVERIFY(uchar(answer.pixels[0]) > 250 && uchar(answer.pixels[1]) < 5 &&
                uchar(answer.pixels[3]) == 255);
    }

    void showsFonts()
    {
        const QString file = QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
        if (!QFile::exists(file))
            QSKIP("This machine has no DejaVu Sans.");
        const Answer answer = m_program.ask(file, {300, 300});
        QCOMPARE(answer.reason, QString());
        QVERIFY(answer.font.startsWith(QLatin1String("DejaVu Sans")));
        QCOMPARE(answer.size.width(), 300);
        int inked = 0;
        for (int i = 3; i < answer.pixels.size(); i += 4)
            inked += answer.pixels[i] != 0;
        const auto all = answer.pixels.size() / 4;
        QVERIFY2(inked > all / 10 && inked < all / 2, qPrintable(QString::number(inked)));
    }

    void saysWhyThereIsNoPicture()
    {
        QVERIFY(SampleFiles::make(m_folder.path(), "empty.exr"));
        QVERIFY(SampleFiles::make(m_folder.path(), "text.png", 5000));
        QVERIFY(mkfifo(qPrintable(m_folder.filePath("pipe.png")), 0600) == 0);
        QFile cut(m_folder.filePath("cut.png"));
        QVERIFY(QImage(64, 64, QImage::Format_RGB32).save(cut.fileName()) && cut.resize(60));
        for (const auto& [name, reason] : {std::pair("none.exr", "No such file or directory."),
                                           {".", "It is not a file."},
                                           {"pipe.png", "It is not a file."},
                                           {"empty.exr", "The file is empty."},
                                           {"text.png", "It is not a picture that can be read here."},
                                           {"cut.png", ""}}) {
            const Answer answer = m_program.ask(m_folder.filePath(name));
            QVERIFY2(!answer.reason.isEmpty() && answer.reason.endsWith(reason), name);
            QVERIFY2(answer.pixels.isEmpty(), name);
        }
    }

    void answersTheNewestAndEnds()
    {
        Program program(QStringLiteral("coreui-pictures"));
        QVERIFY(isHello(program.next()));
        // Its address space is limited.
        const QString limits = QString("/proc/%1/limits").arg(program.process().processId());
        if (qEnvironmentVariableIsEmpty("COREUI_PICTURES_MEMORY"))
            QVERIFY(SampleFiles::read(limits).contains("address space         4294967296 "));
        const QByteArray path = m_folder.filePath(QStringLiteral("none")).toUtf8();
        QByteArray requests;
        for (quint32 id = 1; id <= 3; ++id)
            requests += frame(Request{id, path, 9, 9, {}});
        program.process().write(requests);
        QCOMPARE(readAnswer(program.next())->id, 3U);
        program.process().closeWriteChannel();
        QVERIFY(program.process().waitForFinished());
        QCOMPARE(program.process().exitCode(), 0);
        QCOMPARE(program.next(), QByteArray());
    }

private:
    QTemporaryDir m_folder;
    Program m_program{QStringLiteral("coreui-pictures")};
};

QTEST_GUILESS_MAIN(PictureProgramTest)
#include "PictureProgramTest.moc"
