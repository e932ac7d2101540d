#include "core/planning/PlanSettings.h"

#include "core/input/EntryList.h"
#include "core/input/Parts.h"
#include "core/planning/PlanSearch.h"
#include "core/settings/Setting.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace fieldcore {

namespace {

constexpr KnownSetting kSite = L"GPS\\SurveyPlan\\Search\\Site*";
constexpr double kHundredths = 100.0;

/// Lets @p visit see each whole number with its setting.
template <typename Visitor>
void VisitNumbers(PlanSettings& s, Visitor visit)
{
    visit(L"GPS\\SurveyPlan\\ElMask", s.elMaskDeg);
    visit(L"GPS\\SurveyPlan\\StartTime", s.startHour);
    visit(L"GPS\\SurveyPlan\\DispTime", s.hours);
    visit(L"GPS\\SurveyPlan\\DrawType", s.drawType);
    visit(L"GPS\\SurveyPlan\\ListCoord", s.listCoord);
    visit(L"GPS\\SurveyPlan\\PositionNo", s.positionNo);
    visit(L"GPS\\SurveyPlan\\PositionID", s.positionId);
    visit(L"GPS\\SurveyPlan\\Search\\Days", s.search.days);
    visit(L"GPS\\SurveyPlan\\Search\\StartTime", s.search.startHour);
    visit(L"GPS\\SurveyPlan\\Search\\Hours", s.search.hours);
}

} // namespace

PlanSettings Fitted(PlanSettings settings)
{
    VisitNumbers(settings, [](KnownSetting setting, int& value) {
        value = static_cast<int>(setting->number.Fit(value));
    });
    settings.hours = std::min(settings.hours, 24 - settings.startHour);
    settings.limits = Fitted(settings.limits);
    settings.switchedOff = settings.switchedOff == ~0U ? 0 : settings.switchedOff;
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
    VisitNumbers(settings, [&reg](KnownSetting setting, int& value) {
        std::uint32_t stored = 0;
        ReadSetting(reg, setting, stored);
        value = static_cast<int>(stored); // from 2^31 on negative
    });
    settings.limits = {
        static_cast<int>(StoredNumber(reg, L"GPS\\SurveyPlan\\Conditions\\MinSatellites")),
        StoredNumber(reg, L"GPS\\SurveyPlan\\Conditions\\MaxPdop") / kHundredths,
        std::chrono::minutes(StoredNumber(reg, L"GPS\\SurveyPlan\\Conditions\\MinMinutes"))};
    settings.switchedOff = StoredNumber(reg, L"GPS\\SurveyPlan\\Conditions\\SwitchedOff");
    settings.systems = SystemSet(StoredNumber(reg, L"GPS\\SurveyPlan\\Conditions\\Systems"));
    settings.clockPerSystem =
        StoredNumber(reg, L"GPS\\SurveyPlan\\Conditions\\ClockPerSystem") != 0;
    settings.position = StoredText(reg, L"GPS\\SurveyPlan\\Position");
    TextEntries sites;
    CParts::RegReadComboBoxList(sites, reg, kSite->Key(), kSite->Name(), PlanSearch::kMostSites);
    settings.search.sites = sites.Texts();
    return Fitted(settings);
}

int SavePlanSettings(const CReg& reg, const PlanSettings& settings)
{
    const WindowLimits& limits = settings.limits;
    const auto whole = [](auto value) { return static_cast<std::uint32_t>(value); };
    std::vector<SettingWrite> writes{
        {L"GPS\\SurveyPlan\\Position", settings.position},
        {L"GPS\\SurveyPlan\\Conditions\\MinSatellites", whole(limits.minSatellites)},
        {L"GPS\\SurveyPlan\\Conditions\\MaxPdop", whole(std::lround(limits.maxPdop * kHundredths))},
        {L"GPS\\SurveyPlan\\Conditions\\MinMinutes", whole(limits.minLength.count())},
        {L"GPS\\SurveyPlan\\Conditions\\SwitchedOff", settings.switchedOff},
        {L"GPS\\SurveyPlan\\Conditions\\Systems", whole(settings.systems.to_ulong())},
        {L"GPS\\SurveyPlan\\Conditions\\ClockPerSystem", whole(settings.clockPerSystem)}};
    PlanSettings copy = settings;
    VisitNumbers(
        copy, [&](KnownSetting setting, int value) { writes.emplace_back(setting, whole(value)); });
    std::vector<std::wstring>& sites = copy.search.sites;
    sites.resize(std::min(sites.size(), PlanSearch::kMostSites));
    sites.emplace_back(); // the end
    for (std::size_t k = 0; k < sites.size(); ++k) {
        writes.push_back({kSite, sites[k], std::to_wstring(k)});
    }
    return StoreAll(reg, writes);
}

} // namespace fieldcore
