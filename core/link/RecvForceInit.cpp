#include "core/link/RecvForceInit.h"

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "core/link/Connect.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

int CRecvForceInit::DoModal()
{
    CConnect connect(m_command, 0);
    return DoModal(connect);
}

int CRecvForceInit::DoModal(CConnect& connect)
{
    if (connect.DoModal() != CConnect::Connected) {
        return NotDone;
    }
    const int sent = stRecvForceInit();
    m_command.ClosePort();
    return sent == 1 ? Done : NotDone;
}

int CRecvForceInit::stRecvForceInit()
{
    Host& host = m_command.GetHost();
    const wchar_t* caption = Text(text::kForceInitCaption);
    if (host.ShowMessage(Text(text::kForceInitQuestion), caption,
                         {BoxButtons::YesNo, BoxIcon::Question}) != BoxAnswer::Yes) {
        return 0;
    }
    if (host.ShowMessage(Text(text::kForceInitSecondQuestion), caption,
                         {BoxButtons::OkCancel, BoxIcon::Exclamation}) != BoxAnswer::Ok) {
        return 0;
    }
    m_command.RequestReset();
    host.ShowMessage(Text(text::kForceInitDone), L"", {BoxButtons::Ok, BoxIcon::Information});
    return 1;
}

} // namespace fieldcore
