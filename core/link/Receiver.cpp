#include "core/link/Receiver.h"

#include "core/link/ReceiverTypes.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

std::uint32_t ReceiverIdentity::TypeNumber() const
{
    return options ? TypeNumberOfCode(options->typeCode, options->modelWord) : 0;
}

std::wstring ReceiverIdentity::Model() const
{
    if (!options) {
        return serial ? serial->receiverType : std::wstring();
    }
    const ReceiverType* const type = FindReceiverType(TypeNumber());
    return type != nullptr && type->model != nullptr ? type->model : std::to_wstring(TypeNumber());
}

std::wstring ReceiverIdentity::Name() const
{
    std::wstring number = serial ? serial->longSerial : std::wstring();
    number.erase(number.find_last_not_of(L' ') + 1); // it is filled with blanks
    return FormatText(text::kReceiverName, Model().c_str(),
                      number.empty() ? Text(text::kReceiverNoSerial) : number.c_str());
}

bool ReceiverIdentity::IsSame(const ReceiverIdentity& other) const
{
    return serial && other.serial && serial->shortSerial == other.serial->shortSerial &&
           serial->longSerial == other.serial->longSerial &&
           serial->receiverType == other.serial->receiverType;
}

} // namespace fieldcore
