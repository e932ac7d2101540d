#pragma once

#include "core/planning/LiveSky.h"
#include "core/settings/Reg.h"

#include <optional>

namespace fieldcore {

/// What the live sky plot remembers between its runs, as it is for a user who has never chosen
/// anything. It is kept in the key "GPS\SkyPlot" below the library's own.
struct SkyPlotSettings
{
    enum class View
    {
        Bars = 0,
        List = 1,
    };

    std::optional<Constellation> constellation; ///< nothing: all; stored as 0, one as 1 and up
    View view = View::Bars;

    friend bool operator==(const SkyPlotSettings&, const SkyPlotSettings&) = default;
};

/// Settings that are missing, of another type or out of range are those of a new user.
/// @param reg  one that starts at the library's own key
[[nodiscard]] SkyPlotSettings LoadSkyPlotSettings(const CReg& reg);

/// Stores both, or none.
/// @return 1, or 0 if they could not be stored
int SaveSkyPlotSettings(const CReg& reg, const SkyPlotSettings& settings);

} // namespace fieldcore
