#include "cli/Wildcard.h"

#include <cstddef>

namespace fieldcore::cli {

bool MatchesWildcard(std::wstring_view pattern, std::wstring_view text)
{
    constexpr std::size_t kNone = std::wstring_view::npos;
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = kNone; // the last one, and what stands behind its guess
    std::size_t guess = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            guess = t;
        } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != kNone) {
            p = star + 1;
            t = ++guess; // it stands for one character more
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*') {
        ++p;
    }
    return p == pattern.size();
}

bool HasWildcard(std::wstring_view pattern)
{
    return pattern.find_first_of(L"*?") != std::wstring_view::npos;
}

} // namespace fieldcore::cli
