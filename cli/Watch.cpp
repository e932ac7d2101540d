#include "cli/Watch.h"

#include <algorithm>
#include <chrono>
#include <ostream>

namespace fieldcore::cli {

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

ExitCode RunWatch(const World& world, const Clock& clock, double intervalS, unsigned count,
                  const std::function<std::optional<ExitCode>(bool isFirst)>& read)
{
    const auto interval =
        std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double>(intervalS));
    ExitCode last = ExitCode::Cancelled;
    bool anyGood = false;
    Clock::Duration next = clock.Steady();
    for (unsigned turn = 0; count == 0 || turn < count; ++turn) {
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
