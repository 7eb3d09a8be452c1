# Installation: library, headers, CMake package and pkg-config file, valid from any prefix.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

get_target_property(library_type VelWhiteBoard TYPE)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VelWhiteBoard")

install(TARGETS VelWhiteBoard
  EXPORT VelWhiteBoardTargets
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
  FILE_SET public_headers DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
  FILE_SET generated_headers DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT VelWhiteBoardTargets
  NAMESPACE VelWhiteBoard::
  DESTINATION "${package_dir}")

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
  DESTINATION "${package_dir}")

install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

include("${CMAKE_CURRENT_LIST_DIR}/pkg_config.cmake")
