#pragma once

#include <QtGlobal>

class FilePathEdit;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QWidget;

namespace Halvern::UI {

class DisclosureButton;
class FileBrowser;
class PickListLine;

/// The controls of a browser beside its two lists: each with its objectName, the name that screen readers
/// say, its tooltip and the slot of the browser that it calls. The browser owns them.
struct Controls
{
    /// Makes the controls around @p favoritesList and @p filesList, lays all of them out in @p browser, and
    /// sets the order of Tab: from the top left to the bottom right.
    void make(FileBrowser* browser, QWidget* favoritesList, QWidget* filesList);

    QPushButton* newFolderButton = nullptr;
    QPushButton* upButton = nullptr;
    QPushButton* backButton = nullptr;
    QPushButton* forwardButton = nullptr;
    DisclosureButton* previewButton = nullptr;
    QPushButton* addFavoriteButton = nullptr;
    QPushButton* editFavoriteButton = nullptr;
    QPushButton* removeFavoriteButton = nullptr;
    QLabel* problemLabel = nullptr; ///< What is wrong with the list, hidden if nothing is.
    PickListLine* pickListLine = nullptr;
    FilePathEdit* filenameEdit = nullptr;
    QCheckBox* sequencesCheck = nullptr;
    QCheckBox* splitCheck = nullptr;
    QLabel* filterLabel = nullptr;
    QComboBox* filterCombo = nullptr;
    QPushButton* nextButton = nullptr;
    QPushButton* openButton = nullptr;
    QPushButton* cancelButton = nullptr;

private:
    void makeNavigation(FileBrowser* browser);
    void makeFavorites(FileBrowser* browser);
    void makeOptions(FileBrowser* browser);
    void makeButtons(FileBrowser* browser);
    void layOut(FileBrowser* browser, QWidget* favoritesList, QWidget* filesList);
};

} // namespace Halvern::UI
