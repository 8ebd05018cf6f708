#include "support/Test.h"

#include <QMutex>
#include <QSettings>
#include <QStringList>
#include <utility>

namespace {

QMutex mutex;
QList<QRegularExpression> expected;
QStringList unexpected;
QtMessageHandler previous = nullptr;

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // Without a window manager the server refuses the focus to windows that it has not mapped yet.
    if (text.contains(QLatin1String("(SetInputFocus)")))
        return;
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        const QMutexLocker lock(&mutex);
        for (int i = 0; i < expected.size(); ++i) {
            if (expected.at(i).match(text).hasMatch()) {
                expected.removeAt(i);
                return;
            }
        }
        unexpected.append(text);
    }
    previous(type, context, text);
}

} // namespace

void Test::expectWarning(const QString& pattern)
{
    const QMutexLocker lock(&mutex);
    expected.append(QRegularExpression(pattern));
}

void Test::initTestCase()
{
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    previous = qInstallMessageHandler(handleMessage);
}

void Test::cleanup()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QDir(m_settings.path()).removeRecursively();
    QDir().mkdir(m_settings.path());
    const QMutexLocker lock(&mutex);
    const QStringList warnings = std::exchange(unexpected, {});
    const bool missed = !std::exchange(expected, {}).isEmpty();
    QVERIFY2(warnings.isEmpty(), qPrintable("unexpected warning: " + warnings.join(QStringLiteral(" | "))));
    QVERIFY2(!missed, "an announced warning did not come");
}

void Test::cleanupTestCase()
{
    qInstallMessageHandler(previous);
}
