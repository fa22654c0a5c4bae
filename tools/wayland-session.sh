# Sourced after session.sh: KDE Plasma's compositor with its real lock screen, nested in the session's X server.

# begin_compositor WIDTH HEIGHT [SCALE]: starts KWin as the session's Wayland compositor.
begin_compositor() {
    # A copy has no file capability. With it, a container refuses to start the program.
    cp "$(command -v kwin_wayland)" "$session/kwin_wayland"
    mkdir -p "$session/data/applications" "$session/cache" "$session/pam"
    # The lock screen's own PAM service, with a password of this session, also for root.
    local modules=/usr/lib/$(gcc -print-multiarch)/pam_wrapper kind
    for kind in auth account password session; do
        echo "$kind required $modules/pam_matrix.so passdb=$session/passdb"
    done >"$session/pam/kde"
    echo "$(id -un):quorvane:kde" >"$session/passdb"
    # By default a key unlocks without a password in the first seconds.
    printf '[Daemon]\nLockGrace=0\n' >"$session/config/kscreenlockerrc"
    export XDG_CACHE_HOME=$session/cache XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=KDE
    export KWIN_COMPOSE=Q QT_QUICK_BACKEND=software  # without a GPU
    background compositor env LD_PRELOAD=libpam_wrapper.so PAM_WRAPPER=1 PAM_WRAPPER_SERVICE_DIR="$session/pam" \
        "$session/kwin_wayland" --x11-display "$DISPLAY" --width "$1" --height "$2" \
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

# unlock_screen: types the password that this session's PAM accepts.
unlock_screen() {
    xdotool type --delay 60 quorvane
    xdotool key Return
}

# card_place: the top left of the newest card, from the add-on's log, where y grows upward. At the session's scale of 1.
card_place() {
    sed -n 's/.* on screen [0-9]* {{[^}]*}, {[^}]*}} at {{\(-\?[0-9]*\), \(-\?[0-9]*\)}, {[0-9]*, \([0-9]*\)}}.*/\1 \2 \3/p' \
        "$session/add-on.log" | tail -n 1 | awk '{ print $1 + 52, -($2 + $3) + 52 }'
}
