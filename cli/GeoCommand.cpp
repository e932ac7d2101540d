#include "cli/AngleText.h"
#include "cli/Command.h"
#include "cli/Failure.h"
#include "cli/GeoInput.h"
#include "cli/Options.h"
#include "cli/Report.h"
#include "cli/Wording.h"

#include "core/planning/Degrees.h"
#include "core/planning/Geodesy.h"
#include "core/planning/PlaneRectangular.h"
#include "core/planning/TokyoDatum.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <numbers>
#include <utility>
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
    switch (ellipsoid) {
    case Ellipsoid::Grs80:
        return Value::Word("grs80", "GRS80");
    case Ellipsoid::Wgs84:
        return Value::Word("wgs84", "WGS84");
    case Ellipsoid::Bessel1841:
        break;
    }
    return Value::Word("bessel", "Bessel 1841");
}

std::optional<Failure> ReadPlace(const GeoOptions& options, GeodeticPosition& place)
{
    std::optional<Failure> failure =
        ReadAngle({"The latitude", options.first, -90.0, 90.0}, options.Form(), place.latitudeRad);
    if (!failure) {
        failure = ReadAngle({"The longitude", options.second, -360.0, 360.0}, options.Form(),
                            place.longitudeRad);
    }
    if (!failure) {
        failure = ReadMetres({"The height", options.third, kLowestHeightM, kHighestHeightM},
                             place.heightM);
    }
    if (!failure && !IsPlace(place)) { // a full turn, a hair beyond what the library takes
        failure = UsageFailure("The longitude " + options.second + " is out of range.",
                               "-180 to 180 degrees");
    }
    return failure;
}

void AddAngle(Report& report, const std::string& key, const std::string& label, double rad,
              bool packed)
{
    const double degrees = DegreesOf(rad);
    report.Add(key + "Deg", label, Value::Real(degrees, kDegreeDecimals, "deg"));
    report.Add(key + "Dms", "", Value::Text(SexagesimalText(degrees, kSecondDecimals)));
    if (packed) {
        report.Add(key + "Ddmmss", "", Value::Text(PackedText(degrees, kSecondDecimals)));
    }
}

void AddPlace(Report& report, const GeodeticPosition& place, const GeoOptions& options)
{
    AddAngle(report, "latitude", "latitude", place.latitudeRad, options.packed);
    AddAngle(report, "longitude", "longitude", place.longitudeRad, options.packed);
    report.Add("heightM", Worded(text::kLabelEllipsoidalHeight),
               Value::Real(place.heightM, kMetreDecimals, "m"));
}

ExitCode ToEcef(const Context& context, const GeoOptions& options)
{
    GeodeticPosition place;
    if (const std::optional<Failure> failure = ReadPlace(options, place)) {
        return context.output.Failed(*failure);
    }
    const Ecef point = EcefOfGeodetic(place, options.ellipsoid).value_or(Ecef{});
    Report report;
    report.Add("ellipsoid", Worded(text::kLabelEllipsoid), EllipsoidValue(options.ellipsoid));
    report.Add("xM", "X", Value::Real(point.x, kMetreDecimals, "m"));
    report.Add("yM", "Y", Value::Real(point.y, kMetreDecimals, "m"));
    report.Add("zM", "Z", Value::Real(point.z, kMetreDecimals, "m"));
    return context.output.Done(report);
}

ExitCode ToGeodetic(const Context& context, const GeoOptions& options)
{
    constexpr double kFarthest = 1.1e8; // beyond the highest height
    Ecef point;
    std::optional<Failure> failure =
        ReadMetres({"X", options.first, -kFarthest, kFarthest}, point.x);
    if (!failure) {
        failure = ReadMetres({"Y", options.second, -kFarthest, kFarthest}, point.y);
    }
    if (!failure) {
        failure = ReadMetres({"Z", options.third, -kFarthest, kFarthest}, point.z);
    }
    const auto place = GeodeticOfEcef(point, options.ellipsoid);
    if (!failure && !place) {
        failure = UsageFailure("The point is too deep in the earth or too far away from it.",
                               "X, Y and Z in metres, at most 100 km below the ellipsoid and "
                               "100000 km above it");
    }
    if (failure) {
        return context.output.Failed(*failure);
    }
    Report report;
    report.Add("ellipsoid", Worded(text::kLabelEllipsoid), EllipsoidValue(options.ellipsoid));
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
        return "a place in Japan: no zone reaches this one";
    }
    return "--zone " + std::to_string(zones[0]) + " or --zone " + std::to_string(zones[1]) +
           ", whose origins are nearest; the prefecture decides";
}

