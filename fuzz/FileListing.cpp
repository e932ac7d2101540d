// Listing pages of both families on any bytes: what is accepted must fit into the table, and no
// name may lead out of a folder.

#include "core/equipment/FileTexts.h"
#include "core/link/FrameBuffer.h"
#include "core/link/ReceivedName.h"
#include "core/link/Replies.h"
#include "core/platform/Utf8.h"
#include "fuzz/Target.h"

#include <filesystem>

using namespace fieldcore;

namespace {

void CheckPage(const FilePage& page, std::size_t most)
{
    Check(page.count <= most && page.number >= 0 && page.number < 256);
    for (std::size_t i = 0; i < page.count; ++i) {
        const DirectoryListingData& file = page.files[i];
        Check(file.name[kLongestFileName] == L'\0');
        Check(file.Name().find(L'\0') == std::wstring_view::npos);
        Check(FileRowName(file.Name()).size() <= kLongestFileName);
        Check(DateFolderName(file.time).size() == 10);
        Check(!FileSizeText(file.size).empty());
        if (CheckReceivedName(file.Name()) == NameFault::None) {
            const std::filesystem::path name(ToUtf8(file.Name()));
            Check(!name.has_parent_path() && !name.is_absolute() && name != ".." && name != ".");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FrameBuffer frame;
    frame.Load({data, size});
    if (const auto page = ParsePicaFilePage(frame.Reader())) {
        CheckPage(*page, kPicaPageFiles);
    }
    if (const auto page = ParseLarkFilePage(frame.Reader())) {
        CheckPage(*page, kLarkPageFiles);
        Check(page->number < 128);
    }
    return 0;
}
