#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/platform/Degrees.h"
#include "tests/support/VirtualReceiver.h"
#include "tests/ui/controls/RandomHands.h"
#include "tests/ui/planning/PlanScreen.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TComboBox.h"
#include "ui/planning/CurtainEditor.h"
#include "ui/planning/CurtainView.h"
#include "ui/planning/PlanDet.h"
#include "ui/planning/PlanPos.h"
#include "ui/planning/PlanSet.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QListWidget>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Click;
using testing::Next;
using testing::PlanScreen;

class PlanPagesTest : public PlanScreen
{
protected:
    /// Opens the detail settings on a page, does @p act there, and presses a button.
    template <typename Page>
    void OnPage(const std::function<void(Page&)>& act, int button = text::kButtonOk)
    {
        Next<PropertySheet>(*plan, [&](PropertySheet& sheet) {
            auto* const page = sheet.findChild<Page*>();
            ASSERT_EQ(sheet.SetActivePage(page), 1);
            act(*page);
            Click(sheet, button);
            sheet.close(); // where it has refused
        });
        Choose(text::kPlanDetail);
    }
    void InEditor(const std::function<void(CurtainEditor&)>& act, int button)
    {
        Next<CurtainEditor>(*plan, [&](CurtainEditor& editor) {
            act(editor);
            Click(editor, button);
            editor.close();
        });
        Choose(text::kPlanCurtain);
    }
    /// Enters a text as an input method does, Japanese too.
    static void Enter(QLineEdit* edit, const QString& text)
    {
        edit->selectAll();
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(edit, &event);
    }
    static void Type(QWidget& dialog, int textId, const QString& text)
    {
        Enter(testing::Called<QLineEdit>(dialog, textId), text);
    }
    [[nodiscard]] QStringList Shown(CPlanPos& page) const
    {
        QStringList names;
        const auto* const list = page.findChild<QListWidget*>();
        for (int row = 0; row < list->count(); ++row) {
            if (!list->item(row)->isHidden()) {
                names += list->item(row)->text();
            }
        }
        return names;
    }
};

TEST_F(PlanPagesTest, SetMaskPeriodAndGraph)
{
    Show();
    const auto change = [](CPlanSet& page) {
        page.findChild<CSpinDouble*>()->SetValue(25.0);
        const auto spins = page.findChildren<LabelSpin*>();
        QTest::keyClick(spins[0], Qt::Key_End); // 23:00
        QTest::keyClick(spins[1], Qt::Key_End); // what is left of the day
        page.findChild<CTComboBox*>()->SelectCode(6);
    };
    OnPage<CPlanSet>(change, text::kButtonCancel);
    EXPECT_EQ(plan->Session().Settings(), PlanSettings{}) << "Cancel has changed something";
    OnPage<CPlanSet>(change);
    EXPECT_EQ(plan->GetElMaskData(), 25);
    EXPECT_EQ(Find<QLabel>(21374)->text(), QStringLiteral("23:00"));
    EXPECT_EQ(Find<QLabel>(21376)->text(), QStringLiteral("24:00"));
    EXPECT_TRUE(Find<CnMenuBar>(21201)->IsItemChecked(21907));
    EXPECT_EQ(plan->Session().Plan().Computed().startHour, 23);
}

