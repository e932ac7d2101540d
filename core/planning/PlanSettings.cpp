#include "core/planning/PlanSettings.h"

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
    const wchar_t* name;
    int PlanSettings::*member;
};

constexpr std::array kNumbers{
    NumberSetting{L"ElMask", &PlanSettings::elMaskDeg},
    NumberSetting{L"StartTime", &PlanSettings::startHour},
    NumberSetting{L"DispTime", &PlanSettings::hours},
    NumberSetting{L"DrawType", &PlanSettings::drawType},
    NumberSetting{L"ListCoord", &PlanSettings::listCoord},
    NumberSetting{L"PositionNo", &PlanSettings::positionNo},
    NumberSetting{L"PositionID", &PlanSettings::positionId},
};

} // namespace

PlanSettings Fitted(PlanSettings settings)
{
    settings.elMaskDeg = std::clamp(settings.elMaskDeg, 0, 90);
    settings.startHour = std::clamp(settings.startHour, 0, 23);
    settings.hours = std::clamp(settings.hours, 1, 24 - settings.startHour);
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
        int& member = settings.*number.member;
        reg.ReadNumber(kKey, number.name, value, static_cast<std::uint32_t>(member));
        member = static_cast<int>(value);
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
    for (const NumberSetting& number : kNumbers) {
        const auto value = static_cast<std::uint32_t>(settings.*number.member);
        stored = stored && reg.WriteNumber(kKey, number.name, value) == 1;
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
