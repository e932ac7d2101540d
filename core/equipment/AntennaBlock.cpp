#include "core/equipment/AntennaBlock.h"

#include "core/equipment/AntennaCatalogue.h"
#include "core/equipment/AntennaInput.h"
#include "core/platform/Cp932.h"

#include <cstddef>

namespace fieldcore {

namespace {

constexpr std::size_t kCharCode = 0;
constexpr std::size_t kCharCodeSize = 2;
constexpr std::size_t kSerial = 2;
constexpr std::size_t kSerialSize = 8;
constexpr std::size_t kWay = 10;
constexpr std::size_t kHeight = 11; // four bytes, 0.1 mm
constexpr std::size_t kSize = 15;

std::wstring TextAt(std::span<const std::uint8_t> data, std::size_t at, std::size_t size)
{
    const auto field = data.subspan(at, size);
    const std::wstring text = FromCp932(std::string(field.begin(), field.end()));
    return text.substr(0, text.find_last_not_of(std::wstring_view(L" \0", 2)) + 1);
}

} // namespace

std::optional<AntennaRecord> ParseAntennaBlock(const ApplicationFileDataBlock& block)
{
    if (block.type != AntennaRecord::kBlockType || block.data.size() < kSize) {
        return std::nullopt;
    }
    std::uint32_t tenths = 0;
    for (const std::uint8_t byte : block.data.subspan(kHeight, 4)) {
        tenths = tenths << 8U | byte;
    }
    constexpr double kTenthsPerMetre = 10000.0;
    AntennaRecord record{TextAt(block.data, kCharCode, kCharCodeSize),
                         TextAt(block.data, kSerial, kSerialSize), block.data[kWay],
                         tenths / kTenthsPerMetre};
    const bool canBe = record.way <= AntennaCatalogue::kMaxMethods &&
                       record.heightM <= kHighestAntennaM &&
                       AntennaSerialFault(record.serial).empty();
    return canBe ? std::optional(std::move(record)) : std::nullopt;
}

std::optional<ApplicationFileDataBlock> FindAntennaBlock(std::span<const std::uint8_t> blocks)
{
    constexpr std::size_t kHead = 2; // type, number of bytes that follow
    std::optional<ApplicationFileDataBlock> last;
    while (blocks.size() >= kHead) {
        const std::size_t length = blocks[1];
        if (blocks.size() < kHead + length) {
            break;
        }
        const ApplicationFileDataBlock block{blocks[0], blocks.subspan(kHead, length)};
        if (ParseAntennaBlock(block)) {
            last = block;
        }
        blocks = blocks.subspan(kHead + length);
    }
    return last;
}

} // namespace fieldcore
