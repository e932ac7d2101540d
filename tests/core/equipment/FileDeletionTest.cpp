#include "core/equipment/FileDeletion.h"

#include "core/resources/StringTable.h"
#include "tests/core/equipment/FilesFixture.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::FilesTest;
using testing::LarkRecord;
using testing::PicaRecord;
using testing::ReceiverScript;
using testing::RecordingHost;

using Box = RecordingHost::Box;
using Strings = std::vector<std::string>;

const Box kForGood{L"選択されたファイルを受信機から完全に削除します。\nよろしいですか？",
                   L"データ削除確認", BoxButtons::YesNo, BoxIcon::Question};
const Box kRecycled{L"ゴミ箱内のデータを削除すると、元に復帰できませせん。\n"
                    L"データを完全に削除してもよろしいですか？",
                    L"データ削除確認", BoxButtons::YesNo, BoxIcon::Question};
Box Warning(const wchar_t* text)
{
    return {text, L"データ選択警告", BoxButtons::Ok, BoxIcon::Exclamation};
}

class FileDeletionTest : public FilesTest
{
protected:
    std::vector<std::wstring> Names() const
    {
        std::vector<std::wstring> names;
        for (int row = 0; row < rows.Count(); ++row) {
            names.push_back(rows.Name(row));
        }
        return names;
    }
};

TEST_F(FileDeletionTest, AsksAndWarnsBefore)
{
    struct Row
    {
        const char* label;
        const char* version;
        int mode;
        std::vector<int> selected; ///< 0 plain, 1 being logged, 2 plain
        BoxAnswer answer;
        std::vector<Box> boxes;
        std::vector<std::wstring> left;
    };
    const Row table[] = {
        {"nothing selected",
         "00369",
         1,
         {},
         BoxAnswer::Ok,
         {Warning(L"削除データを選択してください。")},
         {L"A", L"B", L"C"}},
        {"3.69, live: no question", "00369", 1, {0}, BoxAnswer::No, {}, {L"B", L"C"}},
        {"3.7: question", "00370", 1, {0}, BoxAnswer::Yes, {kForGood}, {L"B", L"C"}},
        {"3.7: no", "00370", 1, {0}, BoxAnswer::No, {kForGood}, {L"A", L"B", L"C"}},
        {"recycle bin: question", "00369", 0, {2}, BoxAnswer::Yes, {kRecycled}, {L"A", L"B"}},
        {"recycle bin: no", "00369", 0, {2}, BoxAnswer::No, {kRecycled}, {L"A", L"B", L"C"}},
        {"only the logged one",
         "00369",
         1,
         {1},
         BoxAnswer::Ok,
         {Warning(L"指定ファイルは、現在ロギング中のため削除を行えません。")},
         {L"A", L"B", L"C"}},
        {"the logged one among others",
         "00369",
         1,
         {0, 1, 2},
         BoxAnswer::Ok,
         {Warning(L"削除選択データ中にロギングデータが含まれて居ます。\n"
                  L"ロギングデータの削除は行えません。")},
         {L"B"}},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.label);
        const std::string extension = row.mode == 1 ? ".Q01" : ".Q1D";
        ReceiverScript script;
        script.version = row.version;
        script.records = {LarkRecord("A" + extension, 1), LarkRecord("B" + extension, 1, 1),
                          LarkRecord("C" + extension, 1)};
        Start(script, row.mode);
        for (const int selected : row.selected) {
            rows.Select(selected, true);
        }
        host.answer = row.answer;
        FileDeletion(*files).FileDelete();
        EXPECT_EQ(host.boxes, row.boxes);
        EXPECT_EQ(Names(), row.left);
        EXPECT_EQ(host.waitCursors, 0);
    }
    Start(ReceiverScript{}, ReceiverFiles::Recycled);
    FileDeletion(*files).FileRecover();
    EXPECT_EQ(host.boxes, std::vector<Box>{Warning(L"復帰データを選択してください。")});
}

