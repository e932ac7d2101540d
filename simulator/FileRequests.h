#pragma once

#include "simulator/FileNames.h"
#include "simulator/FileStore.h"
#include "simulator/Frame.h"
#include "simulator/Replies.h"
#include "simulator/Scenario.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace fieldcore::simulator {

/// The receiver's part that answers what is asked of its files. One thread.
class FileRequests
{
public:
    explicit FileRequests(const Scenario& scenario);

    /// @return the first frame of the answer, a lone ACK or NAK; nothing if @p type is no request
    ///         for files
    [[nodiscard]] std::optional<Bytes> Answer(std::uint8_t type,
                                              std::span<const std::uint8_t> data);

    /// The next frame of an answer that goes on. Nothing if there is no more.
    [[nodiscard]] std::optional<Bytes> NextFrame();
    [[nodiscard]] bool GoesOn() const { return m_more != nullptr; }
    void StopAnswer() { m_more = nullptr; }

    [[nodiscard]] const FileStore& Files() const { return m_files; }

private:
    using Data = std::span<const std::uint8_t>;
    struct Handler
    {
        std::uint8_t type;
        Family family; // that knows the request
        Bytes (FileRequests::*answer)(Data data);
    };
    static const Handler kHandlers[];

    Bytes PicaList(Data data);
    Bytes PicaDelete(Data data);
    Bytes PicaRecover(Data data);
    Bytes LarkList(Data data);
    Bytes LarkDelete(Data data);
    Bytes LarkRecover(Data data);
    Bytes Download(Data data);
    Bytes Begin(FrameSource source);

    const Family m_family;
    const std::uint8_t m_picaVariant; // that its list requests name
    const ListingManner m_listing;
    FileStore m_files;
    FrameSource m_more; // of the answer that goes on; null: none does
};

} // namespace fieldcore::simulator
