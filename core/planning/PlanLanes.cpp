#include "core/planning/PlanLanes.h"

#include "core/platform/Degrees.h"

#include <algorithm>
#include <iterator>
#include <numbers>

// Not compiled for: kinds between those that matter, and those without operators.
// And no instructions that nothing here uses, since Choose() asks for those that it names.
#define HWY_DISABLE_PCLMUL_AES
#define HWY_DISABLE_F16C
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_RVV)

// This file includes itself once for each kind of vector.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/planning/PlanLanes.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace fieldcore::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/// As many doubles as fit, but no more than a block has.
using Lanes = hn::CappedTag<double, kBlockEpochs>;
using OneLane = hn::CappedTag<double, 1>;

constexpr double kPi = std::numbers::pi;

/// c[0] + c[1] t + c[2] t^2 ...
template <class D, std::size_t kTerms>
HWY_INLINE hn::Vec<D> Polynomial(D d, hn::Vec<D> t, const double (&c)[kTerms])
{
    hn::Vec<D> sum = hn::Set(d, c[kTerms - 1]);
    for (std::size_t i = kTerms - 1; i-- > 0;) {
        sum = hn::MulAdd(sum, t, hn::Set(d, c[i]));
    }
    return sum;
}

/// Adding it leaves a number of less than 2^51 as a whole one in the lowest bits.
constexpr double kRounder = 6755399441055744.0; // 1.5 * 2^52

template <class V>
struct SineCosine
{
    V sine;
    V cosine;
};

/// Of an angle in turns, less than 10^5 of them; within 1e-13. The polynomials run through sine
/// and cosine of a quarter turn to both sides at the points of Chebyshev.
template <class D>
HWY_INLINE SineCosine<hn::Vec<D>> OfTurns(D d, hn::Vec<D> turns)
{
    constexpr double kSine[] = {6.28318530717927,   -41.341702239903675, 81.60524914901583,
                                -76.70584754377326, 42.058134871372054,  -15.081483206893,
                                3.6658551595639612};
    constexpr double kCosine[] = {0.9999999999999981, -19.739208802174744, 64.93939402133272,
                                  -85.45681703563287, 60.24463060817376,   -26.42588874334368,
                                  7.896555735851554,  -1.6452233497893094};
    const auto rounder = hn::Set(d, kRounder);
    const auto halves = hn::MulAdd(turns, hn::Set(d, 2.0), rounder);
    const auto rest = hn::NegMulAdd(hn::Set(d, 0.5), halves - rounder, turns);
    // Half a turn further both change their sign.
    const hn::RebindToUnsigned<D> bits;
    const auto sign = hn::BitCast(d, hn::ShiftLeft<63>(hn::BitCast(bits, halves)));
    const auto square = rest * rest;
    return {hn::Xor(rest * Polynomial(d, square, kSine), sign),
            hn::Xor(Polynomial(d, square, kCosine), sign)};
}

/// atan(opposite / adjacent), neither negative: 0 to pi / 2; 0 for 0 / 0. Within 3e-13.
template <class D>
HWY_INLINE hn::Vec<D> ArcTangent(D d, hn::Vec<D> opposite, hn::Vec<D> adjacent)
{
    constexpr double kArc[] = {0.9999999999999732,   -0.33333333330803444, 0.19999999604891977,
                               -0.14285690423839287, 0.11110385046148014,  -0.09078392072943424,
                               0.07563703551915192,  -0.05874505621307831, 0.030662440370424447};
    const auto zero = hn::Zero(d);
    const auto shorter = hn::Min(opposite, adjacent);
    const auto longer = hn::Max(hn::Max(opposite, adjacent), hn::Set(d, 1.0e-300));
    // Above an eighth of a half turn, as the difference from a quarter of one.
    const auto isWide = shorter > hn::Set(d, 0.41421356237309503) * longer;
    const auto t = hn::IfThenElse(isWide, shorter - longer, shorter) /
                   (longer + hn::IfThenElse(isWide, shorter, zero));
    auto angle = hn::MulAdd(t, Polynomial(d, t * t, kArc),
                            hn::IfThenElse(isWide, hn::Set(d, kPi / 4.0), zero));
    return hn::IfThenElse(opposite > adjacent, hn::Set(d, kPi / 2.0) - angle, angle);
}

