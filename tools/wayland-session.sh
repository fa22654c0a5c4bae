# Sourced after session.sh: a Wayland compositor with its real lock screen, nested in the session's X server, without a GPU.

# begin_compositor NAME: starts kwin or wayfire as the compositor of a session of 1920 × 1080.
begin_compositor() {
    compositor_name=$1
    local deadline=$((SECONDS + 30))
    mkdir -p "$session"/{data/applications,cache,pam}
    export XDG_CACHE_HOME=$session/cache XDG_SESSION_TYPE=wayland
    "begin_$compositor_name"
    until "is_ready_$compositor_name" >/dev/null 2>&1; do
        [ $SECONDS -lt $deadline ] || fail "the compositor did not start: $(cat "$session/compositor.log")"
        sleep 0.2
    done
}

# accept_password SERVICE: sets $pam to an environment in which this PAM service has a password of this session.
accept_password() {
    local modules=/usr/lib/$(gcc -print-multiarch)/pam_wrapper kind
    for kind in auth account password session; do
        echo "$kind required $modules/pam_matrix.so passdb=$session/passdb"
    done >"$session/pam/$1"
    echo "$(id -un):quorvane:$1" >"$session/passdb"
    pam=(env LD_PRELOAD=libpam_wrapper.so PAM_WRAPPER=1 PAM_WRAPPER_SERVICE_DIR="$session/pam")
}

# unlock_screen: types that password, again if the busy lock screen has missed a key.
unlock_screen() {
    local attempt
    for attempt in 1 2 3; do
        xdotool key --delay 60 ctrl+a BackSpace
        xdotool type --delay 60 quorvane
        xdotool key Return
        ! wait_for add-on "unlock: com.apple.screenIsUnlocked" 10 || return 0
    done
    not_shown "the screen was not unlocked"
}

begin_kwin() {
    # A copy has no file capability. With it, a container refuses to start the program.
    cp "$(command -v kwin_wayland)" "$session/kwin_wayland"
    # By default a key unlocks without a password in the first seconds.
    printf '[Daemon]\nLockGrace=0\n' >"$session/config/kscreenlockerrc"
    export XDG_CURRENT_DESKTOP=KDE XDG_MENU_PREFIX=plasma- WAYLAND_DISPLAY=wayland-quorvane
    export KWIN_COMPOSE=Q QT_QUICK_BACKEND=software
    accept_password kde
    background compositor env -u WAYLAND_DISPLAY "${pam[@]}" "$session/kwin_wayland" --x11-display "$DISPLAY" \
        --width 1920 --height 1080 --socket "$WAYLAND_DISPLAY"
}
is_ready_kwin() { [ -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY" ] && screen_saver GetActive; }
lock_kwin() { screen_saver Lock >/dev/null; }

# screen_saver METHOD: asks KWin's screen locker.
screen_saver() {
    dbus-send --session --print-reply --reply-timeout=20000 --dest=org.freedesktop.ScreenSaver /ScreenSaver \
        "org.freedesktop.ScreenSaver.$1"
}

begin_wayfire() {
    printf '%s\n' '[core]' 'background_color = 0.2 0.4 0.6 1.0' 'plugins = session-lock' 'xwayland = false' \
        '[output]' 'mode = 1920x1080' >"$session/wayfire.ini"
    export XDG_CURRENT_DESKTOP=Wayfire WAYLAND_DISPLAY=wayland-1
    background compositor env -u WAYLAND_DISPLAY WLR_BACKENDS=x11 WLR_RENDERER=pixman wayfire -c "$session/wayfire.ini"
}
is_ready_wayfire() { [ -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY" ] && [ "$(xwininfo -root -children | grep -c 1920x1080)" -gt 0 ]; }
lock_wayfire() {
    accept_password swaylock
    background locker "$host" lock -- "${pam[@]}" swaylock --ready-fd 3 --image "$root/tools/demo/wallpaper.png"
}

# find_card: sets x and y to the top left of the newest card, from the add-on's log, where y grows upward.
find_card() {
    read -r x y <<<"$(sed -n 's/.* on screen [0-9]* {{[^}]*}, {[^}]*}} at {{\(.*\), \(.*\)}, {.*, \(.*\)}}.*/\1 \2 \3/p' \
        "$session/add-on.log" | tail -n 1 | awk '{ print $1 + 52, -($2 + $3) + 52 }')"
}

# is_card_seen: whether the screen shows the card's glass at x, y. It is darker than a lock screen, not black like a desktop.
is_card_seen() {
    maim --format bmp --geometry "240x8+$((x + 80))+$((y + 109))" | tail -c $((240 * 8 * 3)) | od -An -v -tu1 |
        awk '{ for (i = 1; i <= NF; i++) if ($i < 8 || $i > 60) other = 1 } END { exit other }'
}

# show_above_lock_screen PREFIX: locks, shows the card, clicks next and unlocks; the pictures' names begin with PREFIX.
show_above_lock_screen() {
    local x y next_x next_y
    "$host" disable >/dev/null
    xdotool mousemove 960 1000
    say "locking"
    "lock_$compositor_name" || fail "the screen was not locked: $(cat "$session/compositor.log")"
    wait_for add-on "lockui: shown" || not_shown "the lock was not seen"
    sleep 3  # until the lock screen is drawn
    shoot "$1-1-locked.png"
    "$host" enable >/dev/null
    wait_for add-on " on screen 1 " 10 || not_shown "the card did not come"
    sleep 2  # until the card has come to rest
    shoot "$1-2-card.png"
    find_card
    is_card_seen || not_shown "the lock screen is above the card"
    read -r next_x next_y <<<"$("$programs/tools/card-render" --control next)"
    xdotool mousemove $((x + next_x - 4)) $((y + next_y)) mousemove_relative 4 0 click 1
    wait_for add-on "command: nextTrack" 10 || not_shown "the click on next was not heard"
    wait_for add-on "track changed" 10 || not_shown "the track did not change"
    sleep 1  # until the pressed button has come to rest
    shoot "$1-3-next.png"
    say "unlocking with the session's password"
    unlock_screen
    sleep 1  # until the lock screen has faded
    shoot "$1-4-unlocked.png"
    ! is_card_seen || not_shown "the card stayed after the unlock"
}
