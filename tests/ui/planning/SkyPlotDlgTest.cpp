// The live sky plot in front of simulated receivers, good ones and bad ones.

#include "ui/planning/SkyPlotDlg.h"

#include "core/planning/AlmanacStore.h"
#include "core/platform/Degrees.h"
#include "core/settings/HostReg.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/RandomHands.h"
#include "tests/ui/planning/PlanScreen.h"
#include "ui/planning/ConstellationBar.h"
#include "ui/planning/LiveSkyView.h"

#include <QHeaderView>
#include <QPushButton>
#include <QTableView>

#include <cmath>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

class SkyPlotTest : public ::testing::Test
{
protected:
    SkyPlotTest()
    {
        m_clock.runs = true;
        m_clock.speed = 100; // pauses are over at once
    }

    /// @param scenario  a shipped one
    void Connect(const std::string& scenario, std::chrono::seconds timeout = 200s)
    {
        m_dialog.reset();
        m_simulator =
            testing::Plugged(m_command, testing::ShippedScenario(scenario), m_clock, timeout);
        m_command.SetReplyTimeout(timeout); // which another row may have made short
    }
    void Open()
    {
        m_dialog.reset();
        m_dialog = std::make_unique<CSkyPlot>(&m_command, 0);
        m_dialog->resize(480, 640);
        m_dialog->show();
    }
    /// The same, and waits for what the receiver sees.
    void OpenAndRead()
    {
        Open();
        ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(); }, 20000));
    }
    template <typename Widget>
    [[nodiscard]] Widget& Find(int id) const
    {
        return dynamic_cast<Widget&>(*Dialog::FindControl(m_dialog.get(), id));
    }
    [[nodiscard]] QString Words(int id) const { return Find<QLabel>(id).text(); }
    [[nodiscard]] bool HasReading() const
    {
        return Words(CSkyPlot::kAge) != UiText(text::kSkyAgeUnknown);
    }
    [[nodiscard]] QTableView& List() const { return Find<QTableView>(CSkyPlot::kList); }
    [[nodiscard]] LiveSkyView& Sky() const { return Find<LiveSkyView>(CSkyPlot::kSky); }
    [[nodiscard]] int Rows() const { return List().model()->rowCount(); }
    [[nodiscard]] QString Cell(int row, int column) const
    {
        return List().model()->index(row, column).data().toString();
    }
    void ClickConstellation(Constellation which) const
    {
        auto& bar = Find<ConstellationBar>(CSkyPlot::kConstellations);
        QTest::mouseClick(bar.Button(which), Qt::LeftButton);
    }
    TemporaryFolder m_folder;
    SettingsRoots m_roots{testing::FoldersBelow(m_folder.Path())};
    testing::HandClock m_clock;
    QtHost m_host{QtHost::Options{}};
    std::unique_ptr<simulator::Simulator> m_simulator;
    CCommand m_command{{.host = &m_host, .clock = &m_clock, .roots = &m_roots}};
    std::unique_ptr<CSkyPlot> m_dialog;
};

TEST_F(SkyPlotTest, ShowsWhatTheReceiverSees)
{
    Connect("still-sky");
    ASSERT_NO_FATAL_FAILURE(OpenAndRead());
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return Words(CSkyPlot::kAge).endsWith(QStringLiteral("秒前に受信")); }));
    EXPECT_EQ(Words(CSkyPlot::kCounts), QStringLiteral("使用14　追尾14　可視16"));
    ASSERT_EQ(Rows(), 16);
    // G5 of the scenario: azimuth 118, elevation 37, 45.25 and 39.00 dB-Hz.
    QStringList told;
    for (int column = 0; column < 7; ++column) {
        told += Cell(1, column);
    }
    EXPECT_EQ(told.join(QLatin1Char(' ')), QStringLiteral("G5 118° 37° 使用 45.2 39.0 --"));
    // On the disc it stands to the east and a little south, 53 of 90 degrees out of the middle.
    const QPointF centre(std::round(Sky().width() / 2.0), std::round(Sky().height() / 2.0));
    const QPointF g5 = Sky().PointOf(1) - centre;
    const QPointF g2 = Sky().PointOf(0) - centre; // azimuth 41, elevation 63
    EXPECT_NEAR(std::hypot(g5.x(), g5.y()) / std::hypot(g2.x(), g2.y()), 53.0 / 27.0, 0.01);
    EXPECT_NEAR(DegreesOf(std::atan2(g5.x(), -g5.y())), 118.0, 0.5);

    ClickConstellation(Constellation::Glonass);
    EXPECT_EQ(Words(CSkyPlot::kCounts), QStringLiteral("使用3　追尾3　可視4"));
    ASSERT_EQ(Rows(), 4);
    EXPECT_EQ(Cell(3, 0), QStringLiteral("R19"));
    EXPECT_EQ(Cell(3, 3), QStringLiteral("可視"));
    EXPECT_EQ(Cell(3, 4), QStringLiteral("--")) << "no signal is not 0";
}

