#include "core/link/Command.h"

#include "core/platform/FileOperations.h"
#include "tests/core/link/FileServer.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using namespace testing;
using namespace std::string_view_literals;

constexpr std::size_t kBlocks = 8;
constexpr std::size_t kSize = kBlocks * kBlockBytes - 300;

/// What becomes of a block on its way.
using Damage = void (*)(Bytes& block);

/// A receiver with one file, which damages one of its blocks so many times.
struct FileServer
{
    ScriptedEnd::Answer operator()(const Bytes& request)
    {
        if (request[2] == 0x08) {
            return {Frame(0x09, Ascii("1008000080 1.85    10"))};
        }
        if (request[2] != 0x96) {
            return {{kAck}};
        }
        if (WantedOffset(request) > 0 && refusesMiddle) {
            return {{kNak}};
        }
        const std::size_t from = fromBeginning ? 0 : WantedOffset(request);
        Bytes all;
        std::size_t number = from / kBlockBytes;
        for (Bytes block : Blocks(content, from)) {
            const bool isHit = number++ == at && times > 0;
            if (isHit) {
                --times;
                damage(block);
            }
            all = Joined({all, block});
            if (isHit && endsThere) {
                break;
            }
        }
        return {all};
    }

    Bytes content = Content(kSize);
    Damage damage = nullptr;
    std::size_t at = 0; ///< block
    int times = 0;
    bool endsThere = false; ///< nothing more behind the damaged block
    bool refusesMiddle = false;
    bool fromBeginning = false; ///< whatever is asked for
};

/// A disk on which nothing gets its name.
class NoRenaming final : public FileOperations
{
public:
    std::error_code Rename(const fs::path&, const fs::path&) override { return kFull; }

    const std::error_code kFull = std::make_error_code(std::errc::no_space_on_device);
};

class DownloadTest : public ::testing::Test, protected VirtualChannel
{
protected:
    DownloadTest()
    {
        host.inBreath = [this] { return !std::exchange(cancel, false); };
    }
    std::int64_t Download(std::size_t size = kSize, const CCommand::BytesArrived& arrived = {},
                          std::optional<std::uint32_t> time = {})
    {
        return command.DownloadFile(day, L"A.Q01", static_cast<std::uint32_t>(size), arrived, time);
    }
    /// The next exchange gets its own answer.
    void ExpectCleanLine()
    {
        StatusReply status;
        EXPECT_EQ(command.RequestStatus(status), 1) << command.LastError();
    }
    static auto Count(const std::vector<Bytes>& requests, std::uint8_t type)
    {
        return std::ranges::count(requests, type, [](const Bytes& request) { return request[2]; });
    }

    bool cancel = false; // at the next breath
    TemporaryFolder folder;
    const fs::path day = folder.Path() / "day";
    const fs::path file = day / "A.Q01";
    const fs::path part = day / "A.Q01.part";
    const fs::path info = day / "A.Q01.part.info";
};

constexpr std::uint32_t kLong = 90'000; // is written in several pieces

TEST_F(DownloadTest, MakesGoodWhatIsDamaged)
{
    const Bytes before = Ascii("the file of yesterday");
    // asks: how often the receiver is asked; 0: as it comes
    const auto check = [&](const char* fault, Damage damage, int times, bool arrives, int asks,
                           bool endsThere = false) {
        for (std::size_t at = 0; at < kBlocks; ++at) {
            SCOPED_TRACE(std::string(fault) + " " + std::to_string(at));
            fs::remove_all(day);
            folder.Write("day/A.Q01", "the file of yesterday");
            const FileServer server{Content(kSize - at * 13), damage, at, times, endsThere};
            const ScriptedEnd receiver(line, server);
            Open();
            const std::int64_t bytes = Download(server.content.size());
            ExpectCleanLine();
            command.ClosePort();
            const auto asked = Count(receiver.Requests(), 0x96);
            EXPECT_TRUE(asked == asks || (asks == 0 && asked <= 8)) << asked;
            EXPECT_EQ(bytes, arrives ? std::ssize(server.content) : -1);
            EXPECT_EQ(command.GetDownloadFault(),
                      arrives ? DownloadFault::None : DownloadFault::Link);
            EXPECT_EQ(Ascii(ContentOf(file)), arrives ? server.content : before);
            EXPECT_NE(fs::exists(part), arrives);
        }
    };
    const Damage flip = [](Bytes& block) { block[20] ^= 0x10; };
    const Damage lose = [](Bytes& block) { block.clear(); };
    const Damage empty = [](Bytes& block) { block = Block(NumberAt(block, 5), 0, {}); };
    const Damage precede = [](Bytes& block) {
        block = Joined({{0x55, 0x02, 0x00, 0x95, 0x02, 0x10}, block});
    };
    check("nothing", nullptr, 0, true, 1);
    check("checksum", flip, 1, true, 2);
    check("lost", lose, 1, true, 2);
    check("without bytes", empty, 1, true, 2);
    check("garbage in front", precede, 1, true, 0);
    check("silence", lose, 1, true, 2, true);
    check("three times", flip, 3, true, 4);
    check("four times", flip, 4, false, 4);
    check("silent for good", lose, 100, false, 4, true);
}

