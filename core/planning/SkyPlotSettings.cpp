#include "core/planning/SkyPlotSettings.h"

#include "core/platform/SettingsStore.h"

#include <cstdint>

namespace fieldcore {

namespace {

constexpr const wchar_t* kKey = L"GPS\\SkyPlot";
constexpr const wchar_t* kConstellation = L"Constellation";
constexpr const wchar_t* kView = L"View";

} // namespace

SkyPlotSettings LoadSkyPlotSettings(const CReg& reg)
{
    SkyPlotSettings settings;
    std::uint32_t number = 0;
    reg.ReadNumber(kKey, kConstellation, number, 0);
    if (number >= 1 && number <= static_cast<std::uint32_t>(kConstellations)) {
        settings.constellation = static_cast<Constellation>(number - 1);
    }
    reg.ReadNumber(kKey, kView, number, 0);
    if (number == static_cast<std::uint32_t>(SkyPlotSettings::View::List)) {
        settings.view = SkyPlotSettings::View::List;
    }
    return settings;
}

int SaveSkyPlotSettings(const CReg& reg, const SkyPlotSettings& settings)
{
    const std::uint32_t constellation =
        settings.constellation ? static_cast<std::uint32_t>(*settings.constellation) + 1 : 0;
    SettingsBatch batch(reg.Store());
    const bool stored =
        batch.IsOpen() && reg.WriteNumber(kKey, kConstellation, constellation) == 1 &&
        reg.WriteNumber(kKey, kView, static_cast<std::uint32_t>(settings.view)) == 1;
    return stored && batch.Commit() ? 1 : 0;
}

} // namespace fieldcore
