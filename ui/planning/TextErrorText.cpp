#include "ui/planning/TextErrorText.h"

#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

std::wstring TextErrorText(const std::filesystem::path& file, const TextError& error)
{
    const std::wstring name = FromUtf8(file.filename().string());
    const std::wstring detail =
        FromUtf8(error.field.empty() ? error.message : error.field + ": " + error.message);
    return error.line > 0
               ? FormatText(text::kPlanFileNotTaken, name.c_str(), error.line, detail.c_str())
               : FormatText(text::kPlanFileNotTakenAtAll, name.c_str(), detail.c_str());
}

} // namespace fieldcore
