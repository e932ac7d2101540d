// The screens of the receiver's files, with fingers and keys, on simulated receivers.

#include "ui/equipment/RecvFileMan.h"

#include "tests/support/ProofSize.h"
#include "tests/ui/controls/Pictures.h"
#include "tests/ui/equipment/FilesScreen.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Theme.h"
#include "ui/equipment/FileListModel.h"
#include "ui/equipment/RecvFileSaveDlg.h"
#include "ui/equipment/TransferPanel.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QRadioButton>
#include <QTabBar>

#include <fstream>
#include <iterator>
#include <random>

namespace fieldcore {
namespace {

using simulator::FileState;
using testing::FilesScreen;

std::string Read(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

ExpectedBox Told(const wchar_t* text, const wchar_t* caption, int icon)
{
    return {text, caption, icon, {text::kButtonOk}, text::kButtonOk};
}

ExpectedBox Asked(const wchar_t* text, const wchar_t* caption, int answer)
{
    return {text, caption, text::kMessageIconQuestion, {text::kButtonYes, text::kButtonNo}, answer};
}

/// Presses the start button of the destination dialog, after what @p choose does there.
std::function<void(QWidget&)> Starting(std::function<void(CRecvFileSaveDlg&)> choose = {})
{
    return [choose = std::move(choose)](QWidget& front) {
        if (auto* const dialog = qobject_cast<CRecvFileSaveDlg*>(&front)) {
            if (choose) {
                choose(*dialog);
            }
            QTest::keyClick(dialog, Qt::Key_Return);
        }
    };
}

constexpr const wchar_t* kDone = L"すべてのデータの取得が完了しました。";
constexpr const wchar_t* kDoneCaption = L"データ取得完了";
constexpr const wchar_t* kWarning = L"データ選択警告";

/// A receiver whose file ends before its listed size.
constexpr const char* kLess =
    "model 3017\nfirmware 3.20\noptions l2 rtk otf nmea glonass\nfix fixed\n"
    "file LESS 1000 2026-03-14 01:39 announces 20000\n";

/// One that logs into the last of its files.
constexpr const char* kLogging =
    "model 3017\nfirmware 3.80\noptions l2 rtk otf nmea glonass\nfix fixed\n"
    "file A0317A00 904512 2026-03-17 00:05\nfile A0318A00 1048576 2026-03-17 23:10\n"
    "file A0318B00 65536 2026-03-18 05:00 open\n";

class RecvFileManTest : public FilesScreen
{};

TEST_F(RecvFileManTest, ShowsWhatTheReceiverHasAndCanDo)
{
    struct Row
    {
        const char* receiver;
        QStringList tabs;
        bool note;
        bool canFetch;
        int files;
        bool canDeleteRecycled;
        QString firstRow;
    };
    const Row rows[] = {
        {"lark",
         {QStringLiteral("受信機")},
         true,
         true,
         6,
         false,
         QStringLiteral("A0314A00 26/03/14 47.1")},
        {"lettered-power",
         {QStringLiteral("受信機"), QStringLiteral("ゴミ箱")},
         false,
         true,
         3,
         true,
         QStringLiteral("A0314A00 26/03/14 47.1")},
        {"pica",
         {QStringLiteral("受信機"), QStringLiteral("ゴミ箱")},
         false,
         false,
         3,
         false,
         QStringLiteral("A0314A00 26/03/14 47.1")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.receiver);
        Connect(row.receiver);
        Show();
        EXPECT_EQ(sheet->windowTitle(), QStringLiteral("受信機ファイル"));
        QStringList tabs;
        const auto* const bar = sheet->findChild<QTabBar*>();
        for (int tab = 0; tab < bar->count(); ++tab) {
            tabs += bar->tabText(tab);
        }
        EXPECT_EQ(tabs, row.tabs);
        EXPECT_EQ(Find(RecvFilePage::kNote)->isVisible(), row.note);
        EXPECT_EQ(Find(RecvFilePage::kFetch)->isVisible(), row.canFetch);
        EXPECT_EQ(List().Count(), row.files);
        EXPECT_EQ(Cell(0, 0) + QLatin1Char(' ') + Cell(0, 1) + QLatin1Char(' ') + Cell(0, 2),
                  row.firstRow);
        if (tabs.size() > 1) {
            QTest::keyClick(sheet.get(), Qt::Key_Tab, Qt::ControlModifier);
            WaitForList();
            EXPECT_EQ(sheet->GetMode(), 0);
            EXPECT_EQ(Find(RecvFilePage::kDelete)->isEnabled(), row.canDeleteRecycled);
        }
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the wait cursor stayed";
    }
}

TEST_F(RecvFileManTest, HasItsTextsAndColumnsToTheLetter)
{
    Connect("lettered-power");
    Show(1);
    EXPECT_EQ(sheet->GetActiveIndex(), 1) << "the page to start with";
    const auto textOf = [this](int control) {
        return qobject_cast<QAbstractButton*>(Find(control))->text();
    };
    EXPECT_EQ(textOf(RecvFilePage::kDelete) + textOf(RecvFilePage::kRecover) +
                  textOf(RecvFilePage::kSelectAll),
              QStringLiteral("削除復帰全選択"));
    QTest::mouseClick(sheet->findChild<QTabBar*>(), Qt::LeftButton, {}, QPoint(10, 10));
    WaitForList();
    EXPECT_EQ(sheet->GetMode(), 1);
    EXPECT_EQ(textOf(RecvFilePage::kDelete) + textOf(RecvFilePage::kFetch) +
                  textOf(RecvFilePage::kSelectAll),
              QStringLiteral("削除取得全選択"));
    EXPECT_EQ(qobject_cast<QLabel*>(Find(RecvFilePage::kNote))->text(),
              QStringLiteral("※注意　削除したファイルは復帰できません。"));
    EXPECT_EQ(UiText(text::kFilesPage), QStringLiteral(" 受信機 "));
    EXPECT_EQ(UiText(text::kGomiPage), QStringLiteral(" ゴミ箱 "));

    const QHeaderView& header = *List().header();
    ASSERT_EQ(header.count(), 3);
    constexpr std::array kNames{"名前", "日時", "サイズ"};
    constexpr std::array kWidths{100, 70, 50};
    for (int column = 0; column < 3; ++column) {
        const auto at = static_cast<std::size_t>(column);
        EXPECT_EQ(header.model()->headerData(column, Qt::Horizontal).toString(),
                  QString::fromUtf8(kNames.at(at)));
        EXPECT_GE(header.sectionSize(column), kWidths.at(at));
        const auto alignment = List().model()->index(0, column).data(Qt::TextAlignmentRole).toInt();
        EXPECT_TRUE((alignment & Qt::AlignLeft) != 0);
    }
    EXPECT_GE(List().visualRect(List().model()->index(0, 0)).height(), 44);
}

TEST_F(RecvFileManTest, TellsFilesApartByTheirIcons)
{
    struct Row
    {
        const char* receiver;
        unsigned page;
        int row;
        const char* icon;
    };
    const Row rows[] = {
        {kLogging, 0, 0, "file"},
        {kLogging, 0, 2, "recording"},
        {"lettered-power", 1, 0, "trash"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.icon);
        Connect(row.receiver);
        Show(row.page);
        const auto icon = List().model()->index(row.row, 0).data(Qt::DecorationRole).value<QIcon>();
        EXPECT_EQ(icon.pixmap(24, 24).toImage(),
                  ThemeIcon(QLatin1String(row.icon)).pixmap(24, 24).toImage());
        EXPECT_EQ(sheet->GetLogging(), row.receiver == kLogging ? 1 : 0);
    }
}

TEST_F(RecvFileManTest, SelectsWholeRowsWithFingersAndKeys)
{
    Connect("lark");
    Show();
    Tap(1);
    Tap(3);
    EXPECT_TRUE(List().IsSelected(1) && List().IsSelected(3));
    EXPECT_EQ(SelectedCount(List()), 2) << "the second tap must not undo the first";
    EXPECT_EQ(List().selectionModel()->selectedIndexes().size(), 6) << "all three columns of each";
    EXPECT_EQ(qobject_cast<QLabel*>(Find(RecvFilePage::kState))->text(),
              QStringLiteral("6 件　選択 2 件"));
    Tap(1);
    EXPECT_EQ(SelectedCount(List()), 1);
    Click(RecvFilePage::kSelectAll);
    EXPECT_EQ(SelectedCount(List()), 6);
    EXPECT_EQ(sheet->focusWidget(), &List());
    QTest::keyClick(&List(), Qt::Key_Home);
    QTest::keyClick(&List(), Qt::Key_Space);
    EXPECT_FALSE(List().IsSelected(0));
    EXPECT_EQ(SelectedCount(List()), 5);
}

TEST_F(RecvFileManTest, ShowsRowsWhileTheListingRuns)
{
    Connect("many-files");
    int most = 0;
    int seenFirst = 0;
    host.onBreath = [&] {
        if (sheet && sheet->isVisible() && sheet->IsWorking()) {
            const int rows = List().Count();
            seenFirst = seenFirst == 0 ? rows : seenFirst;
            most = std::max(most, rows);
        }
    };
    Show();
    EXPECT_EQ(List().Count(), 512);
    EXPECT_GT(seenFirst, 0);
    EXPECT_LE(seenFirst, 16) << "the first rows waited for later pages";
    EXPECT_GT(most, 400);
}

TEST_F(RecvFileManTest, FetchesTheSelectedFilesByteByByte)
{
    Connect("lark");
    Show();
    Tap(0);
    Tap(1);
    Tap(5);
    Surveyor surveyor;
    surveyor.onOther = Starting();
    surveyor.boxes = {Told(kDone, kDoneCaption, text::kMessageIconInformation)};
    QTest::keyClick(&List(), Qt::Key_Return); // the usual next step
    EXPECT_EQ(Read(Documents() / "2026-03-14" / "A0314A00.Q02"), Content("A0314A00.Q02"));
    EXPECT_EQ(Read(Documents() / "2026-03-14" / "A0314B00.Q02"), Content("A0314B00.Q02"));
    EXPECT_TRUE(std::filesystem::exists(Documents() / "2026-03-18" / "A0318B00.Q02"));
    EXPECT_FALSE(sheet->Progress().isVisible());
    const auto isMarked = [this](int row) {
        return List()
            .model()
            ->index(row, 0)
            .data(Qt::AccessibleTextRole)
            .toString()
            .endsWith(QStringLiteral("取得済み"));
    };
    EXPECT_TRUE(isMarked(0) && isMarked(1) && !isMarked(2));
    EXPECT_EQ(sheet->focusWidget(), &List());
    KeepPicture(*sheet, QStringLiteral("files-fetched"));
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_TRUE(isMarked(0) && isMarked(5) && !isMarked(2)) << "known again in a new list";
}

TEST_F(RecvFileManTest, FetchesToTheCardWhereThereIsOne)
{
    hasCard = true;
    Connect("lettered-power");
    Show();
    Tap(0);
    Surveyor surveyor;
    surveyor.onOther = Starting();
    surveyor.boxes = {Told(kDone, kDoneCaption, text::kMessageIconInformation)};
    Click(RecvFilePage::kFetch);
    EXPECT_EQ(Read(Card() / "2026-03-14" / "A0314A00.Q01"), Content("A0314A00.Q01"));
    EXPECT_FALSE(std::filesystem::exists(Documents()));
    home.Write("mounts", ""); // the card is taken out
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_FALSE(List().model()->index(0, 0).data(FileListModel::kFetchedRole).toBool());
}

TEST_F(RecvFileManTest, SaysWhyItDoesNotFetch)
{
    struct Row
    {
        const char* fault;
        const char* receiver;
        std::vector<int> taps;
        std::uint64_t free;
        ExpectedBox box;
        bool asksWhere;
    };
    constexpr std::uint64_t kMuch = std::uint64_t{1} << 40U;
    const Row rows[] = {
        {"nothing selected",
         "lark",
         {},
         kMuch,
         Told(L"取得データを選択してください。", kWarning, text::kMessageIconExclamation),
         false},
        {"being logged",
         kLogging,
         {0, 2},
         kMuch,
         Told(L"選択したデータは、現在ロギング中のため取得できません。", kWarning,
              text::kMessageIconExclamation),
         false},
        {"no space",
         "lark",
         {0},
         57855, // 1.2 times the size would be 57855.6
         Told(L"保存先メモリの空き領域が不足しているため、データの取得を中止します。",
              L"メモリ残量エラー", text::kMessageIconStop),
         true},
        {"the receiver gives less than it says",
         kLess,
         {0},
         kMuch,
         Told(L"データの取得に失敗しました。", L"データ取得エラー", text::kMessageIconStop),
         true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Connect(row.receiver);
        freeBytes = row.free;
        Show();
        for (const int tap : row.taps) {
            Tap(tap);
        }
        bool wasAsked = false;
        Surveyor surveyor;
        surveyor.boxes = {row.box};
        surveyor.onOther = Starting([&](CRecvFileSaveDlg&) { wasAsked = true; });
        Click(RecvFilePage::kFetch);
        EXPECT_EQ(wasAsked, row.asksWhere);
        EXPECT_EQ(sheet->focusWidget(), &List());
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.Path())) {
            EXPECT_TRUE(!entry.is_regular_file() || entry.path().extension() == ".part" ||
                        entry.path().extension() == ".info")
                << entry.path();
        }
    }
}

TEST_F(RecvFileManTest, AsksOnceBeforeItOverwrites)
{
    Connect("lark");
    home.Write("Documents/A0314A00.Q02", "old");
    home.Write("Documents/A0314B00.Q02", "old");
    const auto withoutDates = [](CRecvFileSaveDlg& dialog) {
        for (QCheckBox* const box : dialog.findChildren<QCheckBox*>()) {
            if (box->text() == QStringLiteral("観測日毎にフォルダを作成する")) {
                EXPECT_TRUE(box->isChecked());
                box->click();
            }
        }
    };
    const wchar_t* const question =
        L"保存先のフォルダには既に、選択したデータと同じ名称のファイルが存在します。\n\n"
        L"既存のファイルはすべて新しいファイルで上書きされますが、続行しますか？";
    for (const bool yes : {false, true}) {
        SCOPED_TRACE(yes);
        Show();
        Tap(0);
        Tap(1);
        Surveyor surveyor;
        surveyor.onOther = Starting(withoutDates);
        surveyor.boxes = {
            Asked(question, L"ファイルの上書き確認", yes ? text::kButtonYes : text::kButtonNo)};
        if (yes) {
            surveyor.boxes.push_back(Told(kDone, kDoneCaption, text::kMessageIconInformation));
        }
        Click(RecvFilePage::kFetch);
        EXPECT_EQ(Read(Documents() / "A0314A00.Q02"), yes ? Content("A0314A00.Q02") : "old");
        EXPECT_EQ(Read(Documents() / "A0314B00.Q02"), yes ? Content("A0314B00.Q02") : "old");
    }
    // Those that are there now can be left out.
    Show();
    Tap(0);
    Surveyor surveyor;
    surveyor.boxes = {
        Told(L"選択したデータはすべて取得済みです。", kDoneCaption, text::kMessageIconInformation)};
    surveyor.onOther = Starting([](CRecvFileSaveDlg& dialog) {
        for (QCheckBox* const box : dialog.findChildren<QCheckBox*>()) {
            if (box->text() == QStringLiteral("取得済みのデータを除く")) {
                box->click();
            }
        }
    });
    Click(RecvFilePage::kFetch);
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
        QStringList words;
        for (const QLabel* const label : panel->findChildren<QLabel*>()) {
            words += label->text();
        }
        const QString all = words.join(QLatin1Char('\n'));
        EXPECT_TRUE(all.contains(QStringLiteral("1 / 2　A0314B00.Q02"))) << all.toStdString();
        EXPECT_TRUE(all.contains(QStringLiteral(" KB/s"))) << all.toStdString();
        EXPECT_TRUE(all.contains(QStringLiteral("残り "))) << all.toStdString();
        KeepPicture(*sheet, QStringLiteral("files-progress"));
        atClick = 48213ULL * static_cast<unsigned>(bars[0]->GetPos()) / 1000;
        QTimer::singleShot(0, panel, [panel] {
            QTest::mouseClick(panel->findChild<QPushButton*>(), Qt::LeftButton);
        });
    };
    Surveyor surveyor;
    surveyor.onOther = Starting();
    surveyor.boxes = {
        Told(L"データの取得を中止しました。\n取得が完了したファイルは保存されています。",
             L"データ取得中止", text::kMessageIconInformation)};
    Click(RecvFilePage::kFetch);
    ASSERT_GT(atClick, 0U);
    EXPECT_LE(std::filesystem::file_size(part), atClick + 2000)
        << "the block that was on its way and no more";
    EXPECT_FALSE(std::filesystem::exists(Documents() / "2026-03-14" / "A0314B00.Q02"));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(Find(RecvFilePage::kFetch)->isEnabled() && Find(RecvFilePage::kFetch)->isVisible());
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_EQ(List().Count(), 3) << "the line is free again";

