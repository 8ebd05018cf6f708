#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// Reads and writes single values in the text of an INI file in the format of QSettings. Other values are not
/// changed and never decoded, because they may be damaged or hostile. Keys are those of QSettings: "NAME",
/// "GROUP/NAME" or "GROUP/SUBGROUP/NAME", with any number of "/".
namespace Halvern::UI::IniText {

/// The bytes after the "=" of @p key, without blanks around them. Nothing if the key is missing.
std::optional<QByteArray> find(const QByteArray& ini, const QString& key);

/// Returns @p ini with @p value after the "=" of @p key. Comments and all other lines stay as they are.
QByteArray replaced(const QByteArray& ini, const QString& key, const QByteArray& value);

/// The text of a value: the bytes "/aN2d" give "/a中". Nothing for others, such as "@Variant(...)".
std::optional<QString> decoded(const QByteArray& value);

/// The value for @p text.
QByteArray encoded(const QString& text);

} // namespace Halvern::UI::IniText
