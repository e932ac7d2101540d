// A row of file blocks, any bytes: the file never grows beyond its announced size, and holds
// exactly what the blocks that were taken said. Or what an earlier transfer has left, any bytes as
// well, and blocks behind it.

#include "core/link/FrameBuffer.h"
#include "core/link/ReceivedFile.h"
#include "core/link/Replies.h"
#include "fuzz/Target.h"

#include <map>
#include <optional>
#include <span>
#include <string>

using namespace fieldcore;

namespace {

constexpr std::uint32_t kTime = 5; // of a file that can be gone on with

/// Counts what is written, and writes nothing. What was left is read.
class CountingOperations final : public FileOperations
{
public:
    std::error_code Open(const std::filesystem::path&, const std::filesystem::path&,
                         int& handle) override
    {
        handle = 1;
        return {};
    }
    std::error_code OpenLeft(const std::filesystem::path& file, int& handle) override
    {
        handle = file.extension() == ".info" ? 3 : 2;
        return left.contains(handle) ? std::error_code()
                                     : std::make_error_code(std::errc::no_such_file_or_directory);
    }
    std::error_code Read(int handle, std::span<char> bytes, std::size_t& count) override
    {
        std::string& rest = left[handle];
        count = rest.copy(bytes.data(), bytes.size());
        rest.erase(0, count);
        return {};
    }
    std::error_code Cut(int, std::uint64_t) override { return {}; }
    std::error_code Write(int, std::string_view bytes) override
    {
        written += bytes.size();
        return {};
    }
    std::error_code Sync(int) override { return {}; }
    void Close(int) override {}
    std::error_code Rename(const std::filesystem::path&, const std::filesystem::path&) override
    {
        renamed = true;
        return {};
    }
    std::error_code SyncFolder(const std::filesystem::path&) override { return {}; }
    void Remove(const std::filesystem::path&) override {}

    std::map<int, std::string> left; // by handle
    std::size_t written = 0;
    bool renamed = false;
};

/// Takes the first number off @p input; 0 if it is not whole.
std::size_t TakeWord(std::span<const std::uint8_t>& input)
{
    const std::size_t value = input.size() >= 2 ? input[0] * 256U + input[1] : 0U;
    input = input.subspan(std::min<std::size_t>(input.size(), 2));
    return value;
}

/// Takes a text off @p input, its length in two bytes in front.
std::string TakeText(std::span<const std::uint8_t>& input)
{
    const auto length = std::min(TakeWord(input), input.size());
    const std::string text(input.begin(), input.begin() + static_cast<std::ptrdiff_t>(length));
    input = input.subspan(length);
    return text;
}

/// Puts a file together from the blocks in @p input, each with its length in two bytes.
/// @return how many bytes were taken
std::uint32_t Receive(std::uint32_t expected, std::span<const std::uint8_t> input,
                      CountingOperations& operations)
{
    // The folder is there: none is made.
    const bool isNew = operations.left.empty();
    Transfer transfer;
    ReceivedFile file(".", L"A.Q01", expected, isNew ? std::nullopt : std::optional(kTime),
                      operations, transfer);
    Check(file.Open() && file.Offset() <= expected);
    FrameBuffer frame;
    while (!input.empty()) {
        const std::size_t announced = TakeWord(input);
        const std::size_t length = std::min(announced, input.size());
        frame.Load(input.first(length));
        input = input.subspan(length);
        const auto block = ParseFileBlock(frame.Reader());
        if (!block) {
            continue;
        }
        Check(block->bytes.size() <= 1000);
        const std::uint32_t before = file.Offset();
        const ReceivedFile::Verdict verdict = file.Take(*block);
        const bool taken =
            verdict == ReceivedFile::Verdict::More || verdict == ReceivedFile::Verdict::Whole;
        Check(!taken || file.Offset() == block->offset + block->bytes.size());
        Check(!taken || block->offset == before || !isNew); // else it begins anew
        Check(taken || file.Offset() == before || !isNew);
        Check(verdict != ReceivedFile::Verdict::More || file.Offset() > before || !isNew);
        Check(file.Offset() <= expected && (!isNew || operations.written <= file.Offset()));
        if (verdict == ReceivedFile::Verdict::Whole) {
            Check(!isNew || operations.written == file.Offset());
            Check(file.Finish() == (file.Offset() == expected));
            Check(operations.renamed == (file.Offset() == expected));
            break;
        }
        if (verdict == ReceivedFile::Verdict::Ended) {
            break;
        }
    }
    return file.Offset();
}

} // namespace

/// The first two bytes are the announced size; then blocks. From 32768 on: 32768 and the announced
/// size, the record of what was left (empty: none) and its content, each with its length in front,
/// and blocks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::span<const std::uint8_t> input(data, size);
    const auto first = static_cast<std::uint32_t>(TakeWord(input));
    CountingOperations operations;
    if (first >= 0x8000) {
        const std::string record = TakeText(input);
        operations.left[2] = TakeText(input);
        if (!record.empty()) {
            operations.left[3] = record;
        }
    }
    const bool isNew = operations.left.empty();
    const std::uint32_t taken = Receive(first & 0x7FFFU, input, operations);
    Check(!isNew || operations.written == taken); // what came stays, whole or not
    return 0;
}