/// Clockwise from north, 0 to 2 pi.
template <class D>
HWY_INLINE hn::Vec<D> Azimuth(D d, hn::Vec<D> east, hn::Vec<D> north)
{
    const auto zero = hn::Zero(d);
    const auto fromAxis = ArcTangent(d, hn::Abs(east), hn::Abs(north));
    const auto half = hn::IfThenElse(north < zero, hn::Set(d, kPi) - fromAxis, fromAxis);
    return hn::IfThenElse(east < zero, hn::Set(d, 2.0 * kPi) - half, half);
}

template <class V>
struct Vector
{
    V x, y, z;
};

/// IS-GPS-200, 20.3.3.5.2.1: the equations of Table 20-IV without the terms that an almanac does
/// not carry.
template <class D>
HWY_INLINE Vector<hn::Vec<D>> Position(D d, const OrbitConstants& orbit, hn::Vec<D> countS)
{
    const auto number = [d](double value) HWY_ATTR { return hn::Set(d, value); };
    const auto one = number(1.0);
    const auto tk = countS - number(orbit.toaCountS);
    const auto e = number(orbit.eccentricity);
    const auto [sinM, cosM] =
        OfTurns(d, hn::MulAdd(number(orbit.meanTurnsRate), tk, number(orbit.meanTurns)));
    // Kepler's equation, solved for the difference from the mean anomaly: d = e sin(M + d). The
    // series of it in powers of e starts it, within e^4.
    const auto series = hn::NegMulAdd(number(1.5) * sinM, sinM, one);
    const auto difference = e * sinM * hn::MulAdd(e, hn::MulAdd(e, series, cosM), one);
    const auto d2 = difference * difference;
    const auto smallSine = difference * Polynomial(d, d2, {1.0, -1.0 / 6.0, 1.0 / 120.0});
    const auto smallCosine = Polynomial(d, d2, {1.0, -1.0 / 2.0, 1.0 / 24.0, -1.0 / 720.0});
    const auto sine = hn::MulAdd(sinM, smallCosine, cosM * smallSine);
    const auto cosine = hn::MulSub(cosM, smallCosine, sinM * smallSine);
    // One step of Newton's leaves less than 1e-12; its own third power is below that.
    const auto step = hn::MulSub(e, sine, difference) / hn::NegMulAdd(e, cosine, one);
    const auto half = number(0.5) * step * step;
    const auto sinE = hn::NegMulAdd(half, sine, hn::MulAdd(step, cosine, sine));
    const auto cosE = hn::NegMulAdd(half, cosine, hn::NegMulAdd(step, sine, cosine));
    const auto p = cosE - e; // towards perigee, in units of the semi-major axis
    const auto inPlane = [&](std::size_t axis) HWY_ATTR {
        return hn::MulAdd(number(orbit.perigee[axis]), p, number(orbit.ahead[axis]) * sinE);
    };
    const auto along = inPlane(0);
    const auto across = inPlane(1);
    const auto [sinNode, cosNode] =
        OfTurns(d, hn::MulAdd(number(orbit.nodeTurnsRate), tk, number(orbit.nodeTurns)));
    return {hn::MulSub(along, cosNode, across * sinNode),
            hn::MulAdd(along, sinNode, across * cosNode), inPlane(2)};
}

/// Sums of a normal matrix, as DopSums has them.
template <class V>
struct Sums
{
    V n, x, y, z, xx, xy, xz, yy, yz, zz;
};

template <class D>
struct Variances
{
    hn::Vec<D> horizontal, vertical, time;
    hn::Mask<D> isStrong;
};

