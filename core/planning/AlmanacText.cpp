#include "core/planning/AlmanacText.h"

#include "core/platform/TextLines.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace fieldcore {

namespace {

constexpr int kWeekCycle = 1024;
constexpr int kMostWeek = 32767; // that a record can hold

int FullWeek(int week, const AlmanacWeek& rule)
{
    if (rule.full || week >= kWeekCycle) {
        return rule.full.value_or(week);
    }
    const int today = std::clamp(rule.today, 0, kMostWeek);
    const int cycles = std::max(0, today - week + kWeekCycle / 2) / kWeekCycle;
    return std::min(week + cycles * kWeekCycle, kMostWeek - kWeekCycle + 1 + week);
}

AlmanacText Refused(int line, std::string_view message)
{
    AlmanacText result;
    result.error = TextError{line, "", std::string(message)};
    return result;
}

} // namespace

AlmanacText ParseAlmanacText(std::string_view text, const AlmanacWeek& week)
{
    if (week.full && (*week.full < 0 || *week.full > kMostWeek)) {
        AlmanacText result;
        result.error = TextError{0, "week", "the week that is given must be 0 to 32767"};
        return result;
    }
    if (text.size() > kMostText) {
        return Refused(0, "longer than a megabyte: this is no almanac");
    }
    TextLines lines(text);
    std::optional<std::string_view> first = lines.Next();
    while (first && first->empty()) {
        first = lines.Next();
    }
    if (!first) {
        return Refused(0, "empty: fetch the almanac again");
    }
    AlmanacText result;
    if (first->front() == '*' || first->find(':') != std::string_view::npos) {
        result = ParseYuma(text);
    } else if (std::isdigit(static_cast<unsigned char>(first->front())) != 0) {
        result = ParseSem(text);
    } else {
        return Refused(lines.Number(), "neither a YUMA nor a SEM almanac: a YUMA text starts with "
                                       "asterisks or \"ID:\", a SEM text with the number of its "
                                       "satellites");
    }
    if (result.error) {
        result.records.clear();
        result.qzss.clear();
        result.skipped = 0;
    }
    for (std::vector<AlmanacRecord>* records : {&result.records, &result.qzss}) {
        for (AlmanacRecord& record : *records) {
            record.week = static_cast<std::int16_t>(FullWeek(record.week, week));
        }
    }
    return result;
}

AlmanacText LoadAlmanacText(const std::filesystem::path& file, const AlmanacWeek& week)
{
    // One more than may be: longer texts are to be noticed.
    const auto content = ReadWholeFile(file, kMostText + 1);
    if (!content) {
        return Refused(0, "is no file that can be read");
    }
    return ParseAlmanacText({reinterpret_cast<const char*>(content->data()), content->size()},
                            week);
}

} // namespace fieldcore
