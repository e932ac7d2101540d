#include "cli/Command.h"
#include "cli/GeoInput.h"
#include "cli/Options.h"

#include "core/planning/Geodesy.h"
#include "core/planning/PlaneRectangular.h"
#include "core/platform/Degrees.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <vector>

namespace fieldcore::cli {

namespace {

constexpr int kDegreeDecimals = 10; // 0.01 mm on the ground
constexpr int kSecondDecimals = 6;  // 0.03 mm
constexpr int kMetreDecimals = 4;

struct GeoOptions
{
    std::string first; ///< a latitude, an x or an angle
    std::string second;
    std::string third = "0";
    std::string to;
    Ellipsoid ellipsoid = Ellipsoid::Grs80;
    int zone = 0; ///< 0: none was named
    bool packed = false;

    [[nodiscard]] AngleForm Form() const { return packed ? AngleForm::Packed : AngleForm::Decimal; }
};

Value EllipsoidValue(Ellipsoid ellipsoid)
{
    return ellipsoid == Ellipsoid::Grs80   ? Value::Word("grs80", "GRS80")
           : ellipsoid == Ellipsoid::Wgs84 ? Value::Word("wgs84", "WGS84")
                                           : Value::Word("bessel", "Bessel 1841");
}

std::optional<Failure> ReadPlace(const GeoOptions& options, GeodeticPosition& place)
{
    const Wording longitude = text::kLabelLongitude;
    std::optional<Failure> failure = FirstOf(
        {ReadAngle({text::kLabelLatitude, options.first, -90.0, 90.0}, options.Form(),
                   place.latitudeRad),
         ReadAngle({longitude, options.second, -360.0, 360.0}, options.Form(), place.longitudeRad),
         ReadMetres({text::kLabelHeight, options.third, kLowestHeightM, kHighestHeightM},
                    place.heightM)});
    // A full turn may be a hair beyond what the library takes.
    return failure || IsPlace(place)
               ? failure
               : OutOfRange({longitude, options.second, -180.0, 180.0}, "deg");
}

void AddAngle(Report& report, const std::string& key, int label, double rad, bool packed)
{
    const double degrees = DegreesOf(rad);
    report.Add(key + "Deg", label, Value::Real(degrees, kDegreeDecimals, "deg"));
    report.Add(key + "Dms", "", Value::Text(SexagesimalText(degrees, kSecondDecimals)));
    if (packed) {
        report.Add(key + "Ddmmss", "",
                   Value::Text(SexagesimalText(degrees, kSecondDecimals, true)));
    }
}

void AddPlace(Report& report, const GeodeticPosition& place, const GeoOptions& options)
{
    AddAngle(report, "latitude", text::kLabelLatitude, place.latitudeRad, options.packed);
    AddAngle(report, "longitude", text::kLabelLongitude, place.longitudeRad, options.packed);
    report.Add("heightM", text::kLabelEllipsoidalHeight,
               Value::Real(place.heightM, kMetreDecimals, "m"));
}

Ending ToEcef(const Context& context, const GeoOptions& options)
{
    GeodeticPosition place;
    if (const auto failure = ReadPlace(options, place)) {
        return *failure;
    }
    const Ecef point = EcefOfGeodetic(place, options.ellipsoid).value_or(Ecef{});
    Report report;
    report.Add("ellipsoid", text::kLabelEllipsoid, EllipsoidValue(options.ellipsoid));
    report.Add("xM", "X", Value::Real(point.x, kMetreDecimals, "m"));
    report.Add("yM", "Y", Value::Real(point.y, kMetreDecimals, "m"));
    report.Add("zM", "Z", Value::Real(point.z, kMetreDecimals, "m"));
    return context.output.Done(report);
}

Ending ToGeodetic(const Context& context, const GeoOptions& options)
{
    constexpr double kFarthest = 1.1e8; // beyond the highest height
    Ecef point;
    if (const auto failure =
            FirstOf({ReadMetres({"X", options.first, -kFarthest, kFarthest}, point.x),
                     ReadMetres({"Y", options.second, -kFarthest, kFarthest}, point.y),
                     ReadMetres({"Z", options.third, -kFarthest, kFarthest}, point.z)})) {
        return *failure;
    }
    const auto place = GeodeticOfEcef(point, options.ellipsoid);
    if (!place) {
        return UsageFailure(text::kSayTooFar, text::kSayTooFarHint);
    }
    Report report;
    report.Add("ellipsoid", text::kLabelEllipsoid, EllipsoidValue(options.ellipsoid));
    AddPlace(report, *place, options);
    return context.output.Done(report);
}

/// The zones with the nearest origins, the nearest one first.
std::vector<int> NearestZones(const GeodeticPosition& place)
{
    const auto distance = [&place](int zone) {
        const GeodeticPosition origin = PlaneOrigin(zone).value_or(GeodeticPosition{});
        const double east =
            std::remainder(place.longitudeRad - origin.longitudeRad, 2.0 * std::numbers::pi);
        return std::hypot(place.latitudeRad - origin.latitudeRad,
                          east * std::cos(place.latitudeRad));
    };
    std::vector<int> zones;
    for (int zone = kFirstPlaneZone; zone <= kLastPlaneZone; ++zone) {
        zones.push_back(zone);
    }
    std::sort(zones.begin(), zones.end(), [&](int a, int b) { return distance(a) < distance(b); });
    return zones;
}

/// What to try, for a place that has no zone or is too far from it.
std::string ZoneHint(const GeodeticPosition& place)
{
    const std::vector<int> zones = NearestZones(place);
    if (!PlaneOfGeodetic(zones[0], place)) {
        return Worded(text::kSayNoZoneReaches);
    }
    return Worded(text::kSayNearestZones, {std::to_string(zones[0]), std::to_string(zones[1])});
}

Ending ToPlane(const Context& context, const GeoOptions& options)
{
    GeodeticPosition place;
    if (const auto failure = ReadPlace(options, place)) {
        return *failure;
    }
    const auto plane = PlaneOfGeodetic(options.zone, place, options.ellipsoid);
    if (!plane) {
        return UsageFailure(options.zone == 0
                                ? Wording(text::kSayNoZone)
                                : Wording(text::kSayOutOfZone, {std::to_string(options.zone)}),
                            ZoneHint(place));
    }
    const double convergence = DegreesOf(plane->convergenceRad);
    Report report;
    report.Add("ellipsoid", text::kLabelEllipsoid, EllipsoidValue(options.ellipsoid));
    report.Add("zone", text::kLabelZone, Value::Integer(options.zone));
    report.Add("xM", text::kLabelXNorth, Value::Real(plane->position.xM, kMetreDecimals, "m"));
    report.Add("yM", text::kLabelYEast, Value::Real(plane->position.yM, kMetreDecimals, "m"));
    report.Add("convergenceDeg", text::kLabelMeridianConvergence,
               Value::Real(convergence, 8, "deg"));
    report.Add("convergenceDms", "", Value::Text(SexagesimalText(convergence, 2)));
    report.Add("scaleFactor", text::kLabelScaleFactor, Value::Real(plane->scaleFactor, 8));
    return context.output.Done(report);
}

Ending FromPlane(const Context& context, const GeoOptions& options)
{
    PlanePosition point;
    if (const auto failure =
            FirstOf({ReadMetres({"x", options.first, -kPlaneReachM, kPlaneReachM}, point.xM),
                     ReadMetres({"y", options.second, -kPlaneReachM, kPlaneReachM}, point.yM)})) {
        return *failure;
    }
    const auto place = GeodeticOfPlane(options.zone, point, options.ellipsoid);
    if (!place) {
        return UsageFailure(text::kSayNoPlace, text::kSayNoPlaceHint);
    }
    Report report;
    report.Add("ellipsoid", text::kLabelEllipsoid, EllipsoidValue(options.ellipsoid));
    report.Add("zone", text::kLabelZone, Value::Integer(options.zone));
    AddAngle(report, "latitude", text::kLabelLatitude, place->latitudeRad, options.packed);
    AddAngle(report, "longitude", text::kLabelLongitude, place->longitudeRad, options.packed);
    return context.output.Done(report);
}

Ending ChangeDatum(const Context& context, const GeoOptions& options)
{
    GeodeticPosition place;
    if (const auto failure = ReadPlace(options, place)) {
        return *failure;
    }
    const bool toJgd = options.to == "jgd";
    const auto other = toJgd ? Jgd2000OfTokyo(place) : TokyoOfJgd2000(place);
    if (!other) {
        return UsageFailure(text::kSayDatumHeight, text::kSayDatumHeightHint);
    }
    Report report;
    report.Add("datum", text::kLabelDatum,
               toJgd ? Value::Word("jgd", "JGD2000") : Term("tokyo", text::kWordTokyo));
    report.Add("ellipsoid", text::kLabelEllipsoid,
               EllipsoidValue(toJgd ? Ellipsoid::Grs80 : Ellipsoid::Bessel1841));
    AddPlace(report, *other, options);
    return context.output.Done(report);
}

Ending ShowAngle(const Context& context, const GeoOptions& options)
{
    const AngleResult angle = ParseAngle(options.first, options.Form());
    if (!angle.degrees) {
        return UsageFailure(angle.fault);
    }
    const double degrees = *angle.degrees;
    Report report;
    report.Add("deg", text::kLabelDegrees, Value::Real(degrees, kDegreeDecimals, "deg"));
    report.Add("dms", text::kLabelDegreesMinutesSeconds,
               Value::Text(SexagesimalText(degrees, kSecondDecimals)));
    report.Add("ddmmss", "DD.MMSSsss",
               Value::Text(SexagesimalText(degrees, kSecondDecimals, true)));
    report.Add("rad", text::kLabelRadians, Value::Exact(RadiansOf(degrees), "rad"));
    return context.output.Done(report);
}

void AddPlaceOptions(CLI::App& parser, GeoOptions& options, bool withHeight)
{
    AddText(parser, "LAT", options.first, "", text::kOptLatitude)->required();
    AddText(parser, "LON", options.second, "", text::kOptLongitude)->required();
    if (withHeight) {
        AddText(parser, "H", options.third, "", text::kOptHeight);
    }
}

/// @param isPlane  plane coordinates are of Japan
void AddForms(CLI::App& parser, GeoOptions& options, bool isPlane)
{
    std::map<std::string, Ellipsoid> names{{"grs80", Ellipsoid::Grs80},
                                           {"bessel", Ellipsoid::Bessel1841}};
    if (!isPlane) {
        names["wgs84"] = Ellipsoid::Wgs84;
    }
    parser
        .add_option("--ellipsoid", options.ellipsoid,
                    Worded(isPlane ? text::kOptEllipsoidPlane : text::kOptEllipsoid))
        ->transform(CLI::CheckedTransformer(names, CLI::ignore_case).description(""))
        ->type_name("NAME");
    AddFlag(parser, "--ddmmss", options.packed, text::kOptPacked);
}

CLI::Option* AddZone(CLI::App& parser, GeoOptions& options)
{
    return AddNumber(parser, "--zone", options.zone, {kFirstPlaneZone, kLastPlaneZone}, "N",
                     text::kOptZone);
}

} // namespace

Command AddGeoCommand(CLI::App& program)
{
    return AddCommand<GeoOptions>(
        program, {"geo", text::kHelpGeo},
        {{"ecef", text::kHelpGeoEcef,
          [](CLI::App& parser, GeoOptions& options) {
              AddPlaceOptions(parser, options, true);
              AddForms(parser, options, false);
          },
          ToEcef},
         {"geodetic", text::kHelpGeoGeodetic,
          [](CLI::App& parser, GeoOptions& options) {
              AddText(parser, "X", options.first, "", text::kOptEcefX)->required();
              AddText(parser, "Y", options.second, "", text::kOptEcefY)->required();
              AddText(parser, "Z", options.third, "", text::kOptEcefZ)->required();
              AddForms(parser, options, false);
          },
          ToGeodetic},
         {"plane", text::kHelpGeoPlane,
          [](CLI::App& parser, GeoOptions& options) {
              AddPlaceOptions(parser, options, false);
              AddZone(parser, options);
              AddForms(parser, options, true);
          },
          ToPlane},
         {"unplane", text::kHelpGeoUnplane,
          [](CLI::App& parser, GeoOptions& options) {
              AddText(parser, "X", options.first, "", text::kOptPlaneX)->required();
              AddText(parser, "Y", options.second, "", text::kOptPlaneY)->required();
              AddZone(parser, options)->required();
              AddForms(parser, options, true);
          },
          FromPlane},
         {"tokyo", text::kHelpGeoTokyo,
          [](CLI::App& parser, GeoOptions& options) {
              AddPlaceOptions(parser, options, true);
              AddWord(parser, "--to", options.to, {"jgd", "tokyo"}, "DATUM", text::kOptDatum)
                  ->required();
              AddFlag(parser, "--ddmmss", options.packed, text::kOptPacked);
          },
          ChangeDatum},
         {"angle", text::kHelpGeoAngle,
          [](CLI::App& parser, GeoOptions& options) {
              AddText(parser, "ANGLE", options.first, "", text::kOptAngle)->required();
              AddFlag(parser, "--ddmmss", options.packed, text::kOptPacked);
          },
          ShowAngle}});
}

} // namespace fieldcore::cli
