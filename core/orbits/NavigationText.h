#pragma once

#include "core/orbits/NavigationRecord.h"
#include "core/platform/TextError.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

/// No longer text is read, bytes: some days of all satellites of the world.
inline constexpr std::size_t kMostNavigation = std::size_t{32} << 20;

/// The records of a navigation text. After an error there are none.
struct NavigationText
{
    std::vector<NavigationRecord> records; ///< as they come in the text
    int otherSystems = 0;  ///< records of satellites that SatelliteId does not know, left out
    int otherMessages = 0; ///< records of another kind than orbits, or of a kind not read, left out
    int odd = 0;           ///< records whose orbit cannot be one, left out
    std::optional<TextError> firstOdd;
    std::optional<TextError> error;
};

/// Whether a file that begins with @p start means to be a navigation text, or is one that is
/// compressed, so that ReadNavigation() knows best what to say of it.
[[nodiscard]] bool LooksLikeNavigation(std::string_view start);

/// Reads navigation messages in RINEX 3.00 to 4.00: the ephemerides of GPS, Galileo, QZSS and
/// BeiDou (of version 4 the messages LNAV, INAV, FNAV, D1 and D2), the states of GLONASS and SBAS.
/// Any bytes may be given. Any thread.
///
/// Line ends may be LF or CR LF, exponents E or D, and what is not needed may be blank. A text is
/// refused as a whole, with line and field, if it is not what it says it is: another version or
/// kind, no header, a date that is none, something that is no number, a record with too few lines.
/// A record whose numbers can be read but describe no orbit is left out and counted, as real files
/// have such ones.
///
/// Of a text that was cut whole records may be missing unnoticed, but none is there that is not as
/// it was: a last line without a line end counts only if its fields are whole.
[[nodiscard]] NavigationText ReadNavigation(std::string_view text);

/// The same with the text of @p file. An error if there is no such regular file.
[[nodiscard]] NavigationText LoadNavigation(const std::filesystem::path& file);

/// A text of version 3.05 that ReadNavigation() reads as the same records, but for times, which it
/// has in whole seconds. It has what an orbit needs, and zeros for the rest.
[[nodiscard]] std::string WriteNavigation(std::span<const NavigationRecord> records);

} // namespace fieldcore
