#include "core/link/Command.h"

#include "core/platform/PosixFileOperations.h"
#include "simulator/ReceiverFile.h"
#include "simulator/Scenario.h"
#include "simulator/Simulator.h"
#include "tests/core/link/FileServer.h"
#include "tests/core/link/HostileNames.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <atomic>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::Block;
using testing::Blocks;
using testing::Bytes;
using testing::ScriptedEnd;

constexpr std::size_t kBlocks = 8;
constexpr std::size_t kSize = kBlocks * testing::kBlockBytes - 300;
constexpr int kRounds = 20;

enum class Damage
{
    None,
    Checksum,
    Offset,
    Length,
    Lost,
    Repeated,
    Empty,
    Garbage,
    Silence, ///< nothing from here on
    Half,    ///< half of it, and then nothing
};

/// A receiver with one file, which damages one of its blocks so many times.
class FileServer
{
public:
    ScriptedEnd::Answer operator()(const Bytes& request)
    {
        if (request[2] == 0x08) {
            return {testing::Frame(0x09, testing::Ascii("1008000080 1.85    10"))};
        }
        if (request[2] != 0x96) {
            return {{testing::kAck}};
        }
        if (testing::WantedOffset(request) > 0 && refusesMiddle) {
            return {{testing::kNak}};
        }
        const std::size_t from = fromBeginning ? 0 : testing::WantedOffset(request);
        Bytes all;
        std::size_t number = from / testing::kBlockBytes;
        for (Bytes block : Blocks(content, from)) {
            const bool hit = number++ == at && times > 0;
            times -= hit ? 1 : 0;
            if (hit && (damage == Damage::Silence || damage == Damage::Half)) {
                block.resize(damage == Damage::Half ? block.size() / 2 : 0);
                Append(all, block);
                break;
            }
            Append(all, hit ? Damaged(std::move(block)) : block);
        }
        return {all};
    }

    Bytes content = testing::Content(kSize);
    Damage damage = Damage::None;
    std::size_t at = 0; ///< block
    int times = 0;
    bool refusesMiddle = false;
    bool fromBeginning = false; ///< whatever is asked for

private:
    static void Append(Bytes& all, const Bytes& more)
    {
        all.insert(all.end(), more.begin(), more.end());
    }
    [[nodiscard]] Bytes Damaged(Bytes block) const
    {
        switch (damage) {
        case Damage::Checksum:
            block[20] ^= 0x10;
            return block;
        case Damage::Offset:
            block[8] ^= 0x01; // the checksum is right all the same
            return Block(testing::NumberAt(block, 5), block[9],
                         Bytes(block.begin() + 10, block.end() - 2));
        case Damage::Length:
            block[3] ^= 0x01;
            return block;
        case Damage::Repeated:
            return testing::Joined({block, block});
        case Damage::Empty:
            return Block(testing::NumberAt(block, 5), 0, {});
        case Damage::Garbage:
            return testing::Joined({Bytes{0x55, 0x02, 0x00, 0x95, 0x02, 0x10}, block});
        case Damage::None:
        case Damage::Lost:
        case Damage::Silence:
        case Damage::Half:
            break;
        }
        return {};
    }
};

std::optional<Bytes> Read(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    return testing::Ascii(text);
}

/// Lets the n-th call of one kind fail.
class FailingOperations final : public PosixFileOperations
{
public:
    enum class Call
    {
        None,
        Open,
        Write,
        Sync,
        Rename,
    };
    std::error_code Open(const fs::path& file, const fs::path& like, int& handle) override
    {
        return Fails(Call::Open) ? kFull : PosixFileOperations::Open(file, like, handle);
    }
    std::error_code Write(int handle, std::string_view bytes) override
    {
        return Fails(Call::Write) ? kFull : PosixFileOperations::Write(handle, bytes);
    }
    std::error_code Sync(int handle) override
    {
        return Fails(Call::Sync) ? kFull : PosixFileOperations::Sync(handle);
    }
    std::error_code Rename(const fs::path& from, const fs::path& to) override
    {
        return Fails(Call::Rename) ? kFull : PosixFileOperations::Rename(from, to);
    }

    const std::error_code kFull = std::make_error_code(std::errc::no_space_on_device);
    Call failing = Call::None;
    int after = 0; ///< calls that succeed first

private:
    bool Fails(Call call) { return call == failing && after-- <= 0; }
};

