# Writes a source file that holds the bytes of the antenna catalogue: cmake -DFILE=... -DOUTPUT=...
# -P EmbedAntennas.cmake
file(READ ${FILE} digits HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${digits}")
file(WRITE ${OUTPUT} "#include \"core/equipment/AntennaCatalogue.h\"

namespace fieldcore {

namespace {

constexpr std::uint8_t kBytes[] = {${bytes}};

} // namespace

std::span<const std::uint8_t> SampleAntennas()
{
    return kBytes;
}

} // namespace fieldcore
")
