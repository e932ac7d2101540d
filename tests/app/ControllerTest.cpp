// The controller by itself: what it finds on its first day, how it comes to its receiver, and what
// it keeps.

#include "core/equipment/PortEdit.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SampleSites.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "tests/app/Started.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/MessageDlg.h"
#include "ui/tilt/BubbleView.h"
#include "ui/tilt/TiltSensorDlg.h"

#include <QPushButton>

#include <filesystem>
#include <fstream>
#include <string>

namespace fieldcore {
namespace {

using testing::Hand;
using testing::Started;

class ControllerTest : public ::testing::Test, protected testing::OwnFolders
{};

TEST_F(ControllerTest, GivesANewUserSitesAndAnAlmanac)
{
    Started controller(QStringLiteral("sim:lark"));
    EXPECT_EQ(SiteNames(controller.ProgramFolder()).size(), SampleSites().size());
    const auto almanac = AlmanacPath(controller.ProgramFolder());
    EXPECT_EQ(CountAlmanacs(ReadAlmanacFile(almanac)), 31);

    // What is there stays.
    std::filesystem::resize_file(almanac, 400);
    const Started again(QStringLiteral("sim:lark"));
    EXPECT_EQ(std::filesystem::file_size(almanac), 400U);
}

TEST_F(ControllerTest, TellsWhyItCannotConnect)
{
    for (const QString& port : {QStringLiteral("sim:nonsense"), QStringLiteral("rubbish"),
                                m_folder.filePath(QStringLiteral("no-device"))}) {
        Controller controller(testing::OptionsFor(port));
        std::wstring fault;
        EXPECT_FALSE(controller.ConnectQuietly(fault)) << port.toStdString();
        EXPECT_FALSE(fault.empty()) << port.toStdString();
        EXPECT_EQ(controller.Link().State(), LinkState::NotConnected);
        EXPECT_EQ(controller.State().receiver.link, LinkState::Failed);
        controller.Disconnect();
        EXPECT_EQ(controller.State().receiver.link, LinkState::NotConnected);
    }
}

TEST_F(ControllerTest, CancelEndsAConnectionThatNobodyAnswers)
{
    // A time-out lasts 20 s: only Cancel can be quicker than the watchdog.
    Started controller(QStringLiteral("sim:silent"), 0.1);
    QWidget window;
    window.show();
    QApplication::setActiveWindow(&window);
    bool clicked = false;
    QTimer hand;
    QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
        auto* const strip = window.findChild<BusyStrip*>();
        if (strip != nullptr && strip->isVisible() && !std::exchange(clicked, true)) {
            QTest::mouseClick(strip->CancelButton(), Qt::LeftButton);
        }
    });
    hand.start(10);
    int boxes = 0; // with what is known to who has cancelled
    const Hand<> watchdog([&boxes](QWidget& box) {
        ++boxes;
        box.close();
    });
    std::wstring fault;
    EXPECT_FALSE(controller.Connect(&window, fault));
    EXPECT_TRUE(clicked);
    EXPECT_EQ(controller.Command().Fault(), CommandFault::Cancelled);
    EXPECT_EQ(controller.Command().IsPortOpen(), 0);
    EXPECT_EQ(fault, L"") << "who cancels is not told that it failed";
    EXPECT_EQ(boxes, 0);
}

