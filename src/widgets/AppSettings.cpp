#include "widgets/AppSettings.h"

#include "base/SharedFile.h"
#include "widgets/IniText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <chrono>
#include <cstdio>

namespace Halvern::UI {

namespace {

constexpr const char* defaultName = "HvMirefoldCoreUI";
constexpr auto Patience = std::chrono::milliseconds(200);

std::string encodedPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

std::optional<QByteArray> stored(const QString& key)
{
    std::string text;
    if (Base::SharedFile::read(encodedPath(AppSettings::FilePath()), text) != 0)
        return std::nullopt;
    return IniText::find(QByteArray::fromStdString(text), key);
}

QByteArray encoded(const QVariant& value)
{
    const QSize size = value.toSize();
    return value.userType() == QMetaType::QSize
               ? QStringLiteral("@Size(%1 %2)").arg(size.width()).arg(size.height()).toLatin1()
               : IniText::encoded(value.toString());
}

} // namespace

std::string AppSettings::s_name = defaultName;

AppSettings::AppSettings()
    : QSettings(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(s_name), QString(),
                nullptr)
{
    setFallbacksEnabled(false);
}

// The name "-" is that of no file, so none is read.
QString AppSettings::FilePath()
{
    const QSettings probe(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("-"));
    return QFileInfo(probe.fileName()).path() + QLatin1Char('/') + QString::fromStdString(s_name) +
           QLatin1String(".ini");
}

std::optional<QString> AppSettings::Text(const QString& key)
{
    constexpr int MostCharacters = 4096;
    const std::optional<QByteArray> value = stored(key);
    const std::optional<QString> text = value ? IniText::decoded(*value) : std::nullopt;
    return text && text->size() <= MostCharacters ? text : std::nullopt;
}

std::optional<int> AppSettings::Number(const QString& key)
{
    bool valid = false;
    const int number = Text(key).value_or(QString()).toInt(&valid);
    return valid ? std::optional<int>(number) : std::nullopt;
}

std::optional<bool> AppSettings::Flag(const QString& key)
{
    const std::optional<QString> text = Text(key);
    return text ? std::optional<bool>(QVariant(*text).toBool()) : std::nullopt;
}

std::optional<QSize> AppSettings::Size(const QString& key)
{
    constexpr int MostPixels = 32767;
    int width = 0;
    int height = 0;
    char end = '\0';
    const QByteArray value = stored(key).value_or(QByteArray());
    if (std::sscanf(value.constData(), "@Size(%5d %5d%c", &width, &height, &end) != 3 || end != ')')
        return std::nullopt;
    const bool valid = width > 0 && height > 0 && width <= MostPixels && height <= MostPixels;
    return valid ? std::optional<QSize>(QSize(width, height)) : std::nullopt;
}

bool AppSettings::Store(std::initializer_list<std::pair<QString, QVariant>> values)
{
    const QString path = FilePath();
    QDir().mkpath(QFileInfo(path).path());
    const auto edit = [&](int error, std::string& contents) {
        QByteArray text = QByteArray::fromStdString(contents);
        for (const auto& [key, value] : values)
            text = IniText::replaced(text, key, encoded(value));
        contents = text.toStdString();
        return error == ENOENT ? 0 : error;
    };
    return Base::SharedFile::change(encodedPath(path), edit, Patience) == 0;
}

void AppSettings::SetName(std::string name)
{
    // QSettings refuses to write for an organisation without a name.
    s_name = name.empty() ? std::string(defaultName) : std::move(name);
}

} // namespace Halvern::UI