TEST_F(DownloadTest, TakesExactlyTheAnnouncedSize)
{
    const auto fetched = [this](std::size_t size, std::uint32_t announced) {
        SCOPED_TRACE(std::to_string(size) + " of " + std::to_string(announced));
        fs::remove_all(day);
        const ScriptedEnd receiver(line, FileServer{Content(size)});
        Open();
        const std::int64_t bytes = Download(announced);
        ExpectCleanLine();
        const bool arrived = bytes == announced;
        EXPECT_EQ(command.GetDownloadFault(),
                  arrived ? DownloadFault::None : DownloadFault::WrongSize);
        EXPECT_EQ(fs::exists(file), arrived);
        EXPECT_EQ(fs::exists(part), !arrived);
        EXPECT_TRUE(arrived || fs::file_size(part) <= announced);
        return bytes;
    };
    EXPECT_EQ(fetched(0, 0), 0);
    EXPECT_EQ(fetched(3000, 3000), 3000) << "whole blocks";
    EXPECT_EQ(fetched(2999, 3000), 2999);
    EXPECT_EQ(fetched(3001, 3000), -1) << "one byte more, in the last block";
    EXPECT_EQ(fetched(3501, 3500), -1) << "one byte more, behind the last block";
    EXPECT_EQ(fetched(5000, 0xFFFFFFFF), 5000);
    EXPECT_EQ(fetched(10, 0), -1);
}

TEST_F(DownloadTest, SaysWhyTheReceiverDoesNotSend)
{
    const auto why = [this](const Bytes& answer) {
        const ScriptedEnd receiver(line, [&](const Bytes& request) {
            return ScriptedEnd::Answer{request[2] == 0x96 ? answer : Bytes{kAck}};
        });
        Open();
        EXPECT_EQ(Download(), -1);
        EXPECT_EQ(Count(receiver.Requests(), 0x96), 1);
        return command.GetDownloadFault();
    };
    EXPECT_EQ(why(Block(0, 3, {})), DownloadFault::NoSuchFile);
    EXPECT_EQ(why(Block(0, 5, {1, 2, 3})), DownloadFault::BeingLogged);
    EXPECT_EQ(why({kNak}), DownloadFault::Link);
}

TEST_F(DownloadTest, CancelsWithinOneBlock)
{
    for (const bool byHost : {false, true}) {
        for (std::uint32_t at = 1; at < kBlocks; ++at) {
            SCOPED_TRACE(std::to_string(byHost) + " " + std::to_string(at));
            const ScriptedEnd receiver(line, FileServer());
            Open();
            std::uint32_t seen = 0;
            const auto stop = [&](std::uint32_t arrived) {
                seen = arrived;
                const bool now = arrived == at * kBlockBytes;
                cancel = byHost && now;
                return byHost || !now;
            };
            EXPECT_EQ(Download(kSize, stop), -1);
            EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Cancelled);
            EXPECT_EQ(seen, at * kBlockBytes) << "blocks were taken after the cancel";
            EXPECT_EQ(fs::file_size(part), seen);
            EXPECT_FALSE(fs::exists(file));
            ExpectCleanLine();
            command.ClosePort();
            EXPECT_EQ(Count(receiver.Requests(), 0x5A), 1);
        }
    }
}

/// Names that no file in a folder may get: they lead out of it, mean a device, hide something, or
/// cannot stand on a card.
constexpr std::wstring_view kHostileNames[] = {
    L""sv,         L"."sv,           L".."sv,          L" "sv,        L"/a.Q01"sv,
    L"../a.Q01"sv, L"a\\b.Q01"sv,    L"C:a.Q01"sv,     L"a\0.Q01"sv,  L"\x1B[2J"sv,
    L"a\x7F"sv,    L"a\x85"sv,       L"a."sv,          L"a.Q01 "sv,   L" a.Q01"sv,
    L"con"sv,      L"Con.a.b"sv,     L"com0.Q01"sv,    L"LPT1.Q01"sv, L"COM\u00B9.Q01"sv,
    L"CONIN$"sv,   L"NUL .Q01"sv,    L"a*.Q01"sv,      L"a?.Q01"sv,   L"a\".Q01"sv,
    L"<a>.Q01"sv,  L"a|b.Q01"sv,     L"\xD800.Q01"sv,  L"a.PART"sv,   L"a.part.info"sv,
    L".bashrc"sv,  L"AutoRun.INF"sv, L"desktop.ini"sv,
};

