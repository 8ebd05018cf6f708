#pragma once

#include "base/Export.h"

#include <QDir>
#include <QIcon>
#include <QString>
#include <QStringList>

namespace Halvern::UI {

/// The kinds of browser, as bits: what a browser is for, and what browsers a favourite is shown in.
enum FaveType : int
{
    FaveAll = 0, ///< For a favourite: every browser. A browser of this type shows only such favourites.
    FaveImage = 1,
    FaveScript = 2,
    FaveFont = 4,
    FaveMisc = 8,
    FaveGeo = 16,
    FavePython = 32,
    FaveSequence = 64,
    FaveProject = 128
};

/// One favourite folder: a plain record. Until it is resolved it has neither a folder nor an icon.
struct HVCOREUI_EXPORT Favorite
{
    /// A drive is never persistent, whatever @p persist says.
    explicit Favorite(bool drive = false, bool persist = false)
        : dir(QString())
        , isDrive(drive)
        , persistent(persist && !drive)
    {
    }

    /// Its place among others: 0 for the application's own, 1 for a persistent one that goes first (negative
    /// type), 2 for other persistent ones, 3 for drives.
    int favoriteRank() const
    {
        if (isDrive)
            return 3;
        if (persistent)
            return type < 0 ? 1 : 2;
        return 0;
    }
    /// Whether a browser whose type is @p mask shows it.
    bool isFor(int mask) const { return type == FaveAll || (type & mask) != 0; }
    /// Whether the user may edit or remove it.
    bool isEditable() const { return persistent && !isDrive; }
    /// Whether there is a folder to go to: false until it is resolved, and if its path gave none.
    bool hasFolder() const;
    /// Whether it is the same record; folder and icon, which follow from the rest, are not looked at.
    bool isSame(const Favorite& other) const;

    QString path;    ///< As it is stored; an expression if the host has an evaluator for them.
    QString name;    ///< As it is shown.
    QString keyText; ///< Carried for the host, never shown.
    QString iconPath;
    QString tooltip;            ///< Empty for the path of the folder.
    int type = FaveAll;         ///< FaveType bits.
    int requestedFlags = 0;     ///< The flags as FileBrowser::AddFavoriteDir() got them.
    QStringList unknownOptions; ///< Of its line in the file, which keeps them: those of a later version.
    QStringList unknownFields;  ///< The same, after the folder.
    QDir dir;
    QIcon icon;
    bool isDrive;
    bool persistent;       ///< Written to the favourites file.
    bool resolved = false; ///< Whether dir is the folder that the path gave.
};

/// Turns the stored path of a favourite into the folder that is opened. A host derives from it to expand path
/// expressions of its own and installs it with FileBrowser::SetFavoriteExpressionEvaluator().
class HVCOREUI_EXPORT FavoriteExpressionEvaluator
{
public:
    FavoriteExpressionEvaluator() = default;
    virtual ~FavoriteExpressionEvaluator();
    FavoriteExpressionEvaluator(const FavoriteExpressionEvaluator&) = delete;
    FavoriteExpressionEvaluator& operator=(const FavoriteExpressionEvaluator&) = delete;

    /// The folder of @p favorite, empty for none; by default its path. It is asked on the GUI thread for
    /// every favourite whenever a browser is made, and must not change the favourites.
    virtual QString evaluate(const Favorite& favorite);
};

} // namespace Halvern::UI
