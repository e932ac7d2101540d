# What is installed, in the parts that become packages: the library (component runtime) and what a
# developer of a host needs of it (development), the same of the screens (ui, ui-development), and
# the programs (controller, terminal, simulator).
include(CMakePackageConfigHelpers)

# Programs and libraries find shared libraries beside them; a system's own folders need no such path.
set(rpath "")
if(BUILD_SHARED_LIBS AND NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH to_libraries
        ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set(rpath "$ORIGIN;$ORIGIN/${to_libraries}")
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Fieldcore)
# fieldcore_install(TARGET EXPORT RUNTIME DEVELOPMENT): a library and its CMake targets, which are
# found in the build tree, too.
function(fieldcore_install target export runtime development)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${rpath}")
    install(TARGETS ${target} EXPORT ${export}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${development}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${runtime}
        NAMELINK_COMPONENT ${development})
    install(EXPORT ${export} NAMESPACE Fieldcore::
        DESTINATION ${package_folder} COMPONENT ${development})
    export(EXPORT ${export} NAMESPACE Fieldcore:: FILE ${PROJECT_BINARY_DIR}/${export}.cmake)
endfunction()
# fieldcore_pkg_config(NAME CFLAGS REQUIRES ARCHIVE_LIBS ARCHIVE_REQUIRES COMPONENT): NAME.pc of the
# library of that name. Who links an archive links what is in it.
function(fieldcore_pkg_config name cflags requires archive_libs archive_requires component)
    set(PC_NAME ${name})
    set(PC_DESCRIPTION "${PROJECT_DESCRIPTION}")
    set(PC_CFLAGS "${cflags}")
    file(RELATIVE_PATH PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    string(REGEX REPLACE "/$" "" PC_PREFIX "${PC_PREFIX}")
    set(PC_LIBS "-l${name}")
    set(PC_REQUIRES "${requires}")
    if(NOT BUILD_SHARED_LIBS)
        string(APPEND PC_LIBS " ${archive_libs}")
        string(APPEND PC_REQUIRES " ${archive_requires}")
    endif()
    configure_file(cmake/fieldcore.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()

fieldcore_install(fieldcore_core FieldcoreTargets runtime development)
fieldcore_install(fieldcore_simulator FieldcoreSimulatorTargets runtime development)
fieldcore_pkg_config(fieldcore "" "" "-lGeographicLib -pthread" sqlite3 development)
fieldcore_pkg_config(fieldcore-simulator "" fieldcore "" "" development)
install(DIRECTORY ${public_headers}/fieldcore/core ${public_headers}/fieldcore/simulator
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fieldcore COMPONENT development)
write_basic_package_version_file(FieldcoreConfigVersion.cmake COMPATIBILITY SameMinorVersion)
configure_file(cmake/FieldcoreConfig.cmake.in ${PROJECT_BINARY_DIR}/FieldcoreConfig.cmake @ONLY)
configure_file(cmake/FindFieldcoreGeographic.cmake
    ${PROJECT_BINARY_DIR}/FindFieldcoreGeographic.cmake COPYONLY)
install(FILES
    ${PROJECT_BINARY_DIR}/FieldcoreConfig.cmake
    ${PROJECT_BINARY_DIR}/FindFieldcoreGeographic.cmake
    ${PROJECT_BINARY_DIR}/FieldcoreConfigVersion.cmake
    DESTINATION ${package_folder} COMPONENT development)

# fieldcore_program(TARGET COMPONENT): a program, its manual page and its completion in three shells,
# which are made of the table that it prints.
find_program(GZIP gzip)
function(fieldcore_program target component)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${rpath}")
    install(TARGETS ${target}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
    if(NOT GZIP OR CMAKE_CROSSCOMPILING)
        return()
    endif()
    set(folder ${PROJECT_BINARY_DIR}/reference)
    set(script awk -v version=${PROJECT_VERSION} -v date=${FIELDCORE_DATE}
        -f ${PROJECT_SOURCE_DIR}/packaging/reference.awk)
    add_custom_command(
        OUTPUT ${folder}/${target}.1.gz ${folder}/${target}.bash ${folder}/_${target}
            ${folder}/${target}.fish
        COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
        COMMAND ${CMAKE_COMMAND} -E chdir ${folder} ${CMAKE_COMMAND} -E env FIELDCORE_LANGUAGE=en
            $<TARGET_FILE:${target}> --print-reference
            > ${folder}/${target}.tsv
        COMMAND ${CMAKE_COMMAND} -E chdir ${folder} ${script} format=man ${target}.tsv > ${folder}/${target}.1
        COMMAND ${GZIP} -9nf ${folder}/${target}.1
        COMMAND ${CMAKE_COMMAND} -E chdir ${folder} ${script} format=bash ${target}.tsv > ${folder}/${target}.bash
        COMMAND ${CMAKE_COMMAND} -E chdir ${folder} ${script} format=zsh ${target}.tsv > ${folder}/_${target}
        COMMAND ${CMAKE_COMMAND} -E chdir ${folder} ${script} format=fish ${target}.tsv > ${folder}/${target}.fish
        DEPENDS ${target} ${PROJECT_SOURCE_DIR}/packaging/reference.awk
        COMMENT "Printing the reference of ${target}"
        VERBATIM)
    add_custom_target(${target}-reference ALL DEPENDS ${folder}/${target}.1.gz)
    install(FILES ${folder}/${target}.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
    install(FILES ${folder}/${target}.bash RENAME ${target}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT ${component})
    install(FILES ${folder}/_${target}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT ${component})
    install(FILES ${folder}/${target}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT ${component})
endfunction()
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md FIELDCORE_DATE REGEX "^## ${PROJECT_VERSION}")
string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+" FIELDCORE_DATE "${FIELDCORE_DATE}")
if(PROJECT_IS_TOP_LEVEL)
    fieldcore_program(fieldcore-simulator simulator)
endif()
if(FIELDCORE_CLI)
    fieldcore_program(fieldcore-cli terminal)
endif()
if(FIELDCORE_UI)
    fieldcore_install(fieldcore_ui FieldcoreUiTargets ui ui-development)
    fieldcore_pkg_config(fieldcore-ui "-DQT_NO_CAST_FROM_ASCII -DQT_NO_KEYWORDS"
        "fieldcore Qt6Widgets" "" Qt6Svg ui-development)
    install(DIRECTORY ${public_headers}/fieldcore/ui
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fieldcore COMPONENT ui-development)
    fieldcore_program(fieldcore controller)
endif()
# The antenna catalogue that the programs begin with, for who wants to change it.
install(FILES core/equipment/GAntenna.ini
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fieldcore COMPONENT runtime)
