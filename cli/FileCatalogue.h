#pragma once

#include "cli/Failure.h"
#include "cli/PortSession.h"
#include "cli/Report.h"

#include "core/equipment/FileRows.h"
#include "core/equipment/ReceiverFiles.h"
#include "core/host/MessageTarget.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore::cli {

/// A file of the receiver as it was listed.
struct ListedFile
{
    DirectoryListingData record;
    bool isLogging = false;
    /// A pattern has chosen it, and not its name; a file that cannot be had is left out then.
    bool byPattern = false;

    [[nodiscard]] std::string Name() const; ///< UTF-8, as the receiver has it
};

/// The files of the connected receiver, listed once. Also the receiver of the listing's messages.
class FileCatalogue final : private MessageTarget
{
public:
    /// @param session  connected; must outlive the catalogue
    explicit FileCatalogue(PortSession& session);

    /// Lists the live files, or those in the recycle bin.
    /// @return why there is no list
    [[nodiscard]] std::optional<Failure> List(bool deleted);

    /// In the order of the receiver; the rows of Rows() are the same ones.
    [[nodiscard]] const std::vector<ListedFile>& Files() const { return m_files; }
    [[nodiscard]] const FileRowList& Rows() const { return m_rows; }
    [[nodiscard]] ReceiverFiles& Receiver() { return m_receiver; }

    /// The files that any of @p patterns fits, by the whole name or by that before the extension,
    /// each name once and in the order of the receiver.
    /// @param chosen  their places in Files()
    /// @return a failure if a pattern fits none
    [[nodiscard]] std::optional<Failure> Choose(const std::vector<std::string>& patterns,
                                                std::vector<std::size_t>& chosen);

    /// The receiver's date of a file, as it is stored.
    [[nodiscard]] static Value TimeOf(const DirectoryListingData& record);

private:
    void Post(unsigned message, std::intptr_t wParam, std::intptr_t lParam) override;
    [[nodiscard]] std::optional<Failure> CheckReceiver(bool deleted);

    PortSession& m_session;
    ReceiverFiles m_receiver;
    FileRowList m_rows;
    std::vector<ListedFile> m_files;
};

} // namespace fieldcore::cli
