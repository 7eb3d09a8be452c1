# Debian packages that the scripts need; sourced after common.sh.

library_packages=(build-essential cmake ninja-build pkg-config
  nlohmann-json3-dev libsimdjson-dev libexpat1-dev)
example_packages=(libcli11-dev libcairo2-dev fonts-dejavu-core)
test_packages=(libgtest-dev libgmock-dev locales python3 python3-cairo valgrind groff-base)
client_packages=(qt6-base-dev qt6-svg-dev libnats-dev nats-server)
# For tests of windows: a display in memory.
client_test_packages=(xvfb xauth)
reference_packages=(doxygen doxygen-awesome-css python3)
# The Python module and its tests.
python_packages=(pybind11-dev python3-dev python3-pytest)
bench_packages=(libbenchmark-dev libsqlite3-dev python3)
compare_packages=(nodejs node-yjs)
# For scripts/package: what makes Debian packages, and what looks at them.
packaging_packages=(dpkg-dev lintian desktop-file-utils xz-utils)
check_packages=(clang libclang-rt-dev llvm clang-tidy clang-format libbenchmark-dev
  libsqlite3-dev libc++-14-dev libc++abi-14-dev googletest)

# need_packages NAME...: installs what is missing. Asks nothing; reaches the network only if something
# is missing.
need_packages() {
  command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
    { printf 'Not a Debian system: taking for granted that these are installed: %s\n' "$*"; return; }
  local name missing=()
  for name in "$@"; do
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) == installed ]] ||
      missing+=("$name")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0

  local as_root=()
  if [[ $(id -u) -ne 0 ]]; then
    command -v sudo >/dev/null && sudo -n true 2>/dev/null ||
      fail "please install these packages as root and start again: ${missing[*]}"
    as_root=(sudo -n)
  fi
  step "Installing ${missing[*]}"
  "${as_root[@]}" apt-get -qq update
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq install --yes --no-install-recommends "${missing[@]}"
}
