#pragma once

#include "core/planning/AlmanacText.h"

#include <string_view>

namespace fieldcore {

/// As ParseAlmanacText() says of SEM; the week of a record is that of the text. After an error the
/// satellites before it are there.
[[nodiscard]] AlmanacText ParseSem(std::string_view text);

} // namespace fieldcore
