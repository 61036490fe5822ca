# What scripts/demo and scripts/test share: installing what is missing, configuring, building. Source it.
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root"

# Debian packages: compilers for both platforms, Wine, the header libraries, what the tests and source packages need.
packages=(
  g++ cmake ninja-build git python3 binutils dpkg-dev
  g++-mingw-w64-x86-64-posix wine wine64
  clang libclang-rt-14-dev clang-format
  googletest nlohmann-json3-dev libcli11-dev
  chromium fonts-dejavu-core
  libpython3-dev python3-numpy r-base-core default-jdk-headless
  python3-pycparser doxygen
)
# Built from Debian's sources, because they are needed for Windows and under sanitizers too.
source_packages=(libcsv pugixml benchmark)

fail() { echo "${0##*/}: $*" >&2; exit 1; }

# Runs a command and keeps it quiet; shows what it printed when it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    fail "failed: $*"
  fi
  rm -f "$log"
}

install_packages() {
  local missing=() package
  for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)" = "ii " ] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "these packages are missing and sudo is not there to install them: ${missing[*]}"
    as_root=(sudo)
  fi
  echo "Installing: ${missing[*]}"
  quietly "${as_root[@]}" apt-get -qq update
  quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends "${missing[@]}"
}

set_up() {
  install_packages
  local name
  for name in "${source_packages[@]}"; do
    quietly scripts/debian-source "$name" "build/deps/$name"
  done
}

# Configures and builds one preset; only a failure prints anything.
build_preset() {
  local preset=$1
  shift
  quietly cmake --preset "$preset"
  quietly cmake --build --preset "$preset" -j "$(nproc)" "$@"
}
