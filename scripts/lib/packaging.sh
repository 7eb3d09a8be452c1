# Making Debian packages of the project; sourced after common.sh.

# make_packages FOLDER [OPTION...]: builds there and makes the packages, FOLDER/*.deb; the options go to cmake.
make_packages() {
  local folder=$1
  step "Building the packages"
  cmake --preset package -B "$folder" --log-level=WARNING "${@:2}"
  cmake --build "$folder"
  rm -f "$folder"/*.deb
  cpack --config "$folder/CPackConfig.cmake" >"$folder/cpack.log" 2>&1 ||
    { cat "$folder/cpack.log" >&2; fail "cpack has not made the packages"; }
}

# lint_packages FOLDER: what Debian's own check says about them; nothing but hints may be left.
lint_packages() {
  step "Checking the packages"
  lintian --fail-on error,warning,pedantic --pedantic --display-info --tag-display-limit 0 \
    --allow-root "$1"/*.deb
}