/// The normal matrix inverted by blocks, the clock first.
template <class D>
HWY_INLINE Variances<D> Invert(D d, const Sums<hn::Vec<D>>& s)
{
    const auto perCount = hn::Set(d, 1.0) / s.n;
    const auto meanX = s.x * perCount;
    const auto meanY = s.y * perCount;
    const auto meanZ = s.z * perCount;
    // The clock eliminated: what the directions scatter about their mean.
    const auto a = hn::NegMulAdd(meanX, s.x, s.xx);
    const auto b = hn::NegMulAdd(meanX, s.y, s.xy);
    const auto c = hn::NegMulAdd(meanX, s.z, s.xz);
    const auto dd = hn::NegMulAdd(meanY, s.y, s.yy);
    const auto e = hn::NegMulAdd(meanY, s.z, s.yz);
    const auto f = hn::NegMulAdd(meanZ, s.z, s.zz);
    // Its adjugate.
    const auto adjXX = hn::MulSub(dd, f, e * e);
    const auto adjXY = hn::MulSub(c, e, b * f);
    const auto adjXZ = hn::MulSub(b, e, c * dd);
    const auto adjYY = hn::MulSub(a, f, c * c);
    const auto adjYZ = hn::MulSub(b, c, a * e);
    const auto adjZZ = hn::MulSub(a, dd, b * b);
    const auto determinant = hn::MulAdd(a, adjXX, hn::MulAdd(b, adjXY, c * adjXZ));
    // So weak that rounding shows; written so that what is not a number is weak, too.
    const auto weak = hn::Set(d, 1.0e-3) * s.xx * s.yy * s.zz;
    const auto perDeterminant = hn::Set(d, 1.0) / determinant;
    const auto mixed =
        hn::MulAdd(adjXY * meanX, meanY, hn::MulAdd(adjXZ * meanX, meanZ, adjYZ * meanY * meanZ));
    const auto quadratic =
        hn::MulAdd(adjXX * meanX, meanX,
                   hn::MulAdd(adjYY * meanY, meanY,
                              hn::MulAdd(adjZZ * meanZ, meanZ, hn::Set(d, 2.0) * mixed)));
    return {(adjXX + adjYY) * perDeterminant, adjZZ * perDeterminant,
            hn::MulAdd(quadratic, perDeterminant, perCount), determinant > weak};
}

/// SkyLimits in vectors.
template <class D>
class Limits
{
    using V = hn::Vec<D>;
    using M = hn::Mask<D>;

public:
    HWY_INLINE Limits(D d, const SkyLimits& limits)
        : m_d(d), m_sines(limits.Sines().data()), m_lowest(limits.Lowest()),
          m_highest(limits.Highest()), m_isLevel(limits.Lowest() == limits.Highest()),
          m_out(SignedSquare(m_lowest - SkyLimits::kClose))
    {}

    /// @return not certainly hidden. Without a root: most satellites end here
    HWY_INLINE M MayPass(V up, V range2) const
    {
        return up * hn::Abs(up) >= hn::Set(m_d, m_out) * range2;
    }

    struct Result
    {
        M passes; ///< and if it is close, undefined
        M isClose;
    };
    /// Of those that may pass.
    /// @param azimuth    works it out; only asked where the curtain decides
    template <class AzimuthOf>
    HWY_INLINE Result Judge(V east, V north, V up, V perRange, AzimuthOf azimuth) const
    {
        const auto close = hn::Set(m_d, SkyLimits::kClose);
        const V sine = up * perRange;
        const M isAbove = sine > hn::Set(m_d, m_highest + SkyLimits::kClose);
        if (m_isLevel) {
            return {isAbove, hn::Not(isAbove)};
        }
        if (hn::AllTrue(m_d, isAbove)) {
            return {isAbove, hn::Not(isAbove)};
        }
        const V degrees = azimuth() * hn::Set(m_d, DegreesOf(1.0));
        const V rounder = hn::Set(m_d, kRounder);
        const V fromWhole = hn::Abs(degrees - (degrees + rounder - rounder));
        // Azimuths lose their meaning towards the zenith.
        const V horizontal = hn::Sqrt(hn::MulAdd(east, east, north * north)) * perRange;
        const M isAzimuthSure = fromWhole * horizontal > hn::Set(m_d, DegreesOf(SkyLimits::kClose));
        // To the next whole degree below; on a whole one it is not sure.
        const hn::RebindToSigned<D> integers;
        const auto entry =
            hn::And(hn::BitCast(integers, degrees - hn::Set(m_d, 0.5) + rounder),
                    hn::Set(integers, static_cast<std::int64_t>(SkyLimits::kTableSize - 1)));
        const V limit = hn::GatherIndex(m_d, m_sines, entry);
        const M passes = hn::And(sine > limit + close, isAzimuthSure);
        const M fails = hn::And(sine < limit - close, isAzimuthSure);
        return {hn::Or(passes, isAbove), hn::Not(hn::Or(hn::Or(passes, fails), isAbove))};
    }

private:
    static double SignedSquare(double sine) { return sine * (sine < 0.0 ? -sine : sine); }

