# Sourced by the commands: the root folder, messages, packages and builds.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '==> %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

packages_of() {
    awk -v groups=" $* " '/^[^#]/ && NF == 2 && index(groups, " " $1 " ") { print $2 }' "$root/tools/packages.txt"
}

is_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

# install GROUP...: installs the packages of these groups that are missing.
install() {
    local packages
    packages=$(packages_of "$@")
    # shellcheck disable=SC2086 # one word a package
    install_packages $packages
}

# install_packages PACKAGE...: installs those that are missing.
install_packages() {
    local missing=() package
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "no apt here: install the equivalents of these Debian packages yourself: $*"
        return 0
    fi
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "installing ${#missing[@]} packages: ${missing[*]}"
    local as_root=() log
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "run this as root, then try again: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    log=$(mktemp "${TMPDIR:-/tmp}/quorvane-install-XXXXXX.log")
    "${as_root[@]}" apt-get update -q >"$log" 2>&1 ||
        fail "the package lists could not be fetched (check the network connection); see $log"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
        -o APT::Status-Fd=1 "${missing[@]}" 2>>"$log" | tee -a "$log" | show_progress ||
        fail "installing failed; see $log"
    rm -f "$log"
}

# Reads apt's status lines (KIND:PACKAGE:PERCENT:TEXT) and prints a line every ten percent.
show_progress() {
    awk -F: '
        /^(dl|pm)status:/ && int($3 / 10) != last[$1] {
            last[$1] = int($3 / 10)
            printf "    %s: %d %%\n", $1 == "dlstatus" ? "downloading" : "installing", last[$1] * 10
            fflush()
        }'
}

# Installs the command line tools and the Homebrew packages.
install_on_mac() {
    xcrun --find clang++ >/dev/null 2>&1 || fail "install Xcode, or its command line tools: xcode-select --install"
    local package
    for package in $(packages_of homebrew); do
        command -v brew >/dev/null || fail "install Homebrew, or by hand: $(packages_of homebrew | tr '\n' ' ')"
        brew list --versions "$package" >/dev/null || { say "installing $package"; brew install --quiet "$package"; }
    done
}

# build PRESET [TARGET...]: configures when needed and builds, showing progress.
build() {
    local preset=$1
    shift
    say "building ($preset)"
    (cd "$root" && cmake --preset "$preset" >"$root/build/$preset.configure.log" 2>&1) ||
        { tail -20 "$root/build/$preset.configure.log" >&2; fail "configuring failed"; }
    (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"}) || fail "building failed"
}
mkdir -p "$root/build"
