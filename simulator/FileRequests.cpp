#include "simulator/FileRequests.h"

#include "simulator/Models.h"

#include <string_view>
#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::size_t kNameBytes = 14;

std::uint16_t U16In(std::span<const std::uint8_t> data)
{
    return static_cast<std::uint16_t>(data[0] << 8U | data[1]);
}

/// A file's name, without the blanks that fill it up.
std::string_view NameIn(std::span<const std::uint8_t> data)
{
    const std::string_view name(reinterpret_cast<const char*>(data.data()), kNameBytes);
    const std::size_t last = name.find_last_not_of(' ');
    return name.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

Bytes AckIf(bool done)
{
    return {done ? kAck : kNak};
}

} // namespace

const FileRequests::Handler FileRequests::kHandlers[] = {
    {0x60, Family::Pica, &FileRequests::PicaDelete},
    {0x68, Family::Pica, &FileRequests::PicaRecover},
    {0x79, Family::Pica, &FileRequests::PicaList},
    {0x96, Family::Lark, &FileRequests::Download},
    {0x9C, Family::Lark, &FileRequests::LarkList},
    {0xA0, Family::Lark, &FileRequests::LarkDelete},
    {0xA1, Family::Lark, &FileRequests::LarkRecover},
};

FileRequests::FileRequests(const Scenario& scenario)
    : m_family(FamilyOf(scenario.typeNumber)),
      m_picaVariant(scenario.typeNumber == kFirstPica ? 1 : 2), m_listing(scenario.listing),
      m_files(scenario)
{}

std::optional<Bytes> FileRequests::Answer(std::uint8_t type, Data data)
{
    for (const Handler& handler : kHandlers) {
        if (handler.type == type) {
            return handler.family == m_family ? (this->*handler.answer)(data) : AckIf(false);
        }
    }
    return std::nullopt;
}

std::optional<Bytes> FileRequests::NextFrame()
{
    std::optional<Bytes> frame = m_more ? m_more() : std::nullopt;
    if (!frame) {
        StopAnswer();
    }
    return frame;
}

Bytes FileRequests::Begin(FrameSource source)
{
    m_more = std::move(source);
    return *NextFrame(); // a list has a page and a file a block, be they empty
}

Bytes FileRequests::PicaList(Data data)
{
    const bool good = data.size() == 3 && data[1] <= 1 && data[2] == m_picaVariant;
    return good ? PicaPage(m_files, m_listing, data[0], data[1] == 1) : AckIf(false);
}

Bytes FileRequests::PicaDelete(Data data)
{
    return AckIf(data.size() == 2 && m_files.Delete(U16In(data)));
}

Bytes FileRequests::PicaRecover(Data data)
{
    return AckIf(data.size() == 2 && m_files.Recover(U16In(data)));
}

Bytes FileRequests::LarkList(Data data)
{
    return data.size() == kNameBytes ? Begin(LarkPages(m_files.Matching(NameIn(data)), m_listing))
                                     : AckIf(false);
}

Bytes FileRequests::LarkDelete(Data data)
{
    return AckIf(data.size() == kNameBytes && m_files.Delete(NameIn(data)));
}

Bytes FileRequests::LarkRecover(Data data)
{
    return AckIf(data.size() == kNameBytes && m_files.Recover(NameIn(data)));
}

Bytes FileRequests::Download(Data data)
{
    if (data.size() != kNameBytes + 6) {
        return AckIf(false);
    }
    const Data rest = data.subspan(kNameBytes);
    const std::uint32_t offset = std::uint32_t{U16In(rest)} << 16U | U16In(rest.subspan(2));
    return Begin(FileBlocks(m_files.Find(NameIn(data)), offset, U16In(rest.subspan(4))));
}

} // namespace fieldcore::simulator
