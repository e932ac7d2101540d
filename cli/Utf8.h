#pragma once

#include "core/platform/Utf8.h"

#include <cstddef>
#include <string_view>

namespace fieldcore::cli {

/// How many columns of a terminal @p utf8 takes; characters of Japanese text take two.
[[nodiscard]] std::size_t DisplayWidth(std::string_view utf8);

} // namespace fieldcore::cli
