// What a port may deliver, in chunks of any size: frames and lines are assembled inside their
// buffers, and nothing is ever delivered that was not queued.

#include "core/link/FrameAssembler.h"
#include "fuzz/Target.h"

#include <span>

using namespace fieldcore;

/// The first byte chooses frames or lines; then each chunk is a length byte and that many bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    std::span<const std::uint8_t> input(data, size);
    const bool lines = (input.front() & 1) != 0;
    const bool resets = (input.front() & 2) != 0;
    input = input.subspan(1);

    ByteQueue queue(5120);
    FrameAssembler assembler;
    std::size_t queued = 0;
    std::size_t delivered = 0;
    while (!input.empty()) {
        const std::size_t count = std::min<std::size_t>(input.front() * 4U, input.size() - 1);
        const auto chunk = input.subspan(1, std::min(count, queue.Free().size()));
        std::copy(chunk.begin(), chunk.end(), queue.Free().begin());
        queue.Commit(chunk.size());
        queued += chunk.size();
        input = input.subspan(1 + count);
        while (queue.Size() > 0) {
            const std::size_t before = queue.Size();
            const auto delivery =
                lines ? assembler.AssembleLine(queue)
                      : assembler.AssembleFrame(queue, FrameAssembler::kLargestStep);
            Check(queue.Size() != before); // a pass that takes nothing would be repeated for ever
            if (delivery) {
                delivered += delivery->length;
                Check(delivery->length <= assembler.Buffer().size() && delivered <= queued);
            }
        }
        if (resets) {
            assembler.Reset();
        }
    }
    return 0;
}
