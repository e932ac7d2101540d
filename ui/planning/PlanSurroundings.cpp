#include "ui/planning/PlanSurroundings.h"

#include "core/host/MesBox.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/UiText.h"
#include "ui/link/ConnectDlg.h"
#include "ui/planning/PlanExport.h"

#include <QFile>

#include <utility>

namespace fieldcore {

namespace {

std::filesystem::path AskForFile(QWidget* parent, bool save, const std::filesystem::path& suggested,
                                 const QString& filter)
{
    return ChooseFile(parent, save, UiText(save ? text::kSaveFileTitle : text::kFileOpenTitle),
                      suggested, filter);
}

} // namespace

PlanSurroundings PlanSurroundings::Completed(PlanSurroundings given, QWidget* screen)
{
    if (!given.makeConnect) {
        given.makeConnect = [screen](CCommand& command) {
            return std::make_unique<ConnectDlg>(command, 0, screen);
        };
    }
    if (!given.chooseFile) {
        given.chooseFile = AskForFile;
    }
    return given;
}

std::filesystem::path PlanSurroundings::Save(
    QWidget* parent, const Environment& environment, int textId, const QString& name,
    const QString& ending,
    const std::function<std::error_code(const std::filesystem::path& file)>& save) const
{
    std::filesystem::path file = chooseFile(parent, true,
                                            environment.GetFolders().Documents() /
                                                QFile::encodeName(name + ending).toStdString(),
                                            UiText(textId) + QStringLiteral(" (*%1)").arg(ending));
    if (file.empty()) {
        return {};
    }
    if (!file.has_extension()) {
        file += ending.toStdString();
    }
    // The folder that was suggested need not be there yet. Where it cannot be made, saving says so.
    static_cast<void>(Folders::Create(file.parent_path()));
    if (const std::error_code error = save(file)) {
        CMesBox(environment.GetHost())
            .Fail(ExportFailureText(file, error).toStdWString(), text::kPlanFileCaption);
        return {};
    }
    return file;
}

void PlanSurroundings::SaveAndTell(
    QWidget* parent, const Environment& environment, int textId, const QString& name,
    const QString& ending,
    const std::function<std::error_code(const std::filesystem::path& file)>& save) const
{
    const std::filesystem::path file = Save(parent, environment, textId, name, ending, save);
    if (!file.empty()) {
        CMesBox(environment.GetHost())
            .Show(FormatText(text::kPlanExported, FromUtf8(file.string()).c_str()),
                  text::kPlanExport, {BoxButtons::Ok, BoxIcon::Information});
    }
}

} // namespace fieldcore
