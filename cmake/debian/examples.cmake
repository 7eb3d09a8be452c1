# The examples, for whoever has installed libvelwhiteboard-dev:
#   cp -r /usr/share/doc/libvelwhiteboard-dev/examples . && cmake -S examples -B build && cmake --build build
cmake_minimum_required(VERSION 3.25)
project(VelWhiteBoardExamples LANGUAGES CXX)

option(BUILD_LESSON "Build lesson; needs libcli11-dev and libcairo2-dev" OFF)
option(BUILD_CLIENT "Build the desktop client; needs qt6-base-dev, qt6-svg-dev and libnats-dev" OFF)

find_package(VelWhiteBoard REQUIRED)

# What the examples ask of the project they come from: warnings, and a program that knows its version.
function(velwb_enable_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
function(velwb_install_program name)
  target_compile_definitions(${name} PRIVATE VELWHITEBOARD_VERSION_STRING="${VelWhiteBoard_VERSION}")
endfunction()

add_subdirectory(quickstart)
if(BUILD_LESSON)
  add_subdirectory(lesson)
endif()
if(BUILD_CLIENT)
  add_subdirectory(client)
endif()
