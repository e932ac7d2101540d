# Writes a source file that holds the scenarios NAMES of FOLDER: cmake -DNAMES=... -DFOLDER=...
# -DOUTPUT=... -P EmbedScenarios.cmake
set(rows "")
foreach(name IN LISTS NAMES)
    file(READ ${FOLDER}/${name}.txt text)
    string(APPEND rows "    {\"${name}\", R\"scenario(${text})scenario\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"simulator/ShippedScenarios.h\"

namespace fieldcore::simulator {

namespace {

constexpr ShippedScenario kShipped[] = {
${rows}};

} // namespace

std::span<const ShippedScenario> AllShippedScenarios()
{
    return kShipped;
}

} // namespace fieldcore::simulator
")
