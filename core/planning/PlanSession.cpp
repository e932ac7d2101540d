#include "core/planning/PlanSession.h"

#include "core/orbits/NavigationFile.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacTime.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/PlanSite.h"
#include "core/resources/StringTable.h"

#include <utility>

namespace fieldcore {

namespace {

constexpr int kDayH = 24;

} // namespace

PlanSession::PlanSession(const Environment& environment)
    : m_environment(environment), m_folder(environment.GetFolders().Program()),
      m_reg(environment.Roots())
{}

AlmanacMessage PlanSession::Begin()
{
    m_settings = LoadPlanSettings(m_reg);
    ApplySettings(m_settings, m_plan);
    if (!m_plan.IsGpsAlone()) {
        ReloadMessages();
    }
    ReadSite();
    m_plan.Period().date = std::chrono::floor<std::chrono::days>(m_environment.GetClock().Utc());
    ResetSpins();
    return ReloadAlmanac();
}

std::optional<TextError> PlanSession::ReloadMessages()
{
    KeptNavigation kept = LoadConstellations(m_folder);
    m_plan.SetConstellations(std::move(kept.constellations));
    return kept.error;
}

void PlanSession::TakeUse()
{
    m_settings.switchedOff = 0;
    for (int index = 0; index < CSurveyPlanCalc::kSatellites; ++index) {
        const bool isOff = m_plan.Calc().GetSatellite(index).GetUse() == 0;
        m_settings.switchedOff |= (isOff ? 1U : 0U) << index;
    }
}

int PlanSession::SaveSettings()
{
    TakeUse();
    return SavePlanSettings(m_reg, m_settings);
}

AlmanacMessage PlanSession::ReloadAlmanac()
{
    m_hasAlmanac = m_plan.Calc().LoadAlmanac(AlmanacPath(m_folder));
    if (!CanPlan()) {
        return MessageOf(AlmanacResult::NotRead);
    }
    if (!m_hasCurtain) {
        m_plan.Calc().SetCurtain(LoadCurtain(m_folder));
        m_hasCurtain = true;
    }
    Compute();
    return IsAlmanacTooOld()
               ? AlmanacMessage{text::kAlmanacOld, text::kAlmanacOldCaption, BoxIcon::Exclamation}
               : AlmanacMessage{};
}

std::vector<AlmanacMessage> PlanSession::UpdateAlmanac(CCommand& command,
                                                       const AlmanacStore::Progress& progress)
{
    AlmanacStore store(m_folder);
    const AlmanacResult result = store.Update(command, progress);
    std::vector<AlmanacMessage> messages{MessageOf(result), MessageOf(result, store.Tally())};
    if (result == AlmanacResult::Done) {
        const AlmanacMessage loaded = ReloadAlmanac();
        if (!m_hasAlmanac) {
            messages = {loaded};
        } else {
            messages.push_back(loaded);
        }
    }
    std::erase_if(messages, [](const AlmanacMessage& message) { return message.text == 0; });
    return messages;
}

CGPSTime PlanSession::AlmanacDate() const
{
    return AlmanacTime(m_plan.Calc());
}

bool PlanSession::IsAlmanacTooOld() const
{
    return m_hasAlmanac && IsAlmanacOld(AlmanacDate(), m_plan.Period().Start());
}

std::error_code PlanSession::ChangeCurtain(const ObstructionCurtain& curtain)
{
    const std::error_code error = SaveCurtain(m_folder, curtain);
    if (!error) {
        m_plan.Calc().SetCurtain(curtain);
        m_hasCurtain = true;
        Compute();
    }
    return error;
}

PlanSession::Spins PlanSession::ResetSpins()
{
    m_spins = {m_settings.startHour, m_settings.startHour + m_settings.hours};
    return m_spins;
}

void PlanSession::ResetPeriod()
{
    const PlanSettings fresh;
    m_settings.startHour = fresh.startHour;
    m_settings.hours = fresh.hours;
    ResetSpins();
}

PlanSession::Spins PlanSession::MoveStart(int hour)
{
    if (hour < 0 || hour >= kDayH) {
        ResetPeriod();
        return m_spins;
    }
    m_settings.startHour = hour;
    if (m_settings.startHour + m_settings.hours > kDayH) {
        --m_settings.hours; // a spin moves hour by hour: one is enough
    }
    return ResetSpins();
}

PlanSession::Spins PlanSession::MoveEnd(int hour)
{
    if (hour < 1 || hour > kDayH) {
        ResetPeriod();
    } else if (m_settings.startHour >= hour) {
        m_spins.end = m_settings.startHour + 1;
    } else {
        m_settings.hours = hour - m_settings.startHour;
        m_spins.end = hour;
    }
    return m_spins;
}

void PlanSession::SetSystems(SystemSet systems)
{
    PlanSettings settings = m_settings;
    settings.systems = systems;
    m_settings.systems = Fitted(settings).systems;
}

void PlanSession::ComputeMask()
{
    m_plan.SetElMaskDeg(m_settings.elMaskDeg);
    m_plan.ComputeView();
}

void PlanSession::Compute()
{
    TakeUse();
    ApplySettings(m_settings, m_plan);
    m_plan.Calc().SetObserver(m_site);
    m_plan.Compute();
}

PlanGraph PlanSession::Graph() const
{
    constexpr int kGraphs = 7;
    return m_settings.drawType >= 0 && m_settings.drawType < kGraphs
               ? static_cast<PlanGraph>(m_settings.drawType)
               : PlanGraph::SkyPlot;
}

int PlanSession::SetSettings(const PlanSettings& settings)
{
    const PlanSettings fitted = Fitted(settings);
    const bool changes = fitted != m_settings;
    m_settings = fitted;
    ResetSpins();
    return changes ? 1 : 0;
}

void PlanSession::SetMask(int maskDeg)
{
    PlanSettings settings = m_settings;
    settings.elMaskDeg = maskDeg;
    m_settings.elMaskDeg = Fitted(settings).elMaskDeg;
}

void PlanSession::SetSearch(const SearchChoice& choice)
{
    PlanSettings settings = m_settings;
    settings.search = choice;
    m_settings.search = Fitted(settings).search;
}

void PlanSession::SetDate(std::chrono::year_month_day date)
{
    if (date.ok()) {
        m_plan.Period().date = date;
    }
}

void PlanSession::ReadSite()
{
    m_isSiteKnown = fieldcore::ReadSite(m_folder, m_settings.position).IsComplete();
    ReadPosition(m_folder, m_settings.position, m_site);
}

} // namespace fieldcore
