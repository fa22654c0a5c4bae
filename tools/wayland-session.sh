# Sourced after session.sh: KDE Plasma's compositor with its real lock screen, nested in the session's X server.

# begin_compositor WIDTH HEIGHT [SCALE]: starts KWin as the session's Wayland compositor.
begin_compositor() {
    # A copy has no file capability. With it, a container refuses to start the program.
    cp "$(command -v kwin_wayland)" "$session/kwin_wayland"
    mkdir -p "$session/data/applications" "$session/cache"
    export XDG_CACHE_HOME=$session/cache XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=KDE
    export KWIN_COMPOSE=Q QT_QUICK_BACKEND=software  # without a GPU
    background compositor "$session/kwin_wayland" --x11-display "$DISPLAY" --width "$1" --height "$2" \
        --scale "${3:-1}" --socket wayland-quorvane
    compositor=$started
    local deadline=$((SECONDS + 30))
    until [ -S "$XDG_RUNTIME_DIR/wayland-quorvane" ] && screen_saver GetActive >/dev/null 2>&1; do
        [ $SECONDS -lt $deadline ] || fail "the compositor did not start: $(cat "$session/compositor.log")"
        sleep 0.2
    done
    export WAYLAND_DISPLAY=wayland-quorvane
}

# screen_saver METHOD: asks KWin's screen locker.
screen_saver() {
    dbus-send --session --print-reply --reply-timeout=20000 --dest=org.freedesktop.ScreenSaver /ScreenSaver \
        "org.freedesktop.ScreenSaver.$1"
}

# unlock_screen: the lock screen accepts no password of root, but the login manager may end the lock. There is none here,
# so its own signal handler does it: the greeter that ends without an error counts as an unlock.
greeter_of() {
    ps -o pid= --ppid "$1" -C kscreenlocker_greet 2>/dev/null
}
