#pragma once

#include "core/equipment/FileDestination.h"
#include "core/equipment/FileRunner.h"
#include "core/host/Host.h"

#include <functional>
#include <string>
#include <vector>

namespace fieldcore {

/// What the window of the receiver's files does with the selected rows: the checks, the questions
/// and the words around a FileRunner. Made for one operation. Messages go to the channel's host.
/// The thread that uses the library.
class FileManager
{
public:
    /// What is around it; deleting and recovering need none of it.
    struct Surroundings
    {
        /// Shows the destination dialog. @return false unless the user starts
        std::function<bool(FileDestination&)> askDestination{};
        /// Of these, watch and freeBytes are used.
        FileRunner::Surroundings running{};
    };

    /// @param files  with rows; must outlive the object
    FileManager(ReceiverFiles& files, Surroundings surroundings);
    explicit FileManager(ReceiverFiles& files) : FileManager(files, Surroundings{}) {}

    // The buttons.

    void FileDownload();
    /// Deletes; the recycle page deletes for good.
    void FileDelete();
    /// Brings back from the recycle bin.
    void FileRecover();

    /// The files that were selected, and what became of them.
    [[nodiscard]] const FilePlan& Plan() const { return m_plan; }
    /// The names, in the receiver, of those that it should have deleted or brought back and has not
    /// answered for. Where there are any, the list should be read again.
    [[nodiscard]] std::vector<std::wstring> Unanswered() const;
    /// What the user has to know of a deletion or recovery for which there is no box: which were
    /// not done, and why. Empty if all were.
    [[nodiscard]] std::wstring Notice() const;

private:
    void MakePlan(FileAction action);
    // The required steps; each answers 1 to go on.
    int stCheckDownloadSelect();
    int stStartDownload();
    int stCheckDeleteSelect();
    int stCheckLogging();
    void stDeleteRecover();
    [[nodiscard]] bool AskDestination();
    void Take(const PlannedFile& file);
    void TellFailure();
    [[nodiscard]] std::wstring DeleteDetails() const;
    void Say(const std::wstring& text, int captionId, BoxIcon icon);

    ReceiverFiles& m_files;
    Host& m_host;
    Surroundings m_around;
    FilePlan m_plan;
};

} // namespace fieldcore
