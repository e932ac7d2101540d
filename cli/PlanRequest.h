#pragma once

#include "cli/Failure.h"
#include "cli/World.h"

#include "core/planning/LocalFrame.h"
#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanSettings.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace fieldcore::cli {

/// A site of the plan under its name. What the site file does not say of it is not a number.
struct NamedSite
{
    std::wstring name;
    Observer observer;
    bool isSample = false; ///< it comes with the program
};

/// The sites of the program's folder, and behind them those that come with the program.
[[nodiscard]] std::vector<NamedSite> KnownSites(const std::filesystem::path& folder);

/// What a plan is asked for, as it stands on the command line; what is not given is what the
/// settings have.
struct PlanOptions
{
    std::vector<std::string> sites;  ///< names
    std::vector<std::string> places; ///< LAT,LON[,HEIGHT] in degrees and metres
    std::filesystem::path siteList;  ///< a file of sites; empty: none
    std::string date = "today";      ///< YYYY-MM-DD, today or tomorrow
    int days = 1;
    std::optional<int> from;
    std::optional<int> hours;
    std::optional<int> maskDeg;
    std::filesystem::path almanac; ///< empty: the one of the program's folder
    std::filesystem::path curtain; ///< empty: the one of the program's folder
    bool noCurtain = false;
    std::string systems = "G"; ///< letters
    bool clockPerSystem = false;

    /// Gives a command these options. This object must outlive the parsing.
    void AddTo(CLI::App& command);
};

/// What a plan is made of. Each site is planned on each day.
struct PlanRequest
{
    std::vector<NamedSite> sites;
    std::vector<std::chrono::year_month_day> dates;
    SystemSet systems;
    PlanSettings settings;        ///< the user's, with what was asked for in their place
    std::filesystem::path folder; ///< the program's
};

/// Reads the options: finds the sites, counts the days, and fits the period into the day.
/// @param wholeDay  the period if none is given; else the settings have it
/// @return what is wrong with them
[[nodiscard]] std::optional<Failure> Resolve(const PlanOptions& options, const World& world,
                                             const PlanSettings& settings, bool wholeDay,
                                             PlanRequest& request);

/// Loads almanac and curtain into @p plan.
/// @return why there is no almanac
[[nodiscard]] std::optional<Failure> LoadSky(const PlanOptions& options, const PlanRequest& request,
                                             ObservationPlan& plan);

} // namespace fieldcore::cli
