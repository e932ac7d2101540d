#include "ui/equipment/ComPort.h"

#include "core/equipment/LinkSearch.h"
#include "core/host/MesBox.h"
#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/ComPortPage.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

constexpr const wchar_t* kName = L"Com"; // under which the open page is remembered

} // namespace

CComPort::CComPort(CCommand* command, int ioPort, const QString& caption, QWidget* parent,
                   int startPage)
    : CComPort(command, ioPort, caption, parent, startPage, Surroundings{})
{}

CComPort::CComPort(CCommand* command, int ioPort, const QString& caption, QWidget* parent,
                   int startPage, Surroundings surroundings)
    : PropertySheet(caption, parent), m_command(command), m_surroundings(std::move(surroundings)),
      m_roots(EnvironmentOf(command).Roots()),
      m_edit(std::in_place, ioPort, m_roots, std::nullopt, m_surroundings.receiver)
{
    AddPages(m_surroundings.ports == 1 || m_surroundings.ports == 2 ? m_surroundings.ports
                                                                    : CComPrmSet::kMostPorts);
    int page = startPage;
    if (startPage == kLastPage) {
        page = 0;
        CParts::SetRegActivePage(1, page, kName, HostReg(m_roots));
    }
    stSetOpenPage(page);
    OfferConnection([this] { Close(kConnected); });
}

CComPort::~CComPort()
{
    Destroy();
}

void CComPort::AddPages(int count)
{
    while (GetPageCount() > 0) {
        RemovePage(0);
    }
    for (int port = 1; port <= count; ++port) {
        auto* const page = new ComPortPage(port);
        page->InsertString(m_edit->At(port));
        connect(page, &ComPortPage::SearchWanted, this, [this, page] { Search(page); });
        AddPage(page, ToQt(FormatText(text::kComPage, port)));
    }
}

int CComPort::SetIOPort(int port)
{
    const int before = GetIOPort();
    const int open = GetActiveIndex();
    m_edit.emplace(port, m_roots, std::nullopt, m_surroundings.receiver);
    AddPages(GetPageCount());
    stSetOpenPage(open);
    return GetIOPort() != before ? 1 : 0;
}

void CComPort::stSetOpenPage(int page)
{
    SetActivePage(std::clamp(page, 0, GetPageCount() - 1));
}

ComPortPage* CComPort::PageOf(int port) const
{
    return qobject_cast<ComPortPage*>(GetPage(port - 1));
}

bool CComPort::IsConnected() const
{
    return m_command != nullptr && m_command->IsPortOpen() != 0;
}

bool CComPort::OnInitDialog()
{
    m_isAgreed = false;
    m_isLinkChanged = false;
    for (int port = 1; port <= GetPageCount(); ++port) {
        ComPortPage* const page = PageOf(port);
        if (port == GetIOPort()) {
            page->ShowNote(UiText(IsConnected() ? text::kComIsLink : text::kComIsLinkOffline));
            if (!IsConnected() && m_command != nullptr && m_surroundings.target) {
                page->OfferSearch();
            }
        } else {
            const int known = PortKnownText(m_edit->Known(port));
            page->ShowNote(!IsConnected() ? UiText(text::kComOffline)
                           : known != 0   ? UiText(known)
                                          : QString());
        }
    }
    return PropertySheet::OnInitDialog();
}

bool CComPort::OnClose(int result)
{
    if (result == kOk && m_command != nullptr) {
        m_quiet.emplace(*m_command);
    }
    const bool isOver = (result != kOk || SetAll()) && PropertySheet::OnClose(result);
    m_isAgreed = isOver && result == kOk;
    if (!isOver) {
        m_quiet.reset();
    }
    return isOver;
}

bool CComPort::SetAll()
{
    for (int port = 1; port <= GetPageCount(); ++port) {
        if (port != GetIOPort() && !Set(PageOf(port))) {
            return false;
        }
    }
    // Once the controller's own port is set, nothing else arrives.
    return GetIOPort() < 1 || GetIOPort() > GetPageCount() || Set(PageOf(GetIOPort()));
}

/// Sets what a page says, if there is reason to.
bool CComPort::Set(ComPortPage* page)
{
    if (!page->IsInitialised()) {
        return true;
    }
    page->Take(m_edit->At(page->Port()));
    if (!page->IsTouched() && !m_edit->IsDue(page->Port())) {
        return true;
    }
    const PortSet outcome = m_edit->Set(page->Port(), m_command);
    // Where the receiver of the link has moved nothing is left but to follow: see OnDestroy().
    const bool hasMoved =
        outcome == PortSet::NotStored && page->Port() == GetIOPort() && IsConnected();
    if (outcome == PortSet::Done || hasMoved) {
        return true;
    }
    SetActivePage(page);
    Tell(PortSetText(outcome), page->Port());
    return false;
}

void CComPort::Tell(int textId, int port) const
{
    CMesBox(EnvironmentOf(m_command).GetHost())
        .Fail(FormatText(textId, port), text::kComFailedCaption);
}

void CComPort::OnDestroy()
{
    int page = GetActiveIndex();
    CParts::SetRegActivePage(0, page, kName, HostReg(m_roots));
    if (m_isAgreed && stCompareCommPrm() != 0) {
        const bool isKept = m_edit->KeepLink() == 1;
        m_isLinkChanged = isKept || IsConnected();
        if (!isKept) {
            Tell(IsConnected() ? text::kComMovedNotStored : text::kComNotStored, GetIOPort());
        }
    }
    PropertySheet::OnDestroy();
}

void CComPort::Search(ComPortPage* page)
{
    if (m_command->IsBusy()) {
        return;
    }
    std::optional<ConnectTarget> target = m_surroundings.target();
    if (!target) {
        page->ShowSearchResult(UiText(text::kComSearchPort));
        return;
    }
    CComPrmSet& set = m_edit->At(page->Port());
    page->Take(set);
    set.ConvFlag2Data();
    target->settings = set.Line();
    const Questions::Quiet quiet(*m_command); // a link that was lost is looked for, too
    const auto show = [page](std::uint32_t rate, int done, int total) {
        page->ShowSearchResult(
            ToQt(FormatText(text::kComSearching, static_cast<long>(rate), done + 1, total)));
    };
    if (const std::optional<std::uint32_t> rate = SearchRate(*m_command, *target, show)) {
        target->settings.baudRate = *rate;
        set.SetLine(target->settings);
        page->InsertString(set);
        page->ShowSearchResult(ToQt(FormatText(text::kComSearchFound, static_cast<long>(*rate))));
        return;
    }
    page->ShowSearchResult(UiText(RateSearchText(m_command->Fault())));
}

} // namespace fieldcore
