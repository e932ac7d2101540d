#include "ui/equipment/RecvFile.h"

#include "core/equipment/ReceiverFiles.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/RecvFileMan.h"

#include <QLabel>
#include <QPushButton>

namespace fieldcore {

CRecvFile::CRecvFile(CRecvFileMan& sheet)
    : RecvFilePage(sheet, ReceiverFiles::Live), m_note(new QLabel(UiText(text::kFilesNoRecovery)))
{
    Dialog::SetControlId(m_note, kNote);
    AddNote(m_note);
    AddButton(kDelete, text::kFilesDelete, "trash", &CRecvFileMan::FileDelete);
    AddButton(kSelectAll, text::kFilesSelectAll, "ok", &CRecvFileMan::ChoiceAll);
    m_fetch = AddButton(kFetch, text::kFilesFetch, "download", &CRecvFileMan::FileDownload);
    m_fetch->setDefault(true);
}

void CRecvFile::OnInitDialog()
{
    m_note->setVisible(m_man.Files().ShowsDeleteNote());
    m_fetch->setVisible(m_man.Files().CanDownload());
    RecvFilePage::OnInitDialog();
}

} // namespace fieldcore
