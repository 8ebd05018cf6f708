#pragma once

#include "base/Export.h"
#include "browser/FileBrowser.h"

#include <QDialog>

class QLineEdit;

namespace Halvern::UI {

/// A dialog around one FileBrowser: it decides after every change of the selection or the pick list whether
/// Open and Next may be pressed, remembers its size from one run to the next, and takes a file that is
/// dropped on it.
///
/// The host makes it, runs it with exec(), reads selectedFiles() after it was accepted, and destroys it;
/// title and place are the host's. A slot of one of its signals that destroys it does so with deleteLater(),
/// as with every QDialog. Configuration calls go to the browser's member of the same name, which documents
/// them.
class HVCOREUI_EXPORT FileDialog : public QDialog
{
    Q_OBJECT

public:
    /// The texts name the Open button and its tooltip, as Latin-1; null leaves what the browser has.
    explicit FileDialog(QWidget* parent = nullptr, const char* acceptText = nullptr,
                        const char* acceptTooltip = nullptr);
    /// Stores the size, if the dialog was shown, without what an open preview added to it; the browser stores
    /// what it remembers.
    ~FileDialog() override;

    void setFilterBlock(bool block) { m_browser->setFilterBlock(block); }
    void setFaveType(FaveType type) { m_browser->setFaveType(type); }
    void setDirectory(const QDir& dir, bool keepFilename, bool doRefresh)
    {
        m_browser->setDirectory(dir, keepFilename, doRefresh);
    }
    void setFilename(const QString& name) { m_browser->setFilename(name); }
    void setFilters(QStringList& filters, bool doRefresh) { m_browser->setFilters(filters, doRefresh); }
    /// While the preview is open the dialog may be larger. When it closes the dialog gets back the size that
    /// it had when the preview opened, or that the user gave the window since.
    void setPreviewWidget(QWidget* widget) { m_browser->setPreviewWidget(widget); }
    void setSelectionType(FileBrowser::SelectionType type) { m_browser->setSelectionType(type); }
    void setSequencesEnabled(bool enabled) { m_browser->setSequencesEnabled(enabled); }
    /// Whether Open may be pressed for a name that does not exist.
    void setMayNotExist(bool may) { m_browser->setMayNotExist(may); }
    void setMultipleSelections(bool multiple) { m_browser->setMultipleSelections(multiple); }
    void buildSettingsNamespace(const QString& ns) { m_browser->buildSettingsNamespace(ns); }
    QDir directory() const { return m_browser->directory(); }
    QStringList selectedFiles() const { return m_browser->selectedFiles(); }
    /// Applies the filename field and the filter to the list again, and then the state of the buttons.
    void refreshWidget();

    /// The browser that fills the dialog, owned by it.
    FileBrowser* fileBrowser() const { return m_browser; }

    /// Shows the dialog with the filename field as it was prepared: what is selected in it stays selected.
    void setVisible(bool visible) override;

protected:
    /// Accepts the drag of exactly one local file.
    void dragEnterEvent(QDragEnterEvent* event) override;
    /// Places the path of the first file in the filename field.
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private slots:
    void fileSelectionChanged();
    void fileDoubleClicked(const Halvern::UI::FileInfo& info);
    void resetFileFilter();
    void onPreviewOpening();
    void onPreviewClosed();
    void noteSizeWithPreview();

private:
    FileBrowser* m_browser;
    QLineEdit* m_filenameEdit; // of the browser
    // While the preview is open: the size to return to, invalid for the one that the contents ask for, and
    // the size that the layout made of it.
    QSize m_sizeBeforePreview;
    QSize m_sizeWithPreview;
    bool m_previewOpen = false;
    bool m_sizeIsDue = false; // the preview was closed, and onPreviewClosed() follows
    bool m_wasShown = false;
};

} // namespace Halvern::UI
