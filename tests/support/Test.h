#pragma once

#include "support/SampleFiles.h"

#include <QObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

/// Base of every test class: a Qt warning that the test did not announce fails the test function in which it
/// appears, and each function begins with an empty folder and no settings of its own. For its own
/// preparations a test class declares init(); slots with the names of those here would replace them.
class Test : public QObject
{
    Q_OBJECT

public:
    /// Announces that one message matching @p pattern will come before the test function ends; the test
    /// fails if it does not.
    static void expectWarning(const QString& pattern);

protected:
    /// The path of @p name in the folder of this test function, or of that folder itself.
    QString path(const QString& name = QString()) const { return m_folder->filePath(name); }
    /// SampleFiles::make() in that folder.
    bool make(std::initializer_list<const char*> names) const { return SampleFiles::make(path(), names); }

protected slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

private:
    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder = std::make_unique<QTemporaryDir>();
};
