#include "ui/equipment/RecvGomi.h"

#include "core/equipment/ReceiverFiles.h"
#include "core/resources/StringTable.h"
#include "ui/equipment/RecvFileMan.h"

#include <QPushButton>

namespace fieldcore {

CRecvGomi::CRecvGomi(CRecvFileMan& sheet) : RecvFilePage(sheet, ReceiverFiles::Recycled)
{
    m_delete = AddButton(kDelete, text::kFilesDelete, "trash", &CRecvFileMan::FileDelete);
    AddButton(kSelectAll, text::kFilesSelectAll, "ok", &CRecvFileMan::ChoiceAll);
    AddButton(kRecover, text::kFilesRecover, "restore", &CRecvFileMan::FileRecover)
        ->setDefault(true);
}

void CRecvGomi::OnInitDialog()
{
    m_delete->setEnabled(m_man.Files().CanDeleteRecycled());
    RecvFilePage::OnInitDialog();
}

} // namespace fieldcore
