# shellcheck shell=bash
# The packages the tree needs, and the one way to install those that are missing. Sourced.
#
# "run": build and start the program. "test": what the checks need on top of that.

DEBIAN_RUN=(
  ccache
  cmake
  g++
  libayatana-appindicator3-dev
  libboost-json1.81-dev
  libcli11-dev
  libfmt-dev
  libgdk-pixbuf-2.0-dev
  libglib2.0-dev
  libgtk-3-dev
  librsvg2-bin
  librsvg2-common
  libssl-dev
  libwebkit2gtk-4.1-dev
  ninja-build
  pkg-config
  xdg-utils
  zlib1g-dev
)
DEBIAN_TEST=(
  appstream
  chromium
  clang
  clang-format
  clang-tidy
  dbus
  desktop-file-utils
  dpkg-dev
  libbenchmark-dev
  libc++-14-dev
  libc++abi-14-dev
  libclang-rt-14-dev
  libglib2.0-bin
  libgmock-dev
  libgtest-dev
  python3
  shellcheck
  strace
  trash-cli
  xauth
  xvfb
)
BREW_RUN=(boost ccache cli11 cmake fmt librsvg ninja node)
BREW_TEST=(clang-format google-benchmark googletest llvm python shellcheck)

# install_packages run|test: makes sure that everything of that need is there. Installs only what
# is missing, and only where no question has to be asked that nobody can answer.
install_packages() {
  local need=$1
  if command -v dpkg-query >/dev/null 2>&1; then
    case $need in
      run) install_debian "${DEBIAN_RUN[@]}" ;;
      test) install_debian "${DEBIAN_RUN[@]}" "${DEBIAN_TEST[@]}" ;;
    esac
  elif [[ $(uname -s) == Darwin ]]; then
    case $need in
      run) install_brew "${BREW_RUN[@]}" ;;
      test) install_brew "${BREW_RUN[@]}" "${BREW_TEST[@]}" ;;
    esac
  else
    say "sistema senza apt né Homebrew (neither apt nor Homebrew): servono gli equivalenti di" \
      "${DEBIAN_RUN[*]}"
  fi
}

install_debian() {
  local name status missing=()
  # What runs the page's build may come from elsewhere than a package.
  if ! command -v npm >/dev/null 2>&1; then
    set -- "$@" nodejs npm
  fi
  for name in "$@"; do
    status=$(dpkg-query -W -f='${db:Status-Status} ' "$name" 2>/dev/null || true)
    [[ " $status" == *" installed "* ]] || missing+=("$name")
  done
  ((${#missing[@]} > 0)) || return 0

  local root=()
  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null 2>&1; then
      refuse_install "apt-get install --no-install-recommends" "${missing[@]}"
    elif sudo -n true 2>/dev/null; then
      root=(sudo -n)
    elif [[ -t 0 && -t 2 ]]; then
      root=(sudo)
    else
      refuse_install "sudo apt-get install --no-install-recommends" "${missing[@]}"
    fi
  fi
  local apt=(${root[@]+"${root[@]}"} env DEBIAN_FRONTEND=noninteractive
    apt-get -y -qq -o DPkg::Lock::Timeout=300)
  local install=("${apt[@]}" install --no-install-recommends "${missing[@]}")

  say "installo (installing): ${missing[*]}"
  # Only lists that are missing or too old make the first attempt fail.
  if ! "${install[@]}" >"$(log_of packages)" 2>&1 </dev/null; then
    quietly packages "${apt[@]}" update
    quietly packages "${install[@]}"
  fi
}

install_brew() {
  if ! command -v brew >/dev/null 2>&1; then
    refuse_install "brew install" "$@"
  fi
  local name missing=()
  for name in "$@"; do
    brew list --versions "$name" >/dev/null 2>&1 || missing+=("$name")
  done
  ((${#missing[@]} > 0)) || return 0
  say "installo (installing): ${missing[*]}"
  quietly packages brew install "${missing[@]}"
}

# refuse_install COMMAND PACKAGE...: says what is missing and how to install it, and gives up.
refuse_install() {
  local command=$1
  shift
  say "mancano dei pacchetti (missing packages): $* — installali con (install with): $command $*"
  exit 1
}