TEST_F(DownloadTest, HostileNamesWriteAndSendNothing)
{
    FileServer server;
    const ScriptedEnd receiver(line, server);
    Open();
    const fs::path target = folder.Path() / "outer" / "inner";
    fs::create_directories(target);
    for (const std::wstring_view name : kHostileNames) {
        SCOPED_TRACE(::testing::PrintToString(name));
        EXPECT_EQ(command.DownloadFile(target, name, kSize), -1);
        EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Name);
    }
    EXPECT_TRUE(fs::is_empty(target));
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(folder.Path()), {}), 2);
    // A link under the name leads elsewhere.
    fs::create_symlink(folder.Path() / "elsewhere", target / "A.Q01");
    EXPECT_EQ(command.DownloadFile(target, L"A.Q01", kSize), -1);
    EXPECT_FALSE(fs::exists(folder.Path() / "elsewhere"));
    command.ClosePort();
    EXPECT_TRUE(receiver.Requests().empty());
    // Names as receivers give them, which look a little alike.
    for (const std::wstring_view name : {L"A0314A00.Q01", L"COM.Q01", L"CONE.Q01", L"COM10.Q01",
                                         L"autorun.Q01", L"a..b", L"測点／１.Q01", L"a b.Q02"}) {
        SCOPED_TRACE(::testing::PrintToString(name));
        EXPECT_EQ(CheckReceivedName(name), NameFault::None);
    }
}

TEST_F(DownloadTest, NamesThatACardTakesForTheSameAreRefused)
{
    FileServer server;
    const ScriptedEnd receiver(line, server);
    Open();
    folder.Write("day/Ａ.q01", "kept");
    EXPECT_EQ(command.DownloadFile(day, L"ａ.Q01", kSize), -1);
    EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Name);
    EXPECT_EQ(command.GetNameFault(), NameFault::Taken);
    EXPECT_EQ(ContentOf(day / "Ａ.q01"), "kept");
    EXPECT_EQ(command.DownloadFile(day, L"Ａ.q01", kSize), kSize)
        << "the very same name is no other";

    ReceivedNames names;
    EXPECT_EQ(names.Add(L"A.Q01", folder.Path()), NameFault::None);
    EXPECT_EQ(names.Add(L"a.Q01", folder.Path()), NameFault::Taken);
    EXPECT_EQ(names.Add(L"A.Q01", folder.Path()), NameFault::Taken) << "two files of one name";
    EXPECT_EQ(names.Add(L"a.Q01", day), NameFault::None) << "another folder";
    EXPECT_EQ(names.Add(L"д.Q01", folder.Path()), NameFault::None);
    EXPECT_EQ(names.Add(L"Д.Q01", folder.Path()), NameFault::Taken);
}

void Overwrite(const fs::path& file, std::streamoff at, std::string_view bytes)
{
    std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(at) << bytes;
}

