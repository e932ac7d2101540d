#pragma once

#include "core/equipment/PortEdit.h"
#include "core/link/ConnectChoice.h"
#include "core/link/Questions.h"
#include "ui/controls/PropertySheet.h"

#include <functional>
#include <optional>

namespace fieldcore {

class ComPortPage;

/// The parameters of the receiver's serial ports, a page each, which says what is known of the
/// receiver's own. OK sends to the receiver, if one is connected, and stores the pages that were
/// seen and that the user has touched or that are PortEdit::IsDue(); the port through which the
/// controller talks comes last, and only if it changes. User-interface thread only.
class CComPort : public PropertySheet
{
    Q_OBJECT

public:
    /// What the sheet works with beside the channel.
    struct Surroundings
    {
        int ports = CComPrmSet::kMostPorts; ///< that the receiver has: 1 to 3 pages
        /// Where the receiver is looked for when the user wants its rate found; empty: not offered.
        std::function<std::optional<ConnectTarget>()> target;
        std::wstring receiver{}; ///< serial number of the one that is, or was last, connected
    };

    /// The page that was open last.
    static constexpr int kLastPage = -1;
    /// Of DoModal(): the head has connected. To be opened anew, with what is known by now.
    static constexpr int kConnected = kCancelled + 1;

    /// @param command    not owned, must outlive the sheet; null or closed: nothing is sent
    /// @param ioPort     the receiver's port that the controller uses; 0: none of the pages'
    /// @param startPage  index from 0, or kLastPage
    CComPort(CCommand* command, int ioPort, const QString& caption, QWidget* parent, int startPage,
             Surroundings surroundings);
    CComPort(CCommand* command, int ioPort, const QString& caption, QWidget* parent = nullptr,
             int startPage = kLastPage);
    ~CComPort() override;

    /// The port that leads to the receiver.
    [[nodiscard]] int GetIOPort() const { return m_edit->LinkPort(); }
    /// Another port that the controller uses, before the sheet is shown; all is read anew.
    /// @param port  0: none of the pages'
    /// @return 1 if it is another one
    int SetIOPort(int port);
    /// How many ports there are, and pages.
    [[nodiscard]] int GetPortNo() const { return GetPageCount(); }
    /// Number of the sheet's icon among those of the program: it has none.
    [[nodiscard]] static int GetIconID() { return 0; }

    /// After OK: the parameters of the controller's own link have changed, and are stored; or they
    /// could not be stored, as the user was told, and a connected receiver has them. Whoever opened
    /// the sheet connects anew with PortEdit::LinkWanted(), see FollowLink().
    [[nodiscard]] bool IsLinkChanged() const { return m_isLinkChanged; }
    [[nodiscard]] PortEdit& Edit() { return *m_edit; }

    // Choosing the pages, before the sheet is shown.
    void stCreate_1PortType() { AddPages(1); }
    void stCreate_2PortType() { AddPages(2); }
    void stCreate_3PortType() { AddPages(3); }
    /// Brings a page to the front, the last one if there are not so many.
    void stSetOpenPage(int page);
    /// Whether port 0 of the settings differs from what the sheet has for the controller's port.
    [[nodiscard]] int stCompareCommPrm() const { return m_edit->IsLinkChanged() ? 1 : 0; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnDestroy() override;

private:
    void AddPages(int count);
    [[nodiscard]] ComPortPage* PageOf(int port) const;
    [[nodiscard]] bool SetAll();
    [[nodiscard]] bool Set(ComPortPage* page);
    [[nodiscard]] bool IsConnected() const;
    void Search(ComPortPage* page);
    void Tell(int textId, int port) const;

    CCommand* const m_command;
    const Surroundings m_surroundings;
    SettingsRoots& m_roots;
    std::optional<PortEdit> m_edit; // there always is one; it is replaced as a whole
    // From OK on: the line is not what it was until whoever opened the sheet has followed.
    std::optional<Questions::Quiet> m_quiet;
    bool m_isAgreed = false;
    bool m_isLinkChanged = false;
};

} // namespace fieldcore
