// The live sky plot in front of simulated receivers, good ones and bad ones.

#include "ui/planning/SkyPlotDlg.h"

#include "core/link/Command.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/Degrees.h"
#include "core/platform/FastClock.h"
#include "core/resources/StringTable.h"
#include "simulator/Simulator.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ProofSize.h"
#include "tests/ui/controls/Pictures.h"
#include "tests/ui/planning/PlanScreen.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/Theme.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ConstellationBar.h"
#include "ui/planning/LiveSkyView.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cmath>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

/// Moves only by hand; pauses that are counted on it are over at once.
class HandClock final : public Clock
{
public:
    [[nodiscard]] Duration Steady() const override { return m_steady; }
    [[nodiscard]] UtcTime Utc() const override { return UtcTime(m_steady.load()); }
    [[nodiscard]] bool SetUtc(UtcTime /*time*/) override { return false; }
    [[nodiscard]] Duration RealTime(Duration duration) const override { return duration / 100; }
    void Advance(Duration duration) { m_steady = m_steady.load() + duration; }

private:
    std::atomic<Duration> m_steady{};
};

class SkyPlotTest : public ::testing::Test
{
protected:
    SkyPlotTest() { m_command.SetHost(m_host); }

    /// @param scenario  a shipped one
    void Connect(const std::string& scenario, std::chrono::seconds timeout = 200s)
    {
        std::string error;
        const auto loaded = simulator::LoadScenario(scenario, error);
        ASSERT_TRUE(loaded) << error;
        m_simulator = std::make_unique<simulator::Simulator>(*loaded, m_fast);
        ASSERT_TRUE(m_simulator->Start(error)) << error;
        PortSettings settings;
        settings.replyTimeout = timeout;
        ASSERT_EQ(m_command.OpenPort(m_simulator->PortPath(), settings), 1);
    }
    void Fault(const std::string& text)
    {
        simulator::FaultRule rule;
        std::string error;
        ASSERT_TRUE(simulator::ParseFaultRule(text, rule, error)) << error;
        m_simulator->AddFault(rule);
    }
    std::unique_ptr<CSkyPlot> Open(QSize size = {480, 640})
    {
        auto dialog = std::make_unique<CSkyPlot>(
            &m_command, 0, CSkyPlot::Surroundings{&m_reg, &m_clock, m_folder.Path()});
        dialog->resize(size);
        dialog->show();
        return dialog;
    }
    template <typename Widget>
    static Widget* Find(const CSkyPlot& dialog, int id)
    {
        return qobject_cast<Widget*>(Dialog::FindControl(&dialog, id));
    }
    static QString Words(const CSkyPlot& dialog, int id)
    {
        return Find<QLabel>(dialog, id)->text();
    }
    static bool HasReading(const CSkyPlot& dialog)
    {
        return Words(dialog, CSkyPlot::kAge) != UiText(text::kSkyAgeUnknown);
    }
    static int Rows(const CSkyPlot& dialog)
    {
        return Find<QTableView>(dialog, CSkyPlot::kList)->model()->rowCount();
    }
    static QString Cell(const CSkyPlot& dialog, int row, int column)
    {
        const QAbstractItemModel& model = *Find<QTableView>(dialog, CSkyPlot::kList)->model();
        return model.index(row, column).data().toString();
    }
    static void ClickConstellation(const CSkyPlot& dialog, std::optional<Constellation> which)
    {
        auto* const bar = Find<ConstellationBar>(dialog, CSkyPlot::kConstellations);
        QTest::mouseClick(bar->Button(which), Qt::LeftButton);
    }

    TemporaryFolder m_folder;
    SettingsRoots m_roots{testing::FoldersBelow(m_folder.Path())};
    HostReg m_reg{m_roots};
    HandClock m_clock;
    FastClock m_fast{100.0};
    QtHost m_host{QtHost::Options{}};
    std::unique_ptr<simulator::Simulator> m_simulator;
    CCommand m_command{CCommand::Surroundings{nullptr, &m_fast, nullptr, {}}};
};

