// A curtain file of any bytes: it loads as the bytes that it has, limits the sky the same way by
// both rules, and its text form is a curtain of 0 to 90 degrees.

#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "fuzz/Target.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <cmath>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    KeepFilesInMemory();
    static const TemporaryFolder folder;
    folder.Write(CurtainPath(folder.Path()).filename(), TextOf(data, size));
    const ObstructionCurtain curtain = LoadCurtain(folder.Path());
    const CurtainText text = ParseCurtainText(FormatCurtainText(curtain));
    Check(!text.error);
    const SkyLimits limits(0.1, curtain);
    constexpr double kDegree = 3.14159265358979 / 180.0;
    for (std::size_t k = 0; k < curtain.size(); ++k) {
        Check(curtain[k] == (k < size ? data[k] : 0));
        Check(text.curtain[k] == std::min<int>(curtain[k], 90));
        // In the middle of the entry, where the two rules must not differ.
        const double azimuth = (static_cast<double>(k) + 0.5) * kDegree;
        const double elevation = (static_cast<double>(k % 90) + 0.25) * kDegree;
        const EastNorthUp enu{std::sin(azimuth) * std::cos(elevation),
                              std::cos(azimuth) * std::cos(elevation), std::sin(elevation)};
        const bool passes = limits.Pass({azimuth, elevation});
        Check(limits.Judge(enu) ==
              (passes ? SkyLimits::Verdict::Visible : SkyLimits::Verdict::Hidden));
    }
    return 0;
}
