// Bytes of an exchange log, as a broken receiver or a broken log may hold them: every byte is
// told exactly once, and nothing that is shown commands the terminal.

#include "core/link/FrameDescriber.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <span>
#include <string>

namespace {

bool IsHarmless(const std::string& text)
{
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace fieldcore;
    for (const Direction direction : {Direction::Sent, Direction::Received}) {
        std::size_t told = 0;
        for (const DescribedBytes& bytes : DescribeBytes(direction, std::span(data, size))) {
            told += bytes.length;
            for (const DescribedField& field : bytes.fields) {
                if (!IsHarmless(field.value.Words())) {
                    std::abort();
                }
            }
        }
        if (told != size) {
            std::abort();
        }
    }
    return 0;
}
