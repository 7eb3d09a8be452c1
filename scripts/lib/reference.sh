# Building the reference; sourced after common.sh.
reference_pages=build/docs/html

# build_reference: the pages of the public headers and of the documents. A warning is an error.
build_reference() {
  local theme=/usr/share/doxygen-awesome-css
  [[ -f $theme/doxygen-awesome.css ]] || fail "the theme is missing: $theme"
  local headers version
  headers=$(sed -n '/^set(public_headers$/,/^)$/s|^  |VelWhiteBoard/|p' VelWhiteBoard/CMakeLists.txt | tr '\n' ' ')
  version=$(sed -n 's/^  VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
  [[ -n $headers && -n $version ]] || fail "the public headers or the version are not where they were"
  rm -rf "$reference_pages"  # no page of yesterday
  mkdir -p "$(dirname "$reference_pages")"
  VELWB_PUBLIC_HEADERS=$headers VELWB_VERSION=$version VELWB_DOCS=$(dirname "$reference_pages") \
    VELWB_DOCS_THEME=$theme doxygen docs/reference/Doxyfile
  python3 -B docs/reference/mend_pages.py "$reference_pages"
}
