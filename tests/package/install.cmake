# Installs the build tree BUILD and moves the result to PREFIX: a package that remembers where it was
# first installed does not survive this.
set(first "${PREFIX}-before-moving")
file(REMOVE_RECURSE "${first}" "${PREFIX}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${first}"
  COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${first}" "${PREFIX}")