TEST_F(SkyPlotTest, ShowsWhatTheReceiverSees)
{
    Connect("still-sky");
    const auto dialog = Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(*dialog); }));
    EXPECT_EQ(Words(*dialog, CSkyPlot::kAge), QStringLiteral("0秒前に受信"));
    EXPECT_EQ(Words(*dialog, CSkyPlot::kCounts), QStringLiteral("使用14　追尾14　可視16"));
    ASSERT_EQ(Rows(*dialog), 16);
    // G5 of the scenario: azimuth 118, elevation 37, 45.25 and 39.00 dB-Hz.
    const QStringList expected{QStringLiteral("G5"),   QStringLiteral("118°"),
                               QStringLiteral("37°"),  QStringLiteral("使用"),
                               QStringLiteral("45.2"), QStringLiteral("39.0"),
                               QStringLiteral("--")};
    for (int column = 0; column < expected.size(); ++column) {
        EXPECT_EQ(Cell(*dialog, 1, column), expected[column]) << column;
    }
    // On the disc it stands to the east and a little south, 53 of 90 degrees out of the middle.
    auto* const sky = Find<LiveSkyView>(*dialog, CSkyPlot::kSky);
    const QPointF centre(std::round(sky->width() / 2.0), std::round(sky->height() / 2.0));
    const QPointF g5 = sky->PointOf(1) - centre;
    const QPointF g2 = sky->PointOf(0) - centre; // azimuth 41, elevation 63
    EXPECT_NEAR(std::hypot(g5.x(), g5.y()) / std::hypot(g2.x(), g2.y()), 53.0 / 27.0, 0.01);
    EXPECT_NEAR(DegreesOf(std::atan2(g5.x(), -g5.y())), 118.0, 0.5);

    ClickConstellation(*dialog, Constellation::Glonass);
    EXPECT_EQ(Words(*dialog, CSkyPlot::kCounts), QStringLiteral("使用3　追尾3　可視4"));
    ASSERT_EQ(Rows(*dialog), 4);
    EXPECT_EQ(Cell(*dialog, 3, 0), QStringLiteral("R19"));
    EXPECT_EQ(Cell(*dialog, 3, 3), QStringLiteral("可視"));
    EXPECT_EQ(Cell(*dialog, 3, 4), QStringLiteral("--")) << "no signal is not 0";
}

TEST_F(SkyPlotTest, SortsChoosesAndRemembers)
{
    Connect("still-sky");
    {
        const auto dialog = Open();
        ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(*dialog); }));
        ClickConstellation(*dialog, Constellation::Gps);
        QTest::mouseClick(Find<QPushButton>(*dialog, CSkyPlot::kShowList), Qt::LeftButton);
        auto* const list = Find<QTableView>(*dialog, CSkyPlot::kList);
        ASSERT_TRUE(list->isVisible());
        EXPECT_GE(list->rowHeight(0), 44);
        // By elevation: 4 comes before 15, although "15" comes before "4".
        const QHeaderView& header = *list->horizontalHeader();
        QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(header.sectionViewportPosition(2) + 20, 20));
        EXPECT_EQ(Cell(*dialog, 0, 2), QStringLiteral("4°"));
        EXPECT_EQ(Cell(*dialog, 1, 2), QStringLiteral("15°"));
        EXPECT_EQ(Cell(*dialog, 8, 2), QStringLiteral("71°"));

        auto* const sky = Find<LiveSkyView>(*dialog, CSkyPlot::kSky);
        QTest::mouseClick(sky, Qt::LeftButton, Qt::NoModifier, sky->PointOf(2).toPoint());
        EXPECT_EQ(list->currentIndex().row(), 8) << "G12 is the third by name";
        const std::size_t asked = m_simulator->RequestCount();
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_simulator->RequestCount() >= asked + 6; }));
        EXPECT_EQ(list->currentIndex().row(), 8) << "still, two rounds later";
        QTest::keyClick(sky, Qt::Key_Right);
        EXPECT_EQ(sky->Chosen(), 3);
        EXPECT_EQ(Cell(*dialog, list->currentIndex().row(), 0), QStringLiteral("G13"));
    }
    const auto again = Open();
    EXPECT_TRUE(Find<QTableView>(*again, CSkyPlot::kList)->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(*again); }));
    EXPECT_EQ(Rows(*again), 9);
}

TEST_F(SkyPlotTest, TellsOnceThatItsSettingsCouldNotBeStored)
{
    const auto dialog = Open();
    int told = 0;
    QTimer reader; // closes what is said
    QObject::connect(&reader, &QTimer::timeout, &reader, [&told] {
        if (QWidget* const message = QApplication::activeModalWidget()) {
            ++told;
            message->close();
        }
    });
    reader.start(1);
    const SettingsBatch other(m_reg.Store()); // whose writer has not finished
    QTest::mouseClick(Find<QPushButton>(*dialog, CSkyPlot::kShowList), Qt::LeftButton);
    QTest::mouseClick(Find<QPushButton>(*dialog, CSkyPlot::kShowBars), Qt::LeftButton);
    EXPECT_EQ(told, 1);
}

