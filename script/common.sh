# Sourced by the other scripts: the project's folder, its packages, one way to build a preset.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# ensure_packages [what for, as script/bootstrap takes it]
ensure_packages() {
  script/bootstrap --check "$@" 2>/dev/null || script/bootstrap "$@"
}

# build PRESET [CMake arguments] [-- targets]
build() {
  local preset=$1
  shift
  local arguments=()
  while [ $# -gt 0 ] && [ "$1" != -- ]; do
    arguments+=("$1")
    shift
  done
  [ $# -eq 0 ] || shift
  cmake --preset "$preset" "${arguments[@]}" >/dev/null
  cmake --build --preset "$preset" ${1:+--target "$@"}
}
