// A file of what was noted of the sky, of any bytes: what is taken for one comes back the same, and
// the curtain that it proposes is one of 0 to 90 degrees. The sum is put right first, which chance
// would hardly find.

#include "core/planning/CurtainProposal.h"
#include "core/platform/ContentSum.h"
#include "fuzz/Target.h"

#include <span>
#include <vector>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static_cast<void>(SkyRecord::FromBytes({data, size}));
    std::vector<std::uint8_t> bytes = SkyRecord().Bytes();
    constexpr std::size_t kSum = 8;
    const std::size_t body = bytes.size() - kSum;
    std::copy_n(data, std::min(size, body), bytes.begin());
    std::uint64_t sum = ContentSum(std::span(bytes).first(body));
    for (std::size_t i = body; i < bytes.size(); ++i, sum >>= 8U) {
        bytes[i] = static_cast<std::uint8_t>(sum & 0xFFU);
    }
    if (const auto record = SkyRecord::FromBytes(bytes)) {
        Check(record->Bytes() == bytes);
        if (const auto proposal = ProposeCurtain(*record, {})) {
            Check(std::ranges::max(proposal->curtain) <= 90);
        }
    }
    return 0;
}
