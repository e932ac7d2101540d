#include "core/equipment/ReceiverFiles.h"

#include "core/link/Connect.h"
#include "tests/core/equipment/FilesFixture.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <string_view>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::FilesTest;
using testing::LarkRecord;
using testing::PicaRecord;
using testing::ReceiverScript;
using testing::ScriptedEnd;

const testing::Bytes kDay{0x07, 0xEA, 3, 14, 20, 30}; // 2026-03-14 20:30 UTC: the 15th

class ReceiverFilesTest : public FilesTest
{
protected:
    std::wstring Shown(int row) const
    {
        const FileRow& shown = rows.At(row);
        return shown.name + L'|' + shown.date + L'|' + shown.time + L'|' + shown.size;
    }
};

TEST_F(ReceiverFilesTest, ListsEachFamilyInItsManner)
{
    ReceiverScript lark;
    lark.records = {LarkRecord("A.Q01", 2048, 0, 86400 + 3719), LarkRecord("B.C.Q01", 3 << 20, 7)};
    Start(lark);
    ASSERT_EQ(rows.Count(), 2);
    EXPECT_EQ(Shown(0), L"A|80/01/07|01:01|2.0");
    EXPECT_EQ(rows.At(0).icon, FileRow::Live);
    EXPECT_TRUE(Shown(1).starts_with(L"B|") && Shown(1).ends_with(L"|3.0M"));
    EXPECT_EQ(rows.At(1).icon, FileRow::Logging);
    EXPECT_EQ(files->GetLogging(), 1);
    EXPECT_EQ(files->GetFileAttr(1, 1), 7) << "a Lark's attributes as they are";
    EXPECT_EQ(files->GetFileAttr(1, 0), 0) << "no record is called B.Q01";
    EXPECT_EQ(files->GetFileAttr(-1, 1), 0);
    EXPECT_EQ(files->GetFileAttr(512, 1), 0);

    lark.records = {LarkRecord("A.Q1D", 1, 1)};
    Start(lark, ReceiverFiles::Recycled);
    EXPECT_EQ(rows.At(0).icon, FileRow::Recycled) << "of the bin, whatever its attributes";
    EXPECT_EQ(Sent(), std::vector<std::string>{"9C *.Q1D"});

    ReceiverScript pica;
    pica.typeCode = 27;
    pica.records = {PicaRecord(9, "HIDDEN", 1, kDay), PicaRecord(300, "A0314A00", 0x20, kDay),
                    PicaRecord(7, "A0314A01", 0, kDay)};
    Start(pica);
    ASSERT_EQ(rows.Count(), 2);
    EXPECT_EQ(rows.At(0).date, L"26/03/15");
    EXPECT_EQ(rows.At(0).icon, FileRow::Logging);
    EXPECT_EQ(files->GetFileAttr(0, 0), 1);
    EXPECT_EQ(files->GetFileAttr(1, 1), 1) << "record 1 is row 0";
    EXPECT_EQ(files->GetFileIndex_Pica(L"A0314A00"), 300);
    EXPECT_EQ(files->GetFileIndex_Pica(L"A0314A01"), 7);
}

TEST_F(ReceiverFilesTest, PagesAndButtonsFollowTypeAndVersion)
{
    // Type code and version; whether there is a recycle page, a download, and a Lark's pattern.
    const std::tuple<const char*, int, const char*, bool, bool, std::string_view> table[] = {
        {"Lark 3.69", 31, "00369", true, true, "9C *.Q01"},
        {"Lark 3.7", 31, "00370", false, true, "9C *.Q01"},
        {"Lark 4.43, newer format", 31, "00443", false, true, "9C *.Q02"},
        {"newer format whatever the version", 'G', "00150", true, true, "9C *.Q02"},
        {"first Pica", 200, "00369", true, false, ""},
        {"second Pica", 27, "00369", true, false, ""},
    };
    for (const auto& [label, typeCode, version, recyclePage, download, live] : table) {
        SCOPED_TRACE(label);
        Start({.typeCode = typeCode, .version = version});
        EXPECT_EQ(files->HasRecyclePage(), recyclePage);
        EXPECT_EQ(files->CanDownload(), download);
        EXPECT_EQ(files->CanDeleteRecycled(), download);
        const auto sent = Sent();
        EXPECT_EQ(sent.empty() ? "" : sent.front(), live);
    }
}

