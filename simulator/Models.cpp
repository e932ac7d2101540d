#include "simulator/Models.h"

#include <algorithm>
#include <array>
#include <string>

namespace fieldcore::simulator {

namespace {

constexpr int kBluetoothBaseWord = 310; // tells type 3032 from the first Pica type

// In the order of type numbers: a name that several types share finds the first of them.
constexpr std::array kModels{
    Model{2010, 1, 0, ""},
    Model{2020, 7, 0, ""},
    Model{2030, 24, 0, ""},
    Model{2040, 9, 0, ""},
    Model{2050, 6, 0, ""},
    Model{3010, 0, 0, ""},
    Model{3011, 69, 0, ""},
    Model{3012, 50, 0, "Corvane VX1 GNSS"},
    Model{3015, 115, 0, "Corvane VX5"},
    Model{3017, 31, 0, "Corvane VX1"},
    Model{3020, 27, 0, ""},
    Model{3021, 64, 0, ""},
    Model{3022, 44, 0, "Corvane VX2 GNSS"},
    Model{3024, 114, 0, "Corvane VX4"},
    Model{3026, 51, 0, "Corvane VX3"},
    Model{3028, 32, 0, "Corvane VX2"},
    Model{3030, 100, 0, "Corvane VX7"},
    Model{3032, 0, kBluetoothBaseWord, "Corvane VX8"},
    Model{3034, 48, 0, "Corvane VX4"},
    Model{3036, 53, 0, "Corvane VX3"},
    Model{3038, 152, 0, "Corvane VX4"},
    Model{3040, 80, 0, "Corvane VX3"},
    Model{3042, 151, 0, "Corvane VX3"},
    Model{3044, 52, 0, "Corvane VX2 GNSS"},
    Model{3046, 136, 0, "Corvane VX2s"},
    Model{3050, 76, 0, "Corvane BaseVX6"},
    Model{3051, 168, 0, "Corvane VX9s"},
};

struct OtherCode
{
    int typeCode;
    int typeNumber;
};

// Second and further codes of the same types.
constexpr std::array kOtherCodes{
    OtherCode{2, 2010}, OtherCode{3, 2010}, OtherCode{4, 2010},
    OtherCode{5, 2010}, OtherCode{8, 2010}, OtherCode{71, 3022},
};

template <typename Predicate>
std::optional<Model> FindIf(Predicate predicate)
{
    const auto* const found = std::find_if(kModels.begin(), kModels.end(), predicate);
    return found == kModels.end() ? std::nullopt : std::optional(*found);
}

} // namespace

std::optional<Model> FindModel(std::string_view text)
{
    return FindIf([&](const Model& model) {
        return text == std::to_string(model.typeNumber) || (!text.empty() && text == model.name);
    });
}

Model ModelOfCode(int typeCode, int modelWord)
{
    for (const OtherCode& other : kOtherCodes) {
        if (other.typeCode == typeCode) {
            Model model = *FindModel(std::to_string(other.typeNumber));
            model.typeCode = typeCode;
            return model;
        }
    }
    const int word = typeCode == 0 && modelWord == kBluetoothBaseWord ? kBluetoothBaseWord : 0;
    const std::optional<Model> found = FindIf(
        [&](const Model& model) { return model.typeCode == typeCode && model.modelWord == word; });
    Model model = found.value_or(Model{kFirstPica, typeCode, 0, ""});
    model.modelWord = modelWord;
    return model;
}

} // namespace fieldcore::simulator
