#include "widgets/AppSettings.h"

#include <utility>

namespace Halvern::UI {

namespace {

constexpr const char* defaultName = "HvMirefoldCoreUI";

} // namespace

std::string AppSettings::_name = defaultName;

AppSettings::AppSettings()
    : QSettings(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(_name), QString(), nullptr)
{
    setFallbacksEnabled(false);
}

void AppSettings::SetName(std::string name)
{
    // QSettings refuses to write for an organisation without a name.
    _name = name.empty() ? std::string(defaultName) : std::move(name);
}

} // namespace Halvern::UI
