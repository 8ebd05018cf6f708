#include "browser/BrowserWindow.h"
#include "dialog/FileDialog.h"
#include "favorites/FavoritesList.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QLineEdit>

using namespace Halvern::UI;

/// A short day at the dialog, with every call to the system about its files failing once in turn.
class ScenarioTest : public Test
{
    Q_OBJECT

private slots:
    void worksAgainWhateverFailsOnce()
    {
        const QByteArray folder = QFile::encodeName(root.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, root.filePath("settings"));
        QVERIFY(SampleFiles::make(root.path(), {"data/sub/", "settings/"}));
        QVERIFY(SampleFiles::makeFrames(root.filePath("data"), "f%04d.exr", 1, 3));
        int place = 0;
        for (int hit = -1; hit == -1; ++place) {
            const QString file = root.filePath("favorites");
            QVERIFY(SampleFiles::write(file, "add_later later\nadd_favorite_dir a a \"\" /a/\n"
                                             "add_favorite_dir gone gone \"\" /g/\n"));
            QVERIFY(AppSettings::Store({{"FileBrowser/directory", root.filePath("data")}, {"Other/key", 7}}));
            failCalls("*", EIO, place + 1);
            faultyFolder = folder.constData();
            const bool isEdited = spendADay();
            hit = faults[CallPlace];
            endFaults();
            // "gone" is edited or as it was, the others are there, and so are the settings.
            const QString what = QString::number(place) + ' ' + SampleFiles::read(file);
            const QString lines = QString("add_later later\nadd_\\w+ a .*\nadd_\\w+ %1 ");
            const QRegularExpression kept(lines.arg(isEdited ? "edited" : "gone"));
            QVERIFY2(what.contains(kept) && what.count("add_") == 3, qPrintable(what));
            QVERIFY2(AppSettings::Number("Other/key") == 7, qPrintable(what));
            QVERIFY2(spendADay() || isEdited, qPrintable("and then it works again: " + what));
            QVERIFY(AppSettings::Number("FileBrowser/orderlogicalindex") == 1);
            QVERIFY(AppSettings::Text("FileBrowser/directory") == root.filePath("data"));
        }
        QVERIFY2(place > 100, qPrintable(QString::number(place)));
    }

private:
    // Starts, browses, edits the favourite "gone" if it is there, sorts, and quits. F5 is pressed where a
    // person would see that something is missing. Whether the favourite was edited.
    bool spendADay() const
    {
        FileBrowser::SetPreferencesPath(QString(), QString());
        FileBrowser::SetPreferencesPath(root.filePath("favorites"), "p");
        FileBrowser::ResetFavorites();
        FileDialog dialog;
        dialog.setSequencesEnabled(true);
        dialog.show();
        goTo(dialog, root.filePath("data"), "f####.exr 1-3");
        goTo(dialog, root.filePath("data/sub"), QString());
        goTo(dialog, root.filePath("data"), "f####.exr 1-3");
        auto* panel = dialog.findChild<FavoritesList*>();
        const QModelIndexList gone =
            panel->model()->match(panel->model()->index(0, 0), Qt::DisplayRole, "gone");
        if (!gone.isEmpty()) {
            QTimer::singleShot(0, &dialog, [] {
                auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                box->findChild<QLineEdit*>("nameEdit")->setText("edited");
                box->accept();
            });
            panel->setCurrentIndex(gone.first());
            dialog.findChild<QPushButton*>("editFavoriteButton")->click();
        }
        for (const int column : {0, 1})
            dialog.findChild<FileBrowser::FilesList*>()->sortByColumn(column, Qt::AscendingOrder);
        return !gone.isEmpty();
    }

    static void goTo(FileDialog& dialog, const QString& folder, const QString& row)
    {
        // A folder that could not be looked at is not entered; a person tries again.
        for (int attempt = 0; attempt < 2 && dialog.directory() != QDir(folder); ++attempt)
            dialog.setDirectory(QDir(folder), false, true);
        const BrowserParts parts(dialog);
        const auto isListed = [&] { return row.isEmpty() || parts.rows().contains(row); };
        // Once a call has failed, nobody waits for long before pressing F5.
        QElapsedTimer patience;
        patience.start();
        const auto isOver = [&] {
            return isListed() || (faults[CallPlace] == -1 && patience.hasExpired(100));
        };
        if (QTest::qWaitFor(isOver) && isListed())
            return;
        QMetaObject::invokeMethod(dialog.fileBrowser(), "refreshDirectory");
        QVERIFY2(QTest::qWaitFor(isListed), qPrintable("not listed: " + folder + parts.rows().join(" ")));
    }

    const QTemporaryDir root;
};

QTEST_MAIN(ScenarioTest)
#include "ScenarioTest.moc"
