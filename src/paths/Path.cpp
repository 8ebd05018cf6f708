#include "paths/Path.h"

#include <filesystem>

namespace Halvern::Base {

std::string normalisedPath(const std::string& path)
{
    std::string text = std::filesystem::path(path).lexically_normal().string();
    if (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

QString withSeparator(const QString& folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

} // namespace Halvern::Base