    D m_d;
    const double* m_sines;
    double m_lowest;
    double m_highest;
    bool m_isLevel;
    double m_out; // signed square of the sine below which everything is hidden
};

/// LocalFrame in vectors.
template <class D>
HWY_INLINE Vector<hn::Vec<D>> ToLocal(D d, const LocalFrame& frame, hn::Vec<D> x, hn::Vec<D> y,
                                      hn::Vec<D> z)
{
    const auto number = [d](double value) HWY_ATTR { return hn::Set(d, value); };
    const auto dx = x - number(frame.Origin().x);
    const auto dy = y - number(frame.Origin().y);
    const auto dz = z - number(frame.Origin().z);
    const auto onAxis = [&](const Ecef& axis) HWY_ATTR {
        return hn::MulAdd(number(axis.x), dx, hn::MulAdd(number(axis.y), dy, number(axis.z) * dz));
    };
    return {hn::MulAdd(number(frame.East().x), dx, number(frame.East().y) * dy),
            onAxis(frame.North()), onAxis(frame.Up())};
}

/// Asks the judge about each lane of @p isClose.
/// @return @p passes with the answers
template <class D>
HWY_INLINE hn::Mask<D> AskJudge(D d, const LimitJudge& judge, std::size_t slot, std::size_t first,
                                hn::Mask<D> passes, hn::Mask<D> isClose, DirectionBlock* directions)
{
    std::uint8_t passBits[8]{};
    std::uint8_t closeBits[8]{};
    hn::StoreMaskBits(d, passes, passBits);
    hn::StoreMaskBits(d, isClose, closeBits);
    for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane) {
        if ((closeBits[0] >> lane & 1U) == 0) {
            continue;
        }
        SkyDirection direction;
        const bool pass = judge.Passes(slot, first + lane, direction);
        passBits[0] =
            static_cast<std::uint8_t>((passBits[0] & ~(1U << lane)) | (pass ? 1U << lane : 0U));
        if (directions != nullptr) {
            directions->azimuthRad[first + lane] = direction.azimuthRad;
            directions->elevationRad[first + lane] = direction.elevationRad;
        }
    }
    return hn::LoadMaskBits(d, passBits);
}

