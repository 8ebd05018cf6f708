#include "support/Faults.h"
#include "favorites/FavoritesStore.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

using namespace Halvern::UI;

/// What a failing disk does to what is kept.
class FaultsTest : public Test
{
    Q_OBJECT

private slots:
    // What is kept is as it was, or whole and new where the call is not needed for it.
    void losesNothingThatWasKept()
    {
        const QTemporaryDir place;
        const QString files[] = {place.filePath("favorites"), AppSettings().fileName()};
        FavoritesStore store;
        store.setPreferences(files[0], "p");
        store.initialize();
        const auto keep = [&](const char* name) {
            store.favorites()->clear();
            store.addFolder(name, "", "/f", "", "", 0, true);
            store.save();
            AppSettings().setValue("key", name);
            endFaults();
            QByteArrayList kept;
            for (const QString& path : files) {
                QFile file(path);
                kept += file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("missing");
                kept += QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden).join(' ').toUtf8();
            }
            return kept;
        };
        const QByteArrayList changed = keep("new");
        for (const QByteArray call : {"open", "open64", "write", "fsync", "rename"}) {
            // Qt, which writes the settings, opens files in its own way.
            const bool favoritesStay = call != "open64";
            const bool settingsStay = call != "open" && call != "fsync";
            for (const int error : {EIO, ENOSPC, EACCES}) {
                // The old file takes them where no new one can take its place.
                const bool overwritten = call == "rename" && error == EACCES;
                const QByteArrayList before = keep("old");
                faults[CallError] = error;
                faults[ShortWrites] = error == ENOSPC ? 1 : 0; // and all but a byte has its place
                faultyCall = call.constData();
                QCOMPARE(keep("new"), (favoritesStay && !overwritten ? before : changed).mid(0, 2) +
                                          (settingsStay ? before : changed).mid(2));
            }
        }
    }
};

QTEST_MAIN(FaultsTest)
#include "FaultsTest.moc"
