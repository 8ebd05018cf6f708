#pragma once

#include "browser/BrowserWindow.h"
#include "dialog/FileDialog.h"

#include <QPointer>

/// A shown dialog with sequences collapsed. If it @p waits, it has read the folder. It may be destroyed
/// early.
class DialogWindow : public BrowserParts
{
public:
    using FileDialog = Halvern::UI::FileDialog;

    explicit DialogWindow(const QString& folder, bool multiple = false, bool waits = true,
                          FileDialog* made = new FileDialog(nullptr, "Import", nullptr))
        : BrowserParts(*made)
        , owned(made)
        , dialog(*made)
    {
        dialog.setSequencesEnabled(true);
        dialog.setMultipleSelections(multiple);
        dialog.setDirectory(QDir(folder), false, true);
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        if (waits)
            QTRY_VERIFY(isRead());
    }
    Q_DISABLE_COPY(DialogWindow)
    ~DialogWindow() { delete owned; }

    QPushButton* open() const { return control("openButton"); }
    QPushButton* next() const { return control("nextButton"); }
    QComboBox* filter() const { return control<QComboBox>("filterCombo"); }
    /// O and N if Open and Next are enabled.
    QString buttons() const
    {
        return QString(open()->isEnabled() ? 'O' : '-') + (next()->isEnabled() ? 'N' : '-');
    }

    const QPointer<FileDialog> owned;
    FileDialog& dialog;
};
