# Making Debian packages of the project; sourced after common.sh.

# make_packages FOLDER [OPTION...]: builds there and makes the packages, FOLDER/*.deb; the options go to cmake.
make_packages() {
  local folder=$1
  step "Building the packages"
  cmake --preset package -B "$folder" --log-level=WARNING "${@:2}"
  cmake --build "$folder"
  rm -f "$folder"/*.deb
  (umask 022; cpack --config "$folder/CPackConfig.cmake") >"$folder/cpack.log" 2>&1 ||
    { cat "$folder/cpack.log" >&2; fail "cpack has not made the packages"; }
}

# lint_packages FOLDER: fails when Debian's own check finds an error or a warning; prints hints as well.
lint_packages() {
  step "Checking the packages"
  lintian --allow-root --fail-on error,warning --pedantic --display-info --tag-display-limit 0 "$1"/*.deb
}
