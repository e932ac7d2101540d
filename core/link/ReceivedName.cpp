#include "core/link/ReceivedName.h"

#include "core/link/DirectoryListing.h"
#include "core/platform/Cp932.h"
#include "core/platform/FileNameCheck.h"
#include "core/platform/FolderEntries.h"
#include "core/platform/SettingsStore.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <system_error>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr NameFaultMeaning kMeanings[] = {
    {NameFault::None, "", 0},
    {NameFault::NotPlain, "is no name for a file here", text::kFileNameRefused},
    {NameFault::Hidden, "begins with a dot and would be hidden", text::kNameHidden},
    {NameFault::Obeyed, "is a name that systems obey", text::kNameObeyed},
    {NameFault::Unfinished, "is called like an unfinished transfer", text::kNameUnfinished},
    {NameFault::Unaskable, "cannot be asked for by its name", text::kNameUnaskable},
    {NameFault::Taken, "differs only in capitals from another name, or not at all",
     text::kNameTaken},
};

/// Whether something in the folder would be taken for a file of this name and is none.
bool IsTakenIn(const fs::path& folder, std::wstring_view name)
{
    const fs::path own = ToUtf8(name);
    std::error_code error;
    bool found = false;
    for (const fs::path& entry : FolderEntries(folder, error)) {
        const fs::path other = entry.filename();
        found = found || other == own;
        if (other != own && FoldCase(FromUtf8(other.string())) == FoldCase(name)) {
            return true;
        }
    }
    // A file system that knows short names besides finds another one under it.
    return !error && !found && fs::exists(fs::symlink_status(folder / own, error));
}

} // namespace

const NameFaultMeaning& MeaningOf(NameFault fault)
{
    return *std::ranges::find(kMeanings, fault, &NameFaultMeaning::fault);
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
    const std::wstring folded = FoldCase(name);
    if (folded == L"autorun.inf" || folded == L"desktop.ini") {
        return NameFault::Obeyed;
    }
    if (folded.ends_with(L".part") || folded.ends_with(L".part.info")) {
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
    return m_names.emplace(folder, FoldCase(name)).second ? NameFault::None : NameFault::Taken;
}

} // namespace fieldcore
