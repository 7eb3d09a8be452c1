# Debian packages of the install components, made by `cpack -G DEB`: the shared library, what a compiler
# needs, the programs, and the Python module. scripts/package does all of it.
foreach(option IN ITEMS BUILD_BOTH BUILD_EXAMPLES BUILD_PYTHON INSTALL)
  if(NOT VELWHITEBOARD_${option})
    message(FATAL_ERROR "VELWHITEBOARD_DEBIAN needs VELWHITEBOARD_${option}; the preset package sets it")
  endif()
endforeach()
set(nobody "The VelWhiteBoard developers <velwhiteboard@localhost>")
set(VELWHITEBOARD_MAINTAINER "${nobody}" CACHE STRING
  "Who answers for the packages, as Debian's field Maintainer has it; whoever publishes them sets it")

set(here "${CMAKE_CURRENT_LIST_DIR}")
set(made "${PROJECT_BINARY_DIR}/debian")
set(interface_version "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(runtime_package "libvelwhiteboard${interface_version}")
set(development_package libvelwhiteboard-dev)
set(tools_package velwhiteboard-tools)
set(python_package python3-velwhiteboard)

# The time of everything in the packages, in seconds: the same sources give the same packages.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(epoch "$ENV{SOURCE_DATE_EPOCH}")
else()
  execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT epoch)  # an unpacked archive; its files have the time of the commit
    file(TIMESTAMP "${PROJECT_SOURCE_DIR}/CHANGELOG.md" epoch "%s" UTC)
  endif()
  set(ENV{SOURCE_DATE_EPOCH} "${epoch}")
endif()
string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
string(TIMESTAMP copyright_year "%Y" UTC)

# The control files of the shared library. Its interface is that of the first patch release: a later one
# does not change it, see docs/releasing.md.
set(first_version "${interface_version}.0")
configure_file("${here}/shlibs.in" "${made}/shlibs" @ONLY)
configure_file("${here}/symbols.in" "${made}/symbols.in" @ONLY)
add_custom_command(OUTPUT "${made}/symbols"
  COMMAND dpkg-gensymbols -q -c0 "-p${runtime_package}" "-v${first_version}" "-I${made}/symbols.in"
    "-e$<TARGET_FILE:VelWhiteBoard>" "-O${made}/symbols"
  DEPENDS VelWhiteBoard "${made}/symbols.in"
  WORKING_DIRECTORY "${made}"
  VERBATIM)
add_custom_target(velwhiteboard_symbols ALL DEPENDS "${made}/symbols")

# Documents, and overrides of what lintian says with a reason for each, for each package.
configure_file("${here}/changelog.in" "${made}/changelog" @ONLY)
foreach(component IN ITEMS Runtime Development Tools Python)
  string(TOLOWER "${component}" lower)
  set(package "${${lower}_package}")
  set(documents "${CMAKE_INSTALL_DATADIR}/doc/${package}")
  install(FILES "${here}/copyright" "${made}/changelog" DESTINATION "${documents}"
    COMPONENT VelWhiteBoard_${component})
  install(FILES "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${documents}" RENAME NEWS
    COMPONENT VelWhiteBoard_${component})
  if(VELWHITEBOARD_MAINTAINER STREQUAL nobody)
    configure_file("${here}/lintian-overrides.in" "${made}/overrides/${package}" @ONLY)
    install(FILES "${made}/overrides/${package}" DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides"
      COMPONENT VelWhiteBoard_${component})
  endif()
endforeach()

# The examples that use nothing but the installed library, with a CMakeLists.txt of their own.
set(examples "${CMAKE_INSTALL_DATADIR}/doc/${development_package}/examples")
install(FILES "${here}/examples.cmake" DESTINATION "${examples}" RENAME CMakeLists.txt
  COMPONENT VelWhiteBoard_Development)
install(FILES "${PROJECT_SOURCE_DIR}/examples/standard_streams.h" DESTINATION "${examples}"
  COMPONENT VelWhiteBoard_Development)