class DownloadTest : public ::testing::Test, protected testing::VirtualChannel
{
protected:
    DownloadTest()
    {
        host.inBreath = [this] { return !std::exchange(cancel, false); };
    }
    std::int64_t Download(std::uint32_t size = kSize, const CCommand::BytesArrived& arrived = {})
    {
        return command.DownloadFile(folder.Path() / "day", L"A.Q01", size, arrived);
    }
    [[nodiscard]] fs::path File() const { return folder.Path() / "day" / "A.Q01"; }
    [[nodiscard]] fs::path Part() const { return folder.Path() / "day" / "A.Q01.part"; }
    /// The next exchange gets its own answer.
    void ExpectCleanLine()
    {
        StatusReply status;
        EXPECT_EQ(command.RequestStatus(status), 1) << command.LastError();
    }
    static std::size_t Count(const std::vector<Bytes>& requests, std::uint8_t type)
    {
        std::size_t count = 0;
        for (const Bytes& request : requests) {
            count += request[2] == type ? 1 : 0;
        }
        return count;
    }

    bool cancel = false; // at the next breath
    TemporaryFolder folder;
};

TEST_F(DownloadTest, MakesGoodWhatIsDamaged)
{
    struct Row
    {
        const char* fault;
        Damage damage;
        int times;
        bool arrives;
        std::size_t asks; ///< 0: as it comes
    };
    const Row rows[] = {
        {"nothing", Damage::None, 0, true, 1},
        {"checksum", Damage::Checksum, 1, true, 2},
        {"offset", Damage::Offset, 1, true, 2},
        {"length", Damage::Length, 1, true, 0},
        {"lost", Damage::Lost, 1, true, 2},
        {"repeated", Damage::Repeated, 1, true, 0},
        {"without bytes", Damage::Empty, 1, true, 2},
        {"garbage", Damage::Garbage, 1, true, 0},
        {"silence", Damage::Silence, 1, true, 2},
        {"three times", Damage::Checksum, 3, true, 4},
        {"four times", Damage::Checksum, 4, false, 4},
        {"silent for good", Damage::Silence, 100, false, 4},
    };
    const Bytes before = testing::Ascii("the file of yesterday");
    for (const Row& row : rows) {
        const int rounds = row.damage == Damage::Silence ? 4 : kRounds; // those that wait
        for (int round = 0; round < rounds; ++round) {
            SCOPED_TRACE(std::string(row.fault) + " " + std::to_string(round));
            fs::remove_all(folder.Path() / "day");
            folder.Write("day/A.Q01", "the file of yesterday");
            FileServer server;
            server.damage = row.damage;
            server.times = row.times;
            server.at = static_cast<std::size_t>(round) % kBlocks;
            server.content.resize(kSize - static_cast<std::size_t>(round) * 13);
            const Bytes content = server.content;
            const ScriptedEnd receiver(line, server);
            Open();
            const std::int64_t bytes = Download(static_cast<std::uint32_t>(content.size()));
            ExpectCleanLine();
            command.ClosePort();
            const std::size_t asks = Count(receiver.Requests(), 0x96);
            if (row.asks != 0) {
                EXPECT_EQ(asks, row.asks);
            }
            EXPECT_LE(asks, 8U);
            if (row.arrives) {
                EXPECT_EQ(bytes, static_cast<std::int64_t>(content.size())) << command.LastError();
                EXPECT_EQ(Read(File()), content);
                EXPECT_FALSE(fs::exists(Part()));
            } else {
                EXPECT_EQ(bytes, -1);
                EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Link);
                EXPECT_EQ(Read(File()), before);
                EXPECT_TRUE(fs::exists(Part()));
            }
            if (HasFailure()) {
                return;
            }
        }
    }
}

