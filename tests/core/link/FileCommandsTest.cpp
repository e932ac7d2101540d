#include "core/link/Command.h"

#include "core/platform/FastClock.h"
#include "tests/core/link/FileServer.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Bytes;
using testing::Frame;
using testing::LarkRecord;
using testing::Page;
using testing::PicaRecord;
using testing::ScriptedReceiver;

const Bytes kDay{0x07, 0xEA, 3, 14, 1, 30};

/// Keeps the posted messages.
class Window : public MessageTarget
{
public:
    struct Message
    {
        unsigned number;
        std::intptr_t wParam;
        std::intptr_t lParam;
        bool operator==(const Message&) const = default;
    };
    void Post(unsigned number, std::intptr_t wParam, std::intptr_t lParam) override
    {
        messages.push_back({number, wParam, lParam});
    }

    std::vector<Message> messages;
};

/// The messages of a listing that stores these records.
std::vector<Window::Message> Posted(const std::vector<std::intptr_t>& indexes)
{
    std::vector<Window::Message> messages;
    for (const std::intptr_t index : indexes) {
        messages.push_back({0x8005, 0, index});
    }
    messages.push_back({0x8005, 1, 0});
    return messages;
}

class FileCommandsTest : public ::testing::Test
{
protected:
    void Open(const ScriptedReceiver& receiver, std::chrono::milliseconds timeout = 2s)
    {
        PortSettings settings;
        settings.replyTimeout = timeout;
        command.ClosePort();
        ASSERT_EQ(command.OpenPort(receiver.Path(), settings), 1) << command.LastError();
    }

    FastClock clock{20.0};
    CCommand command{{nullptr, &clock, nullptr, nullptr}};
    DirectoryTable table{};
    Window window;
    TemporaryFolder folder;
};

