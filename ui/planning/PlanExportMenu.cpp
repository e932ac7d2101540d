#include "ui/planning/PlanExportMenu.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanExport.h"

#include <utility>

namespace fieldcore {

namespace {

constexpr QSize kPicture{1600, 1200};
constexpr double kPictureDpi = 192.0;
constexpr QSize kVectors{800, 600};

} // namespace

PlanExportMenu::PlanExportMenu(PlanDrawing drawing, const PlanSurroundings& surroundings,
                               const Environment& environment, QWidget* parent)
    : QMenu(parent), m_drawing(std::move(drawing)), m_surroundings(surroundings),
      m_environment(environment)
{
    setStyle(TouchStyle::Shared());
    setAccessibleName(UiText(text::kPlanExport));
    Add(text::kPlanExportPdf, QStringLiteral("plan"), "pdf", &ExportPdf);
    Add(text::kPlanExportPng, QStringLiteral("chart"), "png",
        [](const std::filesystem::path& file, const PlanDrawing& picture) {
            return ExportPng(file, picture, kPicture, kPictureDpi);
        });
    Add(text::kPlanExportSvg, QStringLiteral("chart"), "svg",
        [](const std::filesystem::path& file, const PlanDrawing& picture) {
            return ExportSvg(file, picture, kVectors);
        });
    Add(text::kPlanExportCsv, QStringLiteral("file"), "csv", &ExportCsv);
}

void PlanExportMenu::Add(int textId, const QString& icon, const char* suffix, Save save)
{
    QAction* const item = addAction(ThemeIcon(icon), UiText(textId));
    item->setEnabled(m_drawing.Obstacle().isEmpty());
    connect(item, &QAction::triggered, this,
            [this, textId, suffix, save] { SaveAs(textId, suffix, save); });
}

void PlanExportMenu::SaveAs(int textId, const char* suffix, Save save)
{
    const QString day = PlanDateText(m_drawing).remove(QLatin1Char('/'));
    m_surroundings.SaveAndTell(
        parentWidget(), m_environment, textId,
        ToQt(FormatText(text::kPlanExportFile, day.toStdWString().c_str())),
        QLatin1Char('.') + QLatin1String(suffix),
        [&](const std::filesystem::path& file) { return save(file, m_drawing); });
}

} // namespace fieldcore
