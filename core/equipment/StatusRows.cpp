#include "core/equipment/StatusRows.h"

#include "core/resources/StringTable.h"

#include <cmath>

namespace fieldcore {

StatusRow StatusRowOf(const ReceiverField& field, const Receiver& receiver, const StatusView& view)
{
    StatusRow row{&field, FieldText(field, receiver, view), L"", IsStale(field, receiver, view)};
    if (const auto age = AgeOf(field, receiver, view)) {
        row.age = row.isStale ? LastReceivedText(view.utc, *age) : AgeText(*age);
    }
    return row;
}

std::vector<StatusRow> StatusRowsOf(const Receiver& receiver, const StatusView& view)
{
    std::vector<StatusRow> rows;
    for (const bool isPosition : {true, false}) {
        for (const ReceiverField& field : AllReceiverFields()) {
            if ((field.places & ReceiverField::Page) != 0 &&
                ((field.places & ReceiverField::PositionReport) != 0) == isPosition) {
                rows.push_back(StatusRowOf(field, receiver, view));
            }
        }
    }
    return rows;
}

std::vector<std::wstring> BrokenLimits(const Receiver& receiver, const StatusView& view)
{
    std::vector<std::wstring> broken;
    const auto fresh = [&](std::string_view key) {
        const ReceiverField& field = FieldOf(key);
        return IsStale(field, receiver, view) ? std::nullopt : ReadField(field, receiver, view);
    };
    if (!view.limits) {
        return broken;
    }
    const auto shown = [](double pdop) { return std::lround(pdop * 10.0); }; // with one decimal
    if (const auto pdop = fresh("pdop");
        pdop && shown(std::get<double>(*pdop)) > shown(view.limits->pdop)) {
        broken.push_back(FormatText(text::kLimitPdop,
                                    FieldText(FieldOf("pdop"), receiver, view).c_str(),
                                    view.limits->pdop));
    }
    if (const auto above = fresh("satellitesAboveMask");
        above && std::get<std::int64_t>(*above) < view.limits->satellites) {
        broken.push_back(FormatText(text::kLimitSatellites, view.limits->maskDeg,
                                    static_cast<int>(std::get<std::int64_t>(*above)),
                                    view.limits->satellites));
    }
    return broken;
}

const wchar_t* LinkText(LinkState link)
{
    constexpr int kTexts[] = {text::kAppLinkNone, text::kAppLinkConnecting, text::kAppLinkConnected,
                              text::kAppLinkLost, // and reconnecting:
                              text::kAppLinkLost, text::kAppLinkFailed,     text::kAppLinkRefused};
    return Text(kTexts[static_cast<std::size_t>(link)]);
}

std::wstring FixText(const Receiver& receiver, const StatusView& view)
{
    const std::optional<FieldValue> fix = ReadField(FieldOf("fix"), receiver, view);
    if (!fix) {
        return {};
    }
    const int kind = std::get<const Term*>(*fix)->textId - text::kFixNone;
    return FormatText(text::kFixLine, Text(text::kFixShortNone + kind),
                      FieldText(FieldOf("satellitesTracked"), receiver, view).c_str());
}

std::wstring BatteryText(const Receiver& receiver, const StatusView& view)
{
    const std::wstring charge = FieldText(FieldOf("batteryPercent"), receiver, view);
    const bool hasSource = BatteryPercent(receiver) && receiver.powerSource;
    return hasSource ? FormatText(text::kBatteryValue, charge.c_str(),
                                  FieldText(FieldOf("powerSourceName"), receiver, view).c_str())
                     : charge;
}

std::optional<int> BatteryPercent(const Receiver& receiver)
{
    const std::optional<FieldValue> percent = ReadField(FieldOf("batteryPercent"), receiver);
    return percent ? std::optional(static_cast<int>(std::get<std::int64_t>(*percent)))
                   : std::nullopt;
}

std::wstring AgeText(Clock::Duration age)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age);
    if (seconds < std::chrono::minutes(2)) {
        return FormatText(text::kAgeSeconds, static_cast<int>(seconds.count()));
    }
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(seconds);
    return FormatText(text::kAgeMinutes, static_cast<int>(minutes.count()));
}

std::wstring LastReceivedText(Clock::UtcTime utc, Clock::Duration age)
{
    return FormatText(text::kStatusLastReceived, ControllerTimeOfDay(utc - age).c_str());
}

} // namespace fieldcore
