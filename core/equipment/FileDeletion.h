#pragma once

#include "core/equipment/ReceiverFiles.h"

namespace fieldcore {

/// Deleting the selected files of the rows and bringing them back, with the checks and questions
/// before. Messages go to the channel's host. The thread that uses the library.
class FileDeletion
{
public:
    /// @param files  with rows; must outlive the object
    explicit FileDeletion(ReceiverFiles& files) : m_files(files) {}

    /// Deletes; the recycle page deletes for good.
    void FileDelete();
    /// Brings back from the recycle bin.
    void FileRecover();

    // The steps; each answers 1 to go on.

    int stCheckDeleteSelect();
    int stCheckRecoverSelect();
    int stCheckLogging();

    /// The selected rows from the last to the first. Ends when the user cancels and when the link
    /// is gone; the rows that were not reached stay.
    /// @param deleting  1 delete, 0 recover
    void stDeleteRecover(int deleting);
    /// One row, in the manner of the receiver's family. The row leaves the list whatever the
    /// receiver answers, unless the file is being logged.
    void stDeleteRecover(int deleting, int row);
    void stDelRecover_Pica(int deleting, int row);
    void stDelRecover_Lark(int deleting, int row);

    /// Deletes one file of a Lark. If there is a deleted one of the same base name, that one is
    /// deleted first; on the page of live files nothing else happens then.
    /// @return 1 if the receiver acknowledged what was asked last
    int stDeleteFileKernel(int row);
    int stFileRecoverKernel(int row);

private:
    [[nodiscard]] bool MustStop() const;

    ReceiverFiles& m_files;
};

} // namespace fieldcore
