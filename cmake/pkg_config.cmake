# VelWhiteBoard.pc. Its prefix is found from the file's own place, so an installed tree can be moved.
set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  # Somebody chose fixed folders: there is nothing to move then.
  set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
  set(pc_libdir "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(pc_includedir "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
  file(RELATIVE_PATH pc_up "/prefix/${pc_dir}" "/prefix")
  string(REGEX REPLACE "/$" "" pc_up "${pc_up}")
  set(pc_prefix "\${pcfiledir}/${pc_up}")
  set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()

# What the headers need.
set(pc_requires "nlohmann_json >= 3.11")
set(pc_cflags "-I\${includedir}")
set(pc_libs "-L\${libdir} -lVelWhiteBoard")
set(pc_private "")
# What a static library needs besides.
set(pc_static_requires "simdjson >= 3.0, expat >= 2.5")
if(library_type STREQUAL "STATIC_LIBRARY")
  # No program links without these, so they are not "private": those are left out of
  # `pkg-config --libs`, and no client would link.
  string(APPEND pc_requires ", ${pc_static_requires}")
  string(APPEND pc_cflags " -DVELWHITEBOARD_STATIC_DEFINE")
  string(APPEND pc_libs " -pthread")
elseif(VELWHITEBOARD_BUILD_BOTH)
  # `pkg-config --static` adds them.
  set(pc_private "Requires.private: ${pc_static_requires}
Cflags.private: -DVELWHITEBOARD_STATIC_DEFINE
Libs.private: -pthread")
endif()

configure_file("${CMAKE_CURRENT_LIST_DIR}/VelWhiteBoard.pc.in"
  "${PROJECT_BINARY_DIR}/VelWhiteBoard.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/VelWhiteBoard.pc" DESTINATION "${pc_dir}" COMPONENT VelWhiteBoard_Development)