ExitCode ToPlane(const Context& context, const GeoOptions& options)
{
    GeodeticPosition place;
    std::optional<Failure> failure = ReadPlace(options, place);
    if (!failure && options.zone == 0) {
        failure = UsageFailure("No zone is named.", ZoneHint(place));
    }
    const auto plane = PlaneOfGeodetic(options.zone, place, options.ellipsoid);
    if (!failure && !plane) {
        failure = UsageFailure("The place is out of the reach of zone " +
                                   std::to_string(options.zone) + ".",
                               ZoneHint(place));
    }
    if (failure) {
        return context.output.Failed(*failure);
    }
    const double convergence = DegreesOf(plane->convergenceRad);
    Report report;
    report.Add("ellipsoid", Worded(text::kLabelEllipsoid), EllipsoidValue(options.ellipsoid));
    report.Add("zone", Worded(text::kLabelZone), Value::Integer(options.zone));
    report.Add("xM", Worded(text::kLabelXNorth),
               Value::Real(plane->position.xM, kMetreDecimals, "m"));
    report.Add("yM", Worded(text::kLabelYEast),
               Value::Real(plane->position.yM, kMetreDecimals, "m"));
    report.Add("convergenceDeg", Worded(text::kLabelMeridianConvergence),
               Value::Real(convergence, 8, "deg"));
    report.Add("convergenceDms", "", Value::Text(SexagesimalText(convergence, 2)));
    report.Add("scaleFactor", Worded(text::kLabelScaleFactor), Value::Real(plane->scaleFactor, 8));
    return context.output.Done(report);
}

ExitCode FromPlane(const Context& context, const GeoOptions& options)
{
    PlanePosition point;
    std::optional<Failure> failure =
        ReadMetres({"x", options.first, -kPlaneReachM, kPlaneReachM}, point.xM);
    if (!failure) {
        failure = ReadMetres({"y", options.second, -kPlaneReachM, kPlaneReachM}, point.yM);
    }
    if (failure) {
        return context.output.Failed(*failure);
    }
    const auto place = GeodeticOfPlane(options.zone, point, options.ellipsoid);
    if (!place) {
        return context.output.Failed(
            UsageFailure("There is no such place.", "x is to the north, y to the east, in metres"));
    }
    Report report;
    report.Add("ellipsoid", Worded(text::kLabelEllipsoid), EllipsoidValue(options.ellipsoid));
    report.Add("zone", Worded(text::kLabelZone), Value::Integer(options.zone));
    AddAngle(report, "latitude", "latitude", place->latitudeRad, options.packed);
    AddAngle(report, "longitude", "longitude", place->longitudeRad, options.packed);
    return context.output.Done(report);
}

ExitCode ChangeDatum(const Context& context, const GeoOptions& options)
{
    GeodeticPosition place;
    if (const std::optional<Failure> failure = ReadPlace(options, place)) {
        return context.output.Failed(*failure);
    }
    const bool toJgd = options.to == "jgd";
    const auto other = toJgd ? Jgd2000OfTokyo(place) : TokyoOfJgd2000(place);
    if (!other) {
        return context.output.Failed(UsageFailure("The height leaves the range of the conversion.",
                                                  "-100000 to 100000000 m in both datums"));
    }
    Report report;
    report.Add("datum", Worded(text::kLabelDatum),
               toJgd ? Value::Word("jgd", "JGD2000") : Value::Word("tokyo", "Tokyo datum"));
    report.Add("ellipsoid", Worded(text::kLabelEllipsoid),
               EllipsoidValue(toJgd ? Ellipsoid::Grs80 : Ellipsoid::Bessel1841));
    AddPlace(report, *other, options);
    return context.output.Done(report);
}

ExitCode ShowAngle(const Context& context, const GeoOptions& options)
{
    const AngleResult angle = ParseAngle(options.first, options.Form());
    if (!angle.degrees) {
        return context.output.Failed(UsageFailure(angle.fault));
    }
    const double degrees = *angle.degrees;
    Report report;
    report.Add("deg", Worded(text::kLabelDegrees), Value::Real(degrees, kDegreeDecimals, "deg"));
    report.Add("dms", Worded(text::kLabelDegreesMinutesSeconds),
               Value::Text(SexagesimalText(degrees, kSecondDecimals)));
    report.Add("ddmmss", "DD.MMSSsss", Value::Text(PackedText(degrees, kSecondDecimals)));
    report.Add("rad", Worded(text::kLabelRadians), Value::Exact(RadiansOf(degrees), "rad"));
    return context.output.Done(report);
}

void AddPlaceOptions(CLI::App& parser, GeoOptions& options, bool withHeight)
{
    AddText(parser, "LAT", options.first, "", "Latitude, north positive")->required();
    AddText(parser, "LON", options.second, "", "Longitude, east positive")->required();
    if (withHeight) {
        AddText(parser, "H", options.third, "", "Ellipsoidal height, m (0)");
    }
}

/// @param isPlane  plane coordinates are of Japan
void AddEllipsoid(CLI::App& parser, GeoOptions& options, bool isPlane)
{
    std::map<std::string, Ellipsoid> names{{"grs80", Ellipsoid::Grs80},
                                           {"bessel", Ellipsoid::Bessel1841}};
    if (!isPlane) {
        names["wgs84"] = Ellipsoid::Wgs84;
    }
    parser
        .add_option("--ellipsoid", options.ellipsoid,
                    isPlane ? "grs80 (JGD) or bessel (Tokyo datum) (grs80)"
                            : "grs80, wgs84 or bessel (grs80)")
        ->transform(CLI::CheckedTransformer(names, CLI::ignore_case).description(""))
        ->type_name("NAME");
}