    bool hasGoneOn = false;
    host.onBreath = [&] {
        for (const QLabel* const label : panel->findChildren<QLabel*>()) {
            if (!hasGoneOn && label->isVisible() &&
                label->text().endsWith(QStringLiteral("から再開しました。"))) {
                hasGoneOn = true;
                KeepPicture(*sheet, QStringLiteral("files-continued"));
                QTimer::singleShot(0, panel, [panel] {
                    QTest::mouseClick(panel->findChild<QPushButton*>(), Qt::LeftButton);
                });
            }
        }
    };
    Tap(1);
    surveyor.onOther = Starting();
    surveyor.boxes.push_back(surveyor.boxes.front());
    Click(RecvFilePage::kFetch);
    EXPECT_TRUE(hasGoneOn);
    host.onBreath = {};
}

TEST_F(RecvFileManTest, AsksBeforeItDeletes)
{
    struct Row
    {
        const char* fault;
        const char* receiver;
        unsigned page;
        std::vector<int> taps;
        std::vector<ExpectedBox> boxes;
        int left; ///< rows
    };
    const wchar_t* const forGood =
        L"選択されたファイルを受信機から完全に削除します。\nよろしいですか？";
    const wchar_t* const fromBin = L"ゴミ箱内のデータを削除すると、元に復帰できませせん。\n"
                                   L"データを完全に削除してもよろしいですか？";
    const wchar_t* const caption = L"データ削除確認";
    const Row rows[] = {
        {"nothing selected",
         "lark",
         0,
         {},
         {Told(L"削除データを選択してください。", kWarning, text::kMessageIconExclamation)},
         6},
        {"no", "lark", 0, {1}, {Asked(forGood, caption, text::kButtonNo)}, 6},
        {"for good", "lark", 0, {1, 4}, {Asked(forGood, caption, text::kButtonYes)}, 4},
        {"into the bin: not asked", "pica", 0, {1}, {}, 2},
        {"out of the bin: no",
         "lettered-power",
         1,
         {0},
         {Asked(fromBin, caption, text::kButtonNo)},
         2},
        {"out of the bin",
         "lettered-power",
         1,
         {0},
         {Asked(fromBin, caption, text::kButtonYes)},
         1},
        {"only one, being logged",
         kLogging,
         0,
         {2},
         {Asked(forGood, caption, text::kButtonYes),
          Told(L"指定ファイルは、現在ロギング中のため削除を行えません。", kWarning,
               text::kMessageIconExclamation)},
         3},
        {"one of several being logged",
         kLogging,
         0,
         {0, 2},
         {Asked(forGood, caption, text::kButtonYes),
          Told(L"削除選択データ中にロギングデータが含まれて居ます。\n"
               L"ロギングデータの削除は行えません。",
               kWarning, text::kMessageIconExclamation)},
         2},
        {"nothing to recover selected",
         "pica",
         1,
         {},
         {Told(L"復帰データを選択してください。", kWarning, text::kMessageIconExclamation)},
         2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        Connect(row.receiver);
        Show(row.page);
        for (const int tap : row.taps) {
            Tap(tap);
        }
        const bool isRecovery = std::string_view(row.fault).find("recover") != std::string::npos;
        const std::size_t before = receiver->Files().size();
        Surveyor surveyor;
        surveyor.boxes = row.boxes;
        Click(isRecovery ? RecvFilePage::kRecover : RecvFilePage::kDelete);
        EXPECT_EQ(List().Count(), row.left);
        const bool isMoved = std::string_view(row.receiver) == "pica";
        Click(RecvFilePage::kReload);
        WaitForList();
        EXPECT_EQ(List().Count(), row.left) << "the receiver has done something else";
        EXPECT_EQ(receiver->Files().size() == before,
                  isMoved || row.left == 6 || row.left == (row.page == 1 ? 2 : 3));
    }
}

TEST_F(RecvFileManTest, BringsFilesBack)
{
    for (const char* const name : {"pica", "lettered-power"}) {
        SCOPED_TRACE(name);
        Connect(name);
        Show(1);
        ASSERT_EQ(List().Count(), 2);
        Tap(0);
        Click(RecvFilePage::kRecover);
        EXPECT_EQ(List().Count(), 1);
        QTest::keyClick(sheet.get(), Qt::Key_Tab, Qt::ControlModifier);
        WaitForList();
        EXPECT_EQ(List().Count(), 4) << "the receiver lists it as live";
    }
}

TEST_F(RecvFileManTest, SaysThatTheListIsNotWhole)
{
    Connect("pica");
    Show();
    receiver->HangUp();
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_EQ(qobject_cast<QLabel*>(Find(RecvFilePage::kState))->text(),
              UiText(text::kFilesNotListed));
    KeepPicture(*sheet, QStringLiteral("files-not-listed"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(RecvFileManTest, RefusesAReceiverThatItIsNotFor)
{
    Connect("model 2030\nfix fixed");
    Surveyor surveyor;
    surveyor.onOther = [&](QWidget&) { ADD_FAILURE() << "a screen of files was shown"; };
    CRecvFileMan::Surroundings world;
    world.folders = OwnFolders();
    CRecvFileMan files(command.get(), 0, nullptr, world);
    SilentHost silent; // who is told is CConnect's
    command->SetHost(silent);
    EXPECT_EQ(files.DoModal(), Dialog::kCancelled);
    EXPECT_EQ(command->IsPortOpen(), 0) << "the link stays open";
}

TEST_F(RecvFileManTest, AsksHowToEndTheProgram)
{
    struct Row
    {
        int loadWay;
        int button; // 0: is not asked
        bool closes;
        bool portStaysOpen;
    };
    const Row rows[] = {
        {0, 0, true, true},
        {1, text::kButtonCancel, false, true},
        {1, text::kEndProgram, true, false},
        {1, text::kEndProgramPowerOff, true, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.button);
        Connect("lettered-power");
        Show(0, row.loadWay);
        QTest::keyClick(sheet.get(), Qt::Key_Tab, Qt::ControlModifier); // both pages have been seen
        WaitForList();
        int asked = 0;
        Surveyor surveyor;
        surveyor.onOther = [&](QWidget& front) {
            if (auto* const question = qobject_cast<CPrgEndMes*>(&front)) {
                ++asked;
                for (QPushButton* const button : question->findChildren<QPushButton*>()) {
                    if (button->text() == UiText(row.button)) {
                        QTest::mouseClick(button, Qt::LeftButton);
                        return;
                    }
                }
            }
        };
        QTest::keyClick(sheet.get(), Qt::Key_Escape);
        EXPECT_EQ(asked, row.button != 0 ? 1 : 0);
        EXPECT_EQ(!sheet->isVisible(), row.closes);
        EXPECT_EQ(command->IsPortOpen() != 0, row.portStaysOpen);
        const auto requests = receiver->Requests();
        const bool switchedOff =
            std::any_of(requests.begin(), requests.end(),
                        [](const auto& frame) { return frame.size() > 2 && frame[2] == 0x84; });
        EXPECT_EQ(switchedOff, row.button == text::kEndProgramPowerOff);
    }
}

TEST_F(RecvFileManTest, StandsAThousandRandomEvents)
{
    Connect("lettered-power");
    Show(0, 1);
    std::mt19937 random(testing::Seed()); // the same events every time
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    constexpr std::array kKeys{Qt::Key_Tab,    Qt::Key_Left,  Qt::Key_Right, Qt::Key_Up,
                               Qt::Key_Down,   Qt::Key_Home,  Qt::Key_End,   Qt::Key_F5,
                               Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape};
    QTimer closer; // answers whatever opens over the sheet, in any way
    QObject::connect(&closer, &QTimer::timeout, &closer, [&] {
        auto* const over = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (over == nullptr || over == sheet.get()) {
            return;
        }
        const auto buttons = over->findChildren<QAbstractButton*>();
        if (qobject_cast<CPrgEndMes*>(over) == nullptr && !buttons.empty() && below(3) > 0) {
            QTest::mouseClick(buttons[below(static_cast<int>(buttons.size()))], Qt::LeftButton);
        } else {
            QTest::keyClick(over, Qt::Key_Escape);
        }
    });
    closer.start(0);
    const int most = testing::ProofSize("FIELDCORE_HANDS", 1000);
    testing::Measured(most, "events");
    for (int event = 0; event < most; ++event) {
        if (below(3) == 0) {
            const QPoint point(below(sheet->width()), below(sheet->height()));
            if (QWidget* const hit = sheet->childAt(point)) {
                QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(sheet.get(), point));
            }
        } else {
            QWidget* const focus = QApplication::focusWidget();
            QTest::keyClick(focus != nullptr ? focus : sheet.get(),
                            kKeys[static_cast<std::size_t>(below(kKeys.size()))]);
        }
        QCoreApplication::processEvents();
        ASSERT_TRUE(sheet->isVisible()) << "event " << event << ": left without an answer";
        ASSERT_EQ(command->IsPortOpen(), 1) << "event " << event;
        ASSERT_FALSE(sheet->Progress().isVisible()) << "event " << event;
        ASSERT_LE(SelectedCount(List()), List().Count()) << "event " << event;
    }
    closer.stop();
    Click(RecvFilePage::kReload);
    WaitForList();
    EXPECT_TRUE(sheet->WasListed());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(RecvFileManTest, FitsSmallAndLargeScreensInLargeFonts)
{
    const QFont usual = QApplication::font();
    Connect(kLogging);
    for (const double scale : {1.0, 1.3}) {
        QFont font = usual;
        font.setPixelSize(static_cast<int>(usual.pixelSize() * scale));
        QApplication::setFont(font);
        for (const Theme::Kind theme : {Theme::Kind::Daylight, Theme::Kind::Dark}) {
            Theme::Use(theme);
            for (const QSize size : {QSize(480, 640), QSize(1280, 800)}) {
                SCOPED_TRACE(::testing::Message() << scale << " at " << size.width());
                Show(0, 1, size);
                TransferProgress progress;
                progress.file = 128;
                progress.files = 512;
                progress.name = L"A0314B00WW.Q02";
                progress.fileBytes = 1010 * 1024;
                progress.fileSize = 1023 * 1024;
                progress.totalBytes = progress.totalSize = std::uint64_t{999} << 30U;
                progress.bytesPerSecond = 999.0 * 1024;
                progress.timeLeft = std::chrono::hours(99);
                auto* const panel = sheet->findChild<TransferPanel*>();
                panel->Show(progress);
                QCoreApplication::processEvents();
                EXPECT_EQ(sheet->size(), size) << "the window had to grow";
                for (const QWidget* const child : sheet->findChildren<QWidget*>()) {
                    if (!child->isVisible() || !(qobject_cast<const QLabel*>(child) ||
                                                 qobject_cast<const QAbstractButton*>(child) ||
                                                 qobject_cast<const CTextProgressCtrl*>(child))) {
                        continue;
                    }
                    const auto* const label = qobject_cast<const QLabel*>(child);
                    const bool wraps = label != nullptr && label->wordWrap();
                    EXPECT_GE(child->width(), wraps ? 1 : child->minimumSizeHint().width())
                        << child->metaObject()->className()
                        << child->accessibleName().toStdString();
                    EXPECT_GE(child->height(),
                              wraps ? child->heightForWidth(child->width())
                                    : std::min(child->minimumSizeHint().height(), 44))
                        << child->metaObject()->className()
                        << child->accessibleName().toStdString();
                }
                EXPECT_TRUE(sheet->rect().contains(panel->geometry()));
                EXPECT_GE(List().viewport()->height(), 44) << "no row can be seen";
                KeepPicture(*sheet, QStringLiteral("files-%1-%2-%3")
                                        .arg(size.width())
                                        .arg(theme == Theme::Kind::Dark ? QStringLiteral("dark")
                                                                        : QStringLiteral("day"))
                                        .arg(scale));
            }
        }
    }
    QApplication::setFont(usual);
    Theme::Use(Theme::Kind::Daylight);
}

} // namespace
} // namespace fieldcore
