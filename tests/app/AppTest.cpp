// The controller's window by itself: what it was started with, what it shows, what is chosen.

#include "app/MainWindow.h"
#include "app/Options.h"
#include "app/Overview.h"
#include "app/StatusStrip.h"
#include "core/equipment/StatusRows.h"
#include "tests/core/equipment/KnownReceiver.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/UiText.h"
#include "ui/equipment/StatusPage.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <initializer_list>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

AppOptions Typed(const char* words)
{
    return ParseArguments((QStringLiteral("fieldcore ") + QLatin1String(words))
                              .split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

TEST(AppOptions, AreReadOrRefused)
{
    for (const char* const bad : {"--theme pink", "--language de", "--language=", "--speed=0",
                                  "--speed=nan", "--speed=fast", "--prot COM1", "COM1"}) {
        EXPECT_FALSE(Typed(bad).fault.isEmpty()) << bad;
    }
    const AppOptions options = Typed("-p COM3 --theme=system --q77 --speed=20");
    EXPECT_TRUE(options.fault.isEmpty()) << options.fault.toStdString();
    EXPECT_EQ(options.port, QStringLiteral("COM3"));
    EXPECT_EQ(options.theme, Theme::Kind::System);
    EXPECT_EQ(options.speed, 20.0);
    EXPECT_TRUE(options.isQ77);
    EXPECT_EQ(Typed("").language, Language::Japanese);
    EXPECT_EQ(Typed("--language en").language, Language::English);
    qputenv(kLanguageVariable, "en");
    EXPECT_EQ(Typed("").language, Language::English);
    EXPECT_EQ(Typed("--language=ja").language, Language::Japanese) << "the option wins";
    qputenv(kLanguageVariable, "de");
    EXPECT_FALSE(Typed("").fault.isEmpty());
    qunsetenv(kLanguageVariable);
}

/// All that stands on a widget.
template <typename Label>
QStringList WordsOf(const QWidget& widget)
{
    QStringList words;
    for (const Label* label : widget.findChildren<Label*>()) {
        if (label->isVisibleTo(&widget)) {
            words.append(label->text());
        }
    }
    return words;
}

/// A state whose values came two seconds ago, at 03:04:03 UTC by the controller's clock.
HomeState KnownState()
{
    HomeState state;
    state.receiver = testing::KnownReceiver();
    state.receiver.powerSource.reset(); // its name stands where there is room
    state.view = {102s, std::chrono::sys_days(2026y / 11 / 21) + 3h + 4min + 5s};
    return state;
}

TEST(Screens, TellFreshFromStaleAndGoodFromBad)
{
    StatusStrip strip;
    StatusPage page;
    const auto onPage = [&page](const HomeState& state) {
        page.Show(state.receiver, {}, state.view);
        return WordsOf<QLabel>(page).join(QLatin1Char('|'));
    };
    const auto words = [&strip](const HomeState& state) {
        strip.Show(state);
        return WordsOf<QLabel>(strip).join(QLatin1Char('|'));
    };
    HomeState state = KnownState();
    EXPECT_EQ(words(state),
              QStringLiteral("● 接続済み|FIX 16衛星|PDOP 2.0|Corvane VX1|09:00:02 JST|80 %"))
        << "the receiver's time, not the controller's";
    EXPECT_FALSE(onPage(state).contains(QStringLiteral("最終受信")));
    state.view.limits = ObservingLimits{15, 5, 1.5};
    const QString broken = QStringLiteral("▲ 観測条件外：PDOP 2.0（制限 1.5）");
    EXPECT_TRUE(onPage(state).contains(broken) && words(state).contains(broken));
    state.view.now = 110s;
    EXPECT_TRUE(onPage(state).contains(QStringLiteral("最終受信 12:03:55")));
    EXPECT_TRUE(words(state).contains(QStringLiteral("|最終受信 12:03:55|")));
    state = KnownState();
    state.receiver.link = LinkState::Lost;
    EXPECT_TRUE(words(state).startsWith(QStringLiteral("▲ 切断")));
    EXPECT_TRUE(words(state).contains(QStringLiteral("|最終受信 12:04:03|")));
    state.simulator = QStringLiteral("pica");
    EXPECT_TRUE(words(state).contains(QStringLiteral("シミュレータ（pica）です。")));
}

/// One word for each state of the link, on lamp, title and pages; the offer only without a
/// receiver.
TEST(Screens, AgreeOnTheLink)
{
    struct Row
    {
        LinkState link;
        const char* word;
        bool hasValues;
        bool isOffered;
    };
    const Row rows[] = {
        {LinkState::NotConnected, "○ 未接続", false, true},
        {LinkState::Connecting, "◐ 接続処理中", false, false},
        {LinkState::Connected, "● 接続済み", true, false},
        {LinkState::Lost, "▲ 切断", true, false},
        {LinkState::Reconnecting, "▲ 切断", true, false},
        {LinkState::Failed, "× 接続失敗", false, true},
        {LinkState::Refused, "× 接続不可", false, true},
    };
    for (const Row& row : rows) {
        const QString word = QString::fromUtf8(row.word);
        SCOPED_TRACE(row.word);
        HomeState state = KnownState();
        state.receiver.link = row.link;
        state.simulator = QStringLiteral("lark");
        MainWindow window;
        window.ShowState(state);
        EXPECT_TRUE(window.windowTitle().endsWith(word)) << window.windowTitle().toStdString();
        StatusPage page;
        page.Show(state.receiver, {}, state.view);
        EXPECT_EQ(WordsOf<QLabel>(page).contains(word), row.link != LinkState::Connected);
        for (const int width : {480, 1280}) {
            StatusStrip head(nullptr, StatusStrip::Place::Page);
            head.OfferConnection();
            head.resize(width, 64);
            head.Show(state);
            head.show();
            QCoreApplication::processEvents();
            const QStringList words = WordsOf<QLabel>(head);
            EXPECT_TRUE(words.value(0) == word ||
                        (row.link == LinkState::Connected && word.startsWith(words.value(0))))
                << words.value(0).toStdString();
            EXPECT_EQ(words.contains(QStringLiteral("PDOP 2.0")), row.hasValues);
            EXPECT_EQ(WordsOf<QPushButton>(head).size(), row.isOffered ? 1 : 0);
        }
    }
}

/// Strip, overview and status page show the rows of the table, and the bar the band.
TEST(Screens, ShowWhatTheFieldsSay)
{
    const auto expect = [](const HomeState& state, const char* pdop, const QString& battery,
                           const char* time, int barPercent) {
        SCOPED_TRACE(battery.toStdString() + " " + time);
        StatusStrip strip;
        Overview overview;
        StatusPage page;
        strip.Show(state);
        overview.Show(state);
        page.Show(state.receiver, {}, state.view);
        const QStringList onStrip = WordsOf<QLabel>(strip);
        EXPECT_TRUE(onStrip.contains(QStringLiteral("PDOP ") + QLatin1String(pdop)));
        EXPECT_TRUE(onStrip.contains(QString::fromUtf8(time)));
        EXPECT_TRUE(onStrip.contains(battery));
        EXPECT_TRUE(WordsOf<QLabel>(overview).contains(QLatin1String(pdop)));
        for (const QWidget* screen : std::initializer_list<QWidget*>{&overview, &page}) {
            const auto* const bar = screen->findChild<CTextProgressCtrl*>();
            EXPECT_TRUE(bar->text().startsWith(battery)) << bar->text().toStdString();
            EXPECT_EQ(bar->GetPos(), barPercent);
        }
        const QStringList shown = WordsOf<QLabel>(page);
        for (const StatusRow& field : StatusRowsOf(state.receiver, state.view)) {
            const bool isElsewhere = field.field->textId == text::kStatusBattery ||
                                     field.field->textId == text::kStatusFix;
            EXPECT_TRUE(isElsewhere || shown.contains(ToQt(field.value))) << field.field->key;
        }
    };
    HomeState state = KnownState();
    expect(state, "2.0", QStringLiteral("80 %"), "09:00:02 JST", 90);
    state.receiver.isSynchronised = false; // the offset was refused
    expect(state, "-.- ", QStringLiteral("80 %"), "09:00 JST", 90);
    state.receiver = {}; // nothing was heard yet
    state.receiver.link = LinkState::Connected;
    expect(state, "-.- ", QStringLiteral("不明"), "端末時計 12:04:05", 0);
}

TEST(MainWindow, SaysWhatWasChosen)
{
    MainWindow window;
    window.show();
    QSignalSpy chosen(&window, &MainWindow::Chosen);
    QStringList labels;
    for (CIconButton* button : window.findChildren<CIconButton*>()) {
        QTest::mouseClick(button, Qt::LeftButton);
        labels.append(button->accessibleName());
    }
    ASSERT_EQ(chosen.count(), labels.size());
    EXPECT_EQ(chosen.at(static_cast<int>(labels.indexOf(QStringLiteral("観測計画")))).at(0).toInt(),
              text::kAppPlan);
    EXPECT_TRUE(window.close()) << "whether it may is asked with the session";
}

} // namespace
} // namespace fieldcore
