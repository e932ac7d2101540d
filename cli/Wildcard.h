#pragma once

#include <string_view>

namespace fieldcore::cli {

/// Whether all of @p text fits @p pattern, in which "*" stands for any characters, also none, and
/// "?" for any one. Upper and lower case differ. Takes no longer than the product of the lengths.
[[nodiscard]] bool MatchesWildcard(std::wstring_view pattern, std::wstring_view text);

/// Whether @p pattern can fit more than one text.
[[nodiscard]] bool HasWildcard(std::wstring_view pattern);

} // namespace fieldcore::cli
