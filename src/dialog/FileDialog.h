#pragma once

#include "base/Export.h"
#include "browser/FileBrowser.h"

#include <QDialog>
#include <tuple>

namespace Halvern::UI {

/// A dialog around one FileBrowser: it decides after every change of the selection or the pick list whether
/// Open and Next may be pressed, remembers its size from one run to the next, and takes a file that is
/// dropped on it.
///
/// The host makes it, runs it with exec(), reads selectedFiles() after it was accepted, and destroys it;
/// title and place are the host's. Configuration calls go to the browser's member of the same name, which
/// documents them.
class HVCOREUI_EXPORT FileDialog : public QDialog
{
    Q_OBJECT

public:
    /// The texts name the Open button and its tooltip, as Latin-1; null leaves what the browser has.
    explicit FileDialog(QWidget* parent = nullptr, const char* acceptText = nullptr,
                        const char* acceptTooltip = nullptr);
    /// Stores the size; the browser stores what it remembers.
    ~FileDialog() override;

    void setFilterBlock(bool block);
    void setDirectory(const QDir& dir, bool keepFilename, bool doRefresh);
    void setFilename(const QString& name);
    void setFilters(QStringList& filters, bool doRefresh);
    /// While the preview is open the dialog may be larger; when it closes the dialog gets back the size that
    /// it had when the preview opened.
    void setPreviewWidget(QWidget* widget);
    void setSelectionType(FileBrowser::SelectionType type);
    void setSequencesEnabled(bool enabled);
    /// Whether Open may be pressed for a name that does not exist.
    void setMayNotExist(bool may);
    void setMultipleSelections(bool multiple);
    void buildSettingsNamespace(const QString& ns);
    QDir directory() const;
    QStringList selectedFiles() const;
    /// Applies the filename field and the filter to the list again, and then the state of the buttons.
    void refreshWidget();

    /// The browser that fills the dialog, owned by it.
    FileBrowser* fileBrowser() const { return browser; }

    /// Shows the dialog with the filename field as it was prepared: what is selected in it stays selected.
    void setVisible(bool visible) override;

    /// Closes the dialog with @p result and emits accepted() or rejected(), and then finished(). A host may
    /// destroy the dialog in a slot of any of them; what is left is not emitted then.
    void done(int result) override;

protected:
    /// Accepts the drag of exactly one local file.
    void dragEnterEvent(QDragEnterEvent* event) override;
    /// Places the path of the first file in the filename field.
    void dropEvent(QDropEvent* event) override;

private slots:
    void fileSelectionChanged();
    void rowsChanged();
    void fileDoubleClicked(const Halvern::UI::FileInfo& info);
    void resetFileFilter();
    void onPreviewOpening();
    void onPreviewClosed();

private:
    // Selected rows, filename field, selection type, several selections, may not exist, pick list is empty.
    using Grounds = std::tuple<int, QString, FileBrowser::SelectionType, bool, bool, bool>;

    bool isAcceptable(const FileInfo& info) const;
    bool selectionIsAcceptable() const;
    Grounds grounds() const;

    FileBrowser* browser;
    QSize sizeBeforePreview{-1, -1};
    Grounds decidedOn; // what the buttons show, unless the host set them by hand
};

} // namespace Halvern::UI
