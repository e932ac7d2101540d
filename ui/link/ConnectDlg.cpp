#include "ui/link/ConnectDlg.h"

#include "core/equipment/LinkSearch.h"
#include "core/link/ComPrmSet.h"
#include "core/link/Command.h"
#include "core/link/PortChoices.h"
#include "core/platform/PortReport.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "ui/controls/UiText.h"

#include <optional>
#include <utility>

namespace fieldcore {

namespace {

std::wstring PortWords(const ConnectTarget& target)
{
    return target.devicePath.empty() ? L"COM" + std::to_wstring(target.port)
                                     : FromUtf8(target.devicePath);
}

/// Whether a receiver that talks at another rate could look like that.
bool MayBeTheRate(CommandFault fault)
{
    return fault == CommandFault::TimedOut || fault == CommandFault::Malformed ||
           fault == CommandFault::BadChecksum;
}

} // namespace

ConnectDlg::ConnectDlg(CCommand& command, int reconnect, QWidget* parent)
    : CConnect(command, reconnect), m_command(command), m_parent(parent),
      m_keepRate([&command](std::uint32_t rate) {
          return SetLinkRate(rate, command.GetEnvironment().Roots());
      })
{}

ConnectDlg::ConnectDlg(CCommand& command, int reconnect, FoundTarget found, QWidget* parent)
    : CConnect(command, reconnect, std::move(found)), m_command(command), m_parent(parent)
{}

ConnectDlg::ConnectDlg(CCommand& command, int reconnect, ConnectTarget target, QWidget* parent)
    : CConnect(command, reconnect, std::move(target)), m_command(command), m_parent(parent)
{}

int ConnectDlg::RunSequence(ConnectSequence& sequence)
{
    const QString where = ToQt(FormatText(text::kConnectingTarget, PortWords(*Target()).c_str(),
                                          static_cast<long>(Target()->settings.baudRate)));
    m_progress = std::make_unique<ConnectProgressDlg>(where, m_command.GetClock(), m_parent);
    m_progress->Begin();
    const int connected = sequence.Run(m_progress.get());
    const bool isOver = connected == 1 || sequence.FailedFault() == CommandFault::Cancelled;
    if (isOver) {
        m_progress.reset();
    }
    return connected;
}

void ConnectDlg::ShowFailure(const ConnectSequence& sequence)
{
    if (sequence.IsPortSending()) { // a step that failed is not what is wrong
        m_progress.reset();
        CConnect::ShowFailure(sequence);
        return;
    }
    std::wstring message = sequence.FailureMessage();
    const std::string& path = Target()->devicePath;
    std::string detail = sequence.FailureDetail();
    if (sequence.FailedFault() == CommandFault::OpenFailed && !path.empty()) {
        const PortReport report = ReportPort(path, m_command.SystemError());
        if (report.trouble != PortTrouble::None) {
            message =
                FormatText(text::kFailedPortState, message.c_str(), PortStateText(report.trouble));
        }
        detail += "\n" + report.text + (report.command.empty() ? "" : "\n" + report.command);
    }
    m_progress->ShowFailure(
        ToQt(message),
        ToQt(FormatText(text::kDetailHead, PortWords(*Target()).c_str(), FromUtf8(detail).c_str())),
        m_keepRate && MayBeTheRate(sequence.FailedFault()) ? [this] { return ToQt(Search()); }
                                                           : std::function<QString()>());
    m_progress.reset();
}

std::wstring ConnectDlg::Search()
{
    const std::optional<std::uint32_t> rate = SearchRate(
        m_command, *Target(), std::bind_front(&ConnectProgressDlg::OnRate, m_progress.get()));
    if (!rate) {
        return Text(RateSearchText(m_command.Fault()));
    }
    return FormatText(m_keepRate(*rate) == 1 ? text::kConnectRateKept : text::kConnectRateNotKept,
                      static_cast<long>(*rate));
}

} // namespace fieldcore
