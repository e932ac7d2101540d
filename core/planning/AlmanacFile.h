#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace fieldcore {

// The almanac file: records of 80 bytes one behind the other, without a header.

/// With this many satellites or fewer, an almanac does not replace another.
inline constexpr int kTooFewAlmanacs = 4;

/// "GSurveyPlan.alm" in the program's @p folder.
[[nodiscard]] std::filesystem::path AlmanacPath(const std::filesystem::path& folder);
/// "#$&Temp.Tmp" beside it, which is there only while an almanac is received.
[[nodiscard]] std::filesystem::path AlmanacTemporaryPath(const std::filesystem::path& folder);

/// @return the content as it is, a megabyte at most; empty if the file cannot be read
[[nodiscard]] std::vector<std::uint8_t> ReadAlmanacFile(const std::filesystem::path& file);

/// How many different PRNs from 1 to 32 the records of @p content have.
[[nodiscard]] int CountAlmanacs(std::span<const std::uint8_t> content);

} // namespace fieldcore
