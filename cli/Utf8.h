#pragma once

#include "core/platform/Utf8.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace fieldcore::cli {

/// UTF-8 that is safe to show on a terminal: control characters, which a receiver or a log could
/// smuggle in, and bytes that are no UTF-8 become "?".
[[nodiscard]] std::string Printable(std::string_view utf8);

/// How many columns of a terminal @p utf8 takes; characters of Japanese text take two.
[[nodiscard]] std::size_t DisplayWidth(std::string_view utf8);

} // namespace fieldcore::cli
