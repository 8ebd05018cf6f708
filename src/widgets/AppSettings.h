#pragma once

#include "base/Export.h"

#include <QSettings>
#include <QSize>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace Halvern::UI {

/// The application's settings: an INI file in the user's configuration folder, named after the organisation
/// that the host sets once with SetName().
///
/// The library stores its own values with the static functions. Hosts can use the objects, which are
/// QSettings objects. They are cheap: make one for each read or write and destroy it, which writes to the
/// disk. All objects of a process use the organisation name at the time when they are made. Example: under
/// Linux the name "Studio" gives the file "~/.config/Studio.ini".
class HVCOREUI_EXPORT AppSettings : public QSettings
{
    Q_OBJECT

public:
    /// Opens the user's INI file for the current organisation name, with an empty application name, no parent
    /// and no fallback to other files.
    AppSettings();

    /// Sets the organisation name, in UTF-8, of the settings made from now on. The text is copied. The
    /// default, also for an empty @p name, is "HvMirefoldCoreUI".
    static void SetName(std::string name);

    /// The path of the file for the current organisation name. The file is not opened.
    static QString FilePath();

    /// Reads one value of that file. Other values are not decoded, so that damaged or hostile ones do no
    /// harm. Nothing is returned for a value that is missing, of another type or out of range: texts of more
    /// than 4096 characters, sizes below 1 or above 32767 pixels, and all of a file of more than 16 MB.
    static std::optional<QString> Text(const QString& key);
    static std::optional<int> Number(const QString& key);
    static std::optional<bool> Flag(const QString& key);
    static std::optional<QSize> Size(const QString& key);

    /// Writes values under their keys: texts, numbers, flags and sizes. The rest of the file stays as it is.
    /// Returns false if they could not be written; the file is then unchanged. A file that cannot be read is
    /// not written. Waits at most 0.2 seconds for another program that writes the file.
    static bool Store(std::initializer_list<std::pair<QString, QVariant>> values);

private:
    static std::string s_name;
};

} // namespace Halvern::UI
