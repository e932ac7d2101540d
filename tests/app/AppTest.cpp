// The controller's window by itself: what it was started with, what it shows, what is chosen.

#include "app/HomePage.h"
#include "app/MainWindow.h"
#include "app/Options.h"
#include "app/StatusStrip.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/TouchStyle.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(AppOptions, AreReadOrRefused)
{
    struct Row
    {
        QStringList arguments;
        bool isGood;
    };
    const Row rows[] = {
        {{}, true},
        {{QStringLiteral("--port"), QStringLiteral("sim:pica"), QStringLiteral("--speed=20")},
         true},
        {{QStringLiteral("--theme"), QStringLiteral("dark")}, true},
        {{QStringLiteral("--theme"), QStringLiteral("pink")}, false},
        {{QStringLiteral("--speed=0")}, false},
        {{QStringLiteral("--speed=nan")}, false},
        {{QStringLiteral("--speed=fast")}, false},
        {{QStringLiteral("--prot"), QStringLiteral("COM1")}, false},
        {{QStringLiteral("COM1")}, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments.join(QLatin1Char(' ')).toStdString());
        const AppOptions options =
            ParseOptions(QStringList{QStringLiteral("fieldcore")} + row.arguments);
        EXPECT_EQ(options.fault.isEmpty(), row.isGood) << options.fault.toStdString();
    }
    const AppOptions options =
        ParseOptions({QStringLiteral("fieldcore"), QStringLiteral("-p"), QStringLiteral("COM3"),
                      QStringLiteral("--theme=system"), QStringLiteral("--q77")});
    EXPECT_EQ(options.port, QStringLiteral("COM3"));
    EXPECT_EQ(options.theme, Theme::Kind::System);
    EXPECT_EQ(options.speed, 1.0);
    EXPECT_TRUE(options.isQ77);
}

/// All that the strip says.
QString Words(const StatusStrip& strip)
{
    QStringList words;
    for (const QLabel* label : strip.findChildren<QLabel*>()) {
        if (label->isVisibleTo(&strip)) {
            words.append(label->text());
        }
    }
    return words.join(QLatin1Char('|'));
}

TEST(StatusStrip, TellsFreshFromStale)
{
    const QDateTime now(QDate(2026, 11, 21), QTime(3, 4, 5), Qt::UTC);
    ReceiverState state;
    state.link = ReceiverState::Link::Connected;
    state.receiver = QStringLiteral("Corvane VX1");
    state.receivedUtc = now.addSecs(-2);
    state.pdop = 1.84;
    state.batteryPercent = 0;
    StatusStrip strip;
    strip.Show(state, now);
    EXPECT_EQ(Words(strip), QStringLiteral("● 接続中|Corvane VX1|PDOP 1.8|12:04:05 JST|0 %"));

    strip.Show(state, now.addSecs(kStaleS));
    EXPECT_TRUE(Words(strip).contains(QStringLiteral("|最終受信 12:04:03|")))
        << Words(strip).toStdString();
    state.link = ReceiverState::Link::Lost;
    strip.Show(state, now);
    EXPECT_TRUE(Words(strip).startsWith(QStringLiteral("▲ 切断")));
    EXPECT_TRUE(Words(strip).contains(QStringLiteral("|最終受信 12:04:03|")));

    strip.Show({}, now);
    EXPECT_EQ(Words(strip), QStringLiteral("○ 未接続||PDOP --|12:04:05 JST|--"));
    state.simulator = QStringLiteral("pica");
    strip.Show(state, now);
    EXPECT_TRUE(Words(strip).contains(QStringLiteral("シミュレータに接続しています（pica）")));
}

TEST(MainWindow, SaysWhatWasChosen)
{
    MainWindow window;
    window.resize(480, 640);
    window.show();
    QSignalSpy chosen(&window, &MainWindow::Chosen);
    QStringList labels;
    for (CIconButton* button : window.findChildren<CIconButton*>()) {
        EXPECT_GE(button->height(), TouchStyle::kTarget);
        EXPECT_FALSE(button->accessibleName().isEmpty());
        QTest::mouseClick(button, Qt::LeftButton);
        labels.append(button->accessibleName());
    }
    ASSERT_EQ(chosen.count(), labels.size());
    EXPECT_GE(labels.size(), 6);
    EXPECT_EQ(chosen.at(static_cast<int>(labels.indexOf(QStringLiteral("観測計画")))).at(0).toInt(),
              MainWindow::kPlan);
}

TEST(MainWindow, StaysWhenItMayNotClose)
{
    MainWindow window;
    window.show();
    bool mayClose = false;
    window.SetMayClose([&mayClose] { return mayClose; });
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    mayClose = true;
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(window.isVisible());
}

TEST(HomePage, PutsItsButtonsIntoColumns)
{
    HomePage page;
    for (int id = 1; id <= 7; ++id) {
        page.AddButton(id, QStringLiteral("plan"), QString::number(id));
    }
    const auto lefts = [&page] {
        page.resize(page.sizeHint());
        page.show();
        QCoreApplication::processEvents();
        QSet<int> positions;
        for (const CIconButton* button : page.findChildren<CIconButton*>()) {
            positions.insert(button->x());
        }
        return positions.size();
    };
    EXPECT_EQ(lefts(), 3);
    page.Arrange(664, true);
    EXPECT_EQ(lefts(), 2);
    page.Arrange(200, true); // too low for two
    EXPECT_EQ(lefts(), 3);
}

} // namespace
} // namespace fieldcore
