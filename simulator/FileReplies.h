#pragma once

#include "simulator/FileStore.h"
#include "simulator/Frame.h"
#include "simulator/Scenario.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace fieldcore::simulator {

/// The frames of a long answer, made one by one as they are asked for; nothing at its end.
using FrameSource = std::function<std::optional<Bytes>()>;

/// A page of a Pica's list, 0x79; layouts in docs/protocol.md.
/// @param page  0 to 255
/// @param live  false: the files of the recycle bin
[[nodiscard]] Bytes PicaPage(const FileStore& store, ListingManner manner, std::uint8_t page,
                             bool live);

/// The pages of a Lark's list, 0x9D each.
[[nodiscard]] FrameSource LarkPages(std::vector<ReceiverFile> files, ListingManner manner);

/// The blocks of a download, 0x95 each.
/// @param file    null: there is no such file
/// @param offset  where to begin
/// @param blocks  how many at most; 0: to the file's end
[[nodiscard]] FrameSource FileBlocks(const ReceiverFile* file, std::uint32_t offset,
                                     std::uint16_t blocks);

} // namespace fieldcore::simulator
