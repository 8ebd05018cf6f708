// Linked into the programs of the guide, so that the tests can run them, or loaded before them. If
// GUIDE_UNATTENDED is in the environment, it acts as a user: it chooses a sequence or presses a key on a
// slider, and ends the program. The value is the time until then in milliseconds, if the program needs more
// than a listing takes.

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QTimer>
#include <QTreeView>
#include <algorithm>

namespace {

constexpr int ListingTime = 400; // milliseconds

bool isListing(const QWidget* window)
{
    const auto* list = window->findChild<QTreeView*>(QStringLiteral("filesList"));
    return list && !list->model()->index(0, 0).data().isValid();
}

void act()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    if (std::any_of(windows.begin(), windows.end(), isListing)) {
        QTimer::singleShot(ListingTime, act);
        return;
    }
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* list = window->findChild<QTreeView*>(QStringLiteral("filesList"));
        const auto rows =
            list ? list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, QStringLiteral("shot."))
                 : QModelIndexList();
        if (!rows.isEmpty())
            list->setCurrentIndex(rows.first());
    }
    QWidget* slider = QApplication::topLevelWidgets().value(0);
    if (slider && slider->inherits("FrameSlider")) {
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_I}) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QCoreApplication::sendEvent(slider, &press);
        }
    }
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
        dialog->accept();
    QCoreApplication::quit();
}

void attend()
{
    if (qEnvironmentVariableIsSet("GUIDE_UNATTENDED"))
        QTimer::singleShot(std::max(ListingTime, qEnvironmentVariableIntValue("GUIDE_UNATTENDED")), act);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(attend)
