#pragma once

#include "simulator/Frame.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore::simulator {

/// An exchange log played back: each request gets the answer that it got then. Requests are
/// expected in the order of the log; one that comes out of turn gets the next answer to an equal
/// request, counted on from there and around the end. One thread.
class Replay
{
public:
    /// @param error  "line N: cause" for the first line that is wrong, or that there is no request
    [[nodiscard]] bool Parse(std::string_view log, std::string& error);
    /// @param error  names the file, too
    [[nodiscard]] bool Load(const std::filesystem::path& path, std::string& error);

    /// @return each piece as it was received then; nothing if there was no answer or the log does
    ///         not have the request
    [[nodiscard]] std::vector<Bytes> Answer(std::span<const std::uint8_t> request);

private:
    struct Exchange
    {
        Bytes request;
        std::vector<Bytes> answer;
    };

    std::vector<Exchange> m_exchanges;
    std::size_t m_next = 0;
};

} // namespace fieldcore::simulator
