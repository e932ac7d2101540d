#include "core/planning/OrbitImport.h"

#include "core/orbits/NavigationFile.h"
#include "core/orbits/NavigationText.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacText.h"
#include "core/planning/SkyPlan.h"
#include "core/platform/Calendar.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore {

namespace {

/// The beginning of a file, enough to tell its kind; empty if there is none.
std::string StartOf(const std::filesystem::path& file)
{
    constexpr std::size_t kEnough = 1024;
    std::string start(kEnough, '\0');
    std::ifstream in(file, std::ios::binary);
    in.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
    return start;
}

std::vector<NavigationRecord> MessagesOf(const std::vector<AlmanacRecord>& records, double nowS)
{
    std::vector<NavigationRecord> messages;
    for (const AlmanacRecord& record : records) {
        if (const auto message = MessageOf(record, nowS)) {
            messages.push_back(*message);
        }
    }
    return messages;
}

void Tell(OrbitImport& import, std::span<const NavigationRecord> records, double nowS)
{
    Constellations own;
    own.Add(records);
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        const SystemState state = own.StateOf(static_cast<GnssSystem>(k), nowS);
        if (state.satellites > 0) {
            import.came[k] = state;
        }
    }
}

} // namespace

OrbitImport ImportOrbits(const std::filesystem::path& folder, const std::filesystem::path& file,
                         Clock::UtcTime now)
{
    const double nowS = GpsSecondsOfUtc(std::chrono::floor<std::chrono::seconds>(now));
    OrbitImport import;
    std::vector<NavigationRecord> messages;
    if (LooksLikeNavigation(StartOf(file))) {
        NavigationText text = LoadNavigation(file);
        import.error = text.error ? text.error : text.records.empty() ? text.firstOdd : text.error;
        import.leftOut = text.otherSystems + text.odd;
        messages = std::move(text.records);
    } else {
        AlmanacText text = LoadAlmanacText(file, {static_cast<int>(nowS / kWeekS), std::nullopt});
        import.error = text.error;
        import.leftOut = text.skipped;
        messages = MessagesOf(text.qzss, nowS);
        if (!import.error && !text.records.empty()) {
            AlmanacStore store(folder);
            const AlmanacResult result = store.Import(
                text.records, {AlmanacOrigin::File, FromUtf8(file.filename().string())});
            import.isTooFew = result == AlmanacResult::TooFew;
            import.isAlmanac = result == AlmanacResult::Done;
            import.notKept =
                import.isTooFew || import.isAlmanac ? std::error_code() : store.LastError();
        }
        if (import.isAlmanac) {
            Tell(import, MessagesOf(text.records, nowS), nowS);
        }
    }
    if (!import.IsDone() || messages.empty()) {
        return import;
    }
    Tell(import, messages, nowS);
    import.notKept = KeepMessages(folder, messages, nowS);
    return import;
}

} // namespace fieldcore
