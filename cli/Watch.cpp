#include "cli/Watch.h"

#include "cli/Options.h"

#include "core/resources/StringTable.h"

#include <algorithm>
#include <chrono>
#include <ostream>

namespace fieldcore::cli {

void WatchOptions::AddTo(CLI::App& command, double usualS)
{
    intervalS = usualS;
    const Limits limits{0.1, 86400.0, "s", usualS < 1.0 ? "0.2" : "2"};
    watch = AddNumber(command, "--watch", intervalS, limits, "[SECONDS]", text::kOptWatch)
                ->expected(0, 1);
    AddNumber(command, "--count", count, {1.0, 1e6}, "N", text::kOptCount)->needs(watch);
}

bool WatchOptions::IsWanted() const
{
    return watch->count() > 0;
}

void WaitUntil(const World& world, const Clock& clock, Clock::Duration end)
{
    constexpr Clock::Duration kSlice = std::chrono::milliseconds(50);
    while (!world.StopRequested()) {
        const Clock::Duration left = end - clock.Steady();
        if (left <= Clock::Duration::zero()) {
            return;
        }
        clock.Sleep(std::min(left, kSlice));
    }
}

ExitCode RunWatch(const World& world, const Clock& clock, const WatchOptions& options,
                  const std::function<std::optional<ExitCode>(bool isFirst)>& read)
{
    const auto interval = std::chrono::duration_cast<Clock::Duration>(
        std::chrono::duration<double>(options.intervalS));
    ExitCode last = ExitCode::Cancelled;
    bool anyGood = false;
    Clock::Duration next = clock.Steady();
    for (unsigned turn = 0; options.count == 0 || turn < options.count; ++turn) {
        WaitUntil(world, clock, next);
        next = std::max(next + interval, clock.Steady());
        const std::optional<ExitCode> code = read(!anyGood);
        if (!code) {
            break;
        }
        last = *code;
        anyGood = anyGood || last == ExitCode::Done;
        if (last == ExitCode::NoPort || !*world.out) { // gone, or nobody reads on
            return last;
        }
    }
    return anyGood ? ExitCode::Done : last;
}

} // namespace fieldcore::cli