CLI::Option* AddZone(CLI::App& parser, GeoOptions& options)
{
    return AddNumber(parser, "--zone", options.zone, {kFirstPlaneZone, kLastPlaneZone}, "N",
                     "Zone of the plane coordinates");
}

} // namespace

Command AddGeoCommand(CLI::App& program)
{
    const auto options = std::make_shared<GeoOptions>();
    const auto row = [options](const char* name, const char* purpose, const char* examples,
                               void (*add)(CLI::App&, GeoOptions&),
                               ExitCode (*act)(const Context&, const GeoOptions&)) {
        return CommandRow{
            name, purpose, examples,
            [options, add](CLI::App& parser) {
                add(parser, *options);
                parser.add_flag("--ddmmss", options->packed,
                                "35.412240 is 35 degrees, 41 minutes, 22.40 seconds");
            },
            [options, act](const Context& context) { return act(context, *options); }};
    };
    return AddCommands(
        program,
        {"geo",
         "Convert coordinates and angles",
         "  fieldcore-cli geo ecef 35:41:22.4 139:41:30.1 45      to earth-fixed X, Y, Z\n"
         "  fieldcore-cli geo geodetic -3957229 3310200 3737529   and back\n"
         "  fieldcore-cli geo plane 35.6895 139.6917 --zone 9     to plane x, y of zone 9\n"
         "  fieldcore-cli geo unplane -34421.5 -12837.9 --zone 9  and back\n"
         "  fieldcore-cli geo tokyo 35.6863 139.6949 --to jgd     from the old Tokyo datum\n"
         "  fieldcore-cli geo angle 35.412240 --ddmmss            the same angle in other forms\n"
         "\n"
         "Angles are degrees, such as 35.6895 or -0.5, or degrees, minutes and seconds, such as\n"
         "35:41:22.4 or 35\u00B041'22.4\" in quotes. With --ddmmss 35.412240 means the same.\n",
         {},
         {}},
        {row(
             "ecef", "A place as earth-fixed X, Y, Z",
             "  fieldcore-cli geo ecef 35:41:22.4 139:41:30.1 45\n"
             "  fieldcore-cli geo ecef -33.85 151.2 --ellipsoid wgs84\n",
             [](CLI::App& parser, GeoOptions& values) {
                 AddPlaceOptions(parser, values, true);
                 AddEllipsoid(parser, values, false);
             },
             ToEcef),
         row(
             "geodetic", "Earth-fixed X, Y, Z as a place",
             "  fieldcore-cli geo geodetic -3957229 3310200 3737529\n",
             [](CLI::App& parser, GeoOptions& values) {
                 AddText(parser, "X", values.first, "", "Towards latitude 0, longitude 0, m")
                     ->required();
                 AddText(parser, "Y", values.second, "", "Towards latitude 0, longitude 90, m")
                     ->required();
                 AddText(parser, "Z", values.third, "", "Towards the north pole, m")->required();
                 AddEllipsoid(parser, values, false);
             },
             ToGeodetic),
         row(
             "plane", "A place as plane rectangular x, y of Japan",
             "  fieldcore-cli geo plane 35.6895 139.6917 --zone 9\n"
             "  fieldcore-cli geo plane 35.6895 139.6917   which zone?\n",
             [](CLI::App& parser, GeoOptions& values) {
                 AddPlaceOptions(parser, values, false);
                 AddZone(parser, values);
                 AddEllipsoid(parser, values, true);
             },
             ToPlane),
         row(
             "unplane", "Plane rectangular x, y as a place",
             "  fieldcore-cli geo unplane -34421.5 -12837.9 --zone 9\n",
             [](CLI::App& parser, GeoOptions& values) {
                 AddText(parser, "X", values.first, "", "North of the zone's origin, m")
                     ->required();
                 AddText(parser, "Y", values.second, "", "East of the zone's meridian, m")
                     ->required();
                 AddZone(parser, values)->required();
                 AddEllipsoid(parser, values, true);
             },
             FromPlane),
         row(
             "tokyo", "Between the Tokyo datum and JGD2000, to some metres",
             "  fieldcore-cli geo tokyo 35.6863 139.6949 --to jgd      from an old map\n"
             "  fieldcore-cli geo tokyo 35.6895 139.6917 --to tokyo    onto one\n",
             [](CLI::App& parser, GeoOptions& values) {
                 AddPlaceOptions(parser, values, true);
                 AddWord(parser, "--to", values.to, {"jgd", "tokyo"}, "DATUM",
                         "The datum of the result: jgd or tokyo")
                     ->required();
             },
             ChangeDatum),
         row(
             "angle", "One angle in all its forms",
             "  fieldcore-cli geo angle 35:41:22.4\n"
             "  fieldcore-cli geo angle 35.412240 --ddmmss\n",
             [](CLI::App& parser, GeoOptions& values) {
                 AddText(parser, "ANGLE", values.first, "", "At most 360 degrees either way")
                     ->required();
             },
             ShowAngle)});
}

} // namespace fieldcore::cli
