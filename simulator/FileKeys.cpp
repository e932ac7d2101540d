#include "simulator/ScenarioKeys.h"

#include "core/platform/Calendar.h"
#include "core/platform/NumberText.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace fieldcore::simulator {

namespace {

constexpr long kMaxSize = 4'294'967'295;
constexpr std::size_t kMaxFiles = 2304; // 256 pages of a Pica

bool ReadSize(Words& words, std::string_view what, std::uint32_t& size)
{
    long value = 0;
    const bool good = words.Integer(what, 0, kMaxSize, value);
    size = static_cast<std::uint32_t>(value);
    return good;
}

/// A name in which %41 stands for the byte 0x41, so that one can be written that nobody should
/// have.
bool ReadName(Words& words, std::string& name)
{
    constexpr std::size_t kMaxName = 14;
    const std::string_view word = words.Take();
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] != '%') {
            name += word[i];
            continue;
        }
        const std::string_view digits = word.substr(i + 1, 2);
        const auto byte = NumberOf<std::uint8_t>(digits, 16);
        if (!byte || digits.size() != 2) {
            return words.Fail("behind % in a file's name two hexadecimal digits must stand");
        }
        name += static_cast<char>(*byte);
        i += 2;
    }
    if (name.empty() || name.size() > kMaxName) {
        return words.Fail("a file's name has 1 to 14 bytes, not \"" + std::string(word) + "\"");
    }
    return true;
}

bool ReadFileClause(Words& words, ReceiverFile& file)
{
    const std::string clause(words.Take());
    if (clause == "live") {
        file.state = FileState::Live;
    } else if (clause == "open") {
        file.state = FileState::Open;
    } else if (clause == "deleted") {
        file.state = FileState::Deleted;
    } else if (clause == "hidden") {
        file.hidden = true;
    } else if (clause == "locked") {
        file.locked = true;
    } else if (clause == "announces") {
        return ReadSize(words, "the announced size", file.announcedSize.emplace());
    } else if (clause == "text") {
        return words.Text("the file's text", 1000, file.text);
    } else {
        return words.Fail("\"" + clause +
                          "\" is not understood here; a file goes on with live, open, deleted, "
                          "hidden, locked, announces and text");
    }
    return true;
}

bool AddFile(Words& words, Scenario& scenario, ReceiverFile file)
{
    if (scenario.files.size() == kMaxFiles) {
        return words.Fail("there are more than " + std::to_string(kMaxFiles) + " files");
    }
    scenario.files.push_back(std::move(file));
    return true;
}

/// A name as receivers make them: a letter, month and day, a letter for the hour, a number.
std::string SessionName(Clock::UtcTime time)
{
    using namespace std::chrono;
    const auto hour = static_cast<int>(floor<hours>(time - floor<days>(time)).count());
    return FormatDate(floor<seconds>(time), "A%m%d") + static_cast<char>('A' + hour) + "00";
}

} // namespace

bool ReadFile(Words& words, Scenario& scenario)
{
    ReceiverFile file;
    if (!ReadName(words, file.name) || !ReadSize(words, "the file's size", file.size) ||
        !words.Moment("a file's time", file.time)) {
        return false;
    }
    while (!words.AtEnd()) {
        if (!ReadFileClause(words, file)) {
            return false;
        }
    }
    return AddFile(words, scenario, std::move(file));
}

bool ReadFiles(Words& words, Scenario& scenario)
{
    using namespace std::chrono;
    int count = 0;
    std::uint32_t smallest = 0;
    std::uint32_t largest = 0;
    Clock::UtcTime time = sys_days(year(2026) / January / 1);
    if (!words.Integer("the number of files", 1, kMaxFiles, count) ||
        !ReadSize(words, "the smallest size", smallest) ||
        !ReadSize(words, "the largest size", largest) ||
        (!words.AtEnd() && words.Peek() != "deleted" &&
         !words.Moment("the time of the first file", time))) {
        return false;
    }
    const bool deleted = words.Peek() == "deleted";
    if (deleted) {
        words.Take();
    }
    if (largest < smallest) {
        return words.Fail("the largest size is smaller than the smallest");
    }
    for (int i = 0; i < count; ++i) {
        ReceiverFile file;
        file.name = SessionName(time);
        // Steps that share no factor with most spans, so that the sizes look scattered.
        const std::uint64_t span = std::uint64_t{largest} - smallest + 1;
        file.size = smallest + static_cast<std::uint32_t>(std::uint64_t(i) * 7'919'017 % span);
        file.time = time;
        file.state = deleted ? FileState::Deleted : FileState::Live;
        if (!AddFile(words, scenario, std::move(file))) {
            return false;
        }
        time += hours(1);
    }
    return true;
}

bool ReadListing(Words& words, Scenario& scenario)
{
    constexpr std::string_view kManners[] = {"plain", "backwards", "endless"};
    const auto* const found = std::find(std::begin(kManners), std::end(kManners), words.Take());
    if (found == std::end(kManners)) {
        return words.Fail("a listing is plain, backwards or endless");
    }
    scenario.listing = static_cast<ListingManner>(found - std::begin(kManners));
    return true;
}

bool ReadFreeMemory(Words& words, Scenario& scenario)
{
    if (words.Peek() == "files") {
        words.Take();
        scenario.freeMemoryTenths.reset();
        return true;
    }
    return words.Integer("tenths", 0, 10, scenario.freeMemoryTenths.emplace());
}

} // namespace fieldcore::simulator
