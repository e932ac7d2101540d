// The identification text: any bytes are refused or make a record.

#include "core/link/FrameBuffer.h"
#include "core/link/Replies.h"
#include "fuzz/Target.h"

#include <array>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The input is the text; the frame around it is right.
    const std::size_t length = std::min<std::size_t>(size, 255);
    std::array<std::uint8_t, 261> bytes{0x02, 0x00, 0x6E, static_cast<std::uint8_t>(length)};
    std::copy_n(data, length, bytes.begin() + 4);
    FrameBuffer frame;
    frame.Load(bytes);
    if (const auto record = ParseIdentification(frame.Reader())) {
        Check(record->port != 0 && record->parity <= 2 && record->stopBits % 2 == 0);
    }
    return 0;
}
