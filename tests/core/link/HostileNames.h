#pragma once

#include <string_view>

namespace fieldcore::testing {

using namespace std::string_view_literals;

/// Names that no file in a folder may get: they lead out of it, mean a device, hide something, or
/// cannot stand on a card.
inline constexpr std::wstring_view kHostileNames[] = {
    L""sv,         L"."sv,           L".."sv,          L"..."sv,         L" "sv,
    L"/"sv,        L"//"sv,          L"/a.Q01"sv,      L"a/b.Q01"sv,     L"a/"sv,
    L"../a.Q01"sv, L"..\\a.Q01"sv,   L"\\a.Q01"sv,     L"a\\b.Q01"sv,    L"a\\"sv,
    L"./a"sv,      L"a/../b"sv,      L"C:a.Q01"sv,     L"C:\\a"sv,       L"\\\\a\\b"sv,
    L"a:b.Q01"sv,  L":"sv,           L"a.Q01:x"sv,     L"\0"sv,          L"\0a.Q01"sv,
    L"a\0.Q01"sv,  L"a.Q01\0"sv,     L"..\0"sv,        L"a\n.Q01"sv,     L"a\r.Q01"sv,
    L"a\t.Q01"sv,  L"\x1B[2J"sv,     L"a\x7F"sv,       L"a\x85"sv,       L"a\x1F.Q01"sv,
    L"a."sv,       L"a.Q01."sv,      L"a.Q01.."sv,     L"a.Q01 "sv,      L" a.Q01"sv,
    L"a. "sv,      L"CON"sv,         L"con"sv,         L"CON.Q01"sv,     L"Con.a.b"sv,
    L"PRN.Q01"sv,  L"AUX.Q01"sv,     L"NUL"sv,         L"nul.Q01"sv,     L"COM1"sv,
    L"COM9.Q01"sv, L"com0.Q01"sv,    L"LPT1.Q01"sv,    L"lpt3"sv,        L"COM\u00B9.Q01"sv,
    L"CONIN$"sv,   L"CONOUT$.Q01"sv, L"NUL .Q01"sv,    L"a*.Q01"sv,      L"*"sv,
    L"a?.Q01"sv,   L"a\".Q01"sv,     L"<a>.Q01"sv,     L"a|b.Q01"sv,     L"\xD800.Q01"sv,
    L"a.part"sv,   L"a.PART"sv,      L"a.Q01.part"sv,  L"a.part.info"sv, L".bashrc"sv,
    L".ssh"sv,     L".Q01"sv,        L"autorun.inf"sv, L"AutoRun.INF"sv, L"desktop.ini"sv,
};

} // namespace fieldcore::testing
