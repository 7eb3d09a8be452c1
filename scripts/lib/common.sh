# Shared by the scripts beside this folder; sourced, never run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root"

jobs=$(nproc)

# step TEXT: the heading of the next step, with the time since the script began.
step() {
  printf '\n== %s [%d min %02d s]\n' "$1" $((SECONDS / 60)) $((SECONDS % 60))
}

# fail TEXT: says why and ends the script.
fail() {
  printf '%s: %s\n' "$(basename "$0")" "$1" >&2
  exit 1
}
