#include "ui/controls/PropertySheet.h"

#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/QtHost.h"

#include <QLineEdit>
#include <QTabBar>
#include <QVBoxLayout>

#include <string>
#include <vector>

namespace fieldcore {
namespace {

/// Writes down what it is asked, as its letter and the question.
class Page : public PropertyPage
{
public:
    Page(char letter, std::string& told) : m_letter(letter), m_told(told)
    {
        auto* const layout = new QVBoxLayout(this);
        edit = new QLineEdit;
        layout->addWidget(edit);
        Dialog::SetControlId(edit, letter);
        for (int i = 0; i < 20; ++i) { // more than a page can show
            layout->addWidget(new QLabel(QStringLiteral("行")));
        }
    }
    bool letsGo = true;
    bool agrees = true;
    bool cancels = true;
    QLineEdit* edit;

protected:
    void OnInitDialog() override { Tell("init"); }
    void OnSetActive() override { Tell("active"); }
    bool OnKillActive() override { return Tell("kill", letsGo); }
    bool OnOK() override { return Tell("ok", agrees); }
    bool OnCancel() override { return Tell("cancel", cancels); }

private:
    bool Tell(const char* what, bool answer = true)
    {
        m_told += std::string(1, m_letter) + what + " ";
        return answer;
    }
    const char m_letter;
    std::string& m_told;
};

class PropertySheetTest : public ::testing::Test
{
protected:
    PropertySheetTest() : sheet(QStringLiteral("詳細設定"))
    {
        for (const char letter : {'a', 'b', 'c'}) {
            pages.push_back(new Page(letter, told));
            sheet.AddPage(pages.back(), QString(QLatin1Char(letter)));
        }
    }
    void Show()
    {
        sheet.resize(480, 400);
        sheet.show();
        sheet.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    }
    std::string Told() { return std::exchange(told, {}); }
    [[nodiscard]] QTabBar* Tabs() const { return sheet.findChild<QTabBar*>(); }
    void ClickTab(int index)
    {
        QTest::mouseClick(Tabs(), Qt::LeftButton, {}, Tabs()->tabRect(index).center());
    }

    std::string told;
    PropertySheet sheet;
    std::vector<Page*> pages; // owned by the sheet
};

TEST_F(PropertySheetTest, AsksOnlyThePagesThatWereSeen)
{
    Show();
    EXPECT_GT(pages[0]->height(), 400) << "squeezed instead of scrolled";
    EXPECT_EQ(Told(), "ainit aactive ");
    ClickTab(2);
    EXPECT_EQ(Told(), "akill cinit cactive ");
    ClickTab(0);
    EXPECT_EQ(Told(), "ckill aactive ");
    QTest::keyClick(&sheet, Qt::Key_PageUp, Qt::ControlModifier); // around to the last
    EXPECT_EQ(Told(), "akill cactive ");
    testing::Click(sheet, text::kButtonOk);
    EXPECT_EQ(Told(), "ckill aok cok ");
    EXPECT_EQ(sheet.result(), Dialog::kOk);
    EXPECT_FALSE(sheet.isVisible());
    Show(); // again: the pages are filled anew, the last one still in front
    EXPECT_EQ(Told(), "cinit cactive ");
}

TEST_F(PropertySheetTest, StaysWhereAPageRefuses)
{
    EXPECT_EQ(sheet.SetActivePage(1), 1);
    Show();
    EXPECT_EQ(Told(), "binit bactive ");
    pages[1]->letsGo = false;
    ClickTab(0);
    EXPECT_EQ(Told(), "bkill ");
    EXPECT_EQ(Tabs()->currentIndex(), 1) << "the tab does not belong to the page";
    EXPECT_EQ(sheet.GetActivePage(), pages[1]);
    QTest::keyClick(&sheet, Qt::Key_Return); // OK
    EXPECT_EQ(Told(), "bkill ");
    EXPECT_TRUE(sheet.isVisible());

    pages[1]->letsGo = true;
    pages[1]->agrees = false;
    ClickTab(0);
    Told();
    QTest::keyClick(&sheet, Qt::Key_Return);
    EXPECT_EQ(Told(), "akill aok bok bactive ") << "the page that refuses comes to the front";
    EXPECT_EQ(Tabs()->currentIndex(), 1);
    EXPECT_TRUE(sheet.isVisible());

    pages[0]->cancels = false;
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_EQ(Told(), "acancel ");
    EXPECT_TRUE(sheet.isVisible());
    pages[0]->cancels = true;
    testing::Click(sheet, text::kButtonCancel);
    EXPECT_EQ(Told(), "acancel bcancel ");
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(sheet.result(), Dialog::kCancelled);
}

TEST_F(PropertySheetTest, LosesAPageWithoutLosingItsPlace)
{
    sheet.SetActivePage(2);
    sheet.RemovePage(0);
    EXPECT_EQ(sheet.GetPageCount(), 2);
    EXPECT_EQ(sheet.GetActivePage(), pages[2]);
    EXPECT_EQ(Tabs()->currentIndex(), 1);
    Show();
    EXPECT_EQ(Told(), "cinit cactive ");
    sheet.RemovePage(1); // the one in front
    EXPECT_EQ(sheet.GetActivePage(), pages[1]);
    EXPECT_EQ(Told(), "binit bactive ");
    EXPECT_EQ(sheet.SetActivePage(5), 0);
}

TEST_F(PropertySheetTest, ShowsThePageOfAControlThatIsToBeFocused)
{
    Show();
    QtHost host;
    host.FindControl('c')->TakeFocus();
    EXPECT_EQ(sheet.GetActivePage(), pages[2]);
    EXPECT_TRUE(pages[2]->edit->hasFocus());
    pages[2]->letsGo = false;
    host.FindControl('a')->TakeFocus();
    EXPECT_TRUE(pages[2]->edit->hasFocus()) << "the focus has gone to a page that is not seen";
}

} // namespace
} // namespace fieldcore
