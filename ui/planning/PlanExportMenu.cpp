#include "ui/planning/PlanExportMenu.h"

#include "core/host/MesBox.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanExport.h"

#include <QFile>

#include <utility>

namespace fieldcore {

namespace {

constexpr QSize kPicture{1600, 1200};
constexpr double kPictureDpi = 192.0;
constexpr QSize kVectors{800, 600};

} // namespace

PlanExportMenu::PlanExportMenu(PlanDrawing drawing, const PlanSurroundings& surroundings,
                               Host& host, QWidget* parent)
    : QMenu(parent), m_drawing(std::move(drawing)), m_surroundings(surroundings), m_host(host)
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
    const QString ending = QLatin1Char('.') + QLatin1String(suffix);
    const QString name =
        ToQt(FormatText(text::kPlanExportFile, day.toStdWString().c_str())) + ending;
    const QString filter = UiText(textId) + QStringLiteral(" (*%1)").arg(ending);
    std::filesystem::path file = m_surroundings.chooseFile(
        parentWidget(), true, m_surroundings.documents / QFile::encodeName(name).toStdString(),
        filter);
    if (file.empty()) {
        return;
    }
    if (!file.has_extension()) {
        file += ending.toStdString();
    }
    // The folder that was suggested need not be there yet. Where it cannot be made, saving says so.
    static_cast<void>(Folders::Create(file.parent_path()));
    const CMesBox box(m_host);
    if (const std::error_code error = save(file, m_drawing)) {
        box.Fail(ExportFailureText(file, error).toStdWString(), text::kPlanFileCaption);
        return;
    }
    box.Show(FormatText(text::kPlanExported, FromUtf8(file.string()).c_str()), text::kPlanExport,
             {BoxButtons::Ok, BoxIcon::Information});
}

} // namespace fieldcore
