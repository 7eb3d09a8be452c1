# Conveniences for whoever works on this project itself. A host project decides them on its own.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

# Without a build type there is neither optimisation nor debug information, so choose one.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

# A compiler cache is used when there is one; nothing depends on it.
if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(VELWHITEBOARD_CCACHE ccache)
  mark_as_advanced(VELWHITEBOARD_CCACHE)
  if(VELWHITEBOARD_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${VELWHITEBOARD_CCACHE}")
  endif()
endif()
