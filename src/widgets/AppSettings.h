#pragma once

#include "base/Export.h"

#include <QSettings>
#include <QSize>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace Halvern::UI {

/// The application's settings store: an INI file of the user's, named after the organisation that the host
/// sets once with SetName().
///
/// The library keeps its own values with the static functions. A host may use the objects, which are as
/// QSettings has them. They are cheap and short-lived: make one for each read or write and let it go, and
/// what it wrote is on disk. All objects of a process share the organisation name; an object keeps the one it
/// was made with. Example: under Linux the name "Studio" gives the file "~/.config/Studio.ini".
class HVCOREUI_EXPORT AppSettings : public QSettings
{
    Q_OBJECT

public:
    /// Opens the user's INI file of the current organisation name, with an empty application name, no parent
    /// and no fallback to other files: a key that the file lacks is not looked for elsewhere.
    AppSettings();

    /// Sets the organisation name, in UTF-8, of the settings made afterwards. The text is copied.
    ///
    /// Until a host calls it, and after an empty @p name (which no file can be named by), the name is
    /// "HvMirefoldCoreUI".
    static void SetName(std::string name);

    /// The file of settings that are made now. The file is not opened.
    static QString FilePath();

    /// One value of that file, as what it should be. Other values of the file are not decoded, so that none
    /// of them can do harm. What is missing, damaged or out of range gives nothing: texts of more than 4096
    /// characters, sizes below 1 or above 32767 pixels, and everything in a file of more than 16 MB.
    static std::optional<QString> Text(const QString& key);
    static std::optional<int> Number(const QString& key);
    static std::optional<bool> Flag(const QString& key);
    static std::optional<QSize> Size(const QString& key);

    /// Writes values under their keys: texts, numbers, flags and sizes. They are in the file afterwards, and
    /// everything else in the file is as it was. False if they could not be written, and then the file is as
    /// it was. A file that cannot be read is not written. Another program that writes the file is waited for,
    /// 0.2 seconds at most.
    static bool Store(std::initializer_list<std::pair<QString, QVariant>> values);

private:
    static std::string _name;
};

} // namespace Halvern::UI
