#pragma once

namespace fieldcore::bench {

/// How often the calling thread has allocated so far: the program's own operator new counts.
[[nodiscard]] long AllocationCount();

} // namespace fieldcore::bench
