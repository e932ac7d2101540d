// A curtain file of any bytes: it loads as the bytes that it has, limits the sky the same way by
// both rules, and its text form is a curtain of 0 to 90 degrees.

#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <stdlib.h>

using namespace fieldcore;

namespace {

/// A folder for as long as the program runs.
struct Folder
{
    Folder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "fieldcore-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            std::abort();
        }
        path = name;
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path path;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    std::ofstream(CurtainPath(folder.path), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const ObstructionCurtain curtain = LoadCurtain(folder.path);
    const CurtainText text = ParseCurtainText(FormatCurtainText(curtain));
    const SkyLimits limits(0.1, curtain);
    constexpr double kDegree = 3.14159265358979 / 180.0;
    for (std::size_t k = 0; k < curtain.size(); ++k) {
        if (curtain[k] != (k < size ? data[k] : 0) || text.error ||
            text.curtain[k] != std::min<int>(curtain[k], 90)) {
            std::abort();
        }
        // In the middle of the entry, where the two rules must not differ.
        const double azimuth = (static_cast<double>(k) + 0.5) * kDegree;
        const double elevation = (static_cast<double>(k % 90) + 0.25) * kDegree;
        const EastNorthUp enu{std::sin(azimuth) * std::cos(elevation),
                              std::cos(azimuth) * std::cos(elevation), std::sin(elevation)};
        const bool passes = limits.Pass({azimuth, elevation});
        const auto verdict = limits.Judge(enu);
        if (verdict != (passes ? SkyLimits::Verdict::Visible : SkyLimits::Verdict::Hidden)) {
            std::abort();
        }
    }
    return 0;
}