TEST_F(PlanPagesTest, FindChooseAddChangeAndRemoveSites)
{
    Show();
    OnPage<CPlanPos>([&](CPlanPos& page) {
        EXPECT_EQ(page.Chosen(), L"東京都千代田区");
        Enter(page.findChild<QLineEdit*>(), QStringLiteral("大阪"));
        EXPECT_EQ(Shown(page), QStringList{QStringLiteral("大阪府大阪市")});
        EXPECT_EQ(page.Chosen(), L"大阪府大阪市");
        Next(*page.window(), [&](QWidget& dialog) {
            Type(dialog, text::kSiteName, QStringLiteral("現場"));
            Type(dialog, text::kSiteLatitude, QStringLiteral("36.7000")); // 70 minutes
            Type(dialog, text::kSiteLongitude, QStringLiteral("140.0000"));
            Type(dialog, text::kSiteHeight, QStringLiteral("25"));
            QTest::keyClick(&dialog, Qt::Key_Return);
            EXPECT_TRUE(dialog.isVisible()) << "it was taken";
            EXPECT_EQ(dialog.focusWidget(),
                      testing::Called<QLineEdit>(dialog, text::kSiteLatitude));
            Type(dialog, text::kSiteLatitude, QStringLiteral("36.3000"));
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        Click(page, text::kSiteAdd);
        EXPECT_EQ(page.Chosen(), L"現場") << "the new one is chosen, whatever was searched for";
    });
    EXPECT_EQ(plan->GetPositionStr(), L"現場");
    EXPECT_EQ(plan->GetPositionData(), 48);
    EXPECT_NEAR(DegreesOf(plan->Session().Site().latitudeRad), 36.5, 1e-9);
    EXPECT_EQ(plan->GetSurveyPlanCalc()->GetObserver().heightM, 25.0);

    OnPage<CPlanPos>([&](CPlanPos& page) {
        Next(*page.window(), [&](QWidget& dialog) {
            Type(dialog, text::kSiteName, QStringLiteral("大阪府大阪市"));
            Click(dialog, text::kButtonOk);
            EXPECT_TRUE(dialog.isVisible()) << "another site would be pushed aside";
            Type(dialog, text::kSiteName, QStringLiteral("現場2"));
            Click(dialog, text::kButtonOk);
        });
        Click(page, text::kSiteEdit);
        host.answer = BoxAnswer::No;
        Click(page, text::kSiteRemove);
        EXPECT_EQ(page.Chosen(), L"現場2");
        host.answer = BoxAnswer::Yes;
        Click(page, text::kSiteRemove);
        EXPECT_EQ(host.notes.back().text, L"観測点「現場2」を削除しますか？");
        EXPECT_EQ(host.notes.back().icon, BoxIcon::Question);
        EXPECT_EQ(page.Chosen(), L"") << "another one is chosen by itself";
    });
    EXPECT_EQ(SiteNames(home.Path()).size(), 47U);
    EXPECT_EQ(plan->GetPositionStr(), L"現場2") << "the plan goes to another site by itself";
}

TEST_F(PlanPagesTest, ThePlanStaysOnItsSite)
{
    Show();
    const auto rename = [&](CPlanPos& page) {
        Next(*page.window(), [&](QWidget& dialog) {
            Type(dialog, text::kSiteName, QStringLiteral("本社"));
            Type(dialog, text::kSiteLatitude, QStringLiteral("36.0000"));
            Click(dialog, text::kButtonOk);
        });
        Click(page, text::kSiteEdit);
    };
    OnPage<CPlanPos>(rename, text::kButtonCancel);
    EXPECT_EQ(plan->GetPositionStr(), L"本社") << "renamed, and Cancel";
    EXPECT_NEAR(DegreesOf(plan->GetSurveyPlanCalc()->GetObserver().latitudeRad), 36.0, 1e-9);

    // Neither a look at the page nor a search that is taken back changes it.
    OnPage<CPlanPos>([&](CPlanPos& page) {
        Enter(page.findChild<QLineEdit*>(), QStringLiteral("札幌"));
        EXPECT_EQ(page.Chosen(), L"北海道札幌市");
        page.findChild<QLineEdit*>()->clear();
        EXPECT_EQ(page.Chosen(), L"本社");
    });
    EXPECT_EQ(plan->GetPositionStr(), L"本社");

    // One that another program has taken out of the file stays as well, and says what is unknown.
    home.Write("GSurveyPlan.ini", "[A]\r\nLAT=35.0\r\n[B]\r\nLAT=35.0\r\nLON=139.0\r\nHGT=1\r\n");
    OnPage<CPlanPos>(
        [&](CPlanPos& page) {
            auto* const list = page.findChild<QListWidget*>();
            list->setFocus(Qt::TabFocusReason);
            EXPECT_EQ(page.Chosen(), L"");
            list->setCurrentRow(0);
            EXPECT_TRUE(testing::Says(page, QStringLiteral("経度 --"), true));
        },
        text::kButtonCancel);
    OnPage<CPlanPos>([](CPlanPos&) {});
    EXPECT_EQ(plan->GetPositionStr(), L"本社");
}

TEST_F(PlanPagesTest, TheSitePageKeepsItsChoices)
{
    Show();
    plan->SetPositionID(1);
    OnPage<CPlanPos>([](CPlanPos& page) {
        EXPECT_EQ(page.findChild<CTComboBox*>()->SelectCode(1), 1);
        EXPECT_TRUE(testing::Says(page, QStringLiteral("35.69388889°"), true));
    });
    EXPECT_EQ(plan->GetListCoordData(), 1);
    EXPECT_EQ(plan->GetPositionID(), 1) << "still the receiver's";
    EXPECT_EQ(plan->GetPositionData(), 13);
}

TEST_F(PlanPagesTest, ImportSitesOrTellWhatIsWrong)
{
    Show();
    chosenFile = home.Write("sites.csv", "A,35.5,139.5,10\nB,95,139\n");
    OnPage<CPlanPos>([&](CPlanPos& page) {
        Click(page, text::kSiteImport);
        ASSERT_EQ(host.notes.size(), 1U);
        EXPECT_EQ(host.notes[0].icon, BoxIcon::Stop);
        EXPECT_NE(host.notes[0].text.find(L"sites.csv"), std::wstring::npos);
        EXPECT_NE(host.notes[0].text.find(L"2行目"), std::wstring::npos);
        EXPECT_EQ(Shown(page).size(), 47);
        home.Write("sites.csv", "A,35.5,139.5,10\nB,36,139\n");
        Click(page, text::kSiteImport);
        EXPECT_EQ(host.notes.back().text, L"観測点を2件取り込みました。");
        EXPECT_EQ(page.Chosen(), L"A");
    });
    EXPECT_EQ(plan->Session().Site().heightM, 10.0);
    home.Write("sites.csv", "A,35.5,139.5,11\n");
    OnPage<CPlanPos>([&](CPlanPos& page) { Click(page, text::kSiteImport); }, text::kButtonCancel);
    EXPECT_EQ(plan->Session().Site().heightM, 11.0) << "the plan's own site was imported";
}

TEST_F(PlanPagesTest, TakeASiteFromTheReceiver)
{
    Show();
    OnPage<CPlanPos>([&](CPlanPos& page) {
        EXPECT_FALSE(testing::Called(page, text::kSiteFromReceiver)->isEnabled()) << "what from?";
    });
    receiver = testing::Plugged(*command, testing::ParsedScenario("position -33.9 151.2 40"));
    OnPage<CPlanPos>([&](CPlanPos& page) {
        Next(*page.window(), [](QWidget& dialog) { Click(dialog, text::kButtonOk); });
        Click(page, text::kSiteFromReceiver);
    });
    EXPECT_EQ(plan->GetPositionStr(), L"受信機の位置");
    EXPECT_EQ(plan->GetPositionID(), 1);
    EXPECT_NEAR(DegreesOf(plan->Session().Site().latitudeRad), -33.9, 1e-4);
}

TEST_F(PlanPagesTest, SwitchSatellitesOffButNotAll)
{
    WriteAlmanac(kWeek, 30);
    Show();
    const double before = plan->Session().Plan().CountAt(0);
    OnPage<CPlanDet>([&](CPlanDet& page) {
        Click(page, text::kPlanUseNone);
        Click(*page.window(), text::kButtonOk);
        ASSERT_TRUE(page.isVisible());
        EXPECT_EQ(host.notes.back().icon, BoxIcon::Exclamation);
        const auto boxes = page.findChildren<QCheckBox*>();
        for (int index = 0; index < 4; ++index) {
            QTest::keyClick(boxes[index], Qt::Key_Space);
        }
        page.findChildren<CSpinDouble*>()[0]->SetValue(7.0);
    });
    EXPECT_LT(plan->Session().Plan().CountAt(0), before);
    for (const bool isReopened : {false, true}) {
        SCOPED_TRACE(isReopened);
        EXPECT_EQ(plan->Session().Limits().minSatellites, 7);
        EXPECT_EQ(plan->GetSurveyPlanCalc()->IsValid(3), 1);
        EXPECT_EQ(plan->GetSurveyPlanCalc()->IsValid(4), 0);
        plan->Close(Dialog::kCancelled);
        Show();
    }
}

TEST_F(PlanPagesTest, StandAThousandRandomEvents)
{
    for (int page = 0; page <= 3; ++page) {
        const bool isCurtain = page == 3;
        SCOPED_TRACE(page);
        Show();
        testing::RandomHands hands;
        constexpr int kPerOpening = 100;
        while (!hands.IsTired()) {
            Next(*plan, [&](QWidget& window) {
                if (!isCurtain) {
                    dynamic_cast<PropertySheet&>(window).SetActivePage(page);
                }
                hands.Play(window, kPerOpening);
                window.close();
            });
            Choose(isCurtain ? text::kPlanCurtain : text::kPlanDetail);
            const PlanSettings& settings = plan->Session().Settings();
            ASSERT_EQ(settings, Fitted(settings)) << "after " << hands.Count();
            for (const int elevation : plan->GetSurveyPlanCalc()->GetCurtain()) {
                ASSERT_TRUE(elevation >= 0 && elevation <= 90) << elevation;
            }
            ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
        }
        EXPECT_FALSE(SiteNames(home.Path()).empty());
    }
}

TEST_F(PlanPagesTest, ChooseADayInTheCalendar)
{
    Show();
    Next(*plan, [](QWidget& dialog) {
        auto* const calendar = dialog.findChild<QCalendarWidget*>();
        calendar->setSelectedDate({2027, 2, 28});
        Click(dialog, text::kButtonOk);
    });
    Click(*plan, text::kPlanCalendar);
    EXPECT_EQ(plan->GetSystemTime(), 2027y / 2 / 28);
    EXPECT_EQ(Find<QLabel>(21378)->text(), QStringLiteral("2027/02/28"));
}

TEST_F(PlanPagesTest, DrawACurtainWithFingerAndKeys)
{
    Show();
    const auto draw = [](CurtainEditor& editor) {
        CurtainView& view = editor.View();
        const auto drag = [&view](QPointF from, QPointF to) { // azimuth and elevation, degrees
            const QPoint begin = view.PointOf(from.x(), from.y()).toPoint();
            const QPoint end = view.PointOf(to.x(), to.y()).toPoint();
            QTest::mousePress(&view, Qt::LeftButton, {}, begin);
            QTest::mouseMove(&view, end);
            QTest::mouseRelease(&view, Qt::LeftButton, {}, end);
        };
        drag({350.5, 40.0}, {10.5, 40.0});
        // A pixel is half a degree of elevation, and a degree and a half of azimuth there.
        EXPECT_NEAR(editor.Edit().At(0), 40, 1);
        EXPECT_EQ(editor.Edit().At(180), 0);
        QTest::keyClick(&view, Qt::Key_Home);
        QTest::keyClick(&view, Qt::Key_PageUp);
        EXPECT_NEAR(editor.Edit().At(0), 50, 1);
        Click(editor, text::kCurtainUndo);
        EXPECT_NEAR(editor.Edit().At(0), 40, 1);
        Click(editor, text::kCurtainUnrolled);
        drag({90.5, 20.0}, {180.5, 60.0});
        EXPECT_NEAR(editor.Edit().At(135), 40, 1);
    };
    InEditor(draw, text::kButtonCancel);
    EXPECT_FALSE(std::filesystem::exists(CurtainPath(home.Path())));
    EXPECT_FALSE(HasObstruction(plan->GetSurveyPlanCalc()->GetCurtain()));
    const double before = plan->Session().Plan().CountAt(0);
    const auto raiseAll = [](CurtainEditor& editor) {
        QTest::keyClick(&editor.View(), Qt::Key_End);
        for (int i = 0; i < 9; ++i) {
            QTest::keyClick(&editor.View(), Qt::Key_PageUp);
        }
        for (int i = 0; i < 36; ++i) { // all around
            QTest::keyClick(&editor.View(), Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
        }
    };
    InEditor(raiseAll, text::kButtonOk);
    EXPECT_EQ(LoadCurtain(home.Path()), plan->GetSurveyPlanCalc()->GetCurtain());
    EXPECT_EQ(plan->GetSurveyPlanCalc()->GetCurtain()[77], 90);
    EXPECT_LT(plan->Session().Plan().CountAt(0), before);
}

/// Three hours below a wall of 30 degrees in the east; the west is not known.
SkyRecord WalledIn()
{
    SkyRecord record({RadiansOf(35.0), RadiansOf(139.0), 0.0});
    for (int round = 0; round < 360; ++round) {
        record.BeginNotes({});
    }
    for (int azimuth = 1; azimuth < 180; azimuth += 2) {
        for (int elevation = 10; elevation < 80; ++elevation) {
            const SkyDirection at{RadiansOf(azimuth), RadiansOf(elevation + 0.5)};
            const bool isHidden = azimuth > 60 && azimuth < 120 && elevation < 30;
            isHidden ? record.NoteMissed(at) : record.NoteTracked(at);
        }
    }
    return record;
}

TEST_F(PlanPagesTest, TakeOverTheCurtainOfWhatWasTracked)
{
    Show();
    const auto label = [](CurtainEditor& editor) {
        return dynamic_cast<QLabel&>(*Dialog::FindControl(&editor, CurtainEditor::kProposalText))
            .text();
    };
    const auto button = [](CurtainEditor& editor) {
        return Dialog::FindControl(&editor, CurtainEditor::kTakeButton);
    };
    InEditor(
        [&](CurtainEditor& editor) {
            EXPECT_FALSE(editor.View().Proposal());
            EXPECT_FALSE(button(editor)->isVisible());
            EXPECT_TRUE(label(editor).contains(QStringLiteral("0.0時間"))) << "why there is none";
        },
        text::kButtonCancel);
    ASSERT_FALSE(SaveSkyRecord(home.Path(), WalledIn()));
    InEditor(
        [&](CurtainEditor& editor) {
            EXPECT_TRUE(label(editor).contains(QStringLiteral("3.0時間")));
            editor.View().setFocus();
            QTest::keyClick(&editor.View(), Qt::Key_Up); // at north: its own, and known to be open
            const int own = 250;
            QTest::mouseClick(&editor.View(), Qt::LeftButton, {},
                              editor.View().PointOf(own + 0.5, 33.0).toPoint());
            const ObstructionCurtain drawn = editor.Edit().Curtain();
            QTest::mouseClick(button(editor), Qt::LeftButton);
            EXPECT_NEAR(editor.Edit().At(90), 30, 2);
            EXPECT_EQ(editor.Edit().At(own), drawn[own]) << "what is not known stays";
            QTest::mouseClick(button(editor), Qt::LeftButton);
            EXPECT_EQ(editor.Edit().Curtain(), drawn) << "taken back";
            QTest::mouseClick(button(editor), Qt::LeftButton);
            EXPECT_NEAR(editor.Edit().At(90), 30, 2);
        },
        text::kButtonOk);
    EXPECT_NEAR(LoadCurtain(home.Path())[90], 30, 2);
    const auto look = [&](CurtainEditor& editor) {
        EXPECT_FALSE(button(editor)->isEnabled()) << "there is nothing left to take over";
    };
    InEditor(look, text::kButtonCancel);
}

TEST_F(PlanPagesTest, TakeACurtainAsText)
{
    Show();
    chosenFile = home.Write("curtain.txt", "10 20\n5 30\n");
    InEditor(
        [&](CurtainEditor& editor) {
            Click(editor, text::kCurtainImport);
            EXPECT_NE(host.notes.back().text.find(L"2行目"), std::wstring::npos);
            EXPECT_FALSE(editor.Edit().CanUndo());
            home.Write("curtain.txt", "10 20\n50 0\n");
            Click(editor, text::kCurtainImport);
            EXPECT_EQ(editor.Edit().At(49), 20);
            chosenFile = home.Path() / "copy" / "out.txt";
            Click(editor, text::kCurtainExport);
            EXPECT_EQ(LoadCurtainText(chosenFile).curtain, editor.Edit().Curtain());
            Click(editor, text::kCurtainClear);
            EXPECT_FALSE(HasObstruction(editor.Edit().Curtain()));
        },
        text::kButtonCancel);
}

} // namespace
} // namespace fieldcore
