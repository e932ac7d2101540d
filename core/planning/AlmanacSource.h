#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>

namespace fieldcore {

enum class AlmanacOrigin
{
    Unknown,
    Receiver,
    File,
    Nominal, ///< made up: as GPS was laid out, see NominalConstellation()
};

/// Where an almanac comes from.
struct AlmanacSource
{
    AlmanacOrigin origin = AlmanacOrigin::Unknown;
    std::wstring name; ///< the receiver's serial number, or the file's name; may be empty
};

/// Whether a record of @p content, an almanac's, is one of NominalConstellation(): an exact circle
/// of its size and inclination, which no satellite has. So it is known whatever it has gone
/// through: a receiver that is simulated, or a text.
[[nodiscard]] bool HasNominal(std::span<const std::uint8_t> content);

/// For the user: "公称軌道暦（見本）", "受信機 VX1 0123456".
[[nodiscard]] std::wstring SourceText(const AlmanacSource& source);

// A text beside the almanac, its name with ".source" behind it, says where the almanac comes from
// and which content that was: another program may replace the one and does not know the other.

/// @param almanac  the almanac's file
/// @param content  of the file. If it HasNominal(), that is its origin.
[[nodiscard]] AlmanacSource LoadAlmanacSource(const std::filesystem::path& almanac,
                                              std::span<const std::uint8_t> content);
/// @return what went wrong: the almanac is then of unknown origin
std::error_code SaveAlmanacSource(const std::filesystem::path& almanac,
                                  std::span<const std::uint8_t> content,
                                  const AlmanacSource& source);

} // namespace fieldcore
