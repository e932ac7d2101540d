include(CMakeFindDependencyMacro)
find_dependency(Threads)
find_dependency(SQLite3)
# Debian keeps the module that finds this library beside it, not with CMake's own.
list(APPEND CMAKE_MODULE_PATH /usr/share/cmake/geographiclib)
find_dependency(GeographicLib)
include("${CMAKE_CURRENT_LIST_DIR}/FieldcoreTargets.cmake")
# The screens: find_package(Fieldcore COMPONENTS ui), then link Fieldcore::ui.
if("ui" IN_LIST Fieldcore_FIND_COMPONENTS)
    find_dependency(Qt6 COMPONENTS Widgets Svg)
    include("${CMAKE_CURRENT_LIST_DIR}/FieldcoreUiTargets.cmake")
endif()