TEST_F(FileDeletionTest, SendsALarkTheseCommands)
{
    struct Row
    {
        const char* label;
        int mode;
        bool recover;
        std::map<std::string, testing::Bytes> inReceiver;
        std::set<std::string> refused;
        Strings sent; ///< for the rows B and A, after the listing
    };
    const Row table[] = {
        {"live", 1, false, {}, {}, {"9C B.Q1D", "A0 B.Q01", "9C A.Q1D", "A0 A.Q01"}},
        {"live, with a recycled one of that name",
         1,
         false,
         {{"B.Q1D", {}}},
         {},
         {"9C B.Q1D", "A0 B.Q1D", "9C A.Q1D", "A0 A.Q01"}},
        {"live, the recycled one is refused",
         1,
         false,
         {{"B.Q1D", {}}},
         {"B.Q1D"},
         {"9C B.Q1D", "A0 B.Q1D", "9C A.Q1D", "A0 A.Q01"}},
        {"live, the question for a recycled one is refused",
         1,
         false,
         {},
         {"list B.Q1D"},
         {"9C B.Q1D", "A0 B.Q01", "9C A.Q1D", "A0 A.Q01"}},
        {"recycled",
         0,
         false,
         {{"B.Q1D", {}}, {"A.Q1D", {}}},
         {},
         {"9C B.Q1D", "A0 B.Q1D", "A0 B.Q01", "9C A.Q1D", "A0 A.Q1D", "A0 A.Q01"}},
        {"recycled, refused",
         0,
         false,
         {{"B.Q1D", {}}, {"A.Q1D", {}}},
         {"B.Q1D"},
         {"9C B.Q1D", "A0 B.Q1D", "9C A.Q1D", "A0 A.Q1D", "A0 A.Q01"}},
        {"recovered, one refused", 0, true, {{"B.Q1D", {}}}, {"B.Q1D"}, {"A1 B.Q1D", "A1 A.Q1D"}},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.label);
        const std::string extension = row.mode == 1 ? ".Q01" : ".Q1D";
        ReceiverScript script;
        script.records = {LarkRecord("A" + extension, 1), LarkRecord("B" + extension, 1),
                          LarkRecord("C" + extension, 1)};
        script.files = row.inReceiver;
        script.refused = row.refused;
        Start(script, row.mode);
        rows.Select(0, true);
        rows.Select(1, true);
        host.answer = BoxAnswer::Yes;
        if (row.recover) {
            FileDeletion(*files).FileRecover();
        } else {
            FileDeletion(*files).FileDelete();
        }
        EXPECT_EQ(Names(), std::vector<std::wstring>{L"C"}) << "refused ones leave the list, too";
        Strings sent = Sent();
        sent.erase(sent.begin());
        EXPECT_EQ(sent, row.sent);
    }
}

TEST_F(FileDeletionTest, SendsAPicaTheseCommands)
{
    const testing::Bytes day{0x07, 0xEA, 3, 14, 1, 30};
    for (const bool recover : {false, true}) {
        SCOPED_TRACE(recover);
        const std::uint8_t deleted = recover ? 0x80 : 0x00;
        const auto logged = static_cast<std::uint8_t>(deleted | 0x20);
        ReceiverScript script;
        script.typeCode = 27;
        script.records = {PicaRecord(4, "A", deleted, day), PicaRecord(0x0102, "B", deleted, day),
                          PicaRecord(6, "C", logged, day), PicaRecord(7, "D.E", deleted, day)};
        Start(script, recover ? ReceiverFiles::Recycled : ReceiverFiles::Live);
        rows.SelectAll();
        if (recover) {
            FileDeletion(*files).FileRecover();
        } else {
            FileDeletion(*files).FileDelete();
        }
        EXPECT_EQ(Names(), std::vector<std::wstring>{L"C"});
        // The row of "D.E" is "D", which no record is called.
        EXPECT_EQ(Sent(), recover ? (Strings{"68 255", "68 258", "68 4"})
                                  : (Strings{"60 255", "60 258", "60 4"}));
    }
}

TEST_F(FileDeletionTest, StopsWhenTheUserDoesOrTheLinkIsGone)
{
    ReceiverScript script;
    script.records = {LarkRecord("A.Q01", 1), LarkRecord("B.Q01", 1)};
    Start(script);
    rows.SelectAll();
    command.SetLineObserver(
        [&](Direction direction, LineUnit, std::span<const std::uint8_t> frame) {
            if (direction == Direction::Sent && frame[2] == 0x9C) {
                line.HangUp();
            }
        });
    FileDeletion(*files).FileDelete();
    EXPECT_EQ(Names(), std::vector<std::wstring>{L"A"});
    command.SetLineObserver({});
    // A cancelled look at the options is no reason to guess a name and delete it.
    bool silent = false;
    command.ClosePort();
    receiver.emplace(line, [&](const testing::Bytes& request) {
        return silent && request[2] == 0x06 ? testing::ScriptedEnd::Answer{} : script(request);
    });
    ASSERT_EQ(command.OpenPort("in memory"), 1);
    files->GetFileData(*this);
    ASSERT_EQ(rows.Count(), 2);
    rows.SelectAll();
    silent = true;
    host.cancel = true;
    FileDeletion(*files).FileDelete();
    EXPECT_EQ(rows.Count(), 2);
    // Nor to list under one.
    host.cancel = true;
    EXPECT_EQ(files->GetFileData(*this), 0);
    EXPECT_FALSE(files->IsListing());
    EXPECT_EQ(Sent(), Strings{"9C *.Q01"});
}

TEST_F(FileDeletionTest, WhatWasCancelledBeforeDoesNotStopIt)
{
    const testing::Bytes day{0x07, 0xEA, 3, 14, 1, 30};
    ReceiverScript script;
    script.typeCode = 27;
    script.records = {PicaRecord(4, "A", 0, day), PicaRecord(5, "LOGGED", 0x20, day)};
    Start(script);
    rows.SelectAll();
    host.cancel = true;
    ASSERT_EQ(command.Rest(std::chrono::seconds(1)), 0);
    FileDeletion(*files).FileDelete();
    EXPECT_EQ(Names(), std::vector<std::wstring>{L"LOGGED"});
}

} // namespace
} // namespace fieldcore
