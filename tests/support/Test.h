#pragma once

#include <QObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

/// Base of every test class: a Qt warning that the test did not announce fails the test function in which it
/// appears, and settings are written to a folder of the test's own. For its own preparations a test class
/// declares init(); slots with the names of those here would replace them.
class Test : public QObject
{
    Q_OBJECT

public:
    /// Announces that one message matching @p pattern will come before the test function ends; the test
    /// fails if it does not.
    static void expectWarning(const QString& pattern);

protected slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

private:
    QTemporaryDir m_settings;
};
