// Bytes of an exchange log, as a broken receiver or a broken log may hold them: every byte is
// told exactly once, and nothing that is shown commands the terminal.

#include "core/link/FrameDescriber.h"
#include "fuzz/Target.h"

#include <initializer_list>
#include <span>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    for (const Direction direction : {Direction::Sent, Direction::Received}) {
        std::size_t told = 0;
        for (const DescribedBytes& bytes : DescribeBytes(direction, std::span(data, size))) {
            told += bytes.length;
            for (const DescribedField& field : bytes.fields) {
                Check(std::ranges::none_of(field.value.Words(), isControl));
            }
        }
        Check(told == size);
    }
    return 0;
}
