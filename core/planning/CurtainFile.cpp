#include "core/planning/CurtainFile.h"

#include "core/platform/AtomicFile.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <span>
#include <string>

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

std::optional<fs::path> SiteCurtainPath(const fs::path& folder, std::wstring_view name)
{
    constexpr std::size_t kMostBytes = 200; // with its end, and what a safe replacement adds
    constexpr std::string_view kNeverInNames = "/\\:*?\"<>|%";
    constexpr char kDigits[] = "0123456789ABCDEF";
    const std::string utf8 = ToUtf8(name);
    std::string file;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        const bool isAtEnd = at == 0 || at + 1 == utf8.size();
        if (byte < 0x20 || byte == 0x7F || kNeverInNames.find(utf8[at]) != std::string_view::npos ||
            (isAtEnd && (utf8[at] == '.' || utf8[at] == ' '))) {
            file += '%';
            file += kDigits[byte >> 4U];
            file += kDigits[byte & 0xFU];
        } else {
            file += utf8[at];
        }
    }
    if (file.empty() || file.size() > kMostBytes) {
        return std::nullopt;
    }
    return folder / "Curtains" / (file + ".txt");
}

} // namespace fieldcore
