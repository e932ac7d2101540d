#pragma once

#include <string>
#include <string_view>

namespace fieldcore::testing {

// The same three satellites, made up, as YUMA and as SEM: PRN 7 and 3, and 40, which is none of
// the 32.

inline constexpr std::string_view kSampleYuma =
    R"(******** Week 644 almanac for PRN-07 ********
ID:                         07
Health:                     063
Eccentricity:               1.150000000E-002
Time of Applicability(s):   405504.0000
Orbital Inclination(rad):   1.047197551E+000
Rate of Right Ascen(r/s):  -7.853981634E-009
SQRT(A)  (m 1/2):           5153.625000
Right Ascen at Week(rad):   7.853981634E-001
Argument of Perigee(rad):  -1.570796327E+000
Mean Anom(rad):             3.926990817E-001
Af0(s):                     1.500000000E-005
Af1(s/s):                   0.000000000E+000
week:                       644

******** Week 644 almanac for PRN-03 ********

ID:                         03
Health:                     000
Eccentricity:               2.000000000E-003
Time of Applicability(s):   405504.0000
Orbital Inclination(rad):   9.424777961E-001
Rate of Right Ascen(r/s):  -7.853981634E-009
SQRT(A)  (m 1/2):           5153.500000
Right Ascen at Week(rad):  -2.356194490E+000
Argument of Perigee(rad):   0.000000000E+000
Mean Anom(rad):             3.141592654E+000
Af0(s):                    -2.500000000E-004
Af1(s/s):                   3.600000000E-012
week:                       644

******** Week 644 almanac for PRN-40 ********
ID:                         40
Health:                     000
Eccentricity:               0.000000000E+000
Time of Applicability(s):   405504.0000
Orbital Inclination(rad):   7.000000000E-001
Rate of Right Ascen(r/s):  -2.000000000E-009
SQRT(A)  (m 1/2):           6493.400000
Right Ascen at Week(rad):   1.000000000E+000
Argument of Perigee(rad):  -1.000000000E+000
Mean Anom(rad):             1.000000000E+000
Af0(s):                     0.000000000E+000
Af1(s/s):                   0.000000000E+000
week:                       644
)";

inline constexpr std::string_view kSampleSem = R"(3 INVENTED ALMANAC
 644 405504


7
61
0
 1.15000000000000E-02 3.33333333333333E-02 -2.50000000000000E-09
 5.15362500000000E+03 2.50000000000000E-01 -5.00000000000000E-01
 1.25000000000000E-01 1.50000000000000E-05 0.00000000000000E+00
63
11

3
62
1
 2.00000000000000E-03 0.00000000000000E+00 -2.50000000000000E-09
 5.15350000000000E+03 -7.50000000000000E-01 0.00000000000000E+00
 1.00000000000000E+00 -2.50000000000000E-04 3.60000000000000E-12
0
9

40
0
0
 0.00000000000000E+00 -7.00000000000000E-02 -6.00000000000000E-10
 6.49340000000000E+03 3.00000000000000E-01 -3.00000000000000E-01
 3.00000000000000E-01 0.00000000000000E+00 0.00000000000000E+00
0
11
)";

/// @p text with every @p from become @p to.
[[nodiscard]] inline std::string Replaced(std::string_view text, std::string_view from,
                                          std::string_view to)
{
    std::string result;
    for (std::size_t at = text.find(from); at != std::string_view::npos; at = text.find(from)) {
        result.append(text.substr(0, at)).append(to);
        text.remove_prefix(at + from.size());
    }
    return result.append(text);
}

} // namespace fieldcore::testing
