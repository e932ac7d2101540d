#include "core/planning/CurtainFile.h"

#include "core/platform/Folders.h"
#include "core/platform/ReplaceFile.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace fieldcore {

namespace fs = std::filesystem;

fs::path CurtainPath(const fs::path& folder)
{
    return folder / "CurTain.obs";
}

ObstructionCurtain LoadCurtain(const fs::path& folder)
{
    ObstructionCurtain curtain{};
    const std::vector<std::uint8_t> content = ReadWholeFile(CurtainPath(folder), curtain.size());
    std::copy(content.begin(), content.end(), curtain.begin());
    return curtain;
}

std::error_code SaveCurtain(const fs::path& folder, const ObstructionCurtain& curtain)
{
    if (const std::error_code error = Folders::Create(folder)) {
        return error;
    }
    const fs::path temporary = folder / "CurTain.obs.new";
    std::error_code error = WriteWholeFile(temporary, curtain);
    if (!error) {
        error = ReplaceFile(temporary, CurtainPath(folder));
    }
    if (error) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
    }
    return error;
}

} // namespace fieldcore
