#include "core/input/Check.h"

#include "core/host/MesBox.h"
#include "core/input/Parts.h"
#include "core/platform/NumberText.h"
#include "core/platform/SaturateCast.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace fieldcore {

namespace {

// Not iswdigit() and its kin: which characters they take depends on the user's language.
bool IsDigit(wchar_t c)
{
    return c >= L'0' && c <= L'9';
}

bool IsLetter(wchar_t c)
{
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

/// A limit as the message shows it. CParts::Round() reaches only so far.
std::wstring LimitText(double limit)
{
    constexpr std::uint8_t kDecimals = 3;
    constexpr double kLargestRounded = std::numeric_limits<std::uint32_t>::max() / 1000.0;
    return std::fabs(limit) < kLargestRounded ? CParts::Round(limit, kDecimals)
                                              : FormatGeneral(limit);
}

std::wstring RangeText(const std::wstring& minimum, const std::wstring& maximum)
{
    return FormatText(text::kCheckRange, minimum.c_str(), maximum.c_str());
}

} // namespace

CCheck::CCheck(Host& host) : m_host(host) {}

CCheck::CCheck(double minimum, double maximum, Host& host)
    : m_minimum(minimum), m_maximum(maximum), m_host(host)
{}

void CCheck::SetNumMinMax(double minimum, double maximum)
{
    m_minimum = minimum;
    m_maximum = maximum;
}

void CCheck::SetRadMinMax(int minimum, int maximum)
{
    m_minimumDeg = minimum;
    m_maximumDeg = maximum;
}

int CCheck::CheckNum(const std::wstring& text, int controlId, int integerOnly, int showMessage)
{
    return stCheckNum(text, Control(controlId, showMessage).get(), integerOnly, showMessage);
}

int CCheck::CheckNum(const std::wstring& text, FocusTarget* control, int integerOnly,
                     int showMessage)
{
    return stCheckNum(text, control, integerOnly, showMessage);
}

int CCheck::CheckPointName(const std::wstring& text, int controlId, int showMessage)
{
    return stCheckPointName(text, Control(controlId, showMessage).get(), showMessage);
}

int CCheck::CheckPointName(const std::wstring& text, FocusTarget* control, int showMessage)
{
    return stCheckPointName(text, control, showMessage);
}

int CCheck::CheckDeg(const std::wstring& text, int controlId, int showMessage)
{
    return stCheckDeg(text, Control(controlId, showMessage).get(), showMessage);
}

int CCheck::CheckDeg(const std::wstring& text, FocusTarget* control, int showMessage)
{
    return stCheckDeg(text, control, showMessage);
}

double CCheck::GetRad(const std::wstring& text)
{
    stCheckDegRange(text);
    return m_lastAngle / 3600.0 / 180.0 * std::numbers::pi;
}

int CCheck::stCheckNum(const std::wstring& text, FocusTarget* control, int integerOnly,
                       int showMessage)
{
    if (stCheckNumKernel(text, integerOnly) == 0) {
        return Refuse(Text(text::kCheckNumber), text::kCheckNumberCaption, control, showMessage);
    }
    const double value = CParts::atof(text);
    if (m_minimum <= value && value <= m_maximum) {
        return 1;
    }
    return Refuse(RangeText(LimitText(m_minimum), LimitText(m_maximum)), text::kCheckRangeCaption,
                  control, showMessage);
}

int CCheck::stCheckPointName(const std::wstring& text, FocusTarget* control, int showMessage)
{
    return stCheckPointNameKernel(text) != 0
               ? 1
               : Refuse(Text(text::kCheckPointName), text::kCheckPointNameCaption, control,
                        showMessage);
}

int CCheck::stCheckDeg(const std::wstring& text, FocusTarget* control, int showMessage)
{
    if (stCheckDegKernel(text) == 0) {
        return Refuse(Text(text::kCheckAngle), text::kCheckAngleCaption, control, showMessage);
    }
    if (stCheckDegRange(text) != 0) {
        return 1;
    }
    const auto limit = [](std::int32_t degrees) {
        return std::to_wstring(degrees) + L"-59-59.99999";
    };
    return Refuse(RangeText(limit(m_minimumDeg), limit(m_maximumDeg)), text::kCheckRangeCaption,
                  control, showMessage);
}

int CCheck::stCheckNumKernel(const std::wstring& text, int integerOnly)
{
    int points = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const wchar_t c = text[at];
        if (IsDigit(c)) {
            continue;
        }
        if (integerOnly != 0) {
            return 0;
        }
        if (c == L'.') {
            ++points;
        } else if ((c != L'-' && c != L'+') || at != 0) {
            return 0;
        }
    }
    return points <= 1 ? 1 : 0;
}