TEST_F(ReceiverFilesTest, OpensForPicaAndLarkOnly)
{
    const std::pair<int, bool> types[] = {{31, true}, {27, true},  {'r', true},
                                          {7, false}, {24, false}, {6, false}};
    for (const auto& [code, isOne] : types) {
        SCOPED_TRACE(code);
        const ScriptedEnd far(line, ReceiverScript{.typeCode = code});
        ASSERT_EQ(command.OpenPort("in memory"), 1);
        CConnect connect(command, 0, ConnectTarget{}); // the port is open: it has nothing to ask
        ReceiverFiles opened(command);
        EXPECT_EQ(opened.Open(connect), isOne ? ReceiverFiles::Opened : ReceiverFiles::NotOpened);
        EXPECT_EQ(command.IsPortOpen(), isOne ? 1 : 0);
        command.ClosePort();
    }
    CConnect refused(command, 0, ConnectTarget{});
    host.boxes.clear();
    host.answers = {BoxAnswer::Cancel};
    ReceiverFiles opened(command);
    EXPECT_EQ(opened.Open(refused), ReceiverFiles::NotOpened);
}

/// Keeps messages back, as a window does.
class QueueingTarget : public MessageTarget
{
public:
    void Post(unsigned, std::intptr_t wParam, std::intptr_t lParam) override
    {
        queue.emplace_back(wParam, lParam);
    }
    std::vector<std::pair<std::intptr_t, std::intptr_t>> queue;
};

TEST_F(ReceiverFilesTest, WhatIsLeftOfAnEarlierListingIsIgnored)
{
    Start({.records = {LarkRecord("A.Q01", 1), LarkRecord("B.Q01", 1)}});
    QueueingTarget window;
    ASSERT_EQ(files->GetFileData(window), 1);
    ASSERT_EQ(files->GetFileData(window), 1);
    EXPECT_EQ(host.waitCursors, 1);
    for (const auto& [wParam, lParam] : window.queue) {
        EXPECT_TRUE(files->IsListing());
        files->OnRecvFileList(wParam, lParam);
    }
    EXPECT_EQ(rows.Count(), 2) << "not twice";
    EXPECT_EQ(host.waitCursors, 0);
    files->OnRecvFileList(0, 512);
    files->OnRecvFileList(0, -1);
    EXPECT_EQ(rows.Count(), 2);
    EXPECT_EQ(files->GetFileAttr(2, 0), 0);
    EXPECT_EQ(files->GetFileAttr(-1, 0), 0);
    // A manager that goes before its listing ended leaves no wait cursor behind.
    ASSERT_EQ(files->GetFileData(window), 1);
    files.reset();
    EXPECT_EQ(host.waitCursors, 0);
}

TEST_F(ReceiverFilesTest, MarksWhatWasFetched)
{
    const TemporaryFolder folder;
    folder.Write("plain/A.Q01", "12345");
    folder.Write("dated/1980-01-07/B.Q01", "12345");
    folder.Write("dated/1980-01-08/C.Q01", "12345"); // of another day
    folder.Write("plain/D.Q01", "1234");             // of another size
    std::filesystem::create_directories(folder.Path() / "plain" / "E.Q01");
    ReceiverScript script;
    for (const char* name : {"A.Q01", "B.Q01", "C.Q01", "D.Q01", "E.Q01", "F.Q01", "../A.Q01"}) {
        script.records.push_back(LarkRecord(name, 5, 0, 86400));
    }
    Start(script);
    files->SetFetchedFolders({folder.Path() / "plain", folder.Path() / "dated", "", "/nowhere"});
    files->GetFileData(*this);
    std::string fetched;
    for (int row = 0; row < rows.Count(); ++row) {
        fetched += rows.At(row).mark == FileRow::Mark::Fetched ? 'x' : '-';
    }
    EXPECT_EQ(fetched, "xx-----");
}

} // namespace
} // namespace fieldcore
