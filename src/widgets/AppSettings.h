#pragma once

#include "base/Export.h"

#include <QSettings>
#include <string>

namespace Halvern::UI {

/// The application's settings store: an INI file of the user's, named after the organisation that the host
/// sets once with SetName().
///
/// Objects are cheap and short-lived: make one for each read or write and let it go, and what it wrote is on
/// disk. All objects of a process share the organisation name; an object keeps the one it was made with.
/// Example: under Linux the name "Studio" gives the file "~/.config/Studio.ini".
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

private:
    static std::string _name;
};

} // namespace Halvern::UI
