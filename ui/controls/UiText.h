#pragma once

#include "core/resources/StringTable.h"

#include <QString>

#include <string_view>

namespace fieldcore {

/// The library's text as Qt has it.
[[nodiscard]] inline QString ToQt(std::wstring_view text)
{
    return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}

/// The text under a number of the string table.
[[nodiscard]] inline QString UiText(int id)
{
    return ToQt(Text(id));
}

} // namespace fieldcore
