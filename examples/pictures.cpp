// Takes the pictures of the documents: pictures DIRECTORY FOLDER shows DIRECTORY and writes PNG files into
// FOLDER. With a third argument it writes only one picture: "dark" writes FOLDER/dark.png, in a dark palette,
// and "scale2" writes FOLDER/scale2.png, which needs QT_SCALE_FACTOR=2.

#include "dialog/FileDialog.h"
#include "dialog/FilePreview.h"
#include "widgets/FrameSlider.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPalette>
#include <QPushButton>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTreeView>
#include <QVBoxLayout>
#include <cstdio>
#include <tuple>

using Halvern::UI::FileBrowser;
using Halvern::UI::FileDialog;
using Halvern::UI::FilePreview;

namespace {

// A preview shows a file that it has not read.
bool isReading()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        const auto* preview = qobject_cast<FilePreview*>(widget);
        if (preview && preview->isVisible() && !preview->file().isEmpty() &&
            preview->findChild<QLabel*>(QStringLiteral("label"))->text().isEmpty())
            return true;
    }
    return false;
}

// Lets the window list its directory, read its picture, and paint.
void settle()
{
    constexpr int ListingTime = 500;  // milliseconds
    constexpr int ReadingTime = 5000; // milliseconds
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < (isReading() ? ReadingTime : ListingTime))
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
    for (const char* row : {"plate", "shot_010"}) // a preview learns of what is selected from now on
        selectRow(dialog, QString::fromLatin1(row));
    if (!picture(dialog, folder + QStringLiteral("/preview.png")))
        return false;
    previewButton->setChecked(false);
    for (const char* queued : {"plate", "shot_010"}) {
        selectRow(dialog, QString::fromLatin1(queued));
        dialog.findChild<QPushButton*>(QStringLiteral("nextButton"))->click();
    }
    return picture(dialog, folder + QStringLiteral("/picklist.png"));
}

// Lists that say why they are empty.
bool pictureEmptyLists(const QDir& directory, const QString& folder)
{
    const QTemporaryDir made;
    const QString empty = made.filePath(QStringLiteral("empty"));
    const QString removed = made.filePath(QStringLiteral("removed")); // root may read whatever exists
    for (const QString& path : {empty, removed})
        QDir().mkdir(path);
    struct Picture
    {
        const char* name;
        QString shown;
        QString filter;
        QString typed;
    };
    for (const Picture& wanted :
         {Picture{"folder", empty, {}, {}},
          Picture{
              "filter", directory.filePath(QStringLiteral("renders/beauty")), QStringLiteral("*.tif"), {}},
          Picture{"name", directory.path(), {}, QStringLiteral("comp")},
          Picture{"unreadable", removed, {}, {}}}) {
        FileBrowser browser;
        browser.setSequencesEnabled(true);
        browser.setDirectory(QDir(wanted.shown), false, false);
        if (wanted.shown == removed)
            QDir().rmdir(removed);
        browser.resize(640, 320);
        browser.show();
        settle();
        browser.findChild<QComboBox*>(QStringLiteral("filterCombo"))->setEditText(wanted.filter);
        browser.findChild<QLineEdit*>(QStringLiteral("filenameEdit"))->insert(wanted.typed);
        browser.refresh();
        if (!picture(*browser.findChild<QTreeView*>(QStringLiteral("filesList")),
                     folder + QStringLiteral("/empty-%1.png").arg(QLatin1String(wanted.name))))
            return false;
    }
    return true;
}

