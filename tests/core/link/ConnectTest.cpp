#include "core/link/Connect.h"

#include "core/link/RecvForceInit.h"
#include "core/platform/Utf8.h"
#include "core/settings/HostReg.h"
#include "tests/core/link/FarEnd.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using Box = testing::BoxKeepingHost::Box;
using enum BoxAnswer;

constexpr BoxStyle kInformation{BoxButtons::Ok, BoxIcon::Information};
constexpr BoxStyle kWarning{BoxButtons::Ok, BoxIcon::Exclamation};
constexpr BoxStyle kStop{BoxButtons::Ok, BoxIcon::Stop};
const Box kCable{L"ケーブルを接続してください",
                 L"ケーブル接続確認",
                 {BoxButtons::OkCancel, BoxIcon::Information}};

class ConnectTest : public ::testing::Test
{
protected:
    /// A new receiver, who plays this, and a new channel to it.
    void Start(std::string_view scenario = {})
    {
        receiver.reset();
        receiver.emplace(scenario);
    }
    [[nodiscard]] CCommand& Command() { return receiver->command; }
    [[nodiscard]] testing::BoxKeepingHost& Host() { return receiver->host; }
    std::optional<testing::VirtualReceiver> receiver{std::in_place};
    ConnectTarget target{1, "in memory", {}};
};

TEST_F(ConnectTest, AsksAsTheWayRequires)
{
    const auto asked = [this](int port, int reconnect, BoxAnswer answer) {
        Host().boxes.clear();
        Host().answers = {answer};
        target.port = port;
        EXPECT_EQ(CConnect(Command(), reconnect, target).stStartMessage(),
                  answer == Cancel ? 0 : 1);
        return Host().boxes;
    };
    const Box power{L"受信機の電源を入れてください。\nBluetoothで通信を行います。",
                    L"受信機電源確認",
                    {BoxButtons::OkCancel, BoxIcon::Information}};
    const Box lost{L"Bluetooth通信が行えません。\nBluetooth通信接続を復帰しますか？",
                   L"通信エラー検出",
                   {BoxButtons::RetryCancel, BoxIcon::Question}};
    EXPECT_EQ(asked(1, 0, Ok), std::vector{kCable});
    EXPECT_EQ(asked(1, 1, Cancel), std::vector{kCable});
    EXPECT_EQ(asked(5, 0, Ok), std::vector{power});
    EXPECT_EQ(asked(5, 1, Retry), std::vector{lost});
    EXPECT_EQ(asked(5, 1, Cancel), std::vector{lost}) << "given up";
}

TEST_F(ConnectTest, ConnectsAsTheSettingsSay)
{
    const TemporaryFolder home;
    SettingsRoots& roots = receiver->roots;
    roots.Use(testing::FoldersBelow(home.Path()));
    const HostReg reg(roots);
    reg.WriteString(L"Ports", L"COM5", L"/dev/ttyS9");
    reg.WriteNumber(L"GPS\\Com\\Com0", L"Baudlate", 57600);
    CReg machine(roots);
    machine.SetRootKey(RootKey::LocalMachine, 1);
    machine.WriteNumber(L"Software\\CorvaneTS Software\\Wexmain\\Data\\System\\Rtk", L"GpsPort", 5);
    CConnect connect(Command(), 0);
    ASSERT_EQ(connect.DoModal(), CConnect::Connected);
    ASSERT_EQ(Host().boxes.size(), 1U);
    EXPECT_EQ(Host().boxes[0].caption, L"受信機電源確認") << "by Bluetooth";
    EXPECT_EQ(Command().GetPortNumber(), 5) << "of which the time of a transfer is estimated";
    EXPECT_EQ(Command().GetBaudRate(), 57600U);
    Command().ClosePort();

    reg.WriteString(L"GPS\\Connect", L"Port", L"COM300");
    Host().boxes.clear();
    EXPECT_EQ(connect.DoModal(), CConnect::NotConnected);
    ASSERT_EQ(Host().boxes.size(), 1U) << "asked for a cable that leads nowhere";
    EXPECT_NE(Host().boxes[0].text.find(L"COM300"), std::wstring::npos);
    EXPECT_EQ(Host().boxes[0].style.icon, BoxIcon::Stop);
    EXPECT_EQ(Command().IsPortOpen(), 0);
}

