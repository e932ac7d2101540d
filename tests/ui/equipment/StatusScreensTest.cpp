// The screens of the receiver's state: what the user reads, and what the library may write there.

#include "core/equipment/BattLevel.h"
#include "core/link/Command.h"
#include "simulator/Simulator.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <chrono>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

constexpr const char* kReceiver = "model 3017\npower-source 2\nbattery 64\n";

class StatusScreensTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string error;
        const auto scenario = simulator::ParseScenario(kReceiver, error);
        ASSERT_TRUE(scenario) << error;
        receiver = std::make_unique<simulator::Simulator>(*scenario);
        ASSERT_TRUE(receiver->Start(error)) << error;
        ASSERT_EQ(command.OpenPort(receiver->PortPath()), 1);
        command.SetHost(host);
    }

    QtHost host;
    std::unique_ptr<simulator::Simulator> receiver;
    CCommand command;
};

TEST_F(StatusScreensTest, ThePeriodicCallReachesBarAndText)
{
    constexpr int kSource = 1234;
    Dialog window;
    auto* const bar = new CTextProgressCtrl(&window);
    auto* const label = new QLabel(&window);
    Dialog::SetControlId(label, kSource);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    CBattLevel level(&command);
    level.SetRecvTypeNum(3017);
    level.SetInit(bar);
    level.SetBatteryStatus(kSource, bar);
    EXPECT_EQ(bar->GetPos(), 70);
    EXPECT_EQ(label->text(), QStringLiteral("電源B"));
}

TEST_F(StatusScreensTest, TheVersionListCanBeCopied)
{
    CVersion version(&command);
    version.show();
    const auto* const list = version.findChild<QTableWidget*>();
    EXPECT_GT(list->rowCount(), 30);
    EXPECT_EQ(list->item(1, 1)->text(), QStringLiteral("Corvane VX1"));
    QTest::mouseClick(version.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(QStringLiteral("機種\tCorvane VX1")));
    command.ClosePort();
    EXPECT_EQ(version.Update(), 0);
    EXPECT_EQ(list->rowCount(), 0) << "another receiver's list";
    EXPECT_FALSE(version.findChild<QPushButton*>()->isEnabled());
}

TEST(StatusPage, SaysWhatIsStale)
{
    LiveStatus status;
    ReturnPositionStatusInformation position;
    position.fixKind = 5;
    status.position = {position, 100s};
    status.battery = {BatteryReading{}, 100s};
    const Clock::UtcTime utc = std::chrono::sys_days(2026y / 3 / 19);
    const auto words = [](const StatusPage& page) {
        QString all;
        for (const QLabel* label : page.findChildren<QLabel*>()) {
            all += label->text() + QLatin1Char('|');
        }
        return all;
    };
    StatusPage page;
    page.Show(status, {}, {101s, utc, true});
    EXPECT_TRUE(words(page).contains(QStringLiteral("RTKフィックス")));
    EXPECT_FALSE(words(page).contains(QStringLiteral("最終受信")));
    EXPECT_EQ(page.findChild<CTextProgressCtrl*>()->text(), QStringLiteral("不明"));
    page.Show(status, {}, {111s, utc, true});
    EXPECT_TRUE(words(page).contains(QStringLiteral("最終受信 08:59:49")));
    page.Show(status, {}, {101s, utc, false});
    EXPECT_TRUE(words(page).contains(QStringLiteral("受信機に接続していません")));
    EXPECT_TRUE(words(page).contains(QStringLiteral("最終受信 08:59:59")));
}

} // namespace
} // namespace fieldcore
