#include "core/link/NumberFields.h"

#include "core/platform/NumberText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace fieldcore {

namespace {

constexpr std::size_t kWidest = 16; // bytes; no layout has a wider number

using NumberText = std::array<wchar_t, kWidest + 1>;

NumberText TextOf(std::span<const std::uint8_t> field)
{
    NumberText text{};
    // No character beyond ASCII belongs to a number, and none is a blank.
    const auto shown = field.first(std::min(field.size(), kWidest));
    std::transform(shown.begin(), shown.end(), text.begin(),
                   [](std::uint8_t byte) { return byte < 0x80 ? wchar_t{byte} : L'?'; });
    return text;
}

} // namespace

int IntegerField(std::span<const std::uint8_t> field)
{
    return ParseWhole(TextOf(field).data());
}

double RealField(std::span<const std::uint8_t> field)
{
    return ParseReal(TextOf(field).data());
}

} // namespace fieldcore
