# Fuzzers want the library itself to report which ways the input took, so this is set for all
# directories below, like the sanitizers.
if(VELWHITEBOARD_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "VELWHITEBOARD_BUILD_FUZZERS needs Clang")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()