/// The default host may be named, and replaced, after what uses it was made.
TEST_F(ConnectTest, AsksTheDefaultHostWhereNoneIsGiven)
{
    CCommand& shared = *GetCCommand();
    EXPECT_EQ(&shared.GetHost(), &DefaultHost());
    testing::BoxKeepingHost later;
    for (testing::BoxKeepingHost* const named : {&Host(), &later}) {
        SetDefaultHost(named);
        EXPECT_EQ(CConnect(shared, 0, target).stStartMessage(), 1);
        EXPECT_EQ(named->boxes.size(), 1U);
    }
    SetDefaultHost(nullptr);
}

TEST_F(ConnectTest, APortThatTalksIsNotTakenForADamagedLine)
{
    const testing::Bytes sentence =
        testing::Ascii("$GPGGA,120000.00,3541.1,N,13945.2,E,4,12,0.8*5C");
    const testing::Bytes noise{0xF8, 0x00, 0x80, 0x78, 0x06, 0xFF, 0x24, 0x18};
    receiver.reset(); // a thread takes part in one clock
    testing::VirtualChannel channel;
    for (const testing::Bytes& sends : {sentence, noise}) {
        channel.host.boxes.clear();
        const testing::ScriptedEnd talks(channel.line, [&sends](const testing::Bytes&) {
            return testing::ScriptedEnd::Answer{sends, sends, sends};
        });
        EXPECT_EQ(CConnect(channel.command, 0, target).DoModal(), CConnect::NotConnected);
        ASSERT_EQ(channel.host.boxes.size(), 2U);
        EXPECT_EQ(channel.host.boxes[1].caption,
                  sends == noise ? L"受信機接続エラー" : L"通信ポート接続エラー");
        EXPECT_EQ(channel.host.boxes[1].style.icon, BoxIcon::Stop);
    }
}

TEST_F(ConnectTest, ConnectsInItsSteps)
{
    class Steps : public ConnectObserver
    {
    public:
        void OnStep(ConnectStep step, int done, int total) override
        {
            EXPECT_EQ(done, static_cast<int>(seen.size()));
            EXPECT_EQ(total, 11);
            EXPECT_NE(*StepText(step), L'\0');
            seen.push_back(step);
        }
        std::vector<ConnectStep> seen;
    };
    Steps steps;
    ConnectSequence sequence(Command(), target);
    ASSERT_EQ(sequence.Run(&steps), 1) << sequence.FailureDetail();
    using enum ConnectStep;
    EXPECT_EQ(steps.seen,
              (std::vector{OpenPort, WakeReceiver, AskStatus, ReadOptions, ReadSerial, ReadOptions,
                           ReadSerial, ReadOptions, ReadSerial, ReadOptions, ReadSerial}));
    EXPECT_EQ(receiver->simulator.RequestCount(), 10U);
    EXPECT_EQ(Command().IsPortOpen(), 1);
    CConnect again(Command(), 0, target);
    EXPECT_EQ(again.DoModal(), CConnect::Connected);
    EXPECT_TRUE(Host().boxes.empty()) << "an open port needs no question";
}

TEST_F(ConnectTest, AFailureNamesItsStepAndClosesThePort)
{
    using enum ConnectStep;
    const auto expectFailure = [this](std::string_view rule, ConnectStep step, CommandFault reason,
                                      std::wstring_view told) {
        SCOPED_TRACE(rule);
        Start();
        if (rule.empty()) {
            receiver->simulator.HangUp();
        } else {
            receiver->AddFault(rule);
        }
        ConnectSequence sequence(Command(), target);
        EXPECT_EQ(sequence.Run(), 0);
        EXPECT_EQ(sequence.FailedStep(), step);
        EXPECT_EQ(sequence.FailedFault(), reason) << sequence.FailureDetail();
        EXPECT_EQ(Command().IsPortOpen(), 0);
        const std::wstring message = sequence.FailureMessage();
        EXPECT_NE(message.find(StepText(step)), std::wstring::npos);
        EXPECT_NE(message.find(told), std::wstring::npos);
    };
    expectFailure("", OpenPort, CommandFault::OpenFailed, L"通信ポートを開けません");
    expectFailure("drop", AskStatus, CommandFault::TimedOut, L"応答がありません");
    expectFailure("nak on 4A", ReadOptions, CommandFault::Refused, L"受け付けません");
    expectFailure("nak on 4A skip 2", ReadOptions, CommandFault::Refused, L"受け付けません");
    expectFailure("wrong-type on 06", ReadSerial, CommandFault::WrongType, L"予期しない応答");
    expectFailure("hang-up on 06 skip 1", ReadSerial, CommandFault::LinkLost, L"切断");
}

