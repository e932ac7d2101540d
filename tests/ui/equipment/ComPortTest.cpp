// The parameters of ports on the screen, with a simulated receiver that has two of them.

#include "ui/equipment/ComPort.h"

#include "core/platform/FastClock.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/ui/link/Clicks.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TComboBox.h"
#include "ui/equipment/ComPortPage.h"

namespace fieldcore {
namespace {

class ComPortTest : public ::testing::Test
{
protected:
    ComPortTest() : m_host(QtHost::Options{false, &m_clock})
    {
        simulator::Scenario scenario;
        scenario.checksRate = true;
        m_receiver = testing::StartReceiver(scenario, m_clock);
        m_target.devicePath = m_receiver->PortPath();
        m_target.settings.replyTimeout = std::chrono::seconds(40); // 2 s on a watch
    }
    void Open(int ports, int page = CComPort::kLastPage)
    {
        sheet = std::make_unique<CComPort>(
            &m_command, 1, QStringLiteral("通信設定"), nullptr, page,
            CComPort::Surroundings{ports, [this] { return std::optional(m_target); }});
        sheet->resize(480, 640);
        sheet->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(sheet.get()));
    }
    [[nodiscard]] CTComboBox* Combo(int page, int name) const
    {
        return testing::Called<CTComboBox>(*sheet->GetPage(page), name);
    }
    [[nodiscard]] std::string Shown(int page, int name) const
    {
        return Combo(page, name)->currentText().toStdString();
    }
    static std::vector<ExpectedBox> Told(int text, int port)
    {
        return {{FormatText(text, port), Text(text::kComFailedCaption), text::kMessageIconStop}};
    }
    std::wstring Stored(int port)
    {
        CComPrmSet set(m_roots);
        set.ReadRegCommPrm(port);
        set.ConvData2Flag();
        return set.GetPrmString();
    }

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    FastClock m_clock{20.0};
    QtHost m_host;
    std::unique_ptr<simulator::Simulator> m_receiver;
    CCommand m_command{{.host = &m_host, .clock = &m_clock, .roots = &m_roots}};
    ConnectTarget m_target;
    std::unique_ptr<CComPort> sheet;
};

TEST_F(ComPortTest, SetsWhatWasSeenAndTellsThatTheLinkChanged)
{
    ASSERT_EQ(OpenTarget(m_command, m_target), 1);
    Open(2);
    EXPECT_EQ(sheet->GetPortNo(), 2);
    EXPECT_EQ(Shown(0, text::kComRate), "38400");
    sheet->SetActivePage(1);
    EXPECT_EQ(Shown(1, text::kComRate), "9600");
    Combo(1, text::kComFlow)->setCurrentIndex(1);
    sheet->Close(Dialog::kOk);
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_FALSE(sheet->IsLinkChanged());
    EXPECT_EQ(Stored(2), L"9600-8-None-1-CTS");

    Open(2);
    EXPECT_EQ(sheet->GetActiveIndex(), 1) << "the page that was open last";
    sheet->SetActivePage(0);
    Combo(0, text::kComRate)->setCurrentIndex(6);
    sheet->Close(Dialog::kCancelled);
    EXPECT_FALSE(sheet->IsLinkChanged());
    EXPECT_EQ(Stored(0), L"38400-8-None-1-None") << "cancelled";

    Open(1, 7);
    EXPECT_EQ(sheet->GetActiveIndex(), 0) << "there is no page beyond the last";
    Combo(0, text::kComRate)->setCurrentIndex(6);
    sheet->Close(Dialog::kOk);
    EXPECT_TRUE(sheet->IsLinkChanged());
    EXPECT_EQ(Stored(0), L"115200-8-None-1-None");
}

TEST_F(ComPortTest, SendsNothingThatNobodyHasTouched)
{
    ASSERT_EQ(OpenTarget(m_command, m_target), 1);
    const auto expectSent = [this](std::size_t sent, bool isTouched, bool isKnown) {
        Open(2, 1);
        EXPECT_NE(testing::Says(*sheet->GetPage(1), UiText(text::kComKnownDefault)), isKnown);
        if (isTouched) {
            Q_EMIT Combo(1, text::kComRate)->activated(2);
        }
        const std::size_t before = m_receiver->RequestCount();
        sheet->Close(Dialog::kOk);
        EXPECT_EQ(m_receiver->RequestCount(), before + sent);
    };
    expectSent(0, false, false);
    expectSent(1, true, false); // the default chosen again
    expectSent(0, false, true);
}

TEST_F(ComPortTest, FollowsAReceiverThatCouldNotBeStored)
{
    ASSERT_EQ(OpenTarget(m_command, m_target), 1);
    Open(1);
    Combo(0, text::kComRate)->setCurrentIndex(6);
    const Surveyor surveyor(Told(text::kComMovedNotStored, 1));
    {
        const SettingsBatch other(HostReg(m_roots).Store()); // whose writer has not finished
        sheet->Close(Dialog::kOk);
    }
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_TRUE(sheet->IsLinkChanged());
    EXPECT_EQ(sheet->Edit().LinkWanted().baudRate, 115200U);
    EXPECT_EQ(Stored(0), L"38400-8-None-1-None");
}

TEST_F(ComPortTest, StaysOpenWhereTheReceiverRefuses)
{
    ASSERT_EQ(OpenTarget(m_command, m_target), 1);
    Open(3, 2); // a third page, of a port that this receiver does not have
    EXPECT_EQ(sheet->SetIOPort(1), 0);
    EXPECT_EQ(sheet->SetIOPort(2), 1) << "the link is shown on the port that it is told to use";
    EXPECT_EQ(sheet->GetIOPort(), 2);
    EXPECT_EQ(sheet->GetActiveIndex(), 2);
    EXPECT_EQ(Shown(0, text::kComRate) + ' ' + Shown(1, text::kComRate), "9600 38400");
    EXPECT_EQ(sheet->SetIOPort(1), 1);
    Combo(2, text::kComRate)->setCurrentIndex(0);
    sheet->SetActivePage(0);
    const Surveyor surveyor(Told(text::kComRefused, 3));
    sheet->Close(Dialog::kOk);
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_EQ(sheet->GetActiveIndex(), 2);
    EXPECT_EQ(Stored(3), L"9600-8-None-1-None");
}

TEST_F(ComPortTest, FindsTheRateWithoutAConnection)
{
    CComPrmSet link(m_roots);
    ASSERT_EQ(link.SetPrmString(L"9600-8-None-1-CTS"), 1);
    ASSERT_EQ(link.WriteRegCommPrm(0), 1);
    Open(1);
    testing::Click(*sheet, text::kComSearch);
    EXPECT_EQ(Shown(0, text::kComRate), "38400");
    EXPECT_EQ(Shown(0, text::kComFlow), "CTS");
    QApplication::processEvents(); // which takes the strip of the wait away
    sheet->Close(Dialog::kOk);
    EXPECT_TRUE(sheet->IsLinkChanged());
    EXPECT_EQ(Stored(0), L"38400-8-None-1-CTS");
}

} // namespace
} // namespace fieldcore
