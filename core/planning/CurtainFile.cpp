#include "core/planning/CurtainFile.h"

#include "core/platform/AtomicFile.h"
#include "core/platform/Folders.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <span>

namespace fieldcore {

namespace fs = std::filesystem;

fs::path CurtainPath(const fs::path& folder)
{
    return folder / "CurTain.obs";
}

ObstructionCurtain LoadCurtain(const fs::path& folder)
{
    ObstructionCurtain curtain{};
    if (const auto content = ReadWholeFile(CurtainPath(folder), curtain.size())) {
        std::copy(content->begin(), content->end(), curtain.begin());
    }
    return curtain;
}

std::error_code SaveCurtain(const fs::path& folder, const ObstructionCurtain& curtain)
{
    if (const std::error_code error = Folders::Create(folder)) {
        return error;
    }
    return ReplaceFile(CurtainPath(folder), "CurTain.obs.new", std::as_bytes(std::span(curtain)));
}

} // namespace fieldcore