int CCheck::stCheckPointNameKernel(const std::wstring& text)
{
    const bool valid = std::all_of(text.begin(), text.end(), [](wchar_t c) {
        return IsDigit(c) || IsLetter(c) || c == L'+' || c == L'-';
    });
    return valid ? 1 : 0;
}

int CCheck::stCheckDegKernel(const std::wstring& text)
{
    constexpr int kSeparatorsOfSeconds = 2;
    int points = 0;
    int separators = 0;
    std::size_t first = 0; // separator; there is none at 0
    for (std::size_t at = 0; at < text.size(); ++at) {
        const wchar_t c = text[at];
        if (IsDigit(c) || c == L' ') {
            continue;
        }
        if (c == L'.' && separators == kSeparatorsOfSeconds) {
            ++points;
        } else if (c == L'-') {
            if (at == 0) {
                continue;
            }
            if (separators == 0) {
                first = at;
            } else if (at == first + 1) {
                return 0;
            }
            ++separators;
        } else if (c != L'+' || at != 0) {
            return 0;
        }
    }
    return points <= 1 && separators <= kSeparatorsOfSeconds ? 1 : 0;
}

int CCheck::stCheckDegRange(const std::wstring& text)
{
    constexpr std::int32_t kMostMinutes = 59;
    constexpr double kMostSeconds = 59.9999999999;
    std::array<std::wstring, 3> fields; // degrees, minutes, seconds
    std::size_t field = 0;
    for (std::size_t at = 0; at < text.size() && field < fields.size(); ++at) {
        if (text[at] != L'-') {
            fields[field] += text[at];
        } else if (at != 0) {
            ++field;
        }
    }
    const auto degrees = SaturateCast<std::int32_t>(CParts::atof(fields[0]));
    const auto minutes = SaturateCast<std::int32_t>(CParts::atof(fields[1]));
    const double seconds = CParts::atof(fields[2]);
    m_lastAngle = degrees * 3600.0 + minutes * 60.0 + seconds;
    const bool inRange = m_minimumDeg <= degrees && degrees <= m_maximumDeg && minutes >= 0 &&
                         minutes <= kMostMinutes && seconds >= 0.0 && seconds <= kMostSeconds;
    return inRange ? 1 : 0;
}

std::optional<double> TypedNumber(const std::wstring& text)
{
    const bool isNumber = CCheck(SilentHost::Instance()).CheckNum(text, nullptr, 0, 0) == 1 &&
                          std::any_of(text.begin(), text.end(), IsDigit);
    return isNumber ? std::optional(CParts::atof(text)) : std::nullopt;
}

/// Found before the message: it leaves another window active where there are several.
std::unique_ptr<FocusTarget> CCheck::Control(int id, int showMessage) const
{
    return showMessage != 0 ? m_host.FindControl(id) : nullptr;
}

int CCheck::Refuse(const std::wstring& text, int caption, FocusTarget* control,
                   int showMessage) const
{
    if (showMessage != 0) {
        CMesBox(m_host).Warn(text, caption);
    }
    if (showMessage != 0 && control != nullptr) {
        control->TakeFocus();
    }
    return 0;
}

} // namespace fieldcore
