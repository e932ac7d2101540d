# GeographicLib as the target Fieldcore::geographic, wherever it is: in this project, and beside
# the installed one. A program with the property FIELDCORE_STARTS_OFTEN takes the few functions that
# it needs from the archive: loading the whole library costs it a tenth of its start. Others get the
# shared one, which can go into any of theirs.
find_path(FieldcoreGeographic_INCLUDE_DIR GeographicLib/Config.h)
find_library(FieldcoreGeographic_LIBRARY NAMES GeographicLib Geographic)
find_library(FieldcoreGeographic_ARCHIVE NAMES libGeographicLib.a libGeographic.a)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(FieldcoreGeographic
    REQUIRED_VARS FieldcoreGeographic_LIBRARY FieldcoreGeographic_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "GeographicLib is missing (Debian: libgeographiclib-dev)")
mark_as_advanced(FieldcoreGeographic_INCLUDE_DIR FieldcoreGeographic_LIBRARY
    FieldcoreGeographic_ARCHIVE)
if(FieldcoreGeographic_FOUND AND NOT TARGET Fieldcore::geographic)
    add_library(Fieldcore::geographic INTERFACE IMPORTED)
    if(FieldcoreGeographic_ARCHIVE)
        set(archive "${FieldcoreGeographic_ARCHIVE}")
    else()
        set(archive "${FieldcoreGeographic_LIBRARY}")
    endif()
    set_target_properties(Fieldcore::geographic PROPERTIES
        INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${FieldcoreGeographic_INCLUDE_DIR}"
        INTERFACE_INCLUDE_DIRECTORIES "${FieldcoreGeographic_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES
            "$<IF:$<BOOL:$<TARGET_PROPERTY:FIELDCORE_STARTS_OFTEN>>,${archive},${FieldcoreGeographic_LIBRARY}>")
endif()
