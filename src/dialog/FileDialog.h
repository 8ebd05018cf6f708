#pragma once

#include "base/Export.h"
#include "browser/FileBrowser.h"

#include <QDialog>

class QLineEdit;

namespace Halvern::UI {

/// A dialog with one FileBrowser. After every change of the selection or the pick list it enables or disables
/// Open and Next. It remembers its size between runs, and accepts a file that is dropped on it.
///
/// The host makes it, sets title and position, runs it with exec(), reads selectedFiles() after it was
/// accepted, and destroys it. A slot of one of its signals that destroys it uses deleteLater(), as with every
/// QDialog. Configuration calls go to the browser's function of the same name, which documents them.
class HVCOREUI_EXPORT FileDialog : public QDialog
{
    Q_OBJECT

public:
    /// The texts are those of the Open button and its tooltip, in Latin-1. Null keeps the browser's text.
    explicit FileDialog(QWidget* parent = nullptr, const char* acceptText = nullptr,
                        const char* acceptTooltip = nullptr);
    /// Stores the size without an open preview, if the dialog was shown. The browser stores its settings.
    ~FileDialog() override;

    void setFilterBlock(bool block) { m_browser->setFilterBlock(block); }
    void setFaveType(FaveType type) { m_browser->setFaveType(type); }
    void setDirectory(const QDir& dir, bool keepFilename, bool doRefresh)
    {
        m_browser->setDirectory(dir, keepFilename, doRefresh);
    }
    void setFilename(const QString& name) { m_browser->setFilename(name); }
    void setFilters(QStringList& filters, bool doRefresh) { m_browser->setFilters(filters, doRefresh); }
    /// While the preview is open the dialog may be larger. When the preview closes, the dialog gets the size
    /// that it had before, or that the user has given it since.
    void setPreviewWidget(QWidget* widget) { m_browser->setPreviewWidget(widget); }
    void setSelectionType(FileBrowser::SelectionType type) { m_browser->setSelectionType(type); }
    void setSequencesEnabled(bool enabled) { m_browser->setSequencesEnabled(enabled); }
    /// Whether Open may be pressed for a name that does not exist.
    void setMayNotExist(bool may) { m_browser->setMayNotExist(may); }
    void setWatched(bool watched) { m_browser->setWatched(watched); }
    bool isWatched() const { return m_browser->isWatched(); }
    void setMultipleSelections(bool multiple) { m_browser->setMultipleSelections(multiple); }
    void buildSettingsNamespace(const QString& ns) { m_browser->buildSettingsNamespace(ns); }
    QDir directory() const { return m_browser->directory(); }
    QStringList selectedFiles() const { return m_browser->selectedFiles(); }
    /// Applies the filename field and the filter to the list again, and then the state of the buttons.
    void refreshWidget()
    {
        m_browser->refresh();
        fileSelectionChanged();
    }

    /// The browser that fills the dialog, owned by it.
    FileBrowser* fileBrowser() const { return m_browser; }

    /// Shows the dialog. The selection in the filename field stays as it is.
    void setVisible(bool visible) override;

protected:
    /// Accepts the drag of exactly one local file.
    void dragEnterEvent(QDragEnterEvent* event) override;
    /// Puts the path of the first file into the filename field.
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private slots:
    void fileSelectionChanged();
    void fileDoubleClicked(const Halvern::UI::FileInfo& /*info*/) { accept(); }
    void resetFileFilter() { m_browser->resetFileFilter(); }
    void onPreviewOpening();
    void onPreviewClosed();
    void noteSizeWithPreview();

private:
    FileBrowser* m_browser;
    QLineEdit* m_filenameEdit; // of the browser
    // While the preview is open: the size to return to, invalid for the size hint, and the size that the
    // layout has made of it.
    QSize m_sizeBeforePreview;
    QSize m_sizeWithPreview;
    bool m_previewOpen = false;
    bool m_sizeIsDue = false; // the preview was closed, and onPreviewClosed() has not run yet
    bool m_wasShown = false;
};

} // namespace Halvern::UI