TEST_F(SkyPlotTest, AsksOnlyWhileItIsSeen)
{
    Connect("still-sky");
    const auto dialog = Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_simulator->RequestCount() >= 9; }));
    dialog->hide();
    const std::size_t asked = m_simulator->RequestCount();
    QTest::qWait(200); // ten of its pauses
    EXPECT_EQ(m_simulator->RequestCount(), asked);
    dialog->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_simulator->RequestCount() > asked; }));
}

TEST_F(SkyPlotTest, SaysWhatIsWrongAndKeepsTheLastSky)
{
    struct Row
    {
        const char* fault; ///< empty: the cable is pulled out
        int words;         ///< 0: what the garbage looks like is a matter of chance
    };
    const Row rows[] = {
        {"drop on 16", text::kSkySilent},
        {"garbage 300 on 16", 0},
        {"wrong-type on 16", text::kSkyDamaged},
        {"", text::kSkyLinkLost},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        m_command.ClosePort();
        Connect("still-sky");
        const auto dialog = Open();
        ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(*dialog); }));
        EXPECT_FALSE(Find<QLabel>(*dialog, CSkyPlot::kProblem)->isVisible());
        if (row.words == text::kSkySilent) {
            m_command.SetReplyTimeout(5s);
        }
        if (*row.fault == '\0') {
            m_simulator->HangUp();
        } else {
            Fault(row.fault);
        }
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return Find<QLabel>(*dialog, CSkyPlot::kProblem)->isVisible(); }, 20000));
        if (row.words != 0) {
            EXPECT_EQ(Words(*dialog, CSkyPlot::kProblem), UiText(row.words));
        }
        m_clock.Advance(60s);
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return Words(*dialog, CSkyPlot::kAge).contains(QStringLiteral("古い")); }));
        EXPECT_EQ(Rows(*dialog), 16);
        EXPECT_FALSE(dialog->grab().isNull());
    }
}

TEST_F(SkyPlotTest, WorksWithoutAReceiver)
{
    const auto dialog = Open();
    EXPECT_EQ(Words(*dialog, CSkyPlot::kCounts), UiText(text::kSkyCountsUnknown));
    QTest::mouseClick(Find<QPushButton>(*dialog, CSkyPlot::kShowList), Qt::LeftButton);
    ClickConstellation(*dialog, Constellation::Sbas);
    EXPECT_EQ(Rows(*dialog), 0);
    CSkyPlot none(nullptr, 1, CSkyPlot::Surroundings{&m_reg, nullptr, m_folder.Path()});
    none.show();
    QTest::qWait(20);
    for (const int answer : {text::kButtonCancel, text::kEndProgram}) {
        testing::Next(none, [answer](QWidget& question) { testing::Click(question, answer); });
        QTest::keyClick(&none, Qt::Key_Escape);
        EXPECT_EQ(none.isVisible(), answer == text::kButtonCancel) << "it is the program";
    }
}

TEST_F(SkyPlotTest, SurvivesAThousandRandomEvents)
{
    Connect("lark", 20s);
    ASSERT_EQ(AlmanacStore(m_folder.Path()).Update(m_command), AlmanacResult::Done);
    Fault("corrupt every 5");
    Fault("garbage 40 every 7");
    Fault("drop every 23");
    const auto dialog = Open();
    std::mt19937 random(testing::Seed()); // the same events every time
    const auto pick = [&](int below) {
        return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    const int keys[] = {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Left,  Qt::Key_Right,
                        Qt::Key_Up,  Qt::Key_Down,    Qt::Key_Space, Qt::Key_Home,
                        Qt::Key_End, Qt::Key_PageDown};
    const int most = testing::ProofSize("FIELDCORE_HANDS", 1000);
    testing::Measured(most, "events");
    for (int i = 0; i < most; ++i) {
        const QList<QWidget*> widgets = dialog->findChildren<QWidget*>();
        QWidget* const widget = widgets[pick(static_cast<int>(widgets.size()))];
        // Those leave the dialog, or open a popup that waits.
        const bool isMenu = widget->inherits("QMenu") || widget->inherits("fieldcore::BarButton");
        switch (pick(6)) {
        case 0:
        case 1:
            if (widget->isVisible() && widget->width() > 0 && !isMenu) {
                QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier,
                                  {pick(widget->width()), pick(std::max(widget->height(), 1))});
            }
            break;
        case 2:
        case 3: {
            QWidget* const focus = dialog->focusWidget();
            if (focus != nullptr && !focus->inherits("fieldcore::BarButton")) {
                QTest::keyClick(focus, static_cast<Qt::Key>(keys[pick(10)]));
            }
            break;
        }
        case 4:
            dialog->resize(320 + pick(1000), 400 + pick(500));
            break;
        default:
            m_clock.Advance(std::chrono::seconds(pick(8)));
            QCoreApplication::processEvents();
            break;
        }
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(*dialog); }, 20000));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(m_command.IsBusy(), false);
}