TEST_F(ConnectTest, ChecksTypeAndFirmware)
{
    const auto version = [](const wchar_t* text) {
        return Box{text, L"受信機未対応バージョン警告", kWarning};
    };
    const auto type = [](const wchar_t* text) {
        return Box{text, L"未対応受信機タイプ警告", kWarning};
    };
    const Box old = version(
        L"[ 3010 ]受信機対応ファームウェアは[ 1.23 ]以上です。\n[ 1.23 ]未満の受信機ファームウェア"
        L"へのサポートは行っておりません。\nファームウェアをバージョンアップしてください。");
    const Box beta = version(L"接続受信機ファームウェアはベータ版のため動作保証いたしません。\n"
                             L"バージョンアップしてから行ってください。");
    const Box notDeclared =
        type(L"本ソフトウェアでは[ Corvane VX1 ]受信機をサポートしておりません。");
    const Box talks{
        L"受信機接続ポートから[ RTK補正信号 ]又は、[ NMEA信号 ]などが出力されています。\n"
        L"出力信号を停止させ、再度指定ポートへ接続してください。",
        L"通信ポート接続エラー", kStop};
    const Box never = type(L"本ソフトウェアでは[ 2040 ]受信機をサポートしておりません。");
    const auto told = [this](const char* scenario, int accepted, bool isDeclared = true) {
        Start(scenario);
        receiver->Open();
        CConnect connect(Command(), 0, target);
        if (isDeclared) {
            connect.SupportAllTypes();
        }
        EXPECT_EQ(connect.CheckRecvType(), accepted);
        return Host().boxes;
    };
    EXPECT_EQ(told("type-code 31\nfirmware 4.43", 1), std::vector<Box>());
    EXPECT_EQ(told("type-code 10\nfirmware 1.22", 0), std::vector{old});
    EXPECT_EQ(told("type-code 10\nfirmware 1.23", 1), std::vector<Box>()) << "just new enough";
    EXPECT_EQ(told("type-code 31\nfirmware 0.95", 1), std::vector{beta});
    EXPECT_EQ(told("type-code 31\nfirmware 4.43", 0, false), std::vector{notDeclared});
    EXPECT_EQ(told("type-code 9\nfirmware 9.99", 0), std::vector{never});
    EXPECT_EQ(told("answers no", 0), std::vector{talks});
}

TEST_F(ConnectTest, ForceInitAsksTwice)
{
    const std::vector<Box> asked{
        kCable,
        {L"受信機設定を工場出荷状態へ戻しますか?",
         L"受信機強制初期化確認",
         {BoxButtons::YesNo, BoxIcon::Question}},
        {L"本当に受信機設定を工場出荷状態へ戻してもよろしいですか？\n\n"
         L"受信機強制初期化を実行すると、受信機内にある暦データ等全て初期化されます。\n"
         L"再度GNSS観測を行う場合は、15分程度衛星を捕捉してください。",
         L"受信機強制初期化確認",
         {BoxButtons::OkCancel, BoxIcon::Exclamation}},
        {L"受信機設定を工場出荷状態へ戻しました。", L"", kInformation},
    };
    struct Row
    {
        std::string_view course;
        std::vector<BoxAnswer> answers; // the first about the cable
        int result;
        const char* rule = "delay 1"; // which does no harm
    };
    const Row rows[] = {
        {"first question refused", {Ok, No}, CRecvForceInit::NotDone},
        {"second question refused", {Ok, Yes, Cancel}, CRecvForceInit::NotDone},
        {"done", {Ok, Yes, Ok, Ok}, CRecvForceInit::Done},
        {"not acknowledged is done too", {Ok, Yes, Ok, Ok}, CRecvForceInit::Done, "nak on 58"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.course);
        Start();
        receiver->AddFault(row.rule);
        Host().answers = row.answers;
        CConnect connect(Command(), 0, target);
        CRecvForceInit forceInit(Command());
        EXPECT_EQ(forceInit.DoModal(connect), row.result);
        EXPECT_EQ(Command().IsPortOpen(), 0) << "the port must be closed whatever came of it";
        const std::vector<Box> expected(asked.begin(), asked.begin() + std::ssize(row.answers));
        EXPECT_EQ(Host().boxes, expected);
        const auto pieces = receiver->simulator.Record();
        const auto resets = std::ranges::count_if(pieces, [](const auto& piece) {
            return piece.direction == simulator::Direction::ToReceiver &&
                   piece.bytes.size() == 13 && piece.bytes[2] == 0x58;
        });
        EXPECT_EQ(resets, row.result == CRecvForceInit::Done ? 1 : 0);
    }
}

} // namespace
} // namespace fieldcore
