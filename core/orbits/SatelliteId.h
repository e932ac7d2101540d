#pragma once

#include <bitset>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fieldcore {

/// A satellite system, in the order in which they are listed everywhere.
enum class GnssSystem : std::uint8_t
{
    Gps,
    Glonass,
    Galileo,
    BeiDou,
    Qzss,
    Sbas,
};
inline constexpr std::size_t kGnssSystems = 6;

/// Their letters, in that order.
inline constexpr std::string_view kSystemLetters = "GRECJS";
[[nodiscard]] constexpr char LetterOf(GnssSystem system)
{
    return kSystemLetters[static_cast<std::size_t>(system)];
}

/// Some of the systems: bit k is the k-th GnssSystem.
using SystemSet = std::bitset<kGnssSystems>;
[[nodiscard]] constexpr SystemSet SystemSetOf(GnssSystem system)
{
    return SystemSet(1ULL << static_cast<unsigned>(system));
}
/// @param letters  of the systems, in any order, capital or small: "GREJ"
/// @return nothing if one is no system, stands twice, or there is none
[[nodiscard]] std::optional<SystemSet> ParseSystems(std::string_view letters);
/// "GREJ"
[[nodiscard]] std::string TextOf(SystemSet systems);

/// A satellite of any system by the number that its system gives it: G05, R24, E36, C60, J02, S29.
struct SatelliteId
{
    GnssSystem system = GnssSystem::Gps;
    std::uint8_t number = 0;

    // The 0 that the comparison of the compiler's making compares with is no pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend constexpr auto operator<=>(const SatelliteId&, const SatelliteId&) = default;

    /// "G05"
    [[nodiscard]] std::string Text() const;
    /// @param text  a letter and one or two digits; a blank may stand for the zero
    /// @return nothing if that is no satellite: G1 to G32, R1 to R32, E1 to E36, C1 to C63, J1 to
    /// J10, S20 to S58
    [[nodiscard]] static std::optional<SatelliteId> Parse(std::string_view text);

    /// The number by which receivers and almanac texts name it among satellites of all systems:
    /// 1 to 32 are GPS, 120 to 158 SBAS, 193 to 202 QZSS.
    /// @return nothing if it is none of these
    [[nodiscard]] static std::optional<SatelliteId> FromPrn(int prn);
    /// @return 0 for the systems that have no such numbers
    [[nodiscard]] int Prn() const;
};

} // namespace fieldcore
