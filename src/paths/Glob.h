#pragma once

#include <string_view>

/// Whether all of @p name matches the glob @p pattern; filename_match() tells what it may hold. The time is
/// bounded whatever the pattern is.
bool globMatches(std::string_view name, std::string_view pattern);
