# Installation: library, headers, CMake package and pkg-config file, valid from any prefix.
#
# Four components, for those who do not want all: VelWhiteBoard_Runtime (a shared library),
# VelWhiteBoard_Development (what a compiler needs), VelWhiteBoard_Tools (the programs), and
# VelWhiteBoard_Python (the Python module).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

get_target_property(library_type VelWhiteBoard TYPE)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VelWhiteBoard")

# velwb_install_library(target export): a library with the headers, and the file that imports it.
function(velwb_install_library target export)
  install(TARGETS ${target}
    EXPORT ${export}
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT VelWhiteBoard_Development
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT VelWhiteBoard_Runtime NAMELINK_COMPONENT VelWhiteBoard_Development
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT VelWhiteBoard_Runtime
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILE_SET public_headers DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT VelWhiteBoard_Development
    FILE_SET generated_headers DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT VelWhiteBoard_Development)
  install(EXPORT ${export}
    NAMESPACE VelWhiteBoard::
    DESTINATION "${package_dir}"
    COMPONENT VelWhiteBoard_Development)
endfunction()

# What the package offers, for VelWhiteBoardConfig.cmake: the kind that is taken unasked, and for each
# kind the file that imports it, or nothing.
velwb_install_library(VelWhiteBoard VelWhiteBoardTargets)
if(library_type STREQUAL "STATIC_LIBRARY")
  set(default_kind static)
else()
  set(default_kind shared)
endif()
set(targets_of_static "")
set(targets_of_shared "")
set(targets_of_${default_kind} VelWhiteBoardTargets)
if(VELWHITEBOARD_BUILD_BOTH)
  velwb_install_library(VelWhiteBoardStatic VelWhiteBoardStaticTargets)
  set(targets_of_static VelWhiteBoardStaticTargets)
endif()

configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/VelWhiteBoardConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/VelWhiteBoardConfig.cmake"
  INSTALL_DESTINATION "${package_dir}"
  NO_SET_AND_CHECK_MACRO)
# Until 1.0 a new minor version may change the interface.
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/VelWhiteBoardConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/VelWhiteBoardConfig.cmake"
  "${PROJECT_BINARY_DIR}/VelWhiteBoardConfigVersion.cmake"
  DESTINATION "${package_dir}"
  COMPONENT VelWhiteBoard_Development)

if(NOT VELWHITEBOARD_DEBIAN)  # there the file copyright holds it
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    COMPONENT VelWhiteBoard_Development)
endif()

include("${CMAKE_CURRENT_LIST_DIR}/pkg_config.cmake")
