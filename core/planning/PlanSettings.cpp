#include "core/planning/PlanSettings.h"

#include "core/planning/PlanSearch.h"
#include "core/platform/SettingsStore.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace fieldcore {

namespace {

constexpr const wchar_t* kKey = L"GPS\\SurveyPlan";
constexpr const wchar_t* kPosition = L"Position";
constexpr const wchar_t* kConditions = L"GPS\\SurveyPlan\\Conditions";
constexpr const wchar_t* kSearch = L"GPS\\SurveyPlan\\Search";
constexpr const wchar_t* kFewest = L"MinSatellites";
constexpr const wchar_t* kPdop = L"MaxPdop"; // hundredths
constexpr const wchar_t* kMinutes = L"MinMinutes";
constexpr const wchar_t* kSwitchedOff = L"SwitchedOff";
constexpr const wchar_t* kSystems = L"Systems"; // bit k: the k-th GnssSystem
constexpr const wchar_t* kClockPerSystem = L"ClockPerSystem";
constexpr std::uint32_t kAllSatellites = 0xFFFFFFFF;
constexpr double kHundredths = 100.0;

struct NumberSetting
{
    const wchar_t* key;
    const wchar_t* name;
    int& (*of)(PlanSettings&);
};

constexpr std::array<NumberSetting, 10> kNumbers{{
    {kKey, L"ElMask", [](PlanSettings& s) -> int& { return s.elMaskDeg; }},
    {kKey, L"StartTime", [](PlanSettings& s) -> int& { return s.startHour; }},
    {kKey, L"DispTime", [](PlanSettings& s) -> int& { return s.hours; }},
    {kKey, L"DrawType", [](PlanSettings& s) -> int& { return s.drawType; }},
    {kKey, L"ListCoord", [](PlanSettings& s) -> int& { return s.listCoord; }},
    {kKey, L"PositionNo", [](PlanSettings& s) -> int& { return s.positionNo; }},
    {kKey, L"PositionID", [](PlanSettings& s) -> int& { return s.positionId; }},
    {kSearch, L"Days", [](PlanSettings& s) -> int& { return s.search.days; }},
    {kSearch, L"StartTime", [](PlanSettings& s) -> int& { return s.search.startHour; }},
    {kSearch, L"Hours", [](PlanSettings& s) -> int& { return s.search.hours; }},
}};

std::wstring SiteName(std::size_t k)
{
    return L"Site" + std::to_wstring(k);
}

} // namespace

PlanSettings Fitted(PlanSettings settings)
{
    settings.elMaskDeg = std::clamp(settings.elMaskDeg, 0, 90);
    settings.startHour = std::clamp(settings.startHour, 0, 23);
    settings.hours = std::clamp(settings.hours, 1, 24 - settings.startHour);
    SearchChoice& search = settings.search;
    search.days = std::clamp(search.days, 1, SearchHours::kMostDays);
    search.startHour = std::clamp(search.startHour, 0, 23);
    search.hours = std::clamp(search.hours, 1, 24);
    settings.limits = Fitted(settings.limits);
    settings.switchedOff = settings.switchedOff == kAllSatellites ? 0 : settings.switchedOff;
    settings.systems = settings.systems.none() ? PlanSettings().systems : settings.systems;
    return settings;
}

void ApplySettings(const PlanSettings& settings, ObservationPlan& plan)
{
    plan.Period().startHour = settings.startHour;
    plan.Period().hours = settings.hours;
    plan.SetElMaskDeg(settings.elMaskDeg);
    plan.SetSystems(settings.systems, settings.clockPerSystem);
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        plan.Calc().SetUse(index, (settings.switchedOff >> index & 1U) == 0 ? 1 : 0);
    }
}

PlanSettings LoadPlanSettings(const CReg& reg)
{
    PlanSettings settings;
    for (const NumberSetting& number : kNumbers) {
        std::uint32_t value = 0;
        int& member = number.of(settings);
        reg.ReadNumber(number.key, number.name, value, static_cast<std::uint32_t>(member));
        member = static_cast<int>(value);
    }
    std::wstring site;
    for (std::size_t k = 0; k < PlanSearch::kMostSites; ++k) {
        reg.ReadString(kSearch, SiteName(k).c_str(), site, L"");
        if (site.empty()) {
            break;
        }
        settings.search.sites.push_back(site);
    }
    const std::wstring defaultPosition = settings.position;
    reg.ReadString(kKey, kPosition, settings.position, defaultPosition);
    WindowLimits& limits = settings.limits;
    const auto read = [&reg](const wchar_t* name, long whenMissing) {
        std::uint32_t value = 0;
        reg.ReadNumber(kConditions, name, value, static_cast<std::uint32_t>(whenMissing));
        return value;
    };
    constexpr std::uint32_t kMost = 100'000; // of a number that becomes an int
    limits.minSatellites = static_cast<int>(std::min(read(kFewest, limits.minSatellites), kMost));
    limits.maxPdop = read(kPdop, std::lround(limits.maxPdop * kHundredths)) / kHundredths;
    limits.minLength = std::chrono::minutes(
        std::min(read(kMinutes, static_cast<long>(limits.minLength.count())), kMost));
    settings.switchedOff = read(kSwitchedOff, 0);
    settings.systems = SystemSet(read(kSystems, 0));
    settings.clockPerSystem = read(kClockPerSystem, 0) != 0;
    return Fitted(settings);
}

int SavePlanSettings(const CReg& reg, const PlanSettings& settings)
{
    SettingsBatch batch(reg.Store());
    bool stored = batch.IsOpen();
    PlanSettings copy = settings;
    for (const NumberSetting& number : kNumbers) {
        const auto value = static_cast<std::uint32_t>(number.of(copy));
        stored = stored && reg.WriteNumber(number.key, number.name, value) == 1;
    }
    std::vector<std::wstring>& sites = copy.search.sites;
    sites.resize(std::min(sites.size(), PlanSearch::kMostSites));
    sites.emplace_back(); // the end
    for (std::size_t k = 0; k < sites.size(); ++k) {
        stored = stored && reg.WriteString(kSearch, SiteName(k).c_str(), sites[k]) == 1;
    }
    stored = stored && reg.WriteString(kKey, kPosition, settings.position) == 1;
    const WindowLimits& limits = settings.limits;
    const auto write = [&reg](const wchar_t* name, auto value) {
        return reg.WriteNumber(kConditions, name, static_cast<std::uint32_t>(value)) == 1;
    };
    stored = stored && write(kFewest, limits.minSatellites) &&
             write(kPdop, std::lround(limits.maxPdop * kHundredths)) &&
             write(kMinutes, limits.minLength.count()) &&
             write(kSwitchedOff, settings.switchedOff) &&
             write(kSystems, settings.systems.to_ulong()) &&
             write(kClockPerSystem, settings.clockPerSystem ? 1 : 0);
    return stored && batch.Commit() ? 1 : 0;
}

} // namespace fieldcore
