#pragma once

#include "core/orbits/Constellations.h"
#include "core/planning/AlmanacStore.h"
#include "core/platform/Clock.h"
#include "core/platform/TextError.h"

#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

namespace fieldcore {

/// What became of a file of orbits.
struct OrbitImport
{
    /// What the file itself has of each system, GPS among them, at the time of the import.
    std::array<SystemState, kGnssSystems> came{};
    bool isAlmanac = false; ///< its GPS satellites are the almanac now; the rest are messages
    int leftOut = 0;        ///< of satellites that are not known, or that cannot be an orbit

    // Why nothing came; at most one of them.
    std::optional<TextError> error; ///< the file cannot be read as what it is
    bool isTooFew = false;          ///< GPS satellites for an almanac
    std::error_code notKept;        ///< the program's folder

    /// Whether something came and is kept.
    [[nodiscard]] bool IsDone() const { return !error && !isTooFew && !notKept; }
};

/// Takes the orbits of @p file, whichever kind it is by its content: a YUMA or SEM text replaces
/// the almanac in @p folder, navigation messages are added to those that are kept there, and so are
/// the QZSS satellites of an almanac. After an error what was there stays, but an almanac that was
/// replaced before its QZSS satellites could not be kept. Takes seconds for large files; as for
/// AlmanacStore no other call may use the almanac meanwhile.
[[nodiscard]] OrbitImport ImportOrbits(const std::filesystem::path& folder,
                                       const std::filesystem::path& file, Clock::UtcTime now);

} // namespace fieldcore
