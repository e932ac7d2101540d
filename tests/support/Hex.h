#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::testing {

/// "02 00 08" as bytes; blanks may be left out.
[[nodiscard]] inline std::vector<std::uint8_t> Hex(std::string_view text)
{
    std::vector<std::uint8_t> bytes;
    std::string digits;
    for (const char c : text) {
        if (std::string_view("0123456789ABCDEF").find(c) != std::string_view::npos) {
            digits += c;
        }
        if (digits.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

} // namespace fieldcore::testing
