#pragma once

#include "core/equipment/FilePlan.h"
#include "core/equipment/FileRows.h"
#include "core/link/CommandFault.h"
#include "core/resources/StringTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// Something that goes wrong with the receiver's files, and what the user gets to know of it: for
/// the engine and for the screen alike.
struct FileFault
{
    enum Action
    {
        List,
        Fetch,
        Delete,
    };

    std::string label;
    Action action;
    std::string files;    ///< lines of the scenario
    std::string rule{};   ///< a fault that begins after the listing
    std::wstring cause{}; ///< behind the required words, or on the page; empty: nothing is said
    int left = 3;         ///< rows afterwards
    std::vector<FileOutcome> outcomes{}; ///< of all rows, which are selected, in their order
    int required = 0;                    ///< the text that the last box begins with; 0: none
    std::vector<int> marked{};           ///< rows that are marked as unanswered
    std::optional<std::uint64_t> free = std::uint64_t{1} << 40U;
    std::uintmax_t room = 0;    ///< bytes that a file can get; 0: no limit
    bool isFolderTaken = false; ///< a file lies where the folder of the day should be
};

/// A receiver that deletes for good.
[[nodiscard]] inline std::string FaultyReceiver(const FileFault& fault)
{
    return "model 3017\nfirmware 3.80\noptions l2 rtk otf nmea glonass\nfix fixed\n" + fault.files;
}

[[nodiscard]] inline std::vector<FileFault> FileFaults()
{
    using enum FileOutcome;
    const std::string three = "file A 3500 2026-03-14 01:30\nfile B 40000 2026-03-14 02:30\n"
                              "file C 10 2026-03-15 00:00\n";
    const std::string twenty = "files 20 10 20\n";
    const auto cause = [](CommandFault fault) { return std::wstring(CauseText(fault)); };
    const auto part = [&](CommandFault fault) {
        return FormatText(text::kFilesPart, CauseText(fault));
    };
    const std::vector<FileOutcome> first{RequestFailed, NotReached, NotReached};
    const auto fetched = [&](const char* label, const char* rule, CommandFault fault) {
        return FileFault{label, FileFault::Fetch,     three, rule, cause(fault), 3,
                         first, text::kDownloadFailed};
    };

    std::vector<FileFault> table{
        {"600 files", FileFault::List, "files 600 10 20\n", "", FormatText(text::kFilesMore, 512),
         512},
        {"pages backwards", FileFault::List, twenty + "listing backwards\n", "", L"", 20},
        {"a page never comes", FileFault::List, twenty + "fault drop of 9D skip 1 count 1\n", "",
         part(CommandFault::TimedOut), 12},
        {"a page arrives damaged", FileFault::List, twenty + "fault corrupt of 9D skip 1 count 1\n",
         "", part(CommandFault::BadChecksum), 12},
        {"the listing is refused", FileFault::List, twenty + "fault nak on 9C\n", "",
         cause(CommandFault::Refused), 0},
        {"cable out at the second page", FileFault::List, twenty + "fault hang-up of 9D skip 1\n",
         "", part(CommandFault::LinkLost), 8},

        fetched("a block never comes", "drop of 95 skip 1", CommandFault::TimedOut),
        fetched("every block is damaged", "corrupt of 95", CommandFault::BadChecksum),
        fetched("the fetch is refused", "nak on 96", CommandFault::Refused),
        {"it ends before its size",
         FileFault::Fetch,
         "file A 1000 2026-03-14 01:30 announces 5000\n",
         "",
         Text(text::kFileCauseSize),
         1,
         {WrongSize},
         text::kDownloadFailed},
        {"a name that is a device's",
         FileFault::Fetch,
         "file CON 10 2026-03-14 01:30\n",
         "",
         Text(text::kFileNameRefused),
         1,
         {NameRefused},
         text::kDownloadFailed},
        {"the card is full",
         FileFault::Fetch,
         three,
         "",
         Text(text::kFileCauseFull),
         3,
         {Done, DiskFull, NotReached},
         text::kDownloadFailed},
        {"too little space",
         FileFault::Fetch,
         three,
         "",
         Text(text::kFileCauseSpace),
         3,
         {Done, NoSpace, NotReached},
         text::kNoSpace},
        {"the card does not say",
         FileFault::Fetch,
         three,
         "",
         Text(text::kFileCauseFolder),
         3,
         {NoSpace, NotReached, NotReached},
         text::kNoSpace},
        {"the folder cannot be made",
         FileFault::Fetch,
         three,
         "",
         Text(text::kFileCauseFolder),
         3,
         {FolderRefused, NotReached, NotReached},
         text::kDownloadFailed},

        {"it deletes, and its answers are lost",
         FileFault::Delete,
         three,
         "drop on A0",
         cause(CommandFault::TimedOut),
         1,
         {NotReached, RequestFailed, RequestFailed}},
        {"silent at the deletion",
         FileFault::Delete,
         three,
         "drop on any",
         cause(CommandFault::TimedOut),
         3,
         {NotReached, RequestFailed, RequestFailed},
         0,
         {1, 2}},
        {"a deletion is refused",
         FileFault::Delete,
         "file A 10 2026-03-14 01:30\nfile B 10 2026-03-14 02:30 locked\n",
         "",
         cause(CommandFault::Refused),
         0,
         {Done, RequestFailed}},
        {"cable out at the deletion",
         FileFault::Delete,
         three,
         "hang-up on A0",
         cause(CommandFault::LinkLost),
         3,
         {NotReached, NotReached, RequestFailed},
         0,
         {2}},
    };
    for (FileFault& fault : table) {
        fault.room = fault.label == "the card is full" ? 20000 : 0;
        fault.isFolderTaken = fault.label == "the folder cannot be made";
        if (fault.label == "too little space") {
            fault.free = 48000; // 1.2 times 40000
        } else if (fault.label == "the card does not say") {
            fault.free.reset();
        }
    }
    for (int block = 0; block < 4; ++block) { // of the first file
        for (const char* const bytes : {"", " 500"}) {
            const std::string rule =
                std::string("hang-up") + bytes + " of 95 skip " + std::to_string(block);
            FileFault fault = fetched("", rule.c_str(), CommandFault::LinkLost);
            fault.label = "cable out: " + rule;
            table.push_back(fault);
        }
    }
    return table;
}

/// Compares what was seen with what the row demands.
/// @param words  all that the user was told, in boxes or on the page
/// @param box    the last box; empty if there was none
inline void ExpectSeen(const FileFault& fault, const FileRows& rows, const std::wstring& words,
                       const std::wstring& box)
{
    EXPECT_EQ(rows.Count(), fault.left);
    for (int row = 0; row < rows.Count() && fault.action == FileFault::Delete; ++row) {
        const bool isMarked =
            std::find(fault.marked.begin(), fault.marked.end(), row) != fault.marked.end();
        EXPECT_EQ(rows.At(row).mark == FileRow::Mark::Unanswered, isMarked) << row;
    }
    EXPECT_EQ(words.empty(), fault.cause.empty()) << ::testing::PrintToString(words);
    EXPECT_NE(words.find(fault.cause), std::wstring::npos) << ::testing::PrintToString(words);
    if (fault.action == FileFault::Fetch) {
        EXPECT_TRUE(box.starts_with(Text(fault.required))) << ::testing::PrintToString(box);
    }
}

} // namespace fieldcore::testing
