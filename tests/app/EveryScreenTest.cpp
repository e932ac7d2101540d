// Every screen in both languages and with larger letters: nothing is cut, everything can be reached
// and is named for who cannot see it, and what is written stands out from its ground.

#include "app/MainWindow.h"
#include "app/ScreenPictures.h"
#include "app/Session.h"
#include "core/resources/StringTable.h"
#include "tests/app/Started.h"
#include "tests/core/equipment/KnownReceiver.h"
#include "tests/ui/controls/ScreenTrial.h"
#include "ui/controls/FileChoice.h"
#include "ui/controls/GraphicsBase.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/StepButton.h"
#include "ui/controls/TableDlg.h"
#include "ui/equipment/TransferPanel.h"
#include "ui/link/ConnectProgressDlg.h"
#include "ui/planning/DateDlg.h"
#include "ui/planning/PlanDet.h"
#include "ui/planning/PlanGraphView.h"
#include "ui/planning/PlanPos.h"
#include "ui/planning/PlanSet.h"
#include "ui/planning/SiteDlg.h"
#include "ui/planning/SurveyPlan.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QButtonGroup>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fieldcore {
namespace {

std::string Describe(const QWidget& widget)
{
    const auto* const label = qobject_cast<const QLabel*>(&widget);
    const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
    const QString words = label != nullptr    ? label->text()
                          : button != nullptr ? button->text()
                                              : widget.accessibleName();
    return std::string(widget.metaObject()->className()) + " \"" + words.toStdString() + "\"";
}

template <typename... Kinds>
bool IsOneOf(const QWidget& widget)
{
    return ((qobject_cast<const Kinds*>(&widget) != nullptr) || ...);
}

/// What a user does something with; not the parts of which a control is made.
bool IsControl(const QWidget& widget)
{
    const QWidget* const parent = widget.parentWidget();
    const bool isPart =
        parent != nullptr && (IsOneOf<QAbstractSpinBox, QComboBox, QTabBar>(*parent) ||
                              IsOneOf<QAbstractItemView>(*parent));
    return !isPart && !IsOneOf<QScrollBar, StepButton>(widget) &&
           (IsOneOf<QAbstractButton, QComboBox, QLineEdit, QAbstractSpinBox, QAbstractSlider,
                    QAbstractItemView, QPlainTextEdit, QTabBar>(widget) ||
            (IsOneOf<CGraphicsBase>(widget) && widget.focusPolicy() != Qt::NoFocus));
}

/// Keys do what it does, or the focus comes to it by other keys than Tab.
bool HasOtherKeys(const QWidget& widget)
{
    const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
    if (button == nullptr) {
        return false;
    }
    const bool isOneOfSeveral =
        button->autoExclusive() || (button->group() != nullptr && button->group()->exclusive());
    const QWidget* const above =
        button->parentWidget() != nullptr ? button->parentWidget()->parentWidget() : nullptr;
    return (isOneOfSeveral && !button->isChecked()) ||               // the arrows
           (above != nullptr && IsOneOf<QCalendarWidget>(*above)) || // Page Up and Page Down
           IsOneOf<TransferPanel>(*button->parentWidget());          // Esc
}

void ExpectAllReached(QWidget& window)
{
    window.activateWindow();
    QCoreApplication::processEvents();
    std::set<const QWidget*> reached;
    constexpr int kMost = 200;
    for (int i = 0; i < kMost; ++i) {
        QWidget* const focus = QApplication::focusWidget();
        if (focus != nullptr && !reached.insert(focus).second && i > 2) {
            break;
        }
        QTest::keyClick(focus != nullptr ? focus : &window, Qt::Key_Tab);
    }
    for (QWidget* const control : window.findChildren<QWidget*>()) {
        if (!control->isVisible() || control->window() != &window) {
            continue;
        }
        if (IsControl(*control)) {
            QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(control);
            EXPECT_TRUE(told != nullptr && !told->text(QAccessible::Name).isEmpty())
                << Describe(*control) << " has no name";
            const QWidget* const target =
                control->focusProxy() != nullptr ? control->focusProxy() : control;
            EXPECT_TRUE(!control->isEnabled() || reached.count(target) > 0 ||
                        HasOtherKeys(*control))
                << Describe(*control) << " cannot be reached by keys";
        }
        if (IsOneOf<CGraphicsBase>(*control)) {
            EXPECT_FALSE(control->accessibleName().isEmpty() ||
                         control->accessibleDescription().isEmpty())
                << Describe(*control) << " is not described";
        }
    }
}

double Luminance(QRgb colour)
{
    const auto linear = [](int part) {
        const double share = part / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
           0.0722 * linear(qBlue(colour));
}

double Contrast(QRgb one, QRgb other)
{
    const auto [low, high] = std::minmax({Luminance(one), Luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

/// Of what is written in a part of a picture: the colour that stands out most against the one that
/// there is most of.
double ContrastIn(const QImage& picture, const QRect& part)
{
    const QRect inside = part & picture.rect();
    std::map<QRgb, int> counts;
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            ++counts[picture.pixel(x, y)];
        }
    }
    if (counts.empty()) {
        return 21.0;
    }
    const QRgb ground = std::max_element(counts.begin(), counts.end(), [](auto& a, auto& b) {
                            return a.second < b.second;
                        })->first;
    double most = 1.0;
    for (const auto& [colour, count] : counts) {
        most = std::max(most, Contrast(ground, colour));
    }
    return most;
}

/// As large letters are defined for contrast: 18 pt, or 14 pt if bold.
bool IsLarge(const QFont& font)
{
    const int px = QFontInfo(font).pixelSize();
    return px >= 24 || (font.bold() && px >= 19);
}

/// The colour of a value that has grown old says so by being weaker.
double Wanted(const QWidget& widget)
{
    const bool isStale = widget.palette().color(QPalette::WindowText) == Theme::Current().stale;
    return isStale || IsLarge(widget.font()) ? 4.5 : 7.0;
}

void ExpectReadable(QWidget& window)
{
    const QImage picture = window.grab().toImage();
    const auto placeOf = [&window](const QWidget& widget, const QRect& part) {
        return QRect(widget.mapTo(&window, part.topLeft()), part.size()) &
               QRect(widget.mapTo(&window, QPoint()), widget.size());
    };
    for (const QWidget* const widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible() || !widget->isEnabled() || widget->window() != &window) {
            continue;
        }
        const bool isWhole = widget->visibleRegion().boundingRect().size() == widget->size();
        QRect part;
        if (const auto* const label = qobject_cast<const QLabel*>(widget)) {
            part = label->text().isEmpty() ? QRect() : label->contentsRect();
        } else if (const auto* const button = qobject_cast<const QAbstractButton*>(widget)) {
            constexpr int kEdge = 6;
            part = button->text().isEmpty() || !button->icon().isNull()
                       ? QRect()
                       : button->rect().adjusted(kEdge, kEdge, -kEdge, -kEdge);
        } else if (const auto* const view = qobject_cast<const QAbstractItemView*>(widget)) {
            const QAbstractItemModel* const model = view->model();
            for (int row = 0; model != nullptr && row < std::min(20, model->rowCount()); ++row) {
                const QModelIndex index = model->index(row, 0);
                const QRect cell = view->visualRect(index) & view->viewport()->rect();
                if (cell.height() > 20 && !index.data().toString().isEmpty()) {
                    EXPECT_GE(ContrastIn(picture, placeOf(*view->viewport(), cell)), 4.5)
                        << index.data().toString().toStdString();
                }
            }
        }
        if (isWhole && !part.isEmpty()) {
            EXPECT_GE(ContrastIn(picture, placeOf(*widget, part)), Wanted(*widget))
                << Describe(*widget);
        }
    }
}

/// What plots write, on each ground that they stand on.
TEST(ThemeColours, StandOutFromEveryGround)
{
    for (const Theme* const theme : {&Theme::Daylight(), &Theme::Dark()}) {
        std::vector<QColor> grounds{theme->ground};
        if (!theme->isDark) {
            grounds.push_back(PlanGraphView::ControllerGround());
        }
        for (const QColor& ground : grounds) {
            const PlotStyle style = PlotStyle::OnScreen(ground, QApplication::font());
            EXPECT_GE(Contrast(style.text.rgb(), style.shade.rgb()), 7.0);
            for (const QColor& letters :
                 {style.text, style.second, style.accent, style.good, style.attention}) {
                EXPECT_GE(Contrast(letters.rgb(), ground.rgb()), 7.0)
                    << letters.name().toStdString() << " on " << ground.name().toStdString();
            }
        }
    }
}

/// Every entry of the home page is in sight, and large enough for a glove.
void ExpectAllEntries(const MainWindow& window)
{
    const QList<CIconButton*> buttons = window.findChildren<CIconButton*>();
    EXPECT_EQ(buttons.size(), 12);
    for (const CIconButton* button : buttons) {
        EXPECT_GE(button->width(), 120);
        EXPECT_GE(button->height(), 88);
        EXPECT_EQ(button->visibleRegion().boundingRect(), button->rect()) << Describe(*button);
    }
}

/// What is shown by a loop of its own: looked at from inside, and left.
void ExpectFileDialogsFit(QWidget& page, const QString& folder)
{
    page.resize(480, 640);
    page.show();
    for (const bool save : {true, false}) {
        bool isSeen = false;
        const testing::Hand<QDialog> hand([&](QDialog& dialog) {
            isSeen = true;
            EXPECT_TRUE(page.geometry().size().expandedTo(dialog.size()) == page.size())
                << dialog.width() << " x " << dialog.height();
            EXPECT_LE(dialog.minimumSizeHint().width(), dialog.width());
            EXPECT_LE(dialog.minimumSizeHint().height(), dialog.height());
            dialog.reject();
        });
        EXPECT_TRUE(ChooseFile(&page, save, QStringLiteral("CSV"),
                               (folder + QStringLiteral("/plan.csv")).toStdString(),
                               QStringLiteral("CSV (*.csv)"))
                        .empty());
        EXPECT_TRUE(isSeen);
    }
}

class EveryScreen : public ::testing::TestWithParam<std::pair<Language, int>>,
                    protected testing::OwnFolders
{
protected:
    EveryScreen()
    {
        const auto [language, percent] = GetParam();
        SetLanguage(language);
        QFont font = m_before;
        font.setPixelSize(qRound(percent * 16 / 100.0));
        if (language == Language::English) {
            font.setFamily(QStringLiteral("DejaVu Sans")); // a wide one
        }
        QApplication::setFont(font);
    }
    ~EveryScreen() override
    {
        QApplication::setFont(m_before);
        SetLanguage(Language::Japanese);
        Theme::Use(Theme::Kind::Daylight);
    }

    /// @param name  of what the window shows
    static void Look(QWidget& window, const QString& name)
    {
        SCOPED_TRACE(name.toStdString());
        for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
            SCOPED_TRACE(size.width());
            window.resize(size);
            window.show();
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
            const bool hasOwnWidth = window.minimumWidth() == window.maximumWidth();
            testing::ExpectNothingCut(window, hasOwnWidth ? window.size() : size);
            for (const QScrollArea* const area : window.findChildren<QScrollArea*>()) {
                EXPECT_TRUE(!area->isVisible() || IsOneOf<CGraphicsBase>(*area->widget()) ||
                            area->widget()->width() <= area->viewport()->width())
                    << "it has to be scrolled sideways";
            }
            for (const QHeaderView* const header : window.findChildren<QHeaderView*>()) {
                for (int i = 0; header->isVisible() && i < header->count(); ++i) {
                    const bool isRow = header->orientation() == Qt::Vertical;
                    const QString words =
                        header->model()->headerData(i, header->orientation()).toString();
                    EXPECT_TRUE(header->isSectionHidden(i) ||
                                header->fontMetrics().horizontalAdvance(words) <=
                                    (isRow ? header->width() : header->sectionSize(i)))
                        << words.toStdString();
                }
            }
            ExpectAllReached(window);
            for (const Theme::Kind theme : {Theme::Kind::Dark, Theme::Kind::Daylight}) {
                SCOPED_TRACE(theme == Theme::Kind::Dark ? "dark" : "daylight");
                Theme::Use(theme);
                QCoreApplication::processEvents();
                ExpectReadable(window);
            }
        }
    }

    static void LookAtAll(QWidget& window, const QString& name)
    {
        auto* const sheet = qobject_cast<PropertySheet*>(&window);
        const int pages = sheet != nullptr ? sheet->GetPageCount() : 1;
        for (int page = 0; page < pages; ++page) {
            if (pages > 1) {
                window.show();
                sheet->SetActivePage(page);
            }
            Look(window, name + QStringLiteral("-%1").arg(page));
        }
        window.hide();
    }

private:
    const QFont m_before = QApplication::font();
};

TEST_P(EveryScreen, IsWholeNamedReachedAndReadable)
{
    testing::Started controller(QStringLiteral("sim:lark"), testing::kRealSpeed);
    ASSERT_TRUE(controller.IsConnectedQuietly());
    Session session(controller); // gives its head and its foot to every page
    HomeState stale = controller.State();
    stale.receiver = testing::KnownReceiver();
    stale.receiver.link = LinkState::Lost; // the longest words
    stale.receiver.position->value.pdop = 12.3F;
    stale.receiver.status->value.batteryPercent = 100;
    stale.view.now = std::chrono::seconds(160);
    stale.antenna = QStringLiteral("アンテナ高 10.543 m（アンテナ底面）→ 鉛直高 10.6123 m");
    stale.simulator = QStringLiteral("almanac-hangs-up");
    MainWindow home;
    home.ShowState(stale);
    for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
        home.resize(size);
        home.show();
        QCoreApplication::processEvents();
        ExpectAllEntries(home);
    }
    home.resize(480, 640); // which it can become again
    LookAtAll(home, QStringLiteral("home"));
    ExpectFileDialogsFit(home, m_folder.path());
    for (const Picture& screen : AllPictures(controller)) {
        LookAtAll(*screen.make(), QString::fromLatin1(screen.name));
    }
    CSurveyPlan plan(&controller.Command(), 0, controller.PlanWorld(nullptr));
    PropertySheet details(UiText(text::kPlanDetail), &plan);
    details.AddPage(new CPlanSet(plan), UiText(text::kPlanPageConditions));
    details.AddPage(new CPlanPos(plan), UiText(text::kPlanPageSite));
    details.AddPage(new CPlanDet(plan), UiText(text::kPlanPageDetail));
    LookAtAll(details, QStringLiteral("plan-details"));
    PlanSession planned(controller.Command().GetEnvironment());
    planned.Begin();
    planned.Compute();
    PlanDrawing drawn;
    drawn.plan = &planned.Plan();
    for (const PlanGraph graph : {PlanGraph::Count, PlanGraph::SkyPlot}) {
        drawn.graph = graph;
        const PlanFigures figures = FiguresOf(drawn);
        ASSERT_GT(figures.rows.size(), 10);
        TableDlg table(UiText(text::kPlanTitle), figures.heads, figures.rows, nullptr);
        LookAtAll(table, QStringLiteral("plan-table-%1").arg(static_cast<int>(graph)));
    }
    SiteDlg site(controller.ProgramFolder(), L"", {});
    LookAtAll(site, QStringLiteral("site"));
    DateDlg date(std::chrono::year(2026) / 11 / 20, std::chrono::year(2026) / 11 / 21);
    LookAtAll(date, QStringLiteral("date"));
    ConnectProgressDlg progress(QStringLiteral("/dev/ttyUSB0"), controller.GetClock());
    progress.Begin();
    progress.OnStep(ConnectStep::WakeReceiver, 1, 4);
    LookAtAll(progress, QStringLiteral("connecting"));
    CPrgEndMes end(CPrgEndMes::Mode::Logging);
    LookAtAll(end, QStringLiteral("end"));
}

INSTANTIATE_TEST_SUITE_P(Looks, EveryScreen,
                         ::testing::Values(std::pair(Language::Japanese, 100),
                                           std::pair(Language::Japanese, 130),
                                           std::pair(Language::English, 100),
                                           std::pair(Language::English, 130)));

} // namespace
} // namespace fieldcore
