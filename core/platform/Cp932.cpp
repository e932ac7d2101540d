#include "core/platform/Cp932.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <iconv.h>

namespace fieldcore {

namespace {

constexpr char kReplacement = '?';

constexpr bool IsAscii(std::uint8_t byte)
{
    return byte < 0x80;
}

constexpr bool IsLead(std::uint8_t byte)
{
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

constexpr bool IsTrail(std::uint8_t byte)
{
    return byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
}

constexpr std::uint16_t Pair(std::uint8_t lead, std::uint8_t trail)
{
    return static_cast<std::uint16_t>(lead << 8 | trail);
}

/// A conversion of the system's library; it carries state and is used by one thread.
class Converter
{
public:
    Converter(const char* to, const char* from) : m_state(iconv_open(to, from)) {}
    ~Converter()
    {
        if (IsOpen()) {
            iconv_close(m_state);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// Converts one whole character.
    /// @return the length of the result; nothing if it has no form on the other side
    std::optional<std::size_t> Convert(const void* from, std::size_t length, void* to,
                                       std::size_t room) const
    {
        if (!IsOpen()) {
            return std::nullopt;
        }
        iconv(m_state, nullptr, nullptr, nullptr, nullptr);
        // iconv takes its input without const and does not change it.
        auto* in = static_cast<char*>(const_cast<void*>(from));
        auto* out = static_cast<char*>(to);
        std::size_t left = room;
        if (iconv(m_state, &in, &length, &out, &left) != 0 || length != 0) {
            return std::nullopt;
        }
        return room - left;
    }

private:
    // iconv_open() reports failure as -1 in the shape of a pointer.
    [[nodiscard]] bool IsOpen() const { return reinterpret_cast<std::intptr_t>(m_state) != -1; }

    iconv_t m_state;
};

/// The code page as two tables, read once from the system's library: looking up needs no state
/// that threads could share and no memory. 0 stands for "none"; ASCII, and so NUL, never gets here.
class CodePage
{
public:
    static const CodePage& Instance()
    {
        static const CodePage page;
        return page;
    }

    [[nodiscard]] char16_t ToWide(std::uint16_t code) const { return m_wide[code]; }

    [[nodiscard]] std::uint16_t ToCode(char32_t character) const
    {
        return character < m_codes.size() ? m_codes[character] : std::uint16_t{0};
    }

private:
    CodePage()
    {
        const Converter decoder("UTF-16LE", "CP932");
        const Converter encoder("CP932", "UTF-16LE");
        // 0x80, 0xA0 and 0xFD to 0xFF are no characters: only the kana stand alone.
        for (std::uint16_t kana = 0xA1; kana <= 0xDF; ++kana) {
            Add(decoder, encoder, kana);
        }
        for (std::uint16_t lead = 0x81; lead <= 0xFC; ++lead) {
            for (std::uint16_t trail = 0x40; trail <= 0xFC; ++trail) {
                const auto first = static_cast<std::uint8_t>(lead);
                const auto second = static_cast<std::uint8_t>(trail);
                if (IsLead(first) && IsTrail(second)) {
                    Add(decoder, encoder, Pair(first, second));
                }
            }
        }
    }

    void Add(const Converter& decoder, const Converter& encoder, std::uint16_t code)
    {
        std::array<std::uint8_t, 2> bytes{static_cast<std::uint8_t>(code >> 8),
                                          static_cast<std::uint8_t>(code)};
        const bool single = code < 0x100;
        std::array<std::uint8_t, 2> wide{};
        if (decoder.Convert(bytes.data() + (single ? 1 : 0), single ? 1 : 2, wide.data(),
                            wide.size()) != wide.size()) {
            return;
        }
        const auto character = static_cast<char16_t>(wide[1] << 8 | wide[0]);
        m_wide[code] = character;
        // Several pairs can mean one character (it came from two makers' sets): the library
        // names the one to write.
        if (encoder.Convert(wide.data(), wide.size(), bytes.data(), bytes.size()) == 2) {
            m_codes[character] = Pair(bytes[0], bytes[1]);
        } else if (single) {
            m_codes[character] = code;
        }
    }

    std::array<char16_t, 0x10000> m_wide{};
    std::array<std::uint16_t, 0x10000> m_codes{};
};

/// The form that the code page has of a sign which other systems write with another character.
constexpr char32_t CodePageForm(char32_t character)
{
    switch (character) {
    case 0x301C: // wave dash
        return 0xFF5E;
    case 0x2016: // double vertical line
        return 0x2225;
    case 0x2212: // minus
        return 0xFF0D;
    case 0x00A2: // cent
        return 0xFFE0;
    case 0x00A3: // pound
        return 0xFFE1;
    case 0x00AC: // not
        return 0xFFE2;
    case 0x2014: // em dash
        return 0x2015;
    default:
        return character;
    }
}

/// One character in the code page: one byte or two.
struct Encoded
{
    std::array<char, 2> bytes;
    std::size_t length;
};

Encoded Encode(const CodePage& page, wchar_t text)
{
    const auto character = CodePageForm(static_cast<char32_t>(text));
    if (character < 0x80) {
        return {{static_cast<char>(character)}, 1};
    }
    const std::uint16_t code = page.ToCode(character);
    if (code == 0) {
        return {{kReplacement}, 1};
    }
    if (code < 0x100) {
        return {{static_cast<char>(code)}, 1};
    }
    return {{static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)}, 2};
}

} // namespace

std::wstring FromCp932(std::string_view bytes)
{
    const CodePage& page = CodePage::Instance();
    std::wstring text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const auto byte = static_cast<std::uint8_t>(bytes[at]);
        if (IsAscii(byte)) {
            text += static_cast<wchar_t>(byte);
            continue;
        }
        char16_t character = page.ToWide(byte);
        if (IsLead(byte) && at + 1 < bytes.size()) {
            const auto next = static_cast<std::uint8_t>(bytes[at + 1]);
            character = page.ToWide(Pair(byte, next));
            // A pair that means nothing is one "?", but it never swallows an ASCII byte, which
            // may be a separator.
            if (character != 0 || (IsTrail(next) && !IsAscii(next))) {
                ++at;
            }
        }
        text += character != 0 ? static_cast<wchar_t>(character) : wchar_t{kReplacement};
    }
    return text;
}

std::string ToCp932(std::wstring_view text)
{
    const CodePage& page = CodePage::Instance();
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const wchar_t character : text) {
        const Encoded encoded = Encode(page, character);
        bytes.append(encoded.bytes.data(), encoded.length);
    }
    return bytes;
}

std::string ToCp932Field(std::wstring_view text, std::size_t width)
{
    const CodePage& page = CodePage::Instance();
    std::string bytes;
    bytes.reserve(width);
    for (const wchar_t character : text) {
        const Encoded encoded = Encode(page, character);
        if (bytes.size() + encoded.length > width) {
            break;
        }
        bytes.append(encoded.bytes.data(), encoded.length);
    }
    bytes.resize(width, ' ');
    return bytes;
}

} // namespace fieldcore
