#include "core/equipment/FilePlan.h"

#include "core/equipment/FileDestination.h"
#include "core/equipment/FileTexts.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>

namespace fieldcore {

namespace {

using enum FileOutcome;

/// What is said of a file that was not done.
struct Meaning
{
    FileOutcome outcome;
    int textId; ///< of the user's language, with what to do
    TerminalFault terminal;
};

constexpr const char* kOtherFolder = "Choose another folder with --to, or another medium.";

constexpr std::array kMeanings{
    Meaning{BeingLogged, text::kFileCauseLogging,
            TerminalFault{6, "file-logging",
                          "The receiver is writing it and does not give it away.",
                          "End the logging, then try again."}},
    Meaning{NameRefused, text::kFileNameRefused,
            TerminalFault{8, "local-file", "It has a name that cannot be used.", ""}},
    Meaning{NoSpace, text::kFileCauseSpace,
            TerminalFault{8, "local-file", "There is not enough space for it.",
                          "Make space, or choose another folder with --to."}},
    Meaning{Kept, text::kFileCauseKept,
            TerminalFault{7, "cancelled", "There is one of this name already.", ""}},
    Meaning{FolderRefused, text::kFileCauseFolder,
            TerminalFault{8, "local-file", "Its folder cannot be written to.", kOtherFolder}},
    Meaning{DiskFull, text::kFileCauseFull,
            TerminalFault{8, "local-file", "The medium is full.",
                          "Make space, then fetch what is missing with --new."}},
    Meaning{NotWritten, text::kFileCauseWrite,
            TerminalFault{8, "local-file", "It cannot be written.", kOtherFolder}},
    Meaning{NoSuchFile, text::kFileCauseNone,
            TerminalFault{6, "no-such-file", "The receiver says that it has no such file.",
                          "fieldcore-cli files ls"}},
    Meaning{WrongSize, text::kFileCauseSize,
            TerminalFault{1, "wrong-size", "It has not the size that the receiver has listed.",
                          "List the files again, then fetch it once more."}},
};

/// @return null if the fault says it
const Meaning* MeaningOf(const PlannedFile& file)
{
    // Where nobody can say how much space there is, there is no folder.
    const FileOutcome outcome =
        file.outcome == NoSpace && file.error ? FolderRefused : file.outcome;
    const auto* const meaning = std::ranges::find(kMeanings, outcome, &Meaning::outcome);
    return meaning != kMeanings.end() ? meaning : nullptr;
}

} // namespace

bool PlannedFile::WasAnswered() const
{
    return outcome == Done || (outcome == RequestFailed && ClassOf(fault) == FaultClass::Answered);
}

std::wstring PlannedFile::CauseText() const
{
    const Meaning* const meaning = MeaningOf(*this);
    if (meaning == nullptr) {
        return fieldcore::CauseText(fault);
    }
    const bool isUnsayable = outcome == NameRefused && fault == CommandFault::TooLong;
    std::wstring words =
        Text(isUnsayable                    ? text::kFileCauseName
             : nameFault != NameFault::None ? fieldcore::MeaningOf(nameFault).textId
                                            : meaning->textId);
    if (error && outcome != DiskFull) {
        words += L" (" + FromUtf8(error.message()) + L")";
    }
    return words;
}

const TerminalFault& PlannedFile::Terminal() const
{
    const Meaning* const meaning = MeaningOf(*this);
    return meaning != nullptr ? meaning->terminal : fieldcore::MeaningOf(fault).terminal;
}

int FilePlan::Count(FileOutcome outcome) const
{
    return static_cast<int>(std::count_if(
        files.begin(), files.end(), [=](const auto& file) { return file.outcome == outcome; }));
}

std::uint64_t FilePlan::Bytes(FileOutcome outcome) const
{
    std::uint64_t bytes = 0;
    for (const PlannedFile& file : files) {
        bytes += file.outcome == outcome ? file.record.size : 0;
    }
    return bytes;
}

std::uint64_t FilePlan::BytesAlreadyIn(const std::filesystem::path& where) const
{
    std::uint64_t bytes = 0;
    for (const PlannedFile& file : files) {
        bytes +=
            file.outcome == Planned && IsFetchedFile(where, file.record) ? file.record.size : 0;
    }
    return bytes;
}

std::filesystem::path FilePlan::FolderOf(const PlannedFile& file) const
{
    return dateFolders ? folder / ToUtf8(DateFolderName(file.record.time)) : folder;
}

void FilePlan::LeaveOutFetched()
{
    for (PlannedFile& file : files) {
        if (file.outcome == Planned && IsFetchedFile(folder, file.record)) {
            file.outcome = AlreadyThere;
        }
    }
}

const PlannedFile* FilePlan::Failed() const
{
    const PlannedFile* failed = nullptr;
    for (const PlannedFile& file : files) {
        // One that was left out for its name has not ended anything.
        if (file.HasFailed() && (failed == nullptr || file.outcome != NameRefused)) {
            failed = &file;
        }
    }
    return failed;
}

} // namespace fieldcore
