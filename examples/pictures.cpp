// Takes the pictures of the documents: pictures DIRECTORY FOLDER shows DIRECTORY and writes PNG files into
// FOLDER.

#include "dialog/FileDialog.h"
#include "dialog/FilePreview.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeView>
#include <cstdio>

using Halvern::UI::FileBrowser;
using Halvern::UI::FileDialog;
using Halvern::UI::FilePreview;

namespace {

// Lets the window list its directory and paint.
void settle()
{
    constexpr int ListingTime = 500; // milliseconds
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ListingTime)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

void selectRow(QWidget& window, const QString& beginning)
{
    auto* list = window.findChild<QTreeView*>(QStringLiteral("filesList"));
    const QModelIndexList found =
        list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, beginning);
    if (!found.isEmpty())
        list->setCurrentIndex(found.first());
}

bool picture(QWidget& window, const QString& file)
{
    settle();
    const bool written = window.grab().save(file);
    if (!written)
        std::fprintf(stderr, "pictures: cannot write %s\n", qPrintable(file));
    return written;
}

bool pictureBrowser(const QDir& directory, const QString& folder)
{
    FileBrowser browser;
    browser.setSequencesEnabled(true);
    browser.setDirectory(directory, false, false);
    browser.resize(1000, 520);
    browser.show();
    return picture(browser, folder + QStringLiteral("/browser.png"));
}

bool pictureDialogs(const QDir& directory, const QString& folder)
{
    FileDialog dialog(nullptr, "Import");
    dialog.setSequencesEnabled(true);
    dialog.setMultipleSelections(true);
    QStringList filters{QStringLiteral("*.exr *.dpx")};
    dialog.setFilters(filters, false);
    dialog.setDirectory(directory, false, false);
    dialog.resize(1000, 520);
    dialog.show();
    settle();
    selectRow(dialog, QStringLiteral("shot_010"));
    if (!picture(dialog, folder + QStringLiteral("/dialog.png")))
        return false;
    dialog.setPreviewWidget(new FilePreview(&dialog, 0));
    auto* previewButton = dialog.findChild<QAbstractButton*>(QStringLiteral("previewButton"));
    previewButton->setChecked(true);
    if (!picture(dialog, folder + QStringLiteral("/preview.png")))
        return false;
    previewButton->setChecked(false);
    for (const char* queued : {"plate", "shot_010"}) {
        selectRow(dialog, QString::fromLatin1(queued));
        dialog.findChild<QPushButton*>(QStringLiteral("nextButton"))->click();
    }
    return picture(dialog, folder + QStringLiteral("/picklist.png"));
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: pictures DIRECTORY FOLDER\n");
        return 2;
    }
    FileBrowser::SetUseLastSavedDir(false);
    const QTemporaryDir settings;
    FileBrowser::SetPreferencesPath(settings.path() + QStringLiteral("/favorites"), QStringLiteral("Comp"));
    FileBrowser::SetQueuedColor(QColor(255, 170, 120));
    const QDir directory(QString::fromLocal8Bit(argv[1]));
    const QString folder = QString::fromLocal8Bit(argv[2]);
    return pictureBrowser(directory, folder) && pictureDialogs(directory, folder) ? 0 : 1;
}
