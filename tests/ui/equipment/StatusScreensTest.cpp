// The screens of the receiver's state: what the user reads, and what the library may write there.

#include "core/equipment/BattLevel.h"
#include "core/link/RecvInfo.h"
#include "tests/core/equipment/KnownReceiver.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/OnScreen.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "tests/ui/link/Plugged.h"
#include "ui/controls/BusyStrip.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/equipment/StatusPage.h"
#include "ui/equipment/Version.h"

#include <QClipboard>
#include <QPushButton>
#include <QTableWidget>

#include <chrono>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

class StatusScreensTest : public ::testing::Test
{
protected:
    StatusScreensTest() { command.SetHost(host); }

    QtHost host;
    CCommand command;
    const std::unique_ptr<simulator::Simulator> receiver = testing::Plugged(
        command, testing::ParsedScenario("model 3017\npower-source 2\nbattery 64\n"));
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
    CRecvInfo info;
    ASSERT_EQ(info.GetOptionData(command), 1);
    const ReceiverIdentity known = info.Known();
    CVersion version(&command);
    version.show();
    const auto* const list = version.findChild<QTableWidget*>();
    EXPECT_GT(list->rowCount(), 30);
    EXPECT_EQ(list->item(1, 1)->text(), QStringLiteral("Corvane VX1"));
    QTest::mouseClick(version.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(QStringLiteral("機種\tCorvane VX1")));
    const std::size_t asked = receiver->Requests().size();
    CVersion again(&command, nullptr, known);
    again.show();
    EXPECT_EQ(again.findChild<QTableWidget*>()->rowCount(), list->rowCount());
    EXPECT_EQ(receiver->Requests().size(), asked) << "who it is is known";
    command.ClosePort();
    EXPECT_EQ(version.Update(), 0);
    EXPECT_EQ(list->rowCount(), 0) << "another receiver's list";
    EXPECT_FALSE(version.findChild<QPushButton*>()->isEnabled());
}

TEST_F(StatusScreensTest, CancellingTheVersionsStopsTheReceiver)
{
    receiver->AddFault(testing::ParsedRule("drop on 4A count 2"));
    CVersion version(&command);
    bool isClicked = false;
    QTimer hand;
    QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
        auto* const strip = version.findChild<BusyStrip*>();
        if (strip != nullptr && strip->isVisible() && !std::exchange(isClicked, true)) {
            QTest::mouseClick(strip->CancelButton(), Qt::LeftButton);
        }
    });
    hand.start(10);
    version.show();
    EXPECT_TRUE(isClicked);
    const auto requests = receiver->Requests();
    EXPECT_TRUE(std::any_of(requests.begin(), requests.end(), [](const auto& request) {
        return request.size() == 15 && request[2] == 0x5A;
    })) << "it goes on sending what nobody waits for";
    EXPECT_EQ(version.findChild<QTableWidget*>()->rowCount(), 0) << "half of a receiver";
    EXPECT_EQ(version.Update(), 1) << "and can be asked again";
}

/// Counts what is painted below a window.
class PaintCount final : public QObject
{
public:
    explicit PaintCount(QWidget& window)
    {
        for (QWidget* widget : window.findChildren<QWidget*>()) {
            widget->installEventFilter(this);
        }
    }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;
};

TEST(StatusPage, PaintsOnlyWhatChanged)
{
    Receiver receiver = testing::KnownReceiver();
    StatusHistory history;
    history.Add({99s, 8, 1.8});
    const Clock::UtcTime utc = std::chrono::sys_days(2026y / 3 / 19);
    StatusPage page;
    page.resize(480, 640);
    const auto settle = [] { // what is to be laid out and painted is posted
        for (int i = 0; i < 20; ++i) {
            QCoreApplication::processEvents();
        }
    };
    page.Show(receiver, history, {100s, utc});
    page.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&page, 60000));
    settle();
    const auto paintedBy = [&](Clock::Duration now) {
        PaintCount paint(page);
        page.Show(receiver, history, {now, utc});
        settle();
        return paint.count;
    };
    EXPECT_EQ(paintedBy(100250ms), 0) << "nothing is different";
    EXPECT_GT(paintedBy(103s), 0) << "the age";
    EXPECT_EQ(paintedBy(103250ms), 0);
    history.Add({104s, 9, 1.7});
    EXPECT_GT(paintedBy(103250ms), 0) << "the graph";
    EXPECT_GT(paintedBy(120s), 0) << "the graph has moved";
    receiver.status->value.batteryPercent = 63;
    EXPECT_GT(paintedBy(120s), 0);
}

/// A receiver as the status shows it with its longest words, and the versions.
TEST_F(StatusScreensTest, CutNothingOffAndStandRandomHands)
{
    Receiver told = testing::KnownReceiver();
    told.position->value.fixKind = 3;
    told.position->value.satellitesUsed = 24;
    told.position->value.position = {0.61, 2.42, 1234.567};
    told.position->value.pdop = 12.3F;
    told.status->value.batteryPercent = 100;
    told.trend = BatteryTrend{-12.3, 99h};
    for (const auto& [link, now] :
         {std::pair{LinkState::Connected, 100s}, {LinkState::Lost, 300s}}) {
        told.link = link;
        testing::TryScreen([&told, now = now] {
            auto page = std::make_unique<StatusPage>();
            page->Show(told, {}, {now});
            return page;
        });
    }
    testing::TryScreen([this] { return std::make_unique<CVersion>(&command); });
}

} // namespace
} // namespace fieldcore
