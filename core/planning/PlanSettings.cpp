#include "core/planning/PlanSettings.h"

#include "core/platform/SettingsStore.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace fieldcore {

namespace {

constexpr const wchar_t* kKey = L"GPS\\SurveyPlan";
constexpr const wchar_t* kPosition = L"Position";

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
    return settings;
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
    return stored && batch.Commit() ? 1 : 0;
}

} // namespace fieldcore
