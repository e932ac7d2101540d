#pragma once

#include <optional>
#include <string_view>

namespace fieldcore::simulator {

/// A receiver type: what it is called and the code with which it reports itself.
struct Model
{
    int typeNumber;        ///< four digits: what the controller knows it by
    int typeCode;          ///< 0 to 255; the smallest one where several mean the same type
    int modelWord;         ///< only with code 0
    std::string_view name; ///< empty: it has none
};

/// @param text  type number ("3017") or model name ("Corvane VX1"); where several types have the
///              name, the smallest number is meant
[[nodiscard]] std::optional<Model> FindModel(std::string_view text);

/// What a type code stands for. Codes that no type has count as the first Pica type, 3010.
[[nodiscard]] Model ModelOfCode(int typeCode, int modelWord);

inline constexpr int kFirstPica = 3010;

} // namespace fieldcore::simulator
