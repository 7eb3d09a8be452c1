# GoogleTest: the installed library, or one built here from installed sources. A standard library other
# than the system's needs the latter, because the functions of GoogleTest take its strings.
set(VELWHITEBOARD_GOOGLETEST_SOURCE "" CACHE PATH
  "Folder of GoogleTest's sources; empty for the installed library")
if(NOT VELWHITEBOARD_GOOGLETEST_SOURCE)
  find_package(GTest 1.12 REQUIRED)
  return()
endif()
set(INSTALL_GTEST OFF CACHE INTERNAL "")
add_subdirectory("${VELWHITEBOARD_GOOGLETEST_SOURCE}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
find_package(Threads REQUIRED)
