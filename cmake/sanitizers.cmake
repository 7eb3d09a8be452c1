# Sanitizers must cover the library and everything linked with it alike, so they are set for all
# directories below instead of per target.
if(VELWHITEBOARD_SANITIZE)
  foreach(sanitizer IN LISTS VELWHITEBOARD_SANITIZE)
    if(NOT sanitizer MATCHES "^(address|undefined|thread)$")
      message(FATAL_ERROR "VELWHITEBOARD_SANITIZE: unknown sanitizer '${sanitizer}'")
    endif()
    add_compile_options(-fsanitize=${sanitizer})
    add_link_options(-fsanitize=${sanitizer})
    if(sanitizer STREQUAL "undefined")
      # Conversions of doubles saturate by our own code; one that slips through is undefined
      # behaviour, but "undefined" alone does not look for it.
      add_compile_options(-fsanitize=float-cast-overflow -fno-sanitize-recover=all)
      add_link_options(-fsanitize=float-cast-overflow)
    endif()
  endforeach()
  add_compile_options(-fno-omit-frame-pointer)
endif()
