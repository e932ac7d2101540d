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

ObstructionCurtain CurtainOf(std::span<const std::uint8_t> content)
{
    ObstructionCurtain curtain{};
    std::copy_n(content.begin(), std::min(content.size(), curtain.size()), curtain.begin());
    return curtain;
}

ObstructionCurtain LoadCurtain(const fs::path& folder)
{
    const auto content = ReadWholeFile(CurtainPath(folder), ObstructionCurtain{}.size());
    return content ? CurtainOf(*content) : ObstructionCurtain{};
}

std::error_code SaveCurtain(const fs::path& folder, const ObstructionCurtain& curtain)
{
    if (const std::error_code error = Folders::Create(folder)) {
        return error;
    }
    return ReplaceFile(CurtainPath(folder), "CurTain.obs.new", std::as_bytes(std::span(curtain)));
}

} // namespace fieldcore
