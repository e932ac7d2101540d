#include "core/link/ReceivedName.h"

#include "core/link/DirectoryListing.h"
#include "core/platform/Cp932.h"
#include "core/platform/FileNameCheck.h"
#include "core/platform/FolderEntries.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <system_error>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr std::array kMeanings{
    NameFaultMeaning{NameFault::None, "", 0},
    NameFaultMeaning{NameFault::NotPlain, "is no name for a file here", text::kFileNameRefused},
    NameFaultMeaning{NameFault::Hidden, "begins with a dot and would be hidden", text::kNameHidden},
    NameFaultMeaning{NameFault::Obeyed, "is a name that systems obey", text::kNameObeyed},
    NameFaultMeaning{NameFault::Unfinished, "is called like an unfinished transfer",
                     text::kNameUnfinished},
    NameFaultMeaning{NameFault::Unaskable, "cannot be asked for by its name", text::kNameUnaskable},
    NameFaultMeaning{NameFault::Taken, "differs only in capitals from another name, or not at all",
                     text::kNameTaken},
};

constexpr std::array<std::wstring_view, 2> kUnfinished{L".part", L".part.info"};
constexpr std::array<std::wstring_view, 2> kObeyed{L"autorun.inf", L"desktop.ini"};

struct Letters
{
    wchar_t first; ///< small ones
    wchar_t last;
    int toCapital;
};

/// The small letters that a receiver's code page has: Latin, Greek, Cyrillic, full-width Latin.
constexpr std::array kSmall{Letters{L'a', L'z', -0x20}, Letters{0x3B1, 0x3C9, -0x20},
                            Letters{0x430, 0x44F, -0x20}, Letters{0x451, 0x451, -0x50},
                            Letters{0xFF41, 0xFF5A, -0x20}};

/// The name as a card compares it.
std::wstring Folded(std::wstring_view name)
{
    std::wstring folded(name);
    for (wchar_t& c : folded) {
        for (const Letters& letters : kSmall) {
            if (c >= letters.first && c <= letters.last) {
                c = static_cast<wchar_t>(c + letters.toCapital);
                break;
            }
        }
    }
    return folded;
}

bool IsSameOnACard(std::wstring_view one, std::wstring_view other)
{
    return Folded(one) == Folded(other);
}

/// Whether something in the folder would be taken for a file of this name and is none.
bool IsTakenIn(const fs::path& folder, std::wstring_view name)
{
    const fs::path own = ToUtf8(name);
    std::error_code error;
    bool found = false;
    for (const fs::path& entry : FolderEntries(folder, error)) {
        const fs::path other = entry.filename();
        found = found || other == own;
        if (other != own && IsSameOnACard(FromUtf8(other.string()), name)) {
            return true;
        }
    }
    // A file system that knows short names besides finds another one under it.
    return !error && !found && fs::exists(fs::symlink_status(folder / own, error));
}

} // namespace

const NameFaultMeaning& MeaningOf(NameFault fault)
{
    return kMeanings[static_cast<std::size_t>(fault)];
}

bool IsReceiverFileName(std::wstring_view name)
{
    return !name.empty() && ToCp932(name).size() <= kLongestFileName &&
           name.find_first_of(L"*?") == std::wstring_view::npos;
}

NameFault CheckReceivedName(std::wstring_view name)
{
    if (!IsPlainFileName(name)) {
        return NameFault::NotPlain;
    }
    if (name.front() == L'.') {
        return NameFault::Hidden;
    }
    if (std::any_of(kObeyed.begin(), kObeyed.end(),
                    [&](std::wstring_view other) { return IsSameOnACard(name, other); })) {
        return NameFault::Obeyed;
    }
    if (std::any_of(kUnfinished.begin(), kUnfinished.end(), [&](std::wstring_view end) {
            return IsSameOnACard(name.substr(name.size() - std::min(name.size(), end.size())), end);
        })) {
        return NameFault::Unfinished;
    }
    return IsReceiverFileName(name) ? NameFault::None : NameFault::Unaskable;
}

NameFault CheckReceivedName(std::wstring_view name, const fs::path& folder)
{
    const NameFault fault = CheckReceivedName(name);
    return fault == NameFault::None && IsTakenIn(folder, name) ? NameFault::Taken : fault;
}

NameFault ReceivedNames::Add(std::wstring_view name, const fs::path& folder)
{
    const NameFault fault = CheckReceivedName(name, folder);
    if (fault != NameFault::None) {
        return fault;
    }
    return m_names.emplace(folder, Folded(name)).second ? NameFault::None : NameFault::Taken;
}

} // namespace fieldcore
