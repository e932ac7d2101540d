# How every target of this project is compiled: link it PRIVATE.
add_library(fieldcore_build INTERFACE)
target_compile_features(fieldcore_build INTERFACE cxx_std_20)
target_compile_options(fieldcore_build INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wimplicit-fallthrough -Werror
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
    target_compile_options(fieldcore_build INTERFACE --coverage)
    target_link_options(fieldcore_build INTERFACE --coverage)
endif()
