#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// Single values in the text of an INI file, as QSettings writes it. All other values are left alone and
/// never decoded: they may be damaged, or made to do harm. Keys are those of QSettings: "NAME", "GROUP/NAME"
/// or "GROUP/SUBGROUP/NAME", with any number of "/".
namespace Halvern::UI::IniText {

/// What stands after the "=" of @p key, without blanks around it. Nothing if the key is missing.
std::optional<QByteArray> find(const QByteArray& ini, const QString& key);

/// @p ini with @p value after the "=" of @p key. Comments and all other lines stay as they are.
QByteArray replaced(const QByteArray& ini, const QString& key, const QByteArray& value);

/// The text that a value stands for: "/a b/\x4e2d" with its quotes gives the folder's name. Nothing if it
/// stands for something other than text, "@Variant(...)" for example.
std::optional<QString> decoded(const QByteArray& value);

/// The value that stands for @p text.
QByteArray encoded(const QString& text);

} // namespace Halvern::UI::IniText