TEST_F(ControllerTest, GoesFromTheSimulatorToARealPort)
{
    Started controller(QStringLiteral("sim:lark"));
    ASSERT_TRUE(controller.IsConnectedQuietly());
    const auto real = testing::StartReceiver("pica", controller.GetClock());
    QStringList asked;
    const Hand<MessageDlg> hand([&asked](MessageDlg& box) {
        asked += box.windowTitle();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    ConnectChoice choice = controller.Choice();
    choice.port = real->PortPath();
    controller.Choose(choice);
    std::wstring fault;
    EXPECT_TRUE(controller.Connect(nullptr, fault));
    EXPECT_EQ(asked, QStringList{QStringLiteral("ケーブル接続確認")});
    EXPECT_GT(real->RequestCount(), 0U);
    EXPECT_EQ(controller.State().simulator, QString());
}

TEST_F(ControllerTest, AsksOnceWhenBluetoothIsLost)
{
    Started controller(QStringLiteral("COM5"), testing::kRealSpeed);
    const auto receiver = testing::StartReceiver("lark");
    controller.Reg().WriteString(L"Ports", L"COM5", FromUtf8(receiver->PortPath()));
    ASSERT_TRUE(controller.IsConnectedQuietly());
    EXPECT_EQ(controller.Command().GetPortNumber(), 5);
    QStringList asked;
    const Hand<MessageDlg> hand([&](MessageDlg& box) {
        EXPECT_FALSE(controller.Command().IsBusy()) << "asked from inside of a request";
        EXPECT_TRUE(receiver->Plug());
        asked += box.windowTitle();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    receiver->HangUp();
    const auto over = [&] {
        return !asked.isEmpty() && controller.Link().State() == LinkState::Connected;
    };
    EXPECT_TRUE(QTest::qWaitFor(over, 20000));
    QTest::qWait(600); // two rounds of the program's timer
    EXPECT_EQ(asked, QStringList{QStringLiteral("通信エラー検出")});
}

TEST_F(ControllerTest, GivesTheBubbleTheAntennaOfItsRole)
{
    Started controller(QStringLiteral("sim:tilted"), testing::kRealSpeed);
    AntennaSettings antenna(&controller.Command(), 1, 0);
    antenna.SetRole(AntennaRole::Rover);
    antenna.SetAntInputH(1.8);
    ASSERT_EQ(antenna.WriteRegAnt(), 1);
    ASSERT_TRUE(controller.IsConnectedQuietly());
    ASSERT_EQ(TiltSensorDlg::StartUp(&controller.Command(), nullptr, nullptr), 1);
    const auto ring = [] { return TiltSensorDlg::Instance()->View()->Picture().ringRadius; };
    const auto shows = [] { return TiltSensorDlg::Instance()->View()->Picture().showBubble; };
    EXPECT_TRUE(QTest::qWaitFor(shows, 10000));
    EXPECT_EQ(ring(), 0) << "no height is known yet";
    controller.UseAntenna(AntennaRole::Rover);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ring() > 0; }, 10000));
    controller.UseAntenna(AntennaRole::Reference); // which has none
    EXPECT_TRUE(QTest::qWaitFor([&] { return ring() == 0; }, 10000));
    TiltSensorDlg::ShutDown();
}

TEST_F(ControllerTest, TellsOfItsSettingsInJapanese)
{
    const AppOptions options = testing::OptionsFor(QStringLiteral("sim:lark"));
    const std::filesystem::path config = m_folder.filePath(QStringLiteral("config")).toStdString();
    {
        Started controller(QStringLiteral("sim:lark"));
        EXPECT_EQ(controller.TakeNotice(), QString());
        SettingsRoots real;
        SettingsStore& store = real.Store(RootKey::CurrentUser);
        ASSERT_TRUE(store.Set(HostBasePath() + L"\\Ports", L"COM999", std::wstring(L"/dev/x"),
                              KeyOpening::Create));
    }
    {
        Controller controller(options);
        EXPECT_TRUE(controller.TakeNotice().startsWith(
            QStringLiteral("ポートの割り当て「COM999」は使えません。")));
        EXPECT_EQ(controller.TakeNotice(), QString()) << "told twice";
    }
    std::filesystem::remove_all(config);
    std::filesystem::create_symlink("/dev/null", config);
    Controller controller(options);
    controller.UseTheme(Theme::Kind::Dark);
    Theme::Use(Theme::Kind::Daylight);
    const QString notice = controller.TakeNotice();
    EXPECT_TRUE(notice.startsWith(QStringLiteral("設定を保存できません。")))
        << notice.toStdString();
    EXPECT_TRUE(notice.contains(QStringLiteral("user.db")));
}

TEST_F(ControllerTest, KeepsWhatTheSimulatorLeadsToApart)
{
    const auto height = [](const Controller& controller) {
        std::uint32_t value = 0;
        controller.Reg().ReadNumber(L"GPS\\Mark", L"Height", value, 0);
        return value;
    };
    const std::filesystem::path home = Folders().Program();
    Controller controller(testing::OptionsFor(QString()));
    controller.Choose({"COM7", 9600});
    controller.Begin();
    ASSERT_EQ(controller.Reg().WriteNumber(L"GPS\\Mark", L"Height", 1), 1);
    EXPECT_EQ(controller.ProgramFolder(), home);

    controller.Choose({"sim:lark", 38400});
    controller.UseTheme(Theme::Kind::Dark);
    EXPECT_EQ(height(controller), 0U) << "the simulator's are its own";
    EXPECT_NE(controller.ProgramFolder(), home);
    EXPECT_TRUE(std::filesystem::exists(AlmanacPath(controller.ProgramFolder())));
    ASSERT_EQ(controller.Reg().WriteNumber(L"GPS\\Mark", L"Height", 2), 1);

    controller.Choose({"COM7", 9600});
    EXPECT_EQ(height(controller), 1U) << "the real ones have not been touched";
    Started later(QString{});
    EXPECT_EQ(later.Choice(), (ConnectChoice{"COM7", 9600}));
    EXPECT_EQ(Theme::Used(), Theme::Kind::Dark)
        << "the controller's own look is not the receiver's";
    Theme::Use(Theme::Kind::Daylight);
}

TEST_F(ControllerTest, FindsTheReceiverOnItsNewLineOrTellsWhyNot)
{
    struct Row
    {
        const char* course;
        bool isConnected;
        std::uint32_t receiver; ///< rate that it changes to
        int said;               ///< 0: nothing
        std::uint32_t stored;
        bool isOpen;
        bool isKept = true; ///< the new parameters could be stored
    };
    const Row rows[] = {
        {"not connected", false, 38400, 0, 115200, false},
        {"both have moved", true, 115200, 0, 115200, true},
        {"moved, but not stored", true, 115200, 0, 38400, true, false},
        {"the receiver has stayed", true, 38400, text::kComLinkStayed, 38400, true},
        {"the receiver is elsewhere", true, 9600, text::kComLinkLost, 115200, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        const testing::OwnFolders own;
        const QString scenario = own.m_folder.filePath(QStringLiteral("strict.txt"));
        std::ofstream(scenario.toStdString()) << "check-rate yes\n";
        // An answer has a second of a watch.
        testing::Started controller(QStringLiteral("sim:") + scenario, 2.0);
        ASSERT_TRUE(!row.isConnected || controller.IsConnectedQuietly());
        PortEdit edit(1, controller.Roots());
        ASSERT_EQ(edit.At(1).SetPrmString(L"115200"), 1);
        ASSERT_TRUE(!row.isKept || edit.KeepLink() == 1);
        if (row.isConnected && row.receiver != 38400) {
            PortSettings line;
            line.baudRate = row.receiver;
            ASSERT_EQ(controller.Command().SetReceiverPort(1, line), 1);
        }
        EXPECT_EQ(controller.FollowLink(edit), row.said);
        EXPECT_EQ(controller.Choice().baudRate, row.stored);
        EXPECT_EQ(LinkSettings(controller.Roots()).baudRate, row.stored);
        EXPECT_EQ(controller.Command().IsPortOpen() != 0, row.isOpen);
        EXPECT_EQ(controller.Link().State() == LinkState::Connected, row.isOpen);
    }
}

TEST_F(ControllerTest, WhatIsTrackedIsNotedInTheBackground)
{
    Started controller(QStringLiteral("sim:street"), 20.0);
    ASSERT_TRUE(controller.IsConnectedQuietly());
    // The first list is looked at by the almanac of the simulated receiver's own folder.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return controller.PlanWorld(nullptr).skyNotes().state == SkyRecorder::State::Settling;
        },
        30000));
}

} // namespace
} // namespace fieldcore
