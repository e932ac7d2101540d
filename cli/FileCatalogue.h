#pragma once

#include "cli/Failure.h"
#include "cli/PortSession.h"

#include "core/equipment/FilePlan.h"
#include "core/equipment/FileRows.h"
#include "core/equipment/ReceiverFiles.h"
#include "core/host/Host.h"
#include "core/platform/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::cli {

/// The files of the connected receiver, listed once. Also the receiver of the listing's messages.
class FileCatalogue final : private MessageTarget
{
public:
    /// @param session  connected; must outlive the catalogue
    explicit FileCatalogue(PortSession& session);

    /// Lists the live files, or those in the recycle bin. A list that is not whole is a list, too.
    /// @return why there is none
    [[nodiscard]] std::optional<Failure> List(bool deleted);
    /// Why the list is not whole; nothing for a whole one.
    [[nodiscard]] const std::optional<Failure>& Incomplete() const { return m_incomplete; }
    [[nodiscard]] ReceiverFiles& Receiver() { return m_receiver; }

    /// Puts the files that any of @p patterns fits into a plan, by the whole name or by that before
    /// the extension, each name once and in the order of the receiver. No pattern: all of them.
    /// @return a failure if a pattern fits none
    [[nodiscard]] std::optional<Failure> Choose(const std::vector<std::string>& patterns,
                                                FilePlan& plan) const;

private:
    void Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam) override;

    PortSession& m_session;
    ReceiverFiles m_receiver;
    FileRows m_rows;
    std::optional<Failure> m_incomplete;
};

/// Whether all of @p text fits @p pattern, in which "*" stands for any characters, also none, and
/// "?" for any one. Upper and lower case differ. Takes no longer than the product of the lengths.
[[nodiscard]] bool MatchesWildcard(std::wstring_view pattern, std::wstring_view text);

/// Whether @p pattern can fit more than one text.
[[nodiscard]] bool HasWildcard(std::wstring_view pattern);

/// Whether a pattern of the user fits the name of a file, with or without its extension.
[[nodiscard]] bool FitsFile(const std::string& pattern, const DirectoryListingData& record);

} // namespace fieldcore::cli
