#pragma once

#include "pictures/PictureProtocol.h"

#include <QCoreApplication>
#include <QProcess>

/// A program that reads pictures, asked as an application asks it.
class Program
{
public:
    using Request = Halvern::UI::PictureProtocol::Request;
    using Answer = Halvern::UI::PictureProtocol::Answer;

    /// Starts the program @p name of the build, with the environment variable OCIO set to @p ocio or not set.
    explicit Program(const QString& name, const QString& ocio = {})
    {
        ocio.isEmpty() ? qunsetenv("OCIO") : qputenv("OCIO", ocio.toUtf8());
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + name, QStringList());
        m_frames.setLongest(1 << 28);
    }
    ~Program()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    QProcess& process() { return m_process; }

    /// The payload of the next frame, or an empty one if none comes within 10 seconds.
    QByteArray next()
    {
        for (;;) {
            if (const auto payload = m_frames.take())
                return *payload;
            if (!m_process.bytesAvailable() && !m_process.waitForReadyRead(10000))
                return {};
            m_frames.add(m_process.readAllStandardOutput());
        }
    }

    /// The answer to a request for the file's picture in a @p room of pixels. Says so if there is none.
    Answer ask(const QString& path, const QSize& room = {4096, 4096})
    {
        using namespace Halvern::UI::PictureProtocol;
        if (!m_id && !isHello(next()))
            return {};
        m_process.write(
            frame(Request{++m_id, path.toUtf8(), quint32(room.width()), quint32(room.height()), {}}));
        Answer answer = readAnswer(next()).value_or(Answer());
        if (answer.id != m_id)
            answer.reason = QStringLiteral("no answer");
        return answer;
    }

private:
    QProcess m_process;
    Halvern::UI::PictureProtocol::Frames m_frames;
    quint32 m_id = 0;
};
