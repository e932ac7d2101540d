#include "core/equipment/VersionRows.h"

#include "core/equipment/InstalledOptions.h"
#include "core/equipment/ReceiverFields.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

std::vector<VersionRow> VersionRowsOf(const ReceiverIdentity& identity)
{
    std::vector<VersionRow> rows;
    Receiver receiver;
    receiver.identity = identity;
    const auto addAll = [&](int headingId, unsigned place) {
        rows.push_back({Text(headingId), L"", true});
        for (const ReceiverField& field : AllReceiverFields()) {
            if ((field.places & place) != 0) {
                rows.push_back({Text(field.textId), FieldText(field, receiver, {})});
            }
        }
    };
    addAll(text::kVersionReceiver, ReceiverField::Version);
    addAll(text::kVersionFirmware, ReceiverField::Firmware);
    rows.push_back({Text(text::kVersionOptions), L"", true});
    const CRecvInfo info(identity);
    for (const InstalledOption& option : AllInstalledOptions()) {
        const bool isThere = option.has(info) != 0;
        rows.push_back({Text(option.textId),
                        Text(isThere ? text::kVersionInstalled : text::kVersionNotInstalled), false,
                        !isThere});
    }
    return rows;
}

std::wstring VersionText(const std::vector<VersionRow>& rows)
{
    std::wstring text;
    for (const VersionRow& row : rows) {
        text += row.isHeading ? L"[" + row.name + L"]" : row.name + L"\t" + row.value;
        text += L"\n";
    }
    return text;
}

} // namespace fieldcore
