# velwb_enable_warnings(target): our warnings for one of our targets.
#
# PRIVATE, and only when this is the top-level project: whoever uses the library never sees them.
function(velwb_enable_warnings target)
  if(NOT PROJECT_IS_TOP_LEVEL)
    return()
  endif()
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    # Only Clang checks what guards what.
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)
  if(VELWHITEBOARD_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
