// The screens of the receiver's files, with fingers and keys, on simulated receivers.

#include "ui/equipment/RecvFileMan.h"

#include "tests/ui/controls/ScreenTrial.h"
#include "tests/ui/equipment/FilesScreen.h"
#include "tests/ui/link/Leaving.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/equipment/RecvFileSaveDlg.h"
#include "ui/equipment/TransferPanel.h"

#include <QTabBar>

namespace fieldcore {
namespace {

using testing::FilesScreen;

/// Presses the start button of the destination dialog.
void Start(QWidget& front)
{
    if (auto* const dialog = qobject_cast<CRecvFileSaveDlg*>(&front)) {
        QTest::keyClick(dialog, Qt::Key_Return);
    }
}

/// One that logs into the last of its files.
constexpr const char* kLogging =
    "model 3017\nfirmware 3.80\noptions l2 rtk otf nmea glonass\nfix fixed\n"
    "file A0317A00 904512 2026-03-17 00:05\nfile A0318A00 1048576 2026-03-17 23:10\n"
    "file A0318B00 65536 2026-03-18 05:00 open\n";

class RecvFileManTest : public FilesScreen
{
protected:
    void ShowOtherPage() const
    {
        QTest::keyClick(sheet.get(), Qt::Key_Tab, Qt::ControlModifier);
        WaitForList();
    }
};

TEST_F(RecvFileManTest, ShowsWhatTheReceiverHasAndCanDo)
{
    struct Row
    {
        const char* receiver;
        const char* tabs;
        bool note;
        bool canFetch;
        int files;
        bool canDeleteRecycled;
    };
    constexpr Row kRows[] = {
        {"lark", "受信機", true, true, 6, false},
        {"lettered-power", "受信機 ゴミ箱", false, true, 3, true},
        {"pica", "受信機 ゴミ箱", false, false, 3, false},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.receiver);
        Connect(row.receiver);
        Show();
        EXPECT_EQ(sheet->windowTitle(), QStringLiteral("受信機ファイル"));
        QStringList tabs;
        const auto* const bar = sheet->findChild<QTabBar*>();
        for (int tab = 0; tab < bar->count(); ++tab) {
            tabs += bar->tabText(tab);
        }
        EXPECT_EQ(tabs.join(QLatin1Char(' ')), QString::fromUtf8(row.tabs));
        EXPECT_EQ(Find(RecvFilePage::kNote)->isVisible(), row.note);
        EXPECT_EQ(Find(RecvFilePage::kFetch)->isVisible(), row.canFetch);
        EXPECT_EQ(List().Rows().Count(), row.files);
        EXPECT_EQ(Cell(0, 0) + QLatin1Char(' ') + Cell(0, 1) + QLatin1Char(' ') + Cell(0, 2),
                  QStringLiteral("A0314A00 26/03/14 47.1"));
        if (tabs.size() > 1) {
            ShowOtherPage();
            EXPECT_EQ(sheet->GetMode(), 0);
            EXPECT_EQ(Find(RecvFilePage::kDelete)->isEnabled(), row.canDeleteRecycled);
        }
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the wait cursor stayed";
    }
}

TEST_F(RecvFileManTest, HasItsTextsAndIconsToTheLetter)
{
    const auto expect = [this](int row, const char* drawing) {
        const auto icon = List().model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>();
        EXPECT_EQ(icon.pixmap(24, 24).toImage(),
                  ThemeIcon(QLatin1String(drawing)).pixmap(24, 24).toImage())
            << drawing;
    };
    const auto says = [this](int control, const char* words) {
        EXPECT_EQ(Find(control)->property("text").toString(), QString::fromUtf8(words));
    };
    Connect(kLogging);
    Show();
    expect(0, "file");
    expect(2, "recording");
    EXPECT_EQ(sheet->GetLogging(), 1);
    says(RecvFilePage::kFetch, "取得");
    const QAbstractItemModel* const cells = List().model();
    for (const auto& [column, words] : {std::pair(0, "名前"), {1, "日時"}, {2, "サイズ"}}) {
        EXPECT_EQ(cells->headerData(column, Qt::Horizontal).toString(), QString::fromUtf8(words));
    }
    Connect("lettered-power");
    Show(1);
    EXPECT_EQ(sheet->GetActiveIndex(), 1) << "the page to start with";
    expect(0, "trash");
    EXPECT_EQ(sheet->GetLogging(), 0);
    says(RecvFilePage::kDelete, "削除");
    says(RecvFilePage::kRecover, "復帰");
    says(RecvFilePage::kSelectAll, "全選択");
    EXPECT_GE(List().visualRect(List().model()->index(0, 0)).height(), 44);
}

TEST_F(RecvFileManTest, SelectsWholeRowsWithFingersAndKeys)
{
    Connect("lark");
    Show();
    Tap(1);
    Tap(3);
    EXPECT_TRUE(List().Rows().IsSelected(1) && List().Rows().IsSelected(3));
    EXPECT_EQ(List().Rows().SelectedCount(), 2) << "the second tap must not undo the first";
    EXPECT_EQ(List().selectionModel()->selectedIndexes().size(), 6) << "all three columns of each";
    EXPECT_EQ(qobject_cast<QLabel*>(Find(RecvFilePage::kState))->text(),
              QStringLiteral("6 件　選択 2 件"));
    Tap(1);
    EXPECT_EQ(List().Rows().SelectedCount(), 1);
    Click(RecvFilePage::kSelectAll);
    EXPECT_EQ(List().Rows().SelectedCount(), 6);
    EXPECT_EQ(sheet->focusWidget(), &List());
    QTest::keyClick(&List(), Qt::Key_Home);
    QTest::keyClick(&List(), Qt::Key_Space);
    EXPECT_FALSE(List().Rows().IsSelected(0));
    EXPECT_EQ(List().Rows().SelectedCount(), 5);
}

TEST_F(RecvFileManTest, ShowsRowsWhileTheListingRuns)
{
    Connect("many-files");
    int most = 0;
    int seenFirst = 0;
    host.onBreath = [&] {
        if (sheet && sheet->isVisible() && sheet->IsWorking()) {
            const int rows = List().Rows().Count();
            seenFirst = seenFirst == 0 ? rows : seenFirst;
            most = std::max(most, rows);
        }
    };
    Show();
    EXPECT_EQ(List().Rows().Count(), 512);
    EXPECT_GT(seenFirst, 0);
    EXPECT_LE(seenFirst, 16) << "the first rows waited for later pages";
    EXPECT_GT(most, 400);
}

TEST_F(RecvFileManTest, FetchesTheSelectedFiles)
{
    Connect("lark");
    Show();
    Tap(0);
    Tap(1);
    Tap(5);
    Surveyor surveyor;
    surveyor.onOther = Start;
    surveyor.boxes = {{L"すべてのデータの取得が完了しました。", L"データ取得完了",
                       text::kMessageIconInformation}};
    QTest::keyClick(&List(), Qt::Key_Return); // the usual next step
    for (const char* const file :
         {"2026-03-14/A0314A00.Q02", "2026-03-14/A0314B00.Q02", "2026-03-18/A0318B00.Q02"}) {
        EXPECT_TRUE(std::filesystem::exists(Documents() / file)) << file;
    }
    EXPECT_FALSE(sheet->Progress().isVisible());
    const auto isMarked = [this](int row) {
        const QVariant told = List().model()->index(row, 0).data(Qt::AccessibleTextRole);
        return told.toString().endsWith(QStringLiteral("取得済み"));
    };
    EXPECT_TRUE(isMarked(0) && isMarked(1) && !isMarked(2));
    EXPECT_EQ(sheet->focusWidget(), &List());
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_TRUE(isMarked(0) && isMarked(5) && !isMarked(2)) << "known again in a new list";
}

TEST_F(RecvFileManTest, ShowsTheProgressAndEndsItWithinABlock)
{
    Connect("slow-files");
    Show();
    Tap(1);
    Tap(2);
    TransferPanel* const panel = sheet->findChild<TransferPanel*>();
    std::uintmax_t atClick = 0;
    const auto part = Documents() / "2026-03-14" / "A0314B00.Q02.part";
    int breaths = 0;
    host.onBreath = [&] {
        if (!panel->isVisible() || atClick > 0) {
            return;
        }
        const auto bars = panel->findChildren<CTextProgressCtrl*>();
        ASSERT_EQ(bars.size(), 2);
        if (++breaths == 1) {
            EXPECT_FALSE(Find(RecvFilePage::kFetch)->isVisible());
        }
        if (bars[0]->GetPos() < 100) { // a tenth of the file
            return;
        }
        EXPECT_TRUE(bars[0]->text().endsWith(QStringLiteral(" / 47.1 KB")));
        EXPECT_TRUE(bars[1]->text().startsWith(QStringLiteral("合計　")));
        EXPECT_GT(bars[0]->GetPos(), 3 * bars[1]->GetPos());
        for (const char* const words : {"1 / 2　A0314B00.Q02", " KB/s", "残り "}) {
            EXPECT_TRUE(testing::Says(*panel, QString::fromUtf8(words), true)) << words;
        }
        atClick = 48213ULL * static_cast<unsigned>(bars[0]->GetPos()) / 1000;
        QTimer::singleShot(0, panel, [panel] {
            QTest::mouseClick(panel->findChild<QPushButton*>(), Qt::LeftButton);
        });
    };
    Surveyor surveyor;
    surveyor.onOther = Start;
    surveyor.boxes = {{L"データの取得を中止しました。\n取得が完了したファイルは保存されています。",
                       L"データ取得中止", text::kMessageIconInformation}};
    Click(RecvFilePage::kFetch);
    ASSERT_GT(atClick, 0U);
    EXPECT_LE(std::filesystem::file_size(part), atClick + 2000)
        << "the block that was on its way and no more";
    EXPECT_FALSE(std::filesystem::exists(Documents() / "2026-03-14" / "A0314B00.Q02"));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(Find(RecvFilePage::kFetch)->isEnabled() && Find(RecvFilePage::kFetch)->isVisible());
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_EQ(List().Rows().Count(), 3) << "the line is free again";
    host.onBreath = {};
}

TEST_F(RecvFileManTest, BringsFilesBack)
{
    Connect("pica");
    Show(1);
    ASSERT_EQ(List().Rows().Count(), 2);
    Tap(0);
    Click(RecvFilePage::kRecover);
    EXPECT_EQ(List().Rows().Count(), 1);
    ShowOtherPage();
    EXPECT_EQ(List().Rows().Count(), 4) << "the receiver lists it as live";
}

/// What can go wrong is a table of the engine's.
TEST_F(RecvFileManTest, SaysWhatWentWrong)
{
    Connect("lettered-power"); // which deletes into its bin, without a question
    Show();
    const auto* const trouble = qobject_cast<QLabel*>(Find(RecvFilePage::kTrouble));
    EXPECT_FALSE(trouble->isVisible());
    const std::wstring refused = CauseText(CommandFault::Refused);
    for (const auto& [rule, control] :
         {std::pair{"nak on A0", RecvFilePage::kDelete}, {"nak on 9C", RecvFilePage::kReload}}) {
        SCOPED_TRACE(rule);
        receiver->AddFault(testing::ParsedRule(rule));
        Tap(0);
        Click(control);
        WaitForList();
        EXPECT_TRUE(trouble->isVisible());
        EXPECT_NE(trouble->text().toStdWString().find(refused), std::wstring::npos);
    }
    EXPECT_EQ(List().Rows().Count(), 0);
}

TEST_F(RecvFileManTest, AsksHowToEndTheProgram)
{
    for (const testing::Leaving& row : testing::kLeavings) {
        Connect("lettered-power");
        Show(0, row.loadWay);
        ShowOtherPage(); // each page could ask
        testing::ExpectLeft(*sheet, row, *command, *receiver);
    }
}

/// The longest words there are.
TEST_F(RecvFileManTest, CutsNothingOffOfTheProgress)
{
    Connect(kLogging);
    testing::InEveryLook([&](QSize size) {
        Show(0, 1, size);
        auto* const panel = sheet->findChild<TransferPanel*>();
        TransferProgress progress;
        progress.file = 128;
        progress.files = 512;
        progress.name = L"A0314B00WW.Q02";
        progress.fileBytes = 1010 * 1024;
        progress.fileSize = 1023 * 1024;
        progress.totalBytes = progress.totalSize = std::uint64_t{999} << 30U;
        progress.bytesPerSecond = 999.0 * 1024;
        progress.timeLeft = std::chrono::hours(99);
        panel->Show(progress);
        QCoreApplication::processEvents();
        testing::ExpectNothingCut(*sheet, size);
        EXPECT_TRUE(sheet->rect().contains(panel->geometry()));
        EXPECT_GE(List().viewport()->height(), 44) << "no row can be seen";
    });
}

} // namespace
} // namespace fieldcore
