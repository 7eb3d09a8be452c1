# Compiler and linker options of Debian's packages: hardening, and no path of the build in the results.
# Level and debug information are those of the build type.
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E env DEB_BUILD_MAINT_OPTIONS=hardening=+all
    dpkg-buildflags --export=cmdline
  WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"  # what -ffile-prefix-map leaves out
  OUTPUT_VARIABLE debian_flags OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)

# velwb_debian_flags(NAME out): the options of one of the variables that dpkg-buildflags sets, as a list.
function(velwb_debian_flags name out)
  if(NOT debian_flags MATCHES "(^| )${name}=\"([^\"]*)\"")
    message(FATAL_ERROR "dpkg-buildflags sets no ${name}: ${debian_flags}")
  endif()
  separate_arguments(flags UNIX_COMMAND "${CMAKE_MATCH_2}")
  list(FILTER flags EXCLUDE REGEX "^-(g|O[0-9])$")
  set(${out} "${flags}" PARENT_SCOPE)
endfunction()

velwb_debian_flags(CPPFLAGS preprocessor_flags)
velwb_debian_flags(CXXFLAGS compiler_flags)
velwb_debian_flags(LDFLAGS linker_flags)
add_compile_options(${preprocessor_flags} ${compiler_flags})
add_link_options(${linker_flags} -Wl,--as-needed)

# A path to the build's libraries would change the programs' build identifiers with the folder.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
