#pragma once

#include "core/settings/Setting.h"
#include "core/tilt/GPSPrm.h"
#include "core/tilt/SignalChoice.h"

#include <cstdint>
#include <span>

namespace fieldcore {

// The tracking parameters of every survey type. The signals are not among them: they are those of
// the receiver, see SignalChoice.h. One of the surveys is the one that is run.

/// A survey type with a set of parameters of its own.
struct SurveyKind
{
    bool isPost;              ///< post-processing, else real time
    std::uint32_t surveyType; ///< flag
    int rover;                ///< 0: reference station; counts in real time only
    int textId;               ///< its name
};

/// All of them, each section once.
[[nodiscard]] std::span<const SurveyKind> AllSurveys();

/// A constant of the library.
[[nodiscard]] const wchar_t* SectionOf(const SurveyKind& kind);

// Bounds of what can be kept; both ends belong to them.
inline constexpr int kLeastSatellites = KnownSetting(L"GPS\\Tracking\\*\\MinSVs")->number.least;
inline constexpr int kMostEpochs = KnownSetting(L"GPS\\Tracking\\*\\SvEpoch")->number.most;
inline constexpr double kLeastPdop = 1.0;
inline constexpr double kMostPdop = 99.0;

/// What a new user has: the defaults of the settings, and no signals.
void ResetTracking(CGPSPrm& parameters, const SurveyKind& kind);

/// Values that are missing, of another type or out of their bounds are those of a new user.
/// @param reg         one that starts at the library's own key
/// @param typeNumber  of the receiver, whose chosen signals are taken; 0: none
void LoadTracking(const CReg& reg, const SurveyKind& kind, std::uint32_t typeNumber,
                  CGPSPrm& parameters);

/// Stores the whole set but its signals, or nothing.
/// @return 1, or 0 if it could not be stored
int SaveTracking(const CReg& reg, const SurveyKind& kind, const CGPSPrm& parameters);

/// The survey that is run, a place in AllSurveys(); the first one for a new user.
[[nodiscard]] std::size_t LoadSurvey(const CReg& reg);
/// @return 1, or 0 if it could not be stored
int SaveSurvey(const CReg& reg, std::size_t place);

} // namespace fieldcore
