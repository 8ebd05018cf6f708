#pragma once

#include <string_view>

/// Whether all of @p name matches the glob @p pattern, see filename_match(). The time is bounded.
bool globMatches(std::string_view name, std::string_view pattern);