/// ViewSky() for the epochs of one vector.
template <class D>
HWY_INLINE void ViewEpochs(D d, const SkyBlock& sky, const LocalFrame& frame,
                           const Limits<D>& limits, const LimitJudge& judge, std::size_t first,
                           SiteBlock& site, std::uint64_t* visible, DirectionBlock* directions)
{
    using V = hn::Vec<D>;
    const hn::RebindToUnsigned<D> bits;
    const V zero = hn::Zero(d);
    const V one = hn::Set(d, 1.0);
    Sums<V> s{zero, zero, zero, zero, zero, zero, zero, zero, zero, zero};
    for (std::size_t word = 0; word < sky.used.size(); ++word) {
        auto seen = hn::Zero(bits);
        for (std::uint64_t rest = sky.used[word]; rest != 0; rest &= rest - 1) {
            const std::uint64_t bit = rest & (~rest + 1);
            const std::size_t slot = word * 64 + static_cast<std::size_t>(__builtin_ctzll(rest));
            const PositionBlock& at = sky.positions[slot * sky.stride];
            const Vector<V> local = ToLocal(d, frame, hn::Load(d, at.x + first),
                                            hn::Load(d, at.y + first), hn::Load(d, at.z + first));
            const V east = local.x;
            const V north = local.y;
            const V up = local.z;
            const V horizontal2 = hn::MulAdd(east, east, north * north);
            const V range2 = hn::MulAdd(up, up, horizontal2);
            const auto mayPass = limits.MayPass(up, range2);
            if (hn::AllFalse(d, mayPass)) {
                continue;
            }
            const V perRange = one / hn::Sqrt(range2);
            DirectionBlock* const direction =
                directions != nullptr ? directions + slot * sky.stride : nullptr;
            V azimuth = zero;
            if (direction != nullptr) {
                azimuth = Azimuth(d, east, north);
                hn::Store(azimuth, d, direction->azimuthRad + first);
                const V elevation = ArcTangent(d, hn::Abs(up), hn::Sqrt(horizontal2));
                hn::Store(hn::CopySign(elevation, up), d, direction->elevationRad + first);
            }
            const auto judged = limits.Judge(east, north, up, perRange, [&]() HWY_ATTR {
                return direction != nullptr ? azimuth : Azimuth(d, east, north);
            });
            auto passes = hn::And(judged.passes, mayPass);
            const auto isClose = hn::And(judged.isClose, mayPass);
            if (HWY_UNLIKELY(!hn::AllFalse(d, isClose))) {
                passes = AskJudge(d, judge, slot, first, passes, isClose, direction);
            }
            const V weight = hn::IfThenElseZero(passes, perRange);
            const V x = east * weight;
            const V y = north * weight;
            const V z = up * weight;
            s.n = s.n + hn::IfThenElseZero(passes, one);
            s.x = s.x + x;
            s.y = s.y + y;
            s.z = s.z + z;
            s.xx = hn::MulAdd(x, x, s.xx);
            s.xy = hn::MulAdd(x, y, s.xy);
            s.xz = hn::MulAdd(x, z, s.xz);
            s.yy = hn::MulAdd(y, y, s.yy);
            s.yz = hn::MulAdd(y, z, s.yz);
            s.zz = hn::MulAdd(z, z, s.zz);
            seen = hn::Or(seen, hn::BitCast(bits, hn::IfThenElseZero(
                                                      passes, hn::BitCast(d, hn::Set(bits, bit)))));
        }
        alignas(64) std::uint64_t words[kBlockEpochs];
        hn::Store(seen, bits, words);
        for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane) {
            visible[(first + lane) * sky.used.size() + word] = words[lane];
        }
    }
    const Variances<D> q = Invert(d, s);
    const V position = q.horizontal + q.vertical;
    hn::Store(s.n, d, site.count + first);
    hn::Store(hn::Sqrt(position), d, site.pdop + first);
    hn::Store(hn::Sqrt(position + q.time), d, site.gdop + first);
    hn::Store(hn::Sqrt(q.time), d, site.tdop + first);
    std::uint8_t strong[8]{};
    hn::StoreMaskBits(d, q.isStrong, strong);
    for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane) {
        site.weak[first + lane] = (strong[0] >> lane & 1U) == 0;
    }
}

} // namespace

void PositionsLanes(const OrbitConstants& orbit, std::size_t epochs, const double* countS,
                    PositionBlock* blocks)
{
    const Lanes d;
    for (std::size_t k = 0; k < epochs; k += hn::Lanes(d)) {
        const auto at = Position(d, orbit, hn::LoadU(d, countS + k));
        PositionBlock& block = blocks[k / kBlockEpochs];
        hn::Store(at.x, d, block.x + k % kBlockEpochs);
        hn::Store(at.y, d, block.y + k % kBlockEpochs);
        hn::Store(at.z, d, block.z + k % kBlockEpochs);
    }
}

void ViewLanes(const SkyBlock& sky, const LocalFrame& frame, const SkyLimits& limits,
               const LimitJudge& judge, SiteBlock& site, std::uint64_t* visible,
               DirectionBlock* directions)
{
    const Lanes d;
    const Limits<Lanes> limitsOfLanes(d, limits);
    for (std::size_t first = 0; first < sky.epochs; first += hn::Lanes(d)) {
        ViewEpochs(d, sky, frame, limitsOfLanes, judge, first, site, visible, directions);
    }
}

Ecef PositionLane(const OrbitConstants& orbit, double countS)
{
    const OneLane d;
    const auto at = Position(d, orbit, hn::Set(d, countS));
    return {hn::GetLane(at.x), hn::GetLane(at.y), hn::GetLane(at.z)};
}

SkyLimits::Verdict JudgeLane(const SkyLimits& limits, const EastNorthUp& enu)
{
    const OneLane d;
    const Limits<OneLane> limitsOfLane(d, limits);
    const auto east = hn::Set(d, enu.east);
    const auto north = hn::Set(d, enu.north);
    const auto up = hn::Set(d, enu.up);
    const auto range2 = hn::MulAdd(up, up, hn::MulAdd(east, east, north * north));
    if (hn::AllFalse(d, limitsOfLane.MayPass(up, range2))) {
        return SkyLimits::Verdict::Hidden;
    }
    const auto judged = limitsOfLane.Judge(east, north, up, hn::Set(d, 1.0) / hn::Sqrt(range2),
                                           [&]() HWY_ATTR { return Azimuth(d, east, north); });
    if (hn::AllTrue(d, judged.isClose)) {
        return SkyLimits::Verdict::TooClose;
    }
    return hn::AllTrue(d, judged.passes) ? SkyLimits::Verdict::Visible : SkyLimits::Verdict::Hidden;
}

