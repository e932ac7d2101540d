#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/ButtonMenuDlg.h"
#include "ui/controls/Icon.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/NToolBar.h"
#include "ui/controls/Theme.h"

#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include <vector>

namespace fieldcore {
namespace {

/// The bar of the observation plan at the foot of a window.
class Screen : public QWidget
{
public:
    explicit Screen(int loadWay) : bar(new CnMenuBar(loadWay))
    {
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addStretch(1);
        layout->addWidget(bar);
        bar->AddPopup(QStringLiteral(" 設  定 "));
        bar->AddItem(0, 21911, QStringLiteral("詳細設定"));
        bar->AddItem(0, 21913, QStringLiteral("カーテン設定"));
        bar->AddSeparator(0);
        bar->AddItem(0, 21912, QStringLiteral("軌道暦更新"));
        bar->AddPopup(QStringLiteral(" グラフ "));
        for (int item = 21901; item <= 21907; ++item) {
            bar->AddItem(1, item, QString::number(item));
        }
        connect(bar, &CnMenuBar::ItemChosen, this, [this](int id) { chosen.push_back(id); });
        connect(bar, &CnMenuBar::CloseRequested, this, [this] { ++closes; });
        resize(480, 640);
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
    }
    [[nodiscard]] QList<QAbstractButton*> Buttons() const
    {
        return findChildren<QAbstractButton*>();
    }

    CnMenuBar* bar;
    std::vector<int> chosen;
    int closes = 0;
};

/// The popup that is open.
QMenu* OpenPopup()
{
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

TEST(CnMenuBar, OpensItsPopupsUpwardsByTouchAndByKey)
{
    Screen screen(0);
    struct Row
    {
        int popup;
        std::function<void()> open;
    };
    const Row rows[] = {
        {0, [&] { QTest::mouseClick(screen.Buttons().at(1), Qt::LeftButton); }},
        {0, [&] { QTest::keyClick(&screen, Qt::Key_F1); }},
        {1, [&] { QTest::keyClick(&screen, Qt::Key_F2); }},
    };
    for (const Row& row : rows) {
        row.open();
        QMenu* const menu = OpenPopup();
        ASSERT_EQ(menu, screen.bar->Popup(row.popup));
        const QRect place = menu->geometry();
        EXPECT_LE(place.bottom(), screen.bar->mapToGlobal(QPoint(0, 0)).y());
        EXPECT_TRUE(screen.geometry().contains(place)) << place.x() << ' ' << place.y();
        for (const QAction* item : menu->actions()) {
            if (!item->isSeparator()) {
                EXPECT_GE(menu->actionGeometry(const_cast<QAction*>(item)).height(), 44);
            }
        }
        QTest::keyClick(menu, Qt::Key_Escape);
        EXPECT_EQ(OpenPopup(), nullptr);
        EXPECT_EQ(screen.closes, 0) << "Esc has closed more than the popup";
    }
    EXPECT_TRUE(screen.chosen.empty());
}

TEST(CnMenuBar, TellsTheNumberOfTheItem)
{
    Screen screen(0);
    QTest::keyClick(&screen, Qt::Key_F1);
    QTest::keyClick(OpenPopup(), Qt::Key_Down);
    QTest::keyClick(OpenPopup(), Qt::Key_Down); // over the separator
    QTest::keyClick(OpenPopup(), Qt::Key_Return);
    QTest::keyClick(&screen, Qt::Key_F2);
    QMenu* const menu = OpenPopup();
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions().at(4)).center());
    EXPECT_EQ(screen.chosen, (std::vector<int>{21912, 21905}));

