#include "browser/FilesList.h"
#include "dialog/FileDialog.h"
#include "favorites/FavoritesList.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>

using namespace Halvern::UI;

namespace {

QStringList rowsOf(const QAbstractItemView& view)
{
    QStringList rows;
    for (int row = 0; row < view.model()->rowCount(); ++row)
        rows.append(view.model()->index(row, 0).data().toString());
    return rows;
}

} // namespace

/// A short day at the dialog, with every call to the system about its files failing once in turn.
class ScenarioTest : public Test
{
    Q_OBJECT

private slots:
    void worksAgainWhateverFailsOnce()
    {
        const QByteArray folder = QFile::encodeName(root.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, root.filePath("settings"));
        QVERIFY(QDir().mkpath(root.filePath("data/sub")) && QDir().mkpath(root.filePath("settings")));
        QVERIFY(SampleFiles::makeFrames(root.filePath("data"), "f%04d.exr", 1, 3));
        int place = 0;
        for (int hit = -1; hit == -1; ++place) {
            writeFavorites();
            QVERIFY(AppSettings::Store({{"FileBrowser/directory", root.filePath("data")}, {"Other/key", 7}}));
            faults[CallError] = EIO;
            faults[CallPlace] = place + 1;
            faultyFolder = folder.constData();
            faultyCall = "*";
            const bool isEdited = spendADay();
            hit = faults[CallPlace];
            endFaults();
            const QString what = QString::number(place);
            // "gone" is edited or as it was, the others are there, and so are the settings.
            QVERIFY2(favorites() == (isEdited ? "later a edited" : "later a gone"),
                     qPrintable(what + favorites()));
            QVERIFY2(AppSettings::Number("Other/key") == 7, qPrintable(what));
            QVERIFY2(spendADay() || isEdited, qPrintable("and then it works again: " + what));
            QCOMPARE(AppSettings::Number("FileBrowser/orderlogicalindex"), std::optional<int>(1));
            QCOMPARE(AppSettings::Text("FileBrowser/directory"),
                     std::optional<QString>(root.filePath("data")));
        }
        QVERIFY2(place > 100, qPrintable(QString::number(place)));
    }

private:
    void writeFavorites() const
    {
        QFile file(root.filePath("favorites"));
        QVERIFY(file.open(QFile::WriteOnly));
        file.write("add_later later\nadd_favorite_dir a a \"\" /a/\nadd_favorite_dir gone gone \"\" /g/\n");
    }
    // The second field of each line that is no comment.
    QString favorites() const
    {
        QFile file(root.filePath("favorites"));
        QStringList found;
        for (const QByteArray& line :
             file.open(QFile::ReadOnly) ? file.readAll().split('\n') : QByteArrayList()) {
            if (line.startsWith("add"))
                found.append(QString::fromUtf8(line.split(' ').value(1)));
        }
        return found.join(' ');
    }

    // Starts, browses, edits the favourite "gone" if it is there, sorts, and quits. F5 is pressed where a
    // person would see that something is missing. Whether the favourite was edited.
    bool spendADay() const
    {
        FileBrowser::SetPreferencesPath(QString(), QString());
        FileBrowser::SetPreferencesPath(root.filePath("favorites"), "p");
        FileBrowser::ResetFavorites();
        bool isEdited = false;
        {
            FileDialog dialog;
            dialog.setSequencesEnabled(true);
            dialog.show();
            auto* list = dialog.findChild<FileBrowser::FilesList*>();
            goTo(dialog, root.filePath("data"), "f####.exr 1-3");
            goTo(dialog, root.filePath("data/sub"), QString());
            goTo(dialog, root.filePath("data"), "f####.exr 1-3");
            auto* panel = dialog.findChild<FavoritesList*>();
            const auto row = int(rowsOf(*panel).indexOf("gone"));
            isEdited = row >= 0;
            if (isEdited) {
                QTimer::singleShot(0, &dialog, [] {
                    auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                    box->findChild<QLineEdit*>("nameEdit")->setText("edited");
                    box->accept();
                });
                panel->setCurrentIndex(panel->model()->index(row, 0));
                dialog.findChild<QPushButton*>("editFavoriteButton")->click();
            }
            list->sortByColumn(0, Qt::AscendingOrder);
            list->sortByColumn(1, Qt::AscendingOrder);
        }
        return isEdited;
    }

    static void goTo(FileDialog& dialog, const QString& folder, const QString& row)
    {
        auto* list = dialog.findChild<FileBrowser::FilesList*>();
        // A folder that could not be looked at is not entered; a person tries again.
        for (int attempt = 0; attempt < 2 && dialog.directory() != QDir(folder); ++attempt)
            dialog.setDirectory(QDir(folder), false, true);
        const auto isListed = [&] { return row.isEmpty() || rowsOf(*list).contains(row); };
        for (int attempt = 0; attempt < 2; ++attempt) {
            QElapsedTimer patience;
            patience.start();
            // Once a call has failed, nobody waits for long before pressing F5.
            const bool mayStop = attempt == 0;
            const auto isOver = [&] {
                return isListed() || (mayStop && faults[CallPlace] == -1 && patience.hasExpired(100));
            };
            if (QTest::qWaitFor(isOver) && isListed())
                return;
            QMetaObject::invokeMethod(dialog.fileBrowser(), "refreshDirectory");
        }
        QFAIL(qPrintable("not listed: " + folder + " in " + dialog.directory().path() + ": " +
                         rowsOf(*list).join(" ")));
    }

    const QTemporaryDir root;
};

QTEST_MAIN(ScenarioTest)
#include "ScenarioTest.moc"
