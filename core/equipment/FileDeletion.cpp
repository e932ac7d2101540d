#include "core/equipment/FileDeletion.h"

#include "core/host/MesBox.h"
#include "core/host/WaitCursor.h"
#include "core/link/Command.h"
#include "core/resources/StringTable.h"

#include <string>

namespace fieldcore {

namespace {

/// Whether a look for a file that ended so has told that there is none: it was listed without it,
/// its name is too long for any file, or the receiver refused to list it.
bool IsKnownToBeGone(CommandFault fault)
{
    return fault == CommandFault::None || fault == CommandFault::TooLong ||
           fault == CommandFault::Refused;
}

} // namespace

void FileDeletion::FileDelete()
{
    m_files.ForgetCancel();
    if (stCheckDeleteSelect() == 1 && stCheckLogging() == 1) {
        const WaitCursor wait(m_files.GetCommand().GetHost());
        stDeleteRecover(1);
    }
    m_files.GetRows()->Focus();
}

void FileDeletion::FileRecover()
{
    m_files.ForgetCancel();
    if (stCheckRecoverSelect() == 1) {
        const WaitCursor wait(m_files.GetCommand().GetHost());
        stDeleteRecover(0);
    }
    m_files.GetRows()->Focus();
}

int FileDeletion::stCheckDeleteSelect()
{
    const CMesBox box(m_files.GetCommand().GetHost());
    if (SelectedCount(*m_files.GetRows()) == 0) {
        box.Warn(text::kDeleteNothing, text::kFileSelectCaption);
        return 0;
    }
    if (!m_files.HasRecyclePage()) {
        return box.Confirm(text::kDeleteForGood, text::kDeleteCaption) ? 1 : 0;
    }
    if (m_files.GetMode() == ReceiverFiles::Recycled) {
        return box.Confirm(text::kDeleteRecycled, text::kDeleteCaption) ? 1 : 0;
    }
    return 1; // the receiver keeps them in its recycle bin
}

int FileDeletion::stCheckRecoverSelect()
{
    if (SelectedCount(*m_files.GetRows()) > 0) {
        return 1;
    }
    CMesBox(m_files.GetCommand().GetHost()).Warn(text::kRecoverNothing, text::kFileSelectCaption);
    return 0;
}

int FileDeletion::stCheckLogging()
{
    const FileRows& rows = *m_files.GetRows();
    const CMesBox box(m_files.GetCommand().GetHost());
    for (int row = 0; row < rows.Count(); ++row) {
        const bool logging = rows.IsSelected(row) && m_files.GetFileAttr(row, 0) != 0;
        if (m_files.WasCancelled()) {
            return 0;
        }
        if (!logging) {
            continue;
        }
        if (SelectedCount(rows) == 1) {
            box.Warn(text::kDeleteLogging, text::kFileSelectCaption);
            return 0;
        }
        box.Warn(text::kDeleteSomeLogging, text::kFileSelectCaption);
        return 1; // it is left out when its turn comes
    }
    return 1;
}

void FileDeletion::stDeleteRecover(int deleting)
{
    // From the last one: a row that is removed does not move those that are still to come.
    FileRows& rows = *m_files.GetRows();
    for (int row = rows.Count() - 1; row >= 0; --row) {
        if (!rows.IsSelected(row)) {
            continue;
        }
        const int before = rows.Count();
        stDeleteRecover(deleting, row);
        // A Pica is asked nothing about a row that stays: the fault is still that of an earlier
        // request, such as a listing that was cancelled.
        const bool wasAsked = m_files.Family() != ReceiverFamily::Pica || rows.Count() < before;
        if (wasAsked && MustStop()) {
            break;
        }
    }
}

bool FileDeletion::MustStop() const
{
    const CommandFault fault = m_files.GetCommand().Fault();
    return m_files.WasCancelled() || fault == CommandFault::Cancelled ||
           fault == CommandFault::LinkLost || fault == CommandFault::NotOpen;
}

void FileDeletion::stDeleteRecover(int deleting, int row)
{
    if (m_files.Family() == ReceiverFamily::Pica) {
        stDelRecover_Pica(deleting, row);
    } else {
        stDelRecover_Lark(deleting, row);
    }
}

void FileDeletion::stDelRecover_Pica(int deleting, int row)
{
    if (m_files.GetFileAttr_Pica(row) != 0) {
        return;
    }
    const std::uint16_t index = m_files.GetFileIndex_Pica(row);
    CCommand& command = m_files.GetCommand();
    if (deleting != 0) {
        command.DeleteFile_Pica(index);
    } else {
        command.RecoverFile_Pica(index);
    }
    m_files.GetRows()->Remove(row);
}

void FileDeletion::stDelRecover_Lark(int deleting, int row)
{
    if (m_files.GetFileAttr_Lark(row) != 0 || m_files.WasCancelled()) {
        return;
    }
    if (deleting != 0) {
        stDeleteFileKernel(row);
    } else {
        stFileRecoverKernel(row);
    }
    m_files.GetRows()->Remove(row);
}

int FileDeletion::stDeleteFileKernel(int row)
{
    CCommand& command = m_files.GetCommand();
    std::wstring live;
    std::wstring deleted;
    m_files.stAddExtension(m_files.GetRows()->Name(row), live, deleted);
    if (m_files.WasCancelled()) {
        return 0;
    }
    if (command.FileExists(deleted) == 1) {
        if (command.DeleteFile_Lark(deleted) == 0) {
            return 0;
        }
        if (m_files.GetMode() == ReceiverFiles::Live) {
            return 1; // the live file is not touched then
        }
    } else if (!IsKnownToBeGone(command.Fault())) {
        return 0; // without an answer nothing is known, and nothing more is deleted
    }
    return command.DeleteFile_Lark(live);
}

int FileDeletion::stFileRecoverKernel(int row)
{
    std::wstring deleted = m_files.GetRows()->Name(row);
    m_files.stAddExtension(0, deleted);
    if (m_files.WasCancelled()) {
        return 0;
    }
    return m_files.GetCommand().RecoverFile_Lark(deleted);
}

} // namespace fieldcore
