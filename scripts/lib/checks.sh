# The steps of `scripts/test --all`; sourced after common.sh. Each fails if it cannot run.
ci_gcc=build/ci-gcc
ci_clang=build/ci-clang
ci_tidy=build/ci-tidy
ci_tsan=build/ci-tsan
ci_package=build/ci-package
ci_unity=build/ci-unity
ci_libcxx=build/ci-libcxx

# check_format_of FILE...: sources as clang-format leaves them. The commit hook asks this too, as the next.
check_format_of() {
  [[ $# -eq 0 ]] || clang-format --dry-run -Werror "$@"
}

# check_documents_of FILE-OR-FOLDER...: documents without lines that are too long.
check_documents_of() {
  [[ $# -eq 0 ]] || python3 -B "$root/tests/architecture/check_documents.py" "$@"
}

check_format() {
  step "Format"
  local sources
  mapfile -t sources < <(find VelWhiteBoard examples python tests benchmarks fuzz -name '*.h' -o -name '*.cpp' | sort)
  check_format_of "${sources[@]}"
  check_documents_of .
}

check_reference() {
  step "Building the reference, warnings and broken links are errors"
  build_reference
}

build_with_gcc_without_warnings() {
  step "Building with GCC, warnings are errors"
  cmake --preset dev -B "$ci_gcc" --log-level=WARNING \
    -DVELWHITEBOARD_WERROR=ON -DVELWHITEBOARD_BUILD_BENCHMARKS=ON -DVELWHITEBOARD_BUILD_CLIENT=ON \
    -DVELWHITEBOARD_BUILD_PYTHON=ON
  cmake --build "$ci_gcc"
}

# Several sources are compiled as one, which takes a third of the time.
build_with_clang_without_warnings() {
  step "Building with Clang and sanitizers, warnings are errors"
  cmake --preset asan-ubsan -B "$ci_clang" --log-level=WARNING \
    -DVELWHITEBOARD_WERROR=ON -DVELWHITEBOARD_BUILD_BENCHMARKS=ON -DCMAKE_UNITY_BUILD=ON
  cmake --build "$ci_clang"
}

# Finds names that two sources of the library give to different things.
build_as_one_source() {
  step "Building the library as one source, warnings are errors"
  cmake --preset install -B "$ci_unity" --log-level=WARNING -DCMAKE_BUILD_TYPE=Debug \
    -DVELWHITEBOARD_WERROR=ON -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0
  cmake --build "$ci_unity"
}

# The tests of the library's folders; several sources are compiled as one, which takes a third of the time.
test_with_libcxx() {
  step "Library and tests with Clang and libc++, warnings are errors"
  local folders=(foundation vectors services tools storage)
  cmake --preset libcxx -B "$ci_libcxx" --log-level=WARNING -DVELWHITEBOARD_WERROR=ON
  cmake --build "$ci_libcxx" --target "${folders[@]/%/_tests}"
  ctest --test-dir "$ci_libcxx" --label-regex "^($(IFS='|'; printf '%s' "${folders[*]}"))\$" \
    --output-on-failure --no-tests=error --parallel "$jobs"
}

# Over the library's sources and, through them, its headers; .clang-tidy says what is looked for.
check_static() {
  step "Static checks"
  # A folder that is only configured: it says how each source is compiled by itself.
  cmake --preset asan-ubsan -B "$ci_tidy" --log-level=WARNING \
    -DVELWHITEBOARD_BUILD_TESTS=OFF -DVELWHITEBOARD_BUILD_EXAMPLES=OFF
  find VelWhiteBoard -name '*.cpp' | sort |
    xargs --max-procs="$jobs" --max-args=3 clang-tidy --quiet -p "$ci_tidy"
}

test_under_asan_ubsan() {
  step "All tests under AddressSanitizer and UndefinedBehaviorSanitizer"
  UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir "$ci_clang" --output-on-failure --no-tests=error --parallel "$jobs"
}

fuzz_a_minute_each() {
  build_fuzzers
  step "Fuzzing for a minute: ${fuzz_targets[*]}"
  local target processes=() process
  for target in "${fuzz_targets[@]}"; do
    fuzz "$target" 60 1 &
    processes+=($!)
  done
  for process in "${processes[@]}"; do wait "$process"; done
}

test_under_tsan() {
  step "Concurrency tests under ThreadSanitizer"
  cmake --preset tsan -B "$ci_tsan" --log-level=WARNING -DVELWHITEBOARD_WERROR=ON
  cmake --build "$ci_tsan" --target concurrency_tests
  # This sanitizer cannot place its shadow memory on kernels that randomise addresses widely.
  local fixed_addresses=()
  if ! "$ci_tsan/tests/concurrency_tests" --gtest_list_tests >/dev/null 2>&1; then
    fixed_addresses=(setarch "$(uname -m)" --addr-no-randomize)
  fi
  "${fixed_addresses[@]}" ctest --test-dir "$ci_tsan" --label-regex '^concurrency$' \
    --output-on-failure --no-tests=error --parallel "$jobs"
}

test_with_gcc() {
  step "All tests with GCC"
  ctest --test-dir "$ci_gcc" --output-on-failure --no-tests=error --parallel "$jobs"
}

# Joined source files compile in a third of the time; GCC then warns of names that never meet otherwise.
test_packages() {
  make_packages "$ci_package" -DCMAKE_UNITY_BUILD=ON -DCMAKE_CXX_FLAGS=-w
  lint_packages "$ci_package"
  step "Installing the packages, building with them, removing them"
  python3 -B tests/package/debian/packages_test.py "$ci_package"
}
