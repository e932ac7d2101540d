// A row of file blocks, any bytes: the file never grows beyond its announced size, and holds
// exactly what the blocks that were taken said. Or what an earlier transfer has left, any bytes as
// well, and blocks behind it.

#include "core/link/FrameBuffer.h"
#include "core/link/ReceivedFile.h"
#include "core/link/Replies.h"
#include "core/platform/FileOperations.h"
#include "fuzz/Target.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

using namespace fieldcore;

namespace {

constexpr std::uint32_t kTime = 5; // of a file that can be gone on with

/// Takes the first number off @p input; 0 if it is not whole.
std::size_t TakeWord(std::span<const std::uint8_t>& input)
{
    const std::size_t value = input.size() >= 2 ? input[0] * 256U + input[1] : 0U;
    input = input.subspan(std::min<std::size_t>(input.size(), 2));
    return value;
}

/// Takes bytes off @p input, their number in two bytes in front.
std::span<const std::uint8_t> TakeBytes(std::span<const std::uint8_t>& input)
{
    const std::size_t length = TakeWord(input);
    const auto bytes = input.first(std::min(length, input.size()));
    input = input.subspan(bytes.size());
    return bytes;
}

} // namespace

/// The first two bytes are the announced size; then blocks. From 32768 on: 32768 and the announced
/// size, the record of what was left (empty: none) and its content, each with its length in front,
/// and blocks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    KeepFilesInMemory();
    static const TemporaryFolder folder;
    for (const char* const name : {"A.Q01", "A.Q01.part", "A.Q01.part.info"}) {
        std::filesystem::remove(folder.Path() / name);
    }
    std::span<const std::uint8_t> input(data, size);
    const auto first = static_cast<std::uint32_t>(TakeWord(input));
    const std::uint32_t expected = first & 0x7FFFU;
    const bool isNew = first == expected;
    if (!isNew) {
        const auto record = TakeBytes(input);
        const auto left = TakeBytes(input);
        folder.Write("A.Q01.part", TextOf(left.data(), left.size()));
        if (!record.empty()) {
            folder.Write("A.Q01.part.info", TextOf(record.data(), record.size()));
        }
    }
    std::string content; // of a new file
    bool isWhole = false;
    {
        Transfer transfer;
        ReceivedFile file(folder.Path(), L"A.Q01", expected,
                          isNew ? std::nullopt : std::optional(kTime), FileOperations::Instance(),
                          transfer);
        Check(file.Open() && file.Offset() <= expected);
        FrameBuffer frame;
        auto verdict = ReceivedFile::Verdict::More;
        while (!input.empty() && verdict != ReceivedFile::Verdict::Ended && !isWhole) {
            frame.Load(TakeBytes(input));
            const auto block = ParseFileBlock(frame.Reader());
            if (!block) {
                continue;
            }
            Check(block->bytes.size() <= 1000);
            const std::uint32_t before = file.Offset();
            verdict = file.Take(*block);
            isWhole = verdict == ReceivedFile::Verdict::Whole;
            if (isWhole || verdict == ReceivedFile::Verdict::More) {
                content.append(block->bytes.begin(), block->bytes.end());
                Check(file.Offset() == block->offset + block->bytes.size());
                Check(isWhole || file.Offset() > before || !isNew);
            } else { // what was left may turn out to be of another file
                Check(file.Offset() == before || !isNew);
            }
            Check(file.Offset() <= expected);
        }
        Check(!isWhole || file.Finish() == (file.Offset() == expected));
        isWhole = isWhole && file.Offset() == expected;
    }
    Check(std::filesystem::exists(folder.Path() / "A.Q01") == isWhole);
    Check(!isNew || ContentOf(folder.Path() / (isWhole ? "A.Q01" : "A.Q01.part")) == content);
    return 0;
}
