# How every target of this project is compiled: link it PRIVATE. Here headers are found from the
# root; hosts see those of build/include alone, see Headers.cmake.
add_library(fieldcore_build INTERFACE)
target_include_directories(fieldcore_build INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/made)
# Formats, on the headers of a library: nothing of it is loaded or exported.
target_include_directories(fieldcore_build SYSTEM INTERFACE
    $<TARGET_PROPERTY:fmt::fmt-header-only,INTERFACE_INCLUDE_DIRECTORIES>)
target_compile_definitions(fieldcore_build INTERFACE FMT_HEADER_ONLY=1)
target_compile_features(fieldcore_build INTERFACE cxx_std_20)
target_compile_options(fieldcore_build INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wimplicit-fallthrough $<$<BOOL:${FIELDCORE_WERROR}>:-Werror>
    # Results are asked for to the last bit: no fused multiply-add, no reordering.
    -ffp-contract=off)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 sees overlapping copies in std::string's own operator+ that are not there.
    target_compile_options(fieldcore_build INTERFACE -Wno-restrict)
endif()

if(FIELDCORE_SANITIZE)
    target_compile_options(fieldcore_build INTERFACE
        -fsanitize=${FIELDCORE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(fieldcore_build INTERFACE -fsanitize=${FIELDCORE_SANITIZE})
endif()
if(FIELDCORE_FUZZ)
    target_compile_options(fieldcore_build INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(FIELDCORE_COVERAGE)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        set(coverage -fprofile-instr-generate -fcoverage-mapping)
    else()
        set(coverage --coverage)
    endif()
    target_compile_options(fieldcore_build INTERFACE ${coverage})
    target_link_options(fieldcore_build INTERFACE ${coverage})
endif()

# fieldcore_precompile(TARGET [HEADER...]): with FIELDCORE_PCH these headers are compiled once. With a
# sanitizer so are those of the standard library that most files include: GCC 12, where it optimises,
# warns of them then, and what a file forgets to include shows in the presets without.
function(fieldcore_precompile target)
    set(headers ${ARGN})
    if(FIELDCORE_SANITIZE)
        list(PREPEND headers
            <algorithm> <array> <chrono> <cmath> <cstdint> <filesystem> <functional> <map> <memory>
            <optional> <span> <string> <string_view> <thread> <vector>)
    endif()
    if(FIELDCORE_PCH AND headers)
        target_precompile_headers(${target} PRIVATE ${headers})
    endif()
endfunction()

# The public headers as hosts include them, <fieldcore/core/link/Command.h>, made of those of the
# tree whenever one of these changes.
file(GLOB_RECURSE all_headers CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/core/*.h ${PROJECT_SOURCE_DIR}/simulator/*.h ${PROJECT_SOURCE_DIR}/ui/*.h)
set(public_headers ${PROJECT_BINARY_DIR}/include)
add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/include.stamp
    COMMAND ${CMAKE_COMMAND} -D "SOURCE=${PROJECT_SOURCE_DIR}" -D "MADE=${PROJECT_BINARY_DIR}/made"
        -D "FOLDER=${public_headers}" -P ${PROJECT_SOURCE_DIR}/cmake/Headers.cmake
    COMMAND ${CMAKE_COMMAND} -E touch ${PROJECT_BINARY_DIR}/include.stamp
    DEPENDS ${all_headers} ${PROJECT_SOURCE_DIR}/cmake/PublicHeaders.txt
        ${PROJECT_SOURCE_DIR}/cmake/Headers.cmake
        ${PROJECT_BINARY_DIR}/made/core/resources/Texts.h
    VERBATIM)
add_custom_target(fieldcore_headers DEPENDS ${PROJECT_BINARY_DIR}/include.stamp)

# fieldcore_library(TARGET COMPONENT): a library that hosts link as Fieldcore::COMPONENT, static or
# shared as BUILD_SHARED_LIBS says. Its objects are the same either way; the shared one shows what is
# in the namespace fieldcore and nothing of what it is made with.
function(fieldcore_library target component)
    add_library(Fieldcore::${component} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${component}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        DEFINE_SYMBOL ""
        POSITION_INDEPENDENT_CODE ON
        LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/fieldcore.map)
    target_compile_features(${target} PUBLIC cxx_std_20)
    # Not linked: what is exported could not name it.
    foreach(kind COMPILE_OPTIONS COMPILE_DEFINITIONS INCLUDE_DIRECTORIES LINK_OPTIONS)
        set(value $<TARGET_PROPERTY:fieldcore_build,INTERFACE_${kind}>)
        if(kind STREQUAL "COMPILE_OPTIONS")
            target_compile_options(${target} PRIVATE ${value})
        elseif(kind STREQUAL "COMPILE_DEFINITIONS")
            target_compile_definitions(${target} PRIVATE ${value})
        elseif(kind STREQUAL "INCLUDE_DIRECTORIES")
            target_include_directories(${target} PRIVATE ${value})
        else()
            target_link_options(${target} PRIVATE ${value})
        endif()
    endforeach()
    target_include_directories(${target} INTERFACE
        $<BUILD_INTERFACE:${public_headers}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    add_dependencies(${target} fieldcore_headers)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
        target_link_options(${target} PRIVATE
            LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/fieldcore.map LINKER:--no-undefined)
    endif()
endfunction()
