#include "core/equipment/AntennaMethod.h"

#include "core/input/Parts.h"

#include <cmath>

namespace fieldcore {

namespace {

/// Takes the text up to the next comma, and the comma, off @p rest.
std::wstring TakeField(std::wstring_view& rest)
{
    const std::size_t comma = rest.find(L',');
    const std::wstring field(rest.substr(0, comma));
    rest = comma == std::wstring_view::npos ? std::wstring_view() : rest.substr(comma + 1);
    return field;
}

double TakeMetres(std::wstring_view& rest)
{
    const double metres = CParts::atof(TakeField(rest));
    return std::isfinite(metres) ? metres : 0.0;
}

/// What stands between the first quote and the last character, which should be the other one.
std::wstring Unquoted(const std::wstring& field)
{
    const std::size_t quote = field.find(L'"');
    if (quote == std::wstring::npos) {
        return field;
    }
    std::wstring name = field.substr(quote + 1);
    if (!name.empty()) {
        name.pop_back();
    }
    return name;
}

} // namespace

AntennaMethod ParseAntennaMethod(std::wstring_view text)
{
    AntennaMethod method;
    method.radiusM = TakeMetres(text);
    method.verticalM = TakeMetres(text);
    TakeField(text);
    method.name = Unquoted(TakeField(text));
    return method;
}

AntennaHeight ReduceAntennaHeight(double measuredM, const AntennaMethod& method)
{
    AntennaHeight height{measuredM, 0.0, 0.0, method, AntennaReduction::TooShort};
    const double h2 = measuredM * measuredM; // two products of their own: see Build.cmake
    const double r2 = method.radiusM * method.radiusM;
    height.squareM2 = h2 - r2;
    if (height.squareM2 > 0.0) {
        height.verticalM = std::sqrt(height.squareM2) + method.verticalM;
        height.reduction =
            method.radiusM == 0.0 ? AntennaReduction::Upright : AntennaReduction::Slant;
    } else {
        height.verticalM = measuredM + method.verticalM;
        if (method.radiusM == 0.0) {
            height.reduction = AntennaReduction::Upright; // nothing was measured yet
        }
    }
    return height;
}

} // namespace fieldcore