    screen.bar->EnableItem(21911, false);
    QTest::keyClick(&screen, Qt::Key_F1);
    QTest::keyClick(OpenPopup(), Qt::Key_Return); // the first that can be chosen
    EXPECT_EQ(screen.chosen.back(), 21913);
}

TEST(CnMenuBar, LeavesTheScreenAsItWasLoaded)
{
    for (const auto& [loadWay, textId] :
         {std::pair(0, text::kButtonClose), std::pair(1, text::kButtonEndProgram)}) {
        Screen screen(loadWay);
        EXPECT_EQ(screen.bar->GetLoadWay(), loadWay);
        QAbstractButton* const close = screen.Buttons().front();
        EXPECT_EQ(close->text(), UiText(textId));
        QTest::mouseClick(close, Qt::LeftButton);
        QTest::keyClick(&screen, Qt::Key_Escape);
        EXPECT_EQ(screen.closes, 2);
    }
}

TEST(CnToolBar, ActsByNumberAndStaysDown)
{
    CnToolBar bar;
    std::vector<int> chosen;
    QObject::connect(&bar, &CnToolBar::ItemChosen, &bar, [&](int id) { chosen.push_back(id); });
    bar.AddButton(5, QStringLiteral("refresh"), QStringLiteral("更新"));
    bar.AddButton(9, QStringLiteral("skyplot"), QStringLiteral("スカイプロット"));
    bar.CheckItem(9, true);
    bar.EnableItem(5, false);
    bar.show();
    const auto buttons = bar.findChildren<QToolButton*>();
    for (QToolButton* button : buttons) {
        EXPECT_GE(button->height(), 44);
        EXPECT_FALSE(button->accessibleName().isEmpty());
        QTest::mouseClick(button, Qt::LeftButton);
    }
    EXPECT_EQ(chosen, std::vector<int>{9});
    EXPECT_FALSE(bar.IsItemChecked(9)) << "a second press lets it up again";
}

TEST(CButtonMenuDlg, ChoosesByClickAndByKeys)
{
    struct Row
    {
        const char* fault;
        std::vector<Qt::Key> keys;
        int index;
    };
    const Row rows[] = {
        {"the first has the focus", {Qt::Key_Return}, 0},
        {"down goes to the next row", {Qt::Key_Down, Qt::Key_Return}, 3},
        {"right goes to the next column", {Qt::Key_Right, Qt::Key_Space}, 1},
        {"over what is switched off", {Qt::Key_Right, Qt::Key_Right, Qt::Key_Return}, 3},
        {"there is nothing above", {Qt::Key_Up, Qt::Key_Return}, 0},
        {"there is nothing below", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 3},
        {"Esc chooses nothing", {Qt::Key_Down, Qt::Key_Escape}, CButtonMenuDlg::kNothing},
    };
    CButtonMenuDlg menu(QStringLiteral("メニュー"));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(menu.AddButton(QStringLiteral("plan"), QStringLiteral("観測計画")), i);
    }
    menu.EnableButton(2, false);
    QWidget page;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        testing::Next(page, [&row](QWidget& shown) {
            for (const Qt::Key key : row.keys) {
                QTest::keyClick(shown.focusWidget(), key);
            }
        });
        EXPECT_EQ(menu.DoModal() == Dialog::kOk, row.index >= 0);
        EXPECT_EQ(menu.GetMenuIndex(), row.index);
    }
    testing::Next(page, [](QWidget& shown) {
        QTest::mouseClick(shown.findChildren<CIconButton*>().at(4), Qt::LeftButton);
    });
    menu.DoModal();
    EXPECT_EQ(menu.GetMenuIndex(), 4);
}

TEST(CButtonMenuDlg, PutsItsButtonsIntoColumnsOfAWindow)
{
    CButtonMenuDlg page(QStringLiteral("メニュー"));
    page.Embed();
    for (int id = 1; id <= 7; ++id) {
        page.AddButton(QStringLiteral("plan"), QString::number(id));
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

/// Every drawing can be read, fills its square sensibly and has no colour of its own.
TEST(Icons, AreDrawnInTheColoursThatAreAsked)
{
    const QStringList names = IconNames();
    EXPECT_GE(names.size(), 40);
    const QColor line(255, 0, 0);
    const QColor accent(0, 0, 255);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const QImage image = DrawIcon(name, 48, 1.0, line, accent).toImage();
        int inked = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x) {
                const QColor pixel = image.pixelColor(x, y);
                inked += pixel.alpha() > 128 ? 1 : 0;
                EXPECT_TRUE(pixel.alpha() < 16 || pixel.green() < 32) << x << ' ' << y;
            }
        }
        EXPECT_GT(inked, 48 * 48 / 40);
        EXPECT_LT(inked, 48 * 48 / 2);
    }
}

TEST(Icons, FollowTheTheme)
{
    const QIcon icon = ThemeIcon(QStringLiteral("home"));
    const auto drawn = [&] { return icon.pixmap(48).toImage(); };
    Theme::Use(Theme::Kind::Daylight);
    const QImage daylight = drawn();
    Theme::Use(Theme::Kind::Dark);
    EXPECT_NE(drawn(), daylight);
    Theme::Use(Theme::Kind::Daylight);
    EXPECT_EQ(drawn(), daylight);
    EXPECT_NE(icon.pixmap(48, QIcon::Disabled).toImage(), daylight);
}

} // namespace
} // namespace fieldcore
