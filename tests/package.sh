#!/usr/bin/env bash
# package.sh BUILD: makes the Debian package and installs it into a private root. With private folders it installs, queries and
# removes the add-on. Then the package is removed and must leave nothing. Exit status: 77 where there is no dpkg.
set -euo pipefail
command -v dpkg >/dev/null || exit 77
[ "$(id -u)" -eq 0 ] || exec unshare --map-root-user "$0" "$@"
build=$1
work=$(mktemp -d "${TMPDIR:-/tmp}/quorvane-XXXXXX")
trap 'rm -rf "$work"' EXIT
root=$work/root

fail() {
    printf 'package.sh: %s\n' "$*" >&2
    exit 1
}
expect() { [[ $2 == *"$1"* ]] || fail "'$1' is not in: $2"; }
dpkg_in_root() { dpkg --root="$root" --log=/dev/null --force-depends "$@" >"$work/dpkg.log" 2>&1 || fail "$(cat "$work/dpkg.log")"; }

mkdir -p "$root"/var/lib/dpkg/{info,updates} "$work"/{home,run,config,data}
chmod 700 "$work/run"
touch "$root/var/lib/dpkg/status"
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work" >"$work/cpack.log" 2>&1 || fail "$(cat "$work/cpack.log")"
dpkg_in_root -i "$work"/*.deb

export HOME=$work/home XDG_RUNTIME_DIR=$work/run XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
export DBUS_SESSION_BUS_ADDRESS=unix:path=$work/none QUORVANE_LOG=$work/log
unset DISPLAY WAYLAND_DISPLAY
host=$root/usr/bin/quorvane-host
for page in quorvane-host quorvane-lock-screen; do
    gzip -t "$root/usr/share/man/man1/$page.1.gz" || fail "no page $page"
done
grep -q "^ExecStart=/usr/bin/quorvane-host run$" "$root/usr/lib/systemd/user/quorvane-host.service" || fail "no user unit"
[ -x "$root/usr/lib/quorvane/quorvane-fetch-artwork" ] || fail "no program that fetches artwork"
# Without a display the add-on cannot run, but it is installed and can remove itself.
expect "Installed version" "$("$host" install 2>&1 || true)"
expect "there is no session to show a card in" "$(cat "$work/log")"
expect "Install: version" "$("$host" status 2>&1 || true)"
expect "Removed the add-on" "$("$host" remove 2>&1)"
left=$(find "$work/data" "$work/config" -name '*LockScreenAddOn*')
[ -z "$left" ] || fail "the add-on has left $left"

dpkg_in_root --purge quorvane-lock-screen
left=$(find "$root" -path "$root/var/lib/dpkg" -prune -o -type f -print)
[ -z "$left" ] || fail "the package has left $left"