/// What must hold on every screen: no control is cut off, and all are large enough.
void ExpectFits(const CSkyPlot& dialog)
{
    for (const QPushButton* button : dialog.findChildren<QPushButton*>()) {
        if (button->isVisible()) {
            SCOPED_TRACE(button->text().toStdString());
            EXPECT_GE(button->height(), 44);
            EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
            const QRect place(button->mapTo(&dialog, QPoint(0, 0)), button->size());
            EXPECT_TRUE(QRect(0, 0, dialog.width(), INT_MAX).contains(place)) << "it can scroll";
        }
    }
}

TEST_F(SkyPlotTest, FitsSmallAndLargeScreens)
{
    const QFont font = QApplication::font();
    Connect("lark");
    ASSERT_EQ(AlmanacStore(m_folder.Path()).Update(m_command), AlmanacResult::Done);
    for (const bool isLarge : {false, true}) {
        for (const Theme::Kind theme : {Theme::Kind::Daylight, Theme::Kind::Dark}) {
            Theme::Use(theme);
            QFont used = font;
            used.setPixelSize(isLarge ? font.pixelSize() * 13 / 10 : font.pixelSize());
            QApplication::setFont(used);
            const QString name = QStringLiteral("%1-%2").arg(
                theme == Theme::Kind::Dark ? QStringLiteral("dark") : QStringLiteral("day"),
                isLarge ? QStringLiteral("large") : QStringLiteral("normal"));
            for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
                const QString file = QStringLiteral("sky-%1-%2-").arg(size.width()).arg(name);
                SCOPED_TRACE(file.toStdString());
                const auto dialog = Open(size);
                EXPECT_EQ(dialog->size(), size) << "it takes more than there is";
                QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
                ExpectFits(*dialog);
                KeepPicture(*dialog, file + QStringLiteral("empty"));
                ASSERT_TRUE(QTest::qWaitFor([&] { return HasReading(*dialog); }));
                ExpectFits(*dialog);
                auto* const sky = Find<LiveSkyView>(*dialog, CSkyPlot::kSky);
                sky->setFocus();
                QTest::keyClick(sky, Qt::Key_Down);
                QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
                KeepPicture(*dialog, file + QStringLiteral("good"));
                Find<QPushButton>(*dialog, CSkyPlot::kShowList)->click();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
                KeepPicture(*dialog, file + QStringLiteral("list"));
                m_simulator->HangUp();
                ASSERT_TRUE(QTest::qWaitFor(
                    [&] { return Find<QLabel>(*dialog, CSkyPlot::kProblem)->isVisible(); }));
                m_clock.Advance(3671s);
                Find<QPushButton>(*dialog, CSkyPlot::kShowBars)->click();
                ASSERT_TRUE(QTest::qWaitFor([&] {
                    return Words(*dialog, CSkyPlot::kAge).contains(QStringLiteral("古い"));
                }));
                ExpectFits(*dialog);
                EXPECT_TRUE(Words(*dialog, CSkyPlot::kAge).contains(QStringLiteral("61分前")));
                QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
                EXPECT_EQ(dialog->size(), size) << "the words of the fault take more";
                KeepPicture(*dialog, file + QStringLiteral("stale"));
                m_command.ClosePort();
                Connect("lark");
            }
        }
    }
    QApplication::setFont(font);
    Theme::Use(Theme::Kind::Daylight);
}

} // namespace
} // namespace fieldcore