TEST_F(SkyPlotTest, SortsChoosesAndRemembers)
{
    Connect("still-sky");
    ASSERT_NO_FATAL_FAILURE(OpenAndRead());
    ClickConstellation(Constellation::Gps);
    QTest::mouseClick(&Find<QPushButton>(CSkyPlot::kShowList), Qt::LeftButton);
    ASSERT_TRUE(List().isVisible());
    EXPECT_GE(List().rowHeight(0), 44);
    // By elevation: 4 comes before 15, although "15" comes before "4".
    const QHeaderView& header = *List().horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(header.sectionViewportPosition(2) + 20, 20));
    EXPECT_EQ(Cell(0, 2), QStringLiteral("4°"));
    EXPECT_EQ(Cell(1, 2), QStringLiteral("15°"));
    EXPECT_EQ(Cell(8, 2), QStringLiteral("71°"));

    QTest::mouseClick(&Sky(), Qt::LeftButton, Qt::NoModifier, Sky().PointOf(2).toPoint());
    EXPECT_EQ(List().currentIndex().row(), 8) << "G12 is the third by name";
    const std::size_t asked = m_simulator->RequestCount();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_simulator->RequestCount() >= asked + 6; }));
    EXPECT_EQ(List().currentIndex().row(), 8) << "still, two rounds later";
    QTest::keyClick(&Sky(), Qt::Key_Right);
    EXPECT_EQ(Sky().Chosen(), 3);
    EXPECT_EQ(Cell(List().currentIndex().row(), 0), QStringLiteral("G13"));

    ASSERT_NO_FATAL_FAILURE(OpenAndRead());
    EXPECT_TRUE(List().isVisible());
    EXPECT_EQ(Rows(), 9);
    m_dialog.reset();
    const HostReg reg(m_roots);
    EXPECT_EQ(reg.WriteNumber(L"GPS\\SkyPlot", L"Constellation", 6), 1) << "beyond the last";
    EXPECT_EQ(reg.WriteNumber(L"GPS\\SkyPlot", L"View", 2), 1);
    ASSERT_NO_FATAL_FAILURE(OpenAndRead());
    EXPECT_FALSE(List().isVisible());
    EXPECT_EQ(Rows(), 16);
}

TEST_F(SkyPlotTest, AsksOnlyWhileItIsSeen)
{
    Connect("still-sky");
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_simulator->RequestCount() >= 9; }));
    m_dialog->hide();
    const std::size_t asked = m_simulator->RequestCount();
    QTest::qWait(200); // ten of its pauses
    EXPECT_EQ(m_simulator->RequestCount(), asked);
    m_dialog->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_simulator->RequestCount() > asked; }));
}

TEST_F(SkyPlotTest, WorksWithoutAReceiver)
{
    Open();
    EXPECT_EQ(Words(CSkyPlot::kCounts), UiText(text::kSkyCountsUnknown));
    QTest::mouseClick(&Find<QPushButton>(CSkyPlot::kShowList), Qt::LeftButton);
    ClickConstellation(Constellation::Sbas);
    EXPECT_EQ(Rows(), 0);
    CSkyPlot none(nullptr, 1);
    none.show();
    QTest::qWait(20);
    for (const int answer : {text::kButtonCancel, text::kEndProgram}) {
        testing::Next(none, [answer](QWidget& question) { testing::Click(question, answer); });
        QTest::keyClick(&none, Qt::Key_Escape);
        EXPECT_EQ(none.isVisible(), answer == text::kButtonCancel) << "it is the program";
    }
}

TEST_F(SkyPlotTest, StandsRandomHandsAndABadReceiver)
{
    Connect("lark", 20s);
    ASSERT_EQ(AlmanacStore(m_folder.Path()).Update(m_command), AlmanacResult::Done);
    for (const char* const fault : {"corrupt every 5", "garbage 40 every 7", "drop every 23"}) {
        m_simulator->AddFault(testing::ParsedRule(fault));
    }
    Open();
    testing::RandomHands hands;
    while (!hands.IsTired()) {
        hands.Play(*m_dialog, 10);
        m_dialog->resize(320 + hands.Below(1000), 400 + hands.Below(500));
        m_dialog->show();
        m_clock.Advance(std::chrono::seconds(hands.Below(8)));
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(); }, 20000));
    EXPECT_FALSE(m_command.IsBusy());
}

TEST_F(SkyPlotTest, SaysWhatIsWrong)
{
    Connect("lark");
    ASSERT_NO_FATAL_FAILURE(OpenAndRead());
    const auto& problem = Find<QLabel>(CSkyPlot::kProblem);
    EXPECT_FALSE(problem.isVisible());
    m_simulator->AddFault(testing::ParsedRule("wrong-type on 16"));
    // On a busy machine the receiver may seem silent first.
    const auto isTold = [&] {
        return problem.isVisible() && problem.text() == UiText(text::kSkyDamaged);
    };
    ASSERT_TRUE(QTest::qWaitFor(isTold, 60000)) << problem.text().toStdString();
    m_clock.Advance(3671s);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return Words(CSkyPlot::kAge).contains(QStringLiteral("61分前")); }));
    EXPECT_TRUE(Words(CSkyPlot::kAge).contains(QStringLiteral("古い")));
    EXPECT_GT(Rows(), 4) << "the last sky is gone";
    EXPECT_EQ(m_dialog->size(), QSize(480, 640)) << "it takes more than there is";
}

} // namespace
} // namespace fieldcore