DopVariances VariancesLane(const DopSums& s)
{
    const OneLane d;
    const auto number = [d](double value) HWY_ATTR { return hn::Set(d, value); };
    const Variances<OneLane> q =
        Invert(d, {number(s.n), number(s.x), number(s.y), number(s.z), number(s.xx), number(s.xy),
                   number(s.xz), number(s.yy), number(s.yz), number(s.zz)});
    return {hn::GetLane(q.horizontal), hn::GetLane(q.vertical), hn::GetLane(q.time),
            hn::AllTrue(d, q.isStrong)};
}

} // namespace fieldcore::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fieldcore {

namespace {

/// A kind of vector that this file was compiled for.
struct Kind
{
    const char* name;
    std::size_t lanes;
    bool isThere; // the processor has it, and the system lets it be used
    decltype(&HWY_STATIC_DISPATCH(PositionsLanes)) positions;
    decltype(&HWY_STATIC_DISPATCH(ViewLanes)) view;
};

/// @param most  lanes at most; 0: as many as there are
Kind Choose(std::size_t most)
{
#if HWY_ARCH_X86
    // What the compiler was told that each may use.
    const bool hasFma = __builtin_cpu_supports("fma") != 0 && __builtin_cpu_supports("bmi") != 0 &&
                        __builtin_cpu_supports("bmi2") != 0;
#endif
    const Kind kinds[] = {
#if HWY_ARCH_X86
        {"AVX-512", 8,
         __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
             __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
             hasFma,
         N_AVX3::PositionsLanes, N_AVX3::ViewLanes},
        {"AVX2", 4, __builtin_cpu_supports("avx2") != 0 && hasFma, N_AVX2::PositionsLanes,
         N_AVX2::ViewLanes},
        {"SSE4.2", 2, __builtin_cpu_supports("sse4.2") != 0, N_SSE4::PositionsLanes,
         N_SSE4::ViewLanes},
#endif
        {"baseline", HWY_ARCH_ARM ? 2 : 1, true, HWY_STATIC_DISPATCH(PositionsLanes),
         HWY_STATIC_DISPATCH(ViewLanes)},
    };
    return *std::find_if(std::begin(kinds), std::end(kinds) - 1, [most](const Kind& kind) {
        return kind.isThere && (most == 0 || kind.lanes <= most);
    });
}

Kind& Chosen()
{
    static Kind chosen = Choose(0);
    return chosen;
}

} // namespace

void ComputePositions(const OrbitConstants& orbit, std::size_t epochs, const double* countS,
                      PositionBlock* blocks) noexcept
{
    Chosen().positions(orbit, epochs, countS, blocks);
}

void ViewSky(const SkyBlock& sky, const LocalFrame& frame, const SkyLimits& limits,
             const LimitJudge& judge, SiteBlock& site, std::uint64_t* visible,
             DirectionBlock* directions) noexcept
{
    Chosen().view(sky, frame, limits, judge, site, visible, directions);
}

// One lane gains nothing from wider vectors.

Ecef ComputePosition(const OrbitConstants& orbit, double countS) noexcept
{
    return HWY_STATIC_DISPATCH(PositionLane)(orbit, countS);
}

SkyLimits::Verdict JudgeDirection(const SkyLimits& limits, const EastNorthUp& enu) noexcept
{
    return HWY_STATIC_DISPATCH(JudgeLane)(limits, enu);
}

DopVariances ComputeVariances(const DopSums& sums) noexcept
{
    return HWY_STATIC_DISPATCH(VariancesLane)(sums);
}

const char* LanesInUse() noexcept
{
    return Chosen().name;
}

void LimitLanes(std::size_t lanes) noexcept
{
    Chosen() = Choose(lanes);
}

} // namespace fieldcore
#endif // HWY_ONCE
