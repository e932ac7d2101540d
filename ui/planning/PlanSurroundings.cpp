#include "ui/planning/PlanSurroundings.h"

#include "core/platform/Folders.h"
#include "core/resources/StringTable.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/UiText.h"
#include "ui/link/ConnectDlg.h"

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
    const Folders folders;
    if (given.folder.empty()) {
        given.folder = folders.Program();
    }
    if (given.documents.empty()) {
        given.documents = folders.Documents();
    }
    if (given.roots == nullptr) {
        given.roots = &SettingsRoots::Instance();
    }
    if (!given.makeConnect) {
        given.makeConnect = [screen, roots = given.roots](CCommand& command) {
            return std::make_unique<ConnectDlg>(command, 0, screen, *roots);
        };
    }
    if (!given.chooseFile) {
        given.chooseFile = AskForFile;
    }
    return given;
}

} // namespace fieldcore
