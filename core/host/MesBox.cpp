#include "core/host/MesBox.h"

#include "core/resources/StringTable.h"

namespace fieldcore {

BoxText::BoxText(int id) : m_text(Text(id))
{
    if (m_text.empty()) {
        m_text = L"[" + std::to_wstring(id) + L"]";
    }
}

BoxAnswer CMesBox::Show(const BoxText& text, const BoxText& caption, BoxStyle style) const
{
    return m_host.ShowMessage(text.Get(), caption.Get(), style);
}

void CMesBox::Warn(const BoxText& text, const BoxText& caption) const
{
    Show(text, caption, {BoxButtons::Ok, BoxIcon::Exclamation});
}

void CMesBox::Fail(const BoxText& text, const BoxText& caption) const
{
    Show(text, caption, {BoxButtons::Ok, BoxIcon::Stop});
}

bool CMesBox::Confirm(const BoxText& text, const BoxText& caption) const
{
    return Show(text, caption, {BoxButtons::YesNo, BoxIcon::Question}) == BoxAnswer::Yes;
}

} // namespace fieldcore
