#pragma once

#include "core/link/Connect.h"
#include "core/planning/SkyRecorder.h"
#include "core/settings/Environment.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <memory>
#include <system_error>

class QWidget;

namespace fieldcore {

class CCommand;

/// What the screen of the plan uses of the program around it.
struct PlanSurroundings
{
    /// Makes the screen that connects to the receiver; without one, it is a ConnectDlg to where
    /// the settings say.
    std::function<std::unique_ptr<CConnect>(CCommand& command)> makeConnect;

    /// What the survey that is run asks of the sky; empty: nobody knows.
    struct Conditions
    {
        int elMaskDeg = 0;
        int minSatellites = 0;
        double maxPdop = 0.0;
    };
    std::function<Conditions()> conditions;

    /// What the program notes of the sky while it is connected; empty: it notes nothing, and only
    /// what was noted before is there.
    std::function<SkyRecorder::Now()> skyNotes;

    /// Asks for a file; without one, it is ChooseFile().
    /// @param suggested  where to begin: a file to be saved, or a folder to open one from
    /// @return empty if the user cancels
    std::function<std::filesystem::path(
        QWidget* parent, bool save, const std::filesystem::path& suggested, const QString& filter)>
        chooseFile;

    /// Asks for a file to be saved, in the user's documents if he takes no other folder, and saves
    /// it. A failure is told.
    /// @param textId  what it is, for the choice
    /// @param name    that is suggested, without its @p ending, such as ".pdf"
    /// @return where it was saved; empty: the user has cancelled, or it failed
    [[nodiscard]] std::filesystem::path
    Save(QWidget* parent, const Environment& environment, int textId, const QString& name,
         const QString& ending,
         const std::function<std::error_code(const std::filesystem::path& file)>& save) const;
    /// The same, and tells where it was saved.
    void SaveAndTell(
        QWidget* parent, const Environment& environment, int textId, const QString& name,
        const QString& ending,
        const std::function<std::error_code(const std::filesystem::path& file)>& save) const;

    /// @p given with what connects and chooses, if that was left out.
    /// @param screen  the plan's, over which the rest is shown
    [[nodiscard]] static PlanSurroundings Completed(PlanSurroundings given, QWidget* screen);
};

} // namespace fieldcore
