#pragma once

#include <cstdio>
#include <cstdlib>

namespace fieldcore::testing {

/// How large a test is: @p usual, or what script/prove has put into the environment variable.
[[nodiscard]] inline int ProofSize(const char* variable, int usual)
{
    const char* const wanted = std::getenv(variable);     // NOLINT(concurrency-mt-unsafe)
    return wanted != nullptr ? std::atoi(wanted) : usual; // NOLINT(cert-err34-c)
}

/// Where a test's random numbers start: the same every day, or as script/prove was asked.
[[nodiscard]] inline unsigned Seed()
{
    return static_cast<unsigned>(ProofSize("FIELDCORE_SEED", 20261121));
}

/// Tells script/prove what was counted; it adds up what has the same name in one row.
inline void Measured(long long number, const char* name)
{
    std::printf("\nmeasured %lld %s\n", number, name);
    std::fflush(stdout);
}

} // namespace fieldcore::testing
