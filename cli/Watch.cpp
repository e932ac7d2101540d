#include "cli/Watch.h"

#include "cli/Options.h"

#include "core/equipment/ReceiverFields.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace fieldcore::cli {

namespace {

/// @param receiver  null: the heads of the columns
std::string Line(std::span<const WatchColumn> columns, const Receiver* receiver)
{
    std::vector<std::pair<std::string, std::size_t>> cells;
    for (const WatchColumn& column : columns) {
        const ReceiverField& field = FieldOf(column.key);
        const std::string head = WordedOr(column.head, field.textId);
        cells.emplace_back(receiver != nullptr ? ReportField(field, *receiver).Words() : head,
                           std::max(column.width, DisplayWidth(head) + 2));
    }
    return TableLine(cells);
}

} // namespace

void WatchOptions::AddTo(CLI::App& command, double usualS)
{
    intervalS = usualS;
    watch =
        AddNumber(command, "--watch", intervalS, {0.1, 86400.0, "s"}, "[SECONDS]", text::kOptWatch)
            ->expected(0, 1)
            ->default_str(usualS < 1.0 ? "0.2" : "2"); // where no number follows
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

ExitCode RunWatch(const Context& context, const Clock& clock, const WatchOptions& options,
                  const Watched& watched)
{
    const auto interval = std::chrono::duration_cast<Clock::Duration>(
        std::chrono::duration<double>(options.intervalS));
    ExitCode last = ExitCode::Cancelled;
    bool anyGood = false;
    Clock::Duration next = clock.Steady();
    for (unsigned turn = 0; options.count == 0 || turn < options.count; ++turn) {
        WaitUntil(context.world, clock, next);
        next = std::max(next + interval, clock.Steady());
        Receiver reading;
        const auto failure = watched.read(reading);
        if (context.world.StopRequested()) {
            break;
        }
        Report report;
        std::string words;
        if (!failure) {
            watched.report(report, reading);
            words =
                (anyGood ? "" : Line(watched.columns, nullptr)) + Line(watched.columns, &reading);
        }
        last = failure ? context.output.Failed(*failure) : context.output.Done(report, words);
        anyGood = anyGood || !failure;
        if (last == ExitCode::NoPort || !*context.world.out) { // gone, or nobody reads on
            return last;
        }
    }
    return anyGood ? ExitCode::Done : last;
}

} // namespace fieldcore::cli
