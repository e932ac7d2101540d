#pragma once

#include "core/planning/AlmanacStore.h"
#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanSettings.h"
#include "core/planning/PlanWindows.h"
#include "core/platform/TextError.h"
#include "core/settings/Environment.h"
#include "core/settings/HostReg.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace fieldcore {

/// The plan's screen without the screen: settings, site, date, almanac and curtain, the rules of
/// its two spins, and the plan that follows from all that. User-interface thread only.
class PlanSession
{
public:
    /// With the settings and the program's folder of @p environment.
    explicit PlanSession(const Environment& environment);

    /// Begins: reads settings and site, takes today's date in UTC, loads almanac and curtain, and
    /// computes. Without an almanac it stops at that: what comes behind is left for
    /// ReloadAlmanac().
    /// @return what to tell the user; both numbers 0: nothing
    AlmanacMessage Begin();

    /// Reads the messages that were imported, which Begin() does only where they count.
    /// @return what is wrong with them: there are none then
    std::optional<TextError> ReloadMessages();

    /// Stores the settings, and which satellites of the plan do not count. @return 1, or 0 if that
    /// was not possible
    int SaveSettings();

    /// Loads the almanac and, if that has not been done, the curtain, and computes.
    /// @return what to tell the user about the almanac: it cannot be read, or is too old
    AlmanacMessage ReloadAlmanac();
    /// Whether there is what a plan is made from: an almanac, or other systems.
    [[nodiscard]] bool CanPlan() const { return m_hasAlmanac || !m_plan.IsGpsAlone(); }
    /// Receives the almanac from the receiver, replaces the one in the folder, and goes on with
    /// ReloadAlmanac(). Takes as long as AlmanacStore::Update().
    /// @return what to tell the user, in this order; nothing after Cancel
    std::vector<AlmanacMessage> UpdateAlmanac(CCommand& command,
                                              const AlmanacStore::Progress& progress = {});
    /// The latest reference time of the almanac.
    [[nodiscard]] CGPSTime AlmanacDate() const;
    /// Whether the plan's start is more than 30 days behind that.
    [[nodiscard]] bool IsAlmanacTooOld() const;

    /// Takes a curtain and keeps it in the program's folder.
    /// @return what went wrong with the file; the plan has then its curtain of before
    std::error_code ChangeCurtain(const ObstructionCurtain& curtain);

    /// Where the two spins stand after a move.
    struct Spins
    {
        int start = 9; ///< hour, 0 to 23
        int end = 11;  ///< hour, 1 to 24
    };
    [[nodiscard]] Spins GetSpins() const { return m_spins; }
    /// Both spins on what the settings have.
    Spins ResetSpins();
    /// The start spin was moved to @p hour. A period that would end behind midnight loses an hour;
    /// an hour that no spin has puts both back to 9 and 11.
    Spins MoveStart(int hour);
    /// The end spin was moved to @p hour. One that is not behind the start goes to the hour behind
    /// it, and the period keeps the length it had; an hour that no spin has puts both back.
    Spins MoveEnd(int hour);

    /// Chooses a graph; period and spins stay as they are.
    /// @param drawType  a PlanGraph; any other number stands for the sky plot
    void SetGraph(int drawType) { m_settings.drawType = drawType; }

    /// @param maskDeg  elevation mask, whole degrees; brought into 0 to 90. Period and spins stay.
    void SetMask(int maskDeg);

    /// When the sky counts as good.
    [[nodiscard]] const WindowLimits& Limits() const { return m_settings.limits; }
    /// @param limits  brought into their ranges
    void SetLimits(const WindowLimits& limits) { m_settings.limits = Fitted(limits); }

    /// @param choice  brought into its ranges
    void SetSearch(const SearchChoice& choice);

    /// @param systems  that count together; without any GPS does
    void SetSystems(SystemSet systems);

    /// Brings the plan to the settings, the date and the site.
    void Compute();
    /// The same where nothing but the mask is another since the last time.
    void ComputeMask();
    [[nodiscard]] ObservationPlan& Plan() { return m_plan; }
    [[nodiscard]] const ObservationPlan& Plan() const { return m_plan; }
    /// The graph that is chosen; a number that is none stands for the sky plot.
    [[nodiscard]] PlanGraph Graph() const;

    /// What it was given.
    [[nodiscard]] const Environment& GetEnvironment() const { return m_environment; }
    /// The program's, where its files are.
    [[nodiscard]] const std::filesystem::path& Folder() const { return m_folder; }

    // What the dialog and its pages read and set; Compute() takes it over.

    [[nodiscard]] const PlanSettings& Settings() const { return m_settings; }
    /// Mask and period are brought into their ranges. @return 1 if anything is different now
    int SetSettings(const PlanSettings& settings);
    [[nodiscard]] std::chrono::year_month_day Date() const { return m_plan.Period().date; }
    /// A date that is none changes nothing.
    void SetDate(std::chrono::year_month_day date);
    /// Reads the site of the settings from the site file; see ReadPosition() for one that it lacks.
    void ReadSite();
    [[nodiscard]] const Observer& Site() const { return m_site; }
    /// Whether the site file had all of its coordinates; if not, Site() is only where the plan
    /// computes.
    [[nodiscard]] bool IsSiteKnown() const { return m_isSiteKnown; }

private:
    void ResetPeriod();
    /// What the plan's satellites are to the user becomes a setting.
    void TakeUse();

    const Environment m_environment;
    const std::filesystem::path m_folder;
    const HostReg m_reg;
    PlanSettings m_settings;
    Spins m_spins;
    Observer m_site;
    ObservationPlan m_plan;
    bool m_isSiteKnown = false;
    bool m_hasAlmanac = false;
    bool m_hasCurtain = false;
};

} // namespace fieldcore