// The pane alone, on files of several kinds.
bool picturePreviews(const QDir& directory, const QString& folder)
{
    FilePreview preview(nullptr, 0);
    preview.resize(512, 360);
    preview.show();
    const std::tuple<const char*, QString, int> shown[] = {
        {"exr", directory.filePath(QStringLiteral("shot_010.####.exr 1-100")), 42},
        {"dpx", directory.filePath(QStringLiteral("plate.####.dpx 1-100 ( 1-49 61-100 )")), 20},
        {"missing", directory.filePath(QStringLiteral("plate.####.dpx 1-100 ( 1-49 61-100 )")), 55},
        {"broken", directory.filePath(QStringLiteral("assets/truncated_v1.exr")), 55},
        {"font", QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"), 55},
    };
    for (const auto& [name, path, frame] : shown) {
        preview.findChild<FrameSlider*>()->setValue(frame);
        preview.previewFile(path.toUtf8().constData());
        if (!picture(preview, folder + QStringLiteral("/preview-%1.png").arg(QLatin1String(name))))
            return false;
    }
    return true;
}

// A dialog with a selected, a hovered and a queued row, and a preview with its slider.
bool pictureVariant(const QDir& directory, const QString& file)
{
    FileDialog dialog;
    dialog.setSequencesEnabled(true);
    dialog.setMultipleSelections(true);
    dialog.setDirectory(directory, false, false);
    auto* preview = new FilePreview(&dialog, 0);
    dialog.setPreviewWidget(preview);
    dialog.findChild<QAbstractButton*>(QStringLiteral("previewButton"))->setChecked(true);
    dialog.resize(900, 720);
    dialog.show();
    settle();
    selectRow(dialog, QStringLiteral("plate"));
    dialog.findChild<QPushButton*>(QStringLiteral("nextButton"))->click();
    selectRow(dialog, QStringLiteral("shot_010"));
    auto* slider = preview->findChild<FrameSlider*>();
    for (int frame = 38; frame <= 40; ++frame) {
        slider->setValue(frame);
        preview->gotoFrame(frame);
        settle();
    }
    auto* list = dialog.findChild<QTreeView*>(QStringLiteral("filesList"));
    const QModelIndex hovered = list->model()->index(1, 0);
    QMetaObject::invokeMethod(dialog.fileBrowser(), "hoverItem", Q_ARG(QModelIndex, hovered));
    return picture(dialog, file);
}

QPalette darkPalette()
{
    QPalette palette;
    const QColor window(53, 53, 53);
    const QColor base(35, 35, 35);
    const QColor text(225, 225, 225);
    const QColor faint(127, 127, 127);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Button, window);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::ToolTipBase, base);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, QColor(42, 110, 180));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

// The settings of a host with a dark surface.
void darken()
{
    QApplication::setPalette(darkPalette());
    FileBrowser::SetHighlightColor(QColor(70, 70, 70));
    FileBrowser::SetQueuedColor(QColor(130, 70, 30));
}

// Sliders on a light and on a dark surface: with four digits, with five digits and the mouse near the end,
// and disabled.
bool pictureSliders(const QString& file)
{
    QWidget window;
    QVBoxLayout layout(&window);
    layout.setContentsMargins({});
    for (const QPalette& palette : {QPalette(), darkPalette()}) {
        auto* surface = new QWidget(&window);
        surface->setAutoFillBackground(true);
        surface->setPalette(palette);
        layout.addWidget(surface);
        auto* rows = new QVBoxLayout(surface);
        for (const auto& [first, last, enabled] :
             {std::tuple(1001, 1200, true), {89001, 89772, true}, {1001, 1200, false}}) {
            auto* slider = new FrameSlider(true, surface);
            rows->addWidget(slider);
            slider->set_frame_range(first, last);
            slider->setinout(first + (last - first) / 4, last - (last - first) / 4);
            slider->setValue((first + last) / 2);
            slider->setCacheFrames({first, first + 1, first + 2, first + 3, first + 4, first + 5});
            slider->setEnabled(enabled);
        }
    }
    window.resize(600, window.sizeHint().height());
    window.show();
    settle();
    for (FrameSlider* slider : window.findChildren<FrameSlider*>()) {
        if (slider->frameFirst() != 89001)
            continue;
        const QPoint nearEnd(slider->valueToMouse(89771), 5);
        QMouseEvent move(QEvent::MouseMove, nearEnd, nearEnd, Qt::NoButton, {}, {});
        QApplication::sendEvent(slider, &move);
    }
    return picture(window, file);
}

} // namespace

int main(int argc, char** argv)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: pictures DIRECTORY FOLDER [dark | scale2]\n");
        return 2;
    }
    FileBrowser::SetUseLastSavedDir(false);
    const QTemporaryDir settings;
    FileBrowser::SetPreferencesPath(settings.path() + QStringLiteral("/favorites"), QStringLiteral("Comp"));
    FileBrowser::SetHighlightColor(QColor(225, 225, 225));
    FileBrowser::SetQueuedColor(QColor(255, 170, 120));
    const QDir directory(QString::fromLocal8Bit(argv[1]));
    const QString folder = QString::fromLocal8Bit(argv[2]);
    if (argc == 4) {
        const QString variant = QString::fromLocal8Bit(argv[3]);
        if (variant == QLatin1String("dark"))
            darken();
        return pictureVariant(directory, folder + QLatin1Char('/') + variant + QStringLiteral(".png")) ? 0
                                                                                                       : 1;
    }
    const bool taken = pictureBrowser(directory, folder) && pictureDialogs(directory, folder) &&
                       pictureEmptyLists(directory, folder) && picturePreviews(directory, folder) &&
                       pictureSliders(folder + QStringLiteral("/slider.png"));
    return taken ? 0 : 1;
}