TEST_F(FileCommandsTest, SendsTheseBytes)
{
    struct Row
    {
        std::string_view name;
        std::function<int()> send;
        Bytes request;
    };
    const Row rows[] = {
        {"list, first Pica",
         [&] { return command.RequestFiles_Pica(1, 3010, table, &window); },
         {2, 0, 0x79, 3, 0, 1, 1, 0x7E, 3}},
        {"list deleted, second Pica",
         [&] { return command.RequestFiles_Pica(0, 3020, table, &window); },
         {2, 0, 0x79, 3, 0, 0, 2, 0x7E, 3}},
        {"list, Lark",
         [&] { return command.RequestFiles_Lark(L"*.Q01", table, &window); },
         {2,   0,   0x9C, 14,  '*', '.', 'Q', '0', '1',  ' ',
          ' ', ' ', ' ',  ' ', ' ', ' ', ' ', ' ', 0xD4, 3}},
        {"exists",
         [&] { return command.FileExists(L"A.Q1D"); },
         {2,   0,   0x9C, 14,  'A', '.', 'Q', '1', 'D',  ' ',
          ' ', ' ', ' ',  ' ', ' ', ' ', ' ', ' ', 0xFF, 3}},
        {"delete by index",
         [&] { return command.DeleteFile_Pica(4); },
         {2, 0, 0x60, 2, 0, 4, 0x66, 3}},
        {"recover by index",
         [&] { return command.RecoverFile_Pica(0x0104); },
         {2, 0, 0x68, 2, 1, 4, 0x6F, 3}},
        {"delete by name",
         [&] { return command.DeleteFile_Lark(L"A0314A00.Q01"); },
         {2,   0,   0xA0, 14,  'A', '0', '3', '1', '4',  'A',
          '0', '0', '.',  'Q', '0', '1', ' ', ' ', 0x78, 3}},
        {"recover by name",
         [&] { return command.RecoverFile_Lark(L"A0314A00.Q01"); },
         {2,   0,   0xA1, 14,  'A', '0', '3', '1', '4',  'A',
          '0', '0', '.',  'Q', '0', '1', ' ', ' ', 0x79, 3}},
        {"download",
         [&] { return static_cast<int>(command.DownloadFile(folder.Path(), L"A.Q01", 5)); },
         {2,   0,   0x96, 20,  'A', '.', 'Q', '0', '1', ' ', ' ', ' ',  ' ',
          ' ', ' ', ' ',  ' ', ' ', 0,   0,   0,   0,   0,   0,   0xEB, 3}},
        {"download to where nothing can be kept",
         [&] { return static_cast<int>(command.DownloadFile("/nowhere/at/all", L"A", 0)); },
         {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ScriptedReceiver receiver({{Bytes{testing::kNak}}});
        Open(receiver);
        row.send();
        command.ClosePort();
        const auto requests = receiver.Stop();
        ASSERT_EQ(requests.size(), row.request.empty() ? 0U : 1U);
        EXPECT_TRUE(row.request.empty() || requests[0] == row.request);
    }
}

TEST_F(FileCommandsTest, ANameThatWouldReachAnotherFileIsNotSent)
{
    ScriptedReceiver receiver([](const Bytes&) { return ScriptedReceiver::Answer{{0x06}}; });
    Open(receiver);
    // The last one has 8 characters and 16 bytes.
    for (const std::wstring_view name :
         {L"", L"A*.Q01", L"?.Q01", L"ABCDEFGHIJKLMNO", L"測量測量測量測量"}) {
        SCOPED_TRACE(name.size());
        EXPECT_EQ(command.DeleteFile_Lark(name), 0);
        EXPECT_EQ(command.RecoverFile_Lark(name), 0);
        EXPECT_EQ(command.FileExists(name), 0);
        EXPECT_EQ(command.Fault(), CommandFault::TooLong);
    }
    EXPECT_EQ(command.DeleteFile_Lark(L"ABCDEFGHIJKLMN"), 1);
    command.ClosePort();
    EXPECT_EQ(receiver.Stop().size(), 1U);
}

TEST_F(FileCommandsTest, APicaListsWhatFitsTheMode)
{
    const std::vector<Bytes> full{PicaRecord(40, "A", 0x00, kDay), PicaRecord(41, "B", 0x01, kDay),
                                  PicaRecord(42, "C", 0x80, kDay), PicaRecord(43, "D", 0x20, kDay),
                                  PicaRecord(44, "E", 0x81, kDay), PicaRecord(45, "F", 0x00, kDay),
                                  PicaRecord(46, "G", 0xA0, kDay), PicaRecord(47, "H", 0x7E, kDay),
                                  PicaRecord(48, "I", 0x00, kDay)};
    const std::vector<Bytes> rest{PicaRecord(50, "J", 0x00, kDay)};
    for (const int mode : {1, 0}) {
        SCOPED_TRACE(mode);
        ScriptedReceiver receiver({{Page(0x79, 0, full)}, {Page(0x79, 1, rest)}});
        Open(receiver);
        window.messages.clear();
        EXPECT_EQ(command.RequestFiles_Pica(mode, 3010, table, &window), 1) << command.LastError();
        EXPECT_EQ(window.messages, mode == 1 ? Posted({0, 3, 5, 7, 8, 9}) : Posted({2, 6}));
    }
    EXPECT_EQ(table[9].Name(), L"J");
    EXPECT_EQ(table[9].fileIndex, 50);
    EXPECT_EQ(table[8].pageFlag, 128);
    EXPECT_EQ(table[9].pageFlag, 0);
}

TEST_F(FileCommandsTest, ListingsEndWhateverTheReceiverSends)
{
    const std::vector<Bytes> picas(9, PicaRecord(1, "A", 0, kDay));
    const std::vector<Bytes> larks(8, LarkRecord("A.Q01", 1));
    const auto larkPages = [&](int count, std::uint8_t step, bool last) {
        Bytes all;
        for (int i = 0; i < count; ++i) {
            const auto number = static_cast<std::uint8_t>(i * step % 128);
            const Bytes page = Page(0x9D, last && i == count - 1 ? number | 0x80 : number, larks);
            all.insert(all.end(), page.begin(), page.end());
        }
        return ScriptedReceiver::Answer{all};
    };
    struct Row
    {
        std::string_view fault;
        bool pica;
        std::function<ScriptedReceiver::Answer(const Bytes&)> answer;
        int result;
        std::size_t records;
        std::size_t requests; ///< with the abort
    };
    const Row rows[] = {
        {"Pica without end", true,
         [&](const Bytes& r) { return ScriptedReceiver::Answer{Page(0x79, r[4], picas)}; }, 1, 512,
         57},
        {"Pica answers with another page", true,
         [&](const Bytes&) { return ScriptedReceiver::Answer{Page(0x79, 1, picas)}; }, 0, 0, 1},
        {"Lark with 64 pages", false, [&](const Bytes&) { return larkPages(64, 1, true); }, 1, 512,
         1},
        {"Lark with more files than fit", false,
         [&](const Bytes&) { return larkPages(70, 1, true); }, 1, 512, 1},
        {"Lark without end", false, [&](const Bytes&) { return larkPages(300, 1, false); }, 0, 512,
         2},
        {"Lark that repeats itself", false, [&](const Bytes&) { return larkPages(300, 0, false); },
         0, 8, 2},
        {"Lark that leaves pages out", false, [&](const Bytes&) { return larkPages(3, 2, true); },
         0, 24, 2},
        {"Lark that falls silent", false, [&](const Bytes&) { return larkPages(2, 1, false); }, 0,
         16, 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        ScriptedReceiver receiver([&](const Bytes& request) {
            return request[2] == 0x5A ? ScriptedReceiver::Answer{{testing::kAck}}
                                      : row.answer(request);
        });
        Open(receiver);
        window.messages.clear();
        EXPECT_EQ(row.pica ? command.RequestFiles_Pica(1, 3010, table, &window)
                           : command.RequestFiles_Lark(L"*.Q01", table, &window),
                  row.result)
            << command.LastError();
        command.ClosePort();
        EXPECT_EQ(window.messages.size(), row.records + 1);
        EXPECT_EQ(window.messages.back(), (Window::Message{0x8005, 1, 0}));
        EXPECT_EQ(receiver.Stop().size(), row.requests);
    }
    window.messages.clear();
    EXPECT_EQ(command.RequestFiles_Lark(L"*.Q01", table, &window), 0) << "no port";
    EXPECT_EQ(window.messages, Posted({}));
}

TEST_F(FileCommandsTest, TheReceiverIsToldWhenTheUserCancels)
{
    class Impatient : public Host
    {
    public:
        BoxAnswer ShowMessage(std::wstring_view, std::wstring_view, BoxStyle) override
        {
            return BoxAnswer::Cancel;
        }
        bool Breathe() override { return std::exchange(m_patient, true); }

    private:
        bool m_patient = false;
    };
    struct Row
    {
        std::string_view what;
        std::function<int()> ask;
    };
    const Row rows[] = {
        {"listing of a Pica", [&] { return command.RequestFiles_Pica(1, 3010, table, &window); }},
        {"listing of a Lark", [&] { return command.RequestFiles_Lark(L"*.Q01", table, &window); }},
        {"whether a file exists", [&] { return command.FileExists(L"A.Q1D"); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ScriptedReceiver receiver([](const Bytes& request) {
            return request[2] == 0x5A ? ScriptedReceiver::Answer{{testing::kAck}}
                                      : ScriptedReceiver::Answer{};
        });
        Open(receiver);
        Impatient host;
        command.SetHost(host);
        EXPECT_EQ(row.ask(), 0);
        EXPECT_EQ(command.Fault(), CommandFault::Cancelled);
        command.ClosePort();
        command.SetHost(SilentHost::Instance());
        const auto requests = receiver.Stop();
        ASSERT_EQ(requests.size(), 2U);
        EXPECT_EQ(requests[1][2], 0x5A);
    }
}

TEST_F(FileCommandsTest, AFileExistsUnderExactlyItsName)
{
    struct Row
    {
        std::string_view fault;
        Bytes answer;
        int exists;
    };
    const Row rows[] = {
        {"it is there", Page(0x9D, 0x80, {LarkRecord("A.Q1D", 1)}), 1},
        {"nothing is there", Page(0x9D, 0x80, {}), 0},
        {"a longer name", Page(0x9D, 0x80, {LarkRecord("A.Q1D2", 1)}), 0},
        {"other case", Page(0x9D, 0x80, {LarkRecord("a.Q1D", 1)}), 0},
        {"second in the list", Page(0x9D, 0x80, {LarkRecord("B", 1), LarkRecord("A.Q1D", 1)}), 0},
        {"refused", {testing::kNak}, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        ScriptedReceiver receiver({{row.answer}});
        Open(receiver);
        EXPECT_EQ(command.FileExists(L"A.Q1D"), row.exists) << command.LastError();
    }
}

} // namespace
} // namespace fieldcore
