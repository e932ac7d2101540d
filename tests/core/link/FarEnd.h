#pragma once

#include "core/link/FrameBuffer.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace fieldcore::testing {

using Bytes = std::vector<std::uint8_t>;

/// A frame as the receiver would send it, with the right checksum.
[[nodiscard]] Bytes Frame(std::uint8_t type, const Bytes& data = {});
/// A long frame of type 0x95.
[[nodiscard]] Bytes LongFrame(const Bytes& data);
/// A frame as it has come, where an older one that was longer has left digits behind it.
[[nodiscard]] FrameBuffer Loaded(const Bytes& frame);
[[nodiscard]] Bytes Joined(std::initializer_list<Bytes> pieces);
[[nodiscard]] Bytes Ascii(const std::string& text);

/// The other end of a pseudo-terminal, moved by hand: a test sends what it likes.
class FarEnd
{
public:
    FarEnd();
    ~FarEnd();
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    void Send(std::span<const std::uint8_t> bytes) const;
    /// Waits for what comes next.
    [[nodiscard]] Bytes Receive() const;
    /// Pulls the cable.
    void HangUp();

private:
    int m_master = -1;
    int m_slave = -1; // kept open, so that the port does not hang up while nobody uses it
    std::string m_path;
};

} // namespace fieldcore::testing