/// Breaks a transfer off, changes something, and fetches again.
TEST_F(DownloadTest, GoesOnWhereItBrokeOffOrSaysWhyNot)
{
    constexpr std::uint32_t kAt = 70;           // the first block that does not come
    constexpr std::uint32_t kPieceEnd = 33'000; // of the first piece that was written at once
    const fs::path other = folder.Path() / "other";
    const auto putBehindLink = [&other](const fs::path& from) {
        fs::rename(from, other);
        fs::create_symlink(other, from);
    };
    std::optional<std::uint32_t> time;
    FileServer server;
    using enum AnewReason;
    // What is changed, where the transfer is continued, and why it begins anew.
    const std::tuple<const char*, std::function<void()>, std::uint32_t, AnewReason> rows[] = {
        {"nothing", [] {}, kAt * 1000, None},
        {"the time", [&] { ++*time; }, 0, OtherFile},
        {"the size", [&] { server.content.push_back(1); }, 0, OtherFile},
        {"no time is known any more", [&] { time.reset(); }, 0, None},
        {"the last block there", [&] { server.content[kAt * 1000 - 1] ^= 1; }, 0, Changed},
        {"the info file is gone", [&] { fs::remove(info); }, 0, NoRecord},
        {"it is something else", [&] { folder.Write("day/A.Q01.part.info", "notes"); }, 0,
         NoRecord},
        {"its last line is torn", [&] { fs::resize_file(info, fs::file_size(info) - 3); },
         2 * kPieceEnd, None},
        {"nothing had been written", [&] { fs::resize_file(part, 0); }, 0, Damaged},
        {"a byte of the second piece", [&] { Overwrite(part, kPieceEnd + 7, "?"); }, kPieceEnd,
         None},
        {"a byte of the first one", [&] { Overwrite(part, 7, "?"); }, 0, Damaged},
        {"more than had arrived", [&] { Overwrite(part, kAt * 1000, "more"); }, kAt * 1000, None},
        {"a second name", [&] { fs::create_hard_link(part, other); }, 0, NotOurs},
        {"a link to it", [&] { putBehindLink(part); }, 0, NotOurs},
        {"a link to the info", [&] { putBehindLink(info); }, 0, NoRecord},
        {"another user's", [&] { ASSERT_EQ(chown(part.c_str(), 65534, 65534), 0); }, 0, NotOurs},
        {"the middle is refused", [&] { server.refusesMiddle = true; }, 0, NotFromMiddle},
        {"whatever is asked, the beginning", [&] { server.fromBeginning = true; }, 0,
         NotFromMiddle},
    };
    for (const bool cancelled : {false, true}) {
        for (const auto& [change, make, continuedAt, reason] : rows) {
            SCOPED_TRACE(change);
            if (std::string_view(change) == "another user's" && geteuid() != 0) {
                continue; // nobody else can give a file away
            }
            fs::remove_all(day);
            fs::remove(other);
            time = 1'457'913'600;
            server = {Content(kLong), [](Bytes& block) { block.resize(block.size() / 2); }, kAt,
                      cancelled ? 0 : 1, true};
            std::optional<ScriptedEnd> receiver;
            receiver.emplace(line, server);
            Open();
            const auto breakOff = [&](std::uint32_t bytes) {
                if (bytes >= kAt * 1000 && !cancelled) {
                    line.HangUp();
                }
                return bytes < kAt * 1000 || !cancelled;
            };
            EXPECT_EQ(Download(kLong, breakOff, time), -1);
            EXPECT_EQ(fs::file_size(part), kAt * 1000);
            server.times = 0;
            make();
            const std::string before = ContentOf(other);
            receiver.emplace(line, server);
            Open();
            std::uint32_t first = 0; // bytes that are told of first
            const auto note = [&first](std::uint32_t bytes) {
                first = first == 0 ? bytes : first;
                return true;
            };
            EXPECT_EQ(Download(server.content.size(), note, time),
                      static_cast<std::int64_t>(server.content.size()))
                << command.LastError();
            ExpectCleanLine();
            const TransferStart start = command.GetTransferStart();
            EXPECT_EQ(start.continuedAt, continuedAt);
            EXPECT_EQ(start.reason, reason);
            EXPECT_EQ(first, std::max(continuedAt, 1000U));
            EXPECT_TRUE(Ascii(ContentOf(file)) == server.content);
            EXPECT_EQ(ContentOf(other), before) << "what had another name was written to";
            EXPECT_EQ(std::distance(fs::directory_iterator(day), {}), 1);
            struct stat finished = {};
            EXPECT_EQ(lstat(file.c_str(), &finished), 0);
            EXPECT_TRUE(S_ISREG(finished.st_mode) && finished.st_nlink == 1 &&
                        finished.st_uid == geteuid());
        }
    }
}

/// What has arrived as a whole and could not get its name.
TEST_F(DownloadTest, AsksOnlyForTheLastBlockOfWhatIsThere)
{
    NoRenaming full;
    command.SetFileOperations(full);
    FileServer server;
    const ScriptedEnd receiver(line, server);
    Open();
    EXPECT_EQ(Download(kSize, {}, 1), -1);
    EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Write);
    EXPECT_EQ(command.GetFileError(), full.kFull);
    command.SetFileOperations(FileOperations::Instance());
    EXPECT_EQ(Download(kSize, {}, 1), kSize);
    EXPECT_EQ(command.GetTransferStart().continuedAt, kSize);
    EXPECT_EQ(WantedOffset(receiver.Requests().back()), 7000U);
    EXPECT_TRUE(Ascii(ContentOf(file)) == server.content);
}

/// A receiver that gives nothing more does not cost what is there.
TEST_F(DownloadTest, KeepsWhatIsThereUntilTheFirstBlockComes)
{
    std::string before;
    {
        const ScriptedEnd receiver(line, FileServer());
        Open();
        EXPECT_EQ(Download(
                      kSize, [](std::uint32_t bytes) { return bytes < 4000; }, 1),
                  -1);
        before = ContentOf(part);
        EXPECT_EQ(before.size(), 4000U);
    }
    const ScriptedEnd refusing(line, [](const Bytes& request) {
        return ScriptedEnd::Answer{{request[2] == 0x96 ? kNak : kAck}};
    });
    Open();
    EXPECT_EQ(Download(kSize, {}, 1), -1);
    EXPECT_EQ(ContentOf(part), before);
}

} // namespace
} // namespace fieldcore