install(
  DIRECTORY
    "${PROJECT_SOURCE_DIR}/examples/client"
    "${PROJECT_SOURCE_DIR}/examples/lesson"
    "${PROJECT_SOURCE_DIR}/examples/python"
    "${PROJECT_SOURCE_DIR}/examples/quickstart"
  DESTINATION "${examples}"
  COMPONENT VelWhiteBoard_Development
  PATTERN __pycache__ EXCLUDE
  # The recorded lesson: 2 MB of other people's drawings, which have licences of their own.
  PATTERN lesson.ndjson EXCLUDE
  PATTERN SOURCES.md EXCLUDE
  PATTERN LICENSES EXCLUDE)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velwhiteboard)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "${VELWHITEBOARD_MAINTAINER}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL
  VelWhiteBoard_Runtime VelWhiteBoard_Development VelWhiteBoard_Tools VelWhiteBoard_Python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The module uses the interface of one version of Python.
get_target_property(python_version _velwhiteboard VELWHITEBOARD_PYTHON_VERSION)
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" ignored "${python_version}")
math(EXPR next_minor "${CMAKE_MATCH_2} + 1")
set(python_dependencies "python3 (>= ${CMAKE_MATCH_1}.${CMAKE_MATCH_2}), \
python3 (<< ${CMAKE_MATCH_1}.${next_minor}), ${runtime_package} (= ${PROJECT_VERSION})")
get_target_property(library_dir VelWhiteBoard BINARY_DIR)
# What cpack itself leaves to others: see there.
configure_file("${here}/staging.cmake.in" "${made}/staging.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${made}/staging.cmake")

# The first line of each description is the short one; cpack indents the others, and wants a last empty line.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(about [[
VelWhiteBoard is the model and storage layer of a teaching whiteboard: it
keeps strokes, shapes, texts and pictures as small records, folds the pieces
of a stroke together, and holds every page of a board in memory and in files.

]])

set(CPACK_DEBIAN_VELWHITEBOARD_RUNTIME_PACKAGE_NAME "${runtime_package}")
set(CPACK_DEBIAN_VELWHITEBOARD_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_VELWHITEBOARD_RUNTIME_DESCRIPTION
  "model and storage of a teaching whiteboard - shared library\n${about}This package holds the shared library.\n")
set(CPACK_DEBIAN_VELWHITEBOARD_RUNTIME_PACKAGE_CONTROL_EXTRA
  "${made}/shlibs;${made}/symbols;${here}/triggers")

set(CPACK_DEBIAN_VELWHITEBOARD_DEVELOPMENT_PACKAGE_NAME "${development_package}")
set(CPACK_DEBIAN_VELWHITEBOARD_DEVELOPMENT_PACKAGE_SECTION libdevel)
# The headers show the first of the three libraries; a program with the static library links the others.
set(CPACK_DEBIAN_VELWHITEBOARD_DEVELOPMENT_PACKAGE_DEPENDS
  "${runtime_package} (= ${PROJECT_VERSION}), nlohmann-json3-dev (>= 3.11), libsimdjson-dev (>= 3.0), \
libexpat1-dev (>= 2.5)")
set(CPACK_DEBIAN_VELWHITEBOARD_DEVELOPMENT_PACKAGE_SUGGESTS
  "cmake, pkg-config, libcairo2-dev, libcli11-dev, libnats-dev, qt6-base-dev, qt6-svg-dev")
set(CPACK_DEBIAN_VELWHITEBOARD_DEVELOPMENT_DESCRIPTION
  "model and storage of a teaching whiteboard - development files\n${about}This package holds the headers, the \
static library, the files for CMake\nand pkg-config, and the sources of examples.\n")

set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_PACKAGE_NAME "${tools_package}")
set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_PACKAGE_SECTION education)
set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${library_dir}")
set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_PACKAGE_RECOMMENDS fonts-dejavu-core)
set(programs "This package holds programs:\n\
 * board-check tells which files of a board are damaged, and recovers them.\n\
 * lesson plays a recorded lesson into a board, and draws its pages.")
if(TARGET whiteboard)
  string(APPEND programs "\n * whiteboard draws on a board, alone or in a lesson with others.")
  set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_PACKAGE_SUGGESTS nats-server)
endif()
set(CPACK_DEBIAN_VELWHITEBOARD_TOOLS_DESCRIPTION
  "programs for the boards of a teaching whiteboard\n${about}${programs}\n")

set(CPACK_DEBIAN_VELWHITEBOARD_PYTHON_PACKAGE_NAME "${python_package}")
set(CPACK_DEBIAN_VELWHITEBOARD_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_VELWHITEBOARD_PYTHON_DESCRIPTION
  "boards of a teaching whiteboard - Python module\n${about}This package holds a Python module that reads, \
records and replays boards.\n")

include(CPack)