TEST_F(DownloadTest, TakesExactlyTheAnnouncedSize)
{
    struct Row
    {
        const char* fault;
        std::size_t size;
        std::uint32_t announced;
        std::int64_t bytes;
    };
    const Row rows[] = {
        {"empty", 0, 0, 0},
        {"whole blocks", 3000, 3000, 3000},
        {"one byte less than announced", 2999, 3000, 2999},
        {"one byte more, in the last block", 3001, 3000, -1},
        {"one byte more, behind the last block", 3501, 3500, -1},
        {"announced as 4 GiB", 5000, 0xFFFFFFFF, 5000},
        {"announced as nothing", 10, 0, -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        fs::remove_all(folder.Path() / "day");
        FileServer server;
        server.content = testing::Content(row.size);
        const ScriptedEnd receiver(line, server);
        Open();
        EXPECT_EQ(Download(row.announced), row.bytes) << command.LastError();
        ExpectCleanLine();
        const bool arrived = row.bytes == row.announced;
        EXPECT_EQ(command.GetDownloadFault(),
                  arrived ? DownloadFault::None : DownloadFault::WrongSize);
        EXPECT_EQ(fs::exists(File()), arrived);
        EXPECT_EQ(fs::exists(Part()), !arrived);
        if (!arrived) {
            EXPECT_LE(fs::file_size(Part()), row.announced);
        }
        command.ClosePort();
    }
}

TEST_F(DownloadTest, SaysWhyTheReceiverDoesNotSend)
{
    struct Row
    {
        const char* fault;
        Bytes answer;
        DownloadFault why;
    };
    const Row rows[] = {
        {"no such file", Block(0, 3, {}), DownloadFault::NoSuchFile},
        {"being logged", Block(0, 5, {1, 2, 3}), DownloadFault::BeingLogged},
        {"refused", {testing::kNak}, DownloadFault::Link},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const ScriptedEnd receiver(line, [&](const Bytes& request) {
            return ScriptedEnd::Answer{request[2] == 0x96 ? row.answer : Bytes{testing::kAck}};
        });
        Open();
        EXPECT_EQ(Download(), -1);
        EXPECT_EQ(command.GetDownloadFault(), row.why);
        command.ClosePort();
        EXPECT_EQ(Count(receiver.Requests(), 0x96), 1U);
    }
}

TEST_F(DownloadTest, WhatCannotBeWrittenLeavesTheOldFile)
{
    using Call = FailingOperations::Call;
    struct Row
    {
        const char* fault;
        Call call;
        DownloadFault why;
    };
    const Row rows[] = {
        {"the file cannot be made", Call::Open, DownloadFault::Folder},
        {"the disk is full", Call::Write, DownloadFault::Write},
        {"the disk fails at the end", Call::Sync, DownloadFault::Write},
        {"it cannot be renamed", Call::Rename, DownloadFault::Write},
    };
    constexpr std::uint32_t kLong = 90'000; // is written in several pieces
    constexpr int kWrites = 3;
    const Bytes before = testing::Ascii("old");
    for (const Row& row : rows) {
        for (int round = 0; round < kRounds; ++round) {
            SCOPED_TRACE(std::string(row.fault) + " " + std::to_string(round));
            folder.Write("day/A.Q01", "old");
            FailingOperations operations;
            operations.failing = row.call;
            operations.after = row.call == Call::Write ? round % kWrites : 0;
            command.SetFileOperations(operations);
            FileServer server;
            server.content = testing::Content(kLong);
            const ScriptedEnd receiver(line, server);
            Open();
            EXPECT_EQ(Download(kLong), -1);
            EXPECT_EQ(command.GetDownloadFault(), row.why);
            EXPECT_EQ(command.GetFileError(), operations.kFull);
            EXPECT_EQ(Read(File()), before);
            ExpectCleanLine();
            command.ClosePort();
            EXPECT_EQ(Count(receiver.Requests(), 0x5A), row.call == Call::Write ? 1U : 0U);
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_F(DownloadTest, TheFolderMayVanish)
{
    for (std::uint32_t at = 1; at < kBlocks; ++at) {
        SCOPED_TRACE(at);
        const fs::path other = folder.Write("finished.Q01", "finished before");
        const ScriptedEnd receiver(line, FileServer());
        Open();
        EXPECT_EQ(Download(kSize,
                           [&](std::uint32_t arrived) {
                               if (arrived == at * testing::kBlockBytes) {
                                   fs::remove_all(folder.Path() / "day");
                               }
                               return true;
                           }),
                  -1);
        EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Write);
        EXPECT_FALSE(fs::exists(File()) || fs::exists(Part()));
        EXPECT_EQ(Read(other), testing::Ascii("finished before"));
    }
}

/// The next frame fills up what the line has lost of one, and the sum fits by chance.
TEST_F(DownloadTest, NoticesLostBytesThatTheSumDoesNotShow)
{
    constexpr std::ptrdiff_t kLost = 40;
    FileServer server;
    const std::vector<Bytes> blocks = Blocks(server.content, 0);
    Bytes merged(blocks[0].begin(), blocks[0].end() - kLost);
    merged.insert(merged.end(), blocks[1].begin(), blocks[1].begin() + kLost);
    const auto sum = std::accumulate(merged.begin() + 1, merged.end() - 2, 0U);
    server.content[0] += static_cast<std::uint8_t>(merged[merged.size() - 2] - sum);
    bool isFirst = true;
    const ScriptedEnd receiver(line, [&](const Bytes& request) {
        ScriptedEnd::Answer answer = server(request);
        if (request[2] == 0x96 && std::exchange(isFirst, false)) {
            Bytes& sent = answer[0].bytes;
            const auto end = sent.begin() + static_cast<std::ptrdiff_t>(blocks[0].size());
            sent.erase(end - kLost, end);
        }
        return answer;
    });
    Open();
    EXPECT_EQ(Download(), kSize) << command.LastError();
    EXPECT_TRUE(Read(File()) == server.content);
}

TEST_F(DownloadTest, CancelsWithinOneBlock)
{
    for (const bool byHost : {false, true}) {
        for (int round = 0; round < kRounds; ++round) {
            SCOPED_TRACE(std::to_string(byHost) + " " + std::to_string(round));
            FileServer server;
            const ScriptedEnd receiver(line, server);
            Open();
            const auto at =
                static_cast<std::uint32_t>(1 + static_cast<std::size_t>(round) % (kBlocks - 1));
            std::uint32_t seen = 0;
            EXPECT_EQ(Download(kSize,
                               [&](std::uint32_t arrived) {
                                   seen = arrived;
                                   const bool now = arrived == at * testing::kBlockBytes;
                                   cancel = byHost && now;
                                   return byHost || !now;
                               }),
                      -1);
            EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Cancelled);
            EXPECT_EQ(seen, at * testing::kBlockBytes) << "blocks were taken after the cancel";
            EXPECT_EQ(fs::file_size(Part()), seen);
            EXPECT_FALSE(fs::exists(File()));
            ExpectCleanLine();
            command.ClosePort();
            EXPECT_EQ(Count(receiver.Requests(), 0x5A), 1U);
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_F(DownloadTest, HostileNamesWriteAndSendNothing)
{
    FileServer server;
    const ScriptedEnd receiver(line, server);
    Open();
    const fs::path target = folder.Path() / "outer" / "inner";
    fs::create_directories(target);
    for (const std::wstring_view name : testing::kHostileNames) {
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
    EXPECT_EQ(command.DownloadFile(folder.Path() / "day", L"ａ.Q01", kSize), -1);
    EXPECT_EQ(command.GetDownloadFault(), DownloadFault::Name);
    EXPECT_EQ(command.GetNameFault(), NameFault::Taken);
    EXPECT_EQ(Read(folder.Path() / "day" / "Ａ.q01"), testing::Ascii("kept"));
    EXPECT_EQ(command.DownloadFile(folder.Path() / "day", L"Ａ.q01", kSize), kSize)
        << "the very same name is no other";

    ReceivedNames names;
    EXPECT_EQ(names.Add(L"A.Q01", folder.Path()), NameFault::None);
    EXPECT_EQ(names.Add(L"a.Q01", folder.Path()), NameFault::Taken);
    EXPECT_EQ(names.Add(L"A.Q01", folder.Path()), NameFault::Taken) << "two files of one name";
    EXPECT_EQ(names.Add(L"a.Q01", folder.Path() / "day"), NameFault::None) << "another folder";
    EXPECT_EQ(names.Add(L"д.Q01", folder.Path()), NameFault::None);
    EXPECT_EQ(names.Add(L"Д.Q01", folder.Path()), NameFault::Taken);
}

/// Breaks a transfer off, changes something, and fetches again.
TEST_F(DownloadTest, GoesOnWhereItBrokeOffOrSaysWhyNot)
{
    constexpr std::uint32_t kLong = 90'000;
    constexpr std::size_t kAt = 70;             // the first block that does not come
    constexpr std::uint32_t kPieceEnd = 33'000; // of the first piece that was written at once
    constexpr std::uint32_t kTime = 1'457'913'600;
    const fs::path info = folder.Path() / "day" / "A.Q01.part.info";
    const fs::path other = folder.Path() / "other";
    const auto overwrite = [](const fs::path& file, std::streamoff at, std::string_view bytes) {
        std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(at) << bytes;
    };
    std::uint32_t time = 0;
    FileServer server;
    struct Row
    {
        const char* change;
        std::function<void()> make;
        TransferStart start;
    };
    const Row rows[] = {
        {"nothing", [] {}, {kAt * 1000, AnewReason::None}},
        {"the time", [&] { ++time; }, {0, AnewReason::OtherFile}},
        {"the size", [&] { server.content.push_back(1); }, {0, AnewReason::OtherFile}},
        {"no time is known any more", [&] { time = 0; }, {}},
        {"the last block in the receiver",
         [&] { server.content[kAt * 1000 - 1] ^= 1; },
         {0, AnewReason::Changed}},
        {"the info file is gone", [&] { fs::remove(info); }, {0, AnewReason::NoRecord}},
        {"it is something else",
         [&] { folder.Write("day/A.Q01.part.info", "notes"); },
         {0, AnewReason::NoRecord}},
        {"its last line is torn",
         [&] { fs::resize_file(info, fs::file_size(info) - 3); },
         {2 * kPieceEnd, AnewReason::None}},
        {"nothing had been written", [&] { fs::resize_file(Part(), 0); }, {0, AnewReason::Damaged}},
        {"a byte of the second piece",
         [&] { overwrite(Part(), kPieceEnd + 7, "?"); },
         {kPieceEnd, AnewReason::None}},
        {"a byte of the first one", [&] { overwrite(Part(), 7, "?"); }, {0, AnewReason::Damaged}},
        {"more than had arrived",
         [&] { overwrite(Part(), kAt * 1000, "more"); },
         {kAt * 1000, AnewReason::None}},
        {"a second name", [&] { fs::create_hard_link(Part(), other); }, {0, AnewReason::NotOurs}},
        {"a link to it",
         [&] {
             fs::rename(Part(), other);
             fs::create_symlink(other, Part());
         },
         {0, AnewReason::NotOurs}},
        {"a link to the info",
         [&] {
             fs::rename(info, other);
             fs::create_symlink(other, info);
         },
         {0, AnewReason::NoRecord}},
        {"another user's",
         [&] { ASSERT_EQ(chown(Part().c_str(), 65534, 65534), 0); },
         {0, AnewReason::NotOurs}},
        {"the receiver refuses to begin in the middle",
         [&] { server.refusesMiddle = true; },
         {0, AnewReason::NotFromMiddle}},
        {"it begins at the beginning whatever is asked",
         [&] { server.fromBeginning = true; },
         {0, AnewReason::NotFromMiddle}},
    };
    for (const bool cancelled : {false, true}) {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.change);
            if (std::string_view(row.change) == "another user's" && geteuid() != 0) {
                continue; // nobody else can give a file away
            }
            fs::remove_all(folder.Path() / "day");
            fs::remove(other);
            time = kTime;
            server = {};
            server.content = testing::Content(kLong);
            server.at = kAt;
            server.damage = cancelled ? Damage::None : Damage::Half;
            server.times = 1;
            std::uint32_t first = 0; // bytes that are told of first
            const auto fetch = [&](bool breaksOff) {
                first = 0;
                return command.DownloadFile(
                    folder.Path() / "day", L"A.Q01",
                    static_cast<std::uint32_t>(server.content.size()),
                    [&](std::uint32_t bytes) {
                        first = first == 0 ? bytes : first;
                        if (!breaksOff || bytes < kAt * 1000) {
                            return true;
                        }
                        if (!cancelled) {
                            line.HangUp();
                        }
                        return !cancelled;
                    },
                    time == 0 ? std::nullopt : std::optional(time));
            };
            std::optional<ScriptedEnd> receiver;
            receiver.emplace(line, server);
            Open();
            EXPECT_EQ(fetch(true), -1);
            command.ClosePort();
            EXPECT_EQ(fs::file_size(Part()), kAt * 1000);
            server.times = 0;
            row.make();
            const std::optional<Bytes> before = Read(other);
            receiver.emplace(line, server);
            Open();
            EXPECT_EQ(fetch(false), static_cast<std::int64_t>(server.content.size()))
                << command.LastError();
            ExpectCleanLine();
            command.ClosePort();
            EXPECT_EQ(command.GetTransferStart().continuedAt, row.start.continuedAt);
            EXPECT_EQ(command.GetTransferStart().reason, row.start.reason);
            EXPECT_EQ(first, row.start.continuedAt > 0 && row.start.continuedAt % 1000 == 0
                                 ? row.start.continuedAt
                                 : 1000U);
            EXPECT_TRUE(Read(File()) == server.content);
            EXPECT_EQ(Read(other), before) << "what had another name was written to";
            EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path() / "day"), {}), 1);
            struct stat finished = {};
            EXPECT_EQ(lstat(File().c_str(), &finished), 0);
            EXPECT_TRUE(S_ISREG(finished.st_mode) && finished.st_nlink == 1 &&
                        finished.st_uid == geteuid());
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_F(DownloadTest, WhateverHappensToWhatIsLeftTheFileIsRight)
{
    std::mt19937 random(19800106);
    const fs::path parts[] = {Part(), folder.Path() / "day" / "A.Q01.part.info"};
    int continued = 0;
    constexpr int kTimes = 60;
    for (int i = 0; i < kTimes; ++i) {
        SCOPED_TRACE(i);
        fs::remove_all(folder.Path() / "day");
        FileServer server;
        const ScriptedEnd receiver(line, server);
        Open();
        const auto first = static_cast<std::uint32_t>(1000 + random() % 3000);
        for (const std::uint32_t until : {first, 5000U, 0U}) {
            command.DownloadFile(
                folder.Path() / "day", L"A.Q01", kSize,
                [&](std::uint32_t bytes) { return until == 0 || bytes < until; }, 1);
            continued += command.GetTransferStart().continuedAt > 0 ? 1 : 0;
            const fs::path& file = parts[random() % 2];
            if (until == 0 || !fs::exists(file)) {
                continue;
            }
            const auto size = fs::file_size(file);
            if (random() % 3 == 0) {
                fs::resize_file(file, random() % (size + 20)); // zeros, where it gets longer
            } else {
                std::fstream(file, std::ios::in | std::ios::out | std::ios::binary)
                        .seekp(static_cast<std::streamoff>(random() % (size + 1)))
                    << static_cast<char>(random());
            }
        }
        command.ClosePort();
        ASSERT_TRUE(Read(File()) == server.content);
    }
    EXPECT_GT(continued, 0);
}

/// What has arrived as a whole and could not get its name.
TEST_F(DownloadTest, AsksOnlyForTheLastBlockOfWhatIsThere)
{
    FailingOperations operations;
    operations.failing = FailingOperations::Call::Rename;
    command.SetFileOperations(operations);
    FileServer server;
    const ScriptedEnd receiver(line, server);
    Open();
    EXPECT_EQ(command.DownloadFile(folder.Path() / "day", L"A.Q01", kSize, {}, 1), -1);
    operations.failing = FailingOperations::Call::None;
    EXPECT_EQ(command.DownloadFile(folder.Path() / "day", L"A.Q01", kSize, {}, 1), kSize);
    command.ClosePort();
    EXPECT_EQ(command.GetTransferStart().continuedAt, kSize);
    EXPECT_EQ(testing::WantedOffset(receiver.Requests().back()), 7000U);
    EXPECT_TRUE(Read(File()) == server.content);
}

/// A receiver that gives nothing more does not cost what is there.
TEST_F(DownloadTest, KeepsWhatIsThereUntilTheFirstBlockComes)
{
    FileServer server;
    server.damage = Damage::Silence;
    server.times = 100;
    server.at = 4;
    ScriptedEnd receiver(line, server);
    Open();
    const auto fetch = [&] {
        return command.DownloadFile(folder.Path() / "day", L"A.Q01", kSize, {}, 1);
    };
    EXPECT_EQ(fetch(), -1);
    command.ClosePort();
    const std::optional<Bytes> before = Read(Part());
    EXPECT_EQ(before->size(), 4000U);
    const ScriptedEnd refusing(line, [](const Bytes& request) {
        return ScriptedEnd::Answer{{request[2] == 0x96 ? testing::kNak : testing::kAck}};
    });
    Open();
    EXPECT_EQ(fetch(), -1);
    EXPECT_EQ(Read(Part()), before);
}

} // namespace
} // namespace fieldcore
