# What a developer of a host application gets: the library, its headers below include/fieldcore,
# the programs, and the files that find_package(Fieldcore) needs.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Fieldcore)
install(TARGETS fieldcore_core EXPORT FieldcoreTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fieldcore
    FILE_SET made DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fieldcore)
set(programs fieldcore-simulator)
if(FIELDCORE_CLI)
    list(APPEND programs fieldcore-cli)
endif()
if(FIELDCORE_UI)
    list(APPEND programs fieldcore)
    install(TARGETS fieldcore_ui EXPORT FieldcoreUiTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/fieldcore)
    install(EXPORT FieldcoreUiTargets NAMESPACE Fieldcore:: DESTINATION ${package_folder})
endif()
# The antenna catalogue that the programs begin with, for who wants to change it.
install(FILES core/equipment/GAntenna.ini DESTINATION ${CMAKE_INSTALL_DATADIR}/fieldcore)
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT FieldcoreTargets NAMESPACE Fieldcore:: DESTINATION ${package_folder})
write_basic_package_version_file(FieldcoreConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_LIST_DIR}/FieldcoreConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/FieldcoreConfigVersion.cmake
    DESTINATION ${package_folder})
