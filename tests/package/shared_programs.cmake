# Fails when a build of SOURCE in BUILD with a shared library lacks one of the programs. Compiles nothing.
execute_process(
  COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
    -DBUILD_SHARED_LIBS=ON -DVELWHITEBOARD_BUILD_TESTS=OFF
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND "${CMAKE_COMMAND}" --build "${BUILD}" --target board-check lesson -- -n
  COMMAND_ERROR_IS_FATAL ANY)
