# Building the reference; sourced after common.sh.
reference=build/docs
reference_pages=$reference/html

# build_reference: the pages of the public headers and of the documents. Fails on a warning, on anything public
# without documentation, on a link or picture that is missing.
build_reference() {
  local theme=/usr/share/doxygen-awesome-css headers version
  [[ -f $theme/doxygen-awesome.css ]] || fail "the theme is missing: $theme"
  mapfile -t headers < <(
    sed -n '/^set(public_headers$/,/^)$/s|^  |VelWhiteBoard/|p' VelWhiteBoard/CMakeLists.txt)
  version=$(sed -n 's/^  VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
  [[ ${#headers[@]} -gt 0 && -n $version ]] || fail "the public headers or the version are not where they were"

  rm -rf "$reference"  # no page of yesterday
  mkdir -p "$reference"
  VELWB_PUBLIC_HEADERS=${headers[*]} VELWB_VERSION=$version VELWB_DOCS=$reference VELWB_DOCS_THEME=$theme \
    doxygen docs/reference/Doxyfile
  python3 -B docs/reference/mend_pages.py "$reference_pages"
  python3 -B tests/reference/check_documented.py "$reference/xml" "${headers[@]}"
  python3 -B tests/reference/check_pages.py "$reference_pages"
}
