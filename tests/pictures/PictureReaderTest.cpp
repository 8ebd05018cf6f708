#include "pictures/PictureReader.h"
#include "pictures/PictureCache.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QRandomGenerator>
#include <csignal>

using namespace Halvern::UI;

/// Reading pictures with a program that misbehaves, and keeping them.
class PictureReaderTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        qputenv("COREUI_PICTURES", FAKE_PICTURES);
        m_reader = std::make_unique<PictureReader>();
        m_log.clear();
        connect(m_reader.get(), &PictureReader::pictureRead, this, [this](const Picture& picture) {
            m_log << nameOf(picture.path);
            m_picture = picture;
        });
        connect(m_reader.get(), &PictureReader::pictureUnchanged, this,
                [this](const QString& path) { m_log << nameOf(path) + " is unchanged"; });
        connect(
            m_reader.get(), &PictureReader::pictureFailed, this,
            [this](const QString& path, const QString& reason) { m_log << nameOf(path) + ": " + reason; });
    }

    void readsTheNewestAndAhead()
    {
        QVERIFY(SampleFiles::make(m_folder.path(), {"good"}));
        read("good", {"ahead1", "broken", "ahead2"});
        QTRY_COMPARE(m_log.size(), 4);
        QVERIFY(m_log.indexOf("good") < m_log.indexOf("ahead2"));
        QVERIFY(m_log.contains("broken: The file is broken."));
        read("good", {}, QSize(320, 320));
        QTRY_COMPARE(m_log.size(), 5);
        QCOMPARE(m_picture.image.size(), QSize(320, 180));
        QCOMPARE(m_picture.image.pixel(319, 179), qRgb(200, 0, 0));
        m_log.clear();

        m_reader->read(path("good"), m_picture.room, m_picture.version);
        QTRY_COMPARE(m_log, QStringList{"good is unchanged"});
        QVERIFY(QFile::resize(path("good"), 1000));
        m_reader->read(path("good"), m_picture.room, m_picture.version);
        QTRY_COMPARE(m_log.last(), QStringLiteral("good"));
        m_log.clear();

        read("slow1");
        read("slow2");
        read("dropped", {"never"});
        read("newest");
        QTRY_COMPARE(m_log.size(), 3); // in any order: the first process that is free reads the newest
        m_log.sort();
        QCOMPARE(m_log, QStringList({"newest", "slow1", "slow2"}));
        QCOMPARE(children().size(), 2);

        for (const char* name : {"hang1", "hang2", "good"})
            read(name);
        QTRY_COMPARE(m_log.mid(3), QStringList{"good"});
        m_reader->stop();
        QTRY_VERIFY(children().isEmpty());
    }

    // … and shows the next file.
    void saysWhyNothingIsRead()
    {
        const std::pair<const char*, const char*> rows[] = {
            {"broken", "The file is broken"},    {"hang", "longer than 0.5 seconds"},
            {"stop", "longer than 0.5 seconds"}, {"die", "ended while"},
            {"flood", "fake-pictures sent"},     {"chatter", "fake-pictures sent"},
            {"nonsense", "fake-pictures sent"},  {"version", "another version"},
            {"program", "can't be started"}};
        for (const auto& [name, reason] : rows) {
            init();
            if (name == QByteArray("program"))
                qputenv("COREUI_PICTURES", "/no/such/program");
            if (name == QByteArray("version"))
                qputenv("FAKE_OTHER_VERSION", "1");
            m_reader->setTimeLimit(500);
            read(name);
            QTRY_COMPARE(m_log.size(), 1);
            QVERIFY2(m_log.first().contains(reason), qPrintable(m_log.first()));
            qunsetenv("FAKE_OTHER_VERSION");
            qputenv("COREUI_PICTURES", FAKE_PICTURES);
            m_reader->setTimeLimit(10000);
            read("good");
            QTRY_COMPARE(m_log.last(), QStringLiteral("good"));
            QTRY_COMPARE(children().size(), 1);
        }
    }

    void waitsAfterThreeFailures()
    {
        m_reader->setFailureTime(1500);
        QElapsedTimer timer;
        timer.start();
        for (int i = 1; i <= 3; ++i) {
            read("die");
            QTRY_COMPARE(m_log.size(), i);
        }
        read("good");
        QTRY_VERIFY(m_log.last().startsWith("good: Reading pictures failed too often"));
        QTRY_VERIFY(children().isEmpty());
        QTRY_COMPARE(m_log.last(), QStringLiteral("good"));
        QVERIFY(timer.elapsed() >= 1500);
    }

    void readsADeadlyFileAheadOnce()
    {
        for (int i = 0; i < 4; ++i) {
            read("good", {"die", "ahead"});
            QTRY_COMPARE(m_log.filter("ahead").size(), i + 1);
        }
        QCOMPARE(m_log.filter("die").size(), 1);
    }

    void mayBeDestroyedByASlot()
    {
        for (const char* name : {"good", "broken", "die", "flood", "/no/such/program"}) {
            init();
            if (*name == '/')
                qputenv("COREUI_PICTURES", name);
            const auto destroy = [this] { m_reader.reset(); };
            connect(m_reader.get(), &PictureReader::pictureRead, this, destroy);
            connect(m_reader.get(), &PictureReader::pictureFailed, this, destroy);
            read(*name == '/' ? "good" : name, {"ahead"});
            QTRY_VERIFY(!m_reader);
        }
    }

    // At any moment, and at its end in the middle of a request.
    void survivesKilledProcesses()
    {
        m_reader->setFailureTime(1);
        QRandomGenerator random(7);
        for (int i = 0; i < 200; ++i) {
            const auto answers = m_log.size();
            read("good", {"ahead1", "ahead2"});
            QTest::qWait(int(random.bounded(6)));
            if (const auto processes = children(); !processes.isEmpty())
                ::kill(processes.first(), SIGKILL);
            if (i % 10 == 0)
                QTRY_VERIFY(m_log.size() > answers);
        }
        // A process that still reads ahead may answer after it.
        read("last");
        QTRY_COMPARE(m_log.filter("last").size(), 1);
        read("hang1");
        read("stop");
        QTest::qWait(20);
        QElapsedTimer timer;
        timer.start();
        m_reader.reset();
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    }

    void keepsRecentPictures()
    {
        PictureCache cache(1);
        Picture picture;
        picture.room = QSize(280, 280);
        picture.image = QImage(picture.room, QImage::Format_RGBA8888_Premultiplied); // 306 KB
        const auto insert = [&](const char* path) {
            picture.path = path;
            cache.insert(picture);
        };
        for (const char* path : {"1", "2", "3", "3"})
            insert(path);
        QVERIFY(cache.contains("1", picture.room) && !cache.contains("1", QSize(280, 281)));
        insert("4");
        QVERIFY(cache.find("1") && cache.find("3") && cache.find("4") && !cache.find("2"));
        picture.image = QImage(1000, 1000, QImage::Format_RGBA8888_Premultiplied);
        insert("4"); // too large, and no longer what it was
        QCOMPARE(cache.paths().size(), 2);
        QVERIFY(!cache.find("4"));
        picture.image = {};
        for (int i = 0; i < 1000; ++i)
            insert(QByteArray::number(i).constData());
        QVERIFY(cache.paths().size() < 100);
    }

    void cleanup()
    {
        m_reader.reset();
        QTRY_VERIFY(children().isEmpty());
        Test::cleanup();
    }

private:
    static QString nameOf(const QString& path) { return path.section(QLatin1Char('/'), -1); }
    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    void read(const char* name, const QList<const char*>& ahead = {}, const QSize& room = QSize(64, 64))
    {
        QStringList paths;
        for (const char* next : ahead)
            paths << path(next);
        m_reader->read(path(name), room, {}, paths);
    }

    // The processes of ours, zombies too.
    static QList<pid_t> children()
    {
        QList<pid_t> numbers;
        for (const QString& process : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
            const QByteArray status = SampleFiles::read(QStringLiteral("/proc/%1/stat").arg(process));
            if (status.split(' ').value(3).toInt() == getpid())
                numbers << process.toInt();
        }
        return numbers;
    }

    const QTemporaryDir m_folder;
    std::unique_ptr<PictureReader> m_reader;
    QStringList m_log;
    Picture m_picture;
};

QTEST_GUILESS_MAIN(PictureReaderTest)
#include "PictureReaderTest.moc"
