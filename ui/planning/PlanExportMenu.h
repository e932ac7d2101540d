#pragma once

#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlanSurroundings.h"

#include <QMenu>

#include <system_error>

namespace fieldcore {

/// The menu of what a plan can be saved as: sheet, picture, drawing and figures. It asks for the
/// file, saves it, and tells how that went. User-interface thread only.
class PlanExportMenu : public QMenu
{
    Q_OBJECT

public:
    /// @param surroundings  must outlive the menu, as must @p environment
    PlanExportMenu(PlanDrawing drawing, const PlanSurroundings& surroundings,
                   const Environment& environment, QWidget* parent);

private:
    using Save = std::error_code (*)(const std::filesystem::path& file, const PlanDrawing& drawing);
    void Add(int textId, const QString& icon, const char* suffix, Save save);
    void SaveAs(int textId, const char* suffix, Save save);

    const PlanDrawing m_drawing;
    const PlanSurroundings& m_surroundings;
    const Environment& m_environment;
};

} // namespace fieldcore
