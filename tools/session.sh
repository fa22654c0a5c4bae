# Sourced by ./run and tools/wayland-newer: a private session with X server, bus and folders. Its end stops every process that it started.

session_pids=()

# background NAME COMMAND...: starts the command with its output in $session/NAME.log and sets $started to its process.
background() {
    local name=$1
    shift
    "$@" >"$session/$name.log" 2>&1 &
    started=$!
    session_pids+=("$started")
}

# end PID: ends the process and waits for it.
end() {
    kill "$1" 2>/dev/null || return 0
    wait "$1" 2>/dev/null || true
}

end_session() {
    local index
    # The add-on runs detached; the host asks it to quit.
    [ -z "${has_add_on:-}" ] || "$host" quit >/dev/null 2>&1 || true
    for ((index = ${#session_pids[@]} - 1; index >= 0; index--)); do end "${session_pids[index]}"; done
    [ -z "${session:-}" ] || rm -rf "$session" ${saver_home:+"$saver_home"}
}

# wait_for NAME TEXT [SECONDS]: waits for the text in that log, after the line where the last call found its text.
declare -A passed
wait_for() {
    local file=$session/$1.log text=$2 deadline=$((SECONDS + ${3:-30})) line
    while [ $SECONDS -lt $deadline ]; do
        line=$(tail -n +$((${passed[$1]:-0} + 1)) "$file" 2>/dev/null | grep -n -m 1 -F -- "$text" | cut -d: -f1) || true
        if [ -n "$line" ]; then
            passed[$1]=$((${passed[$1]:-0} + line))
            return 0
        fi
        sleep 0.1
    done
    return 1
}

# begin_session WIDTH HEIGHT: starts an X server (in a window if there is a display) and a bus, and makes folders.
begin_session() {
    session=$(mktemp -d "${TMPDIR:-/tmp}/quorvane-XXXXXX")
    chmod 700 "$session"
    trap end_session EXIT
    trap 'exit 130' INT TERM
    mkdir -p "$session"/{home,run,config,data}
    chmod 700 "$session/run"

    local size=$1x$2 display_file=$session/display
    if [ -n "${DISPLAY:-}" ]; then
        background x Xephyr -screen "$size" -title "Quorvane Lock Screen" -resizeable -displayfd 9 9>"$display_file"
    else
        background x Xvfb -screen 0 "${size}x24" -noreset -nolisten tcp -displayfd 9 9>"$display_file"
    fi
    local deadline=$((SECONDS + 20))
    until [ -s "$display_file" ]; do
        [ $SECONDS -lt $deadline ] || fail "the X server did not start: $(cat "$session/x.log")"
        sleep 0.1
    done
    export DISPLAY=":$(cat "$display_file")"
    unset WAYLAND_DISPLAY XAUTHORITY
    export HOME=$session/home XDG_RUNTIME_DIR=$session/run XDG_CONFIG_HOME=$session/config
    export XDG_DATA_HOME=$session/data

    background bus dbus-daemon --session --nofork --nopidfile --address="unix:path=$session/run/bus" \
        --print-address
    wait_for bus "unix:path" 20 || fail "the message bus did not start: $(cat "$session/bus.log")"
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$session/run/bus"
    export QUORVANE_LOG=stderr
}

# begin_live: uses the current session, with private folders for what is installed.
begin_live() {
    session=$(mktemp -d "${TMPDIR:-/tmp}/quorvane-XXXXXX")
    chmod 700 "$session"
    trap end_session EXIT
    trap 'exit 130' INT TERM
    mkdir -p "$session"/{config,data}
    export XDG_CONFIG_HOME=$session/config XDG_DATA_HOME=$session/data
}

# install_add_on: installs the add-on in the session's folders; its log is $session/add-on.log.
install_add_on() {
    has_add_on=yes
    QUORVANE_LOG=$session/add-on.log "$host" install || fail "the add-on could not be installed"
}

# start_card OPTION...: starts the host with these options, and the add-on, which has a player state when this returns.
start_card() {
    background host "$host" run "$@"
    wait_for host "serving; press Ctrl-C to stop" || fail "the host did not start: $(cat "$session/host.log")"
    install_add_on
    wait_for add-on "lock monitor started" || fail "the add-on did not start: $(cat "$session/add-on.log")"
    passed[add-on]=0  # the music may have come first
    wait_for add-on "state: now" || fail "no music: $(cat "$session/add-on.log")"
}

shoot() {
    maim "$out/$1" && say "wrote ${out#"$root"/}/$1"
}

not_shown() {
    say "the add-on's log:"
    cat "$session/add-on.log" >&2
    fail "$1"
}

# start_player: starts mpv with two tones and a cover, without sound.
start_player() {
    local music=$session/music plugin=/usr/lib/mpv-mpris/mpris.so pitch
    [ -e "$plugin" ] || plugin=/etc/mpv/scripts/mpris.so
    mkdir "$music"
    cp "$root/tools/demo/tideline.jpg" "$music/cover.jpg"
    for pitch in 220 330; do
        ffmpeg -loglevel error -f lavfi -i "sine=frequency=$pitch:duration=300" \
            -metadata title="$pitch Hertz" -metadata artist="The Sine Waves" "$music/$pitch.flac" ||
            fail "the tones could not be made"
    done
    background player mpv --no-config --no-video --ao=null --no-terminal --loop-playlist \
        --script="$plugin" "$music"/*.flac
}

# start_locker NAME: starts the locker in its own process session, which end_locker kills.
start_locker() {
    case $1 in
        i3lock) background locker setsid i3lock -n -i "$root/tools/demo/wallpaper.png" ;;
        xsecurelock)
            background locker setsid env XSECURELOCK_SAVER=saver_blank XSECURELOCK_NO_COMPOSITE=1 \
                xsecurelock
            ;;
        xscreensaver) start_xscreensaver ;;
        *) background locker setsid "$1" ;;
    esac
    locker=$started
}

# xscreensaver refuses to lock root's screen, so for root it runs as nobody.
start_xscreensaver() {
    local as_user=() deadline=$((SECONDS + 20))
    saver_home=$(mktemp -d "${TMPDIR:-/tmp}/quorvane-XXXXXX")
    printf '%s\n' 'mode: blank' 'splash: False' 'fade: False' 'lock: True' 'lockTimeout: 0:00:00' \
        >"$saver_home/.xscreensaver"
    if [ "$(id -u)" -eq 0 ]; then
        chown -R nobody "$saver_home"
        as_user=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
    fi
    as_user+=(env "HOME=$saver_home")
    background locker setsid "${as_user[@]}" xscreensaver --no-splash
    until "${as_user[@]}" xscreensaver-command --lock >/dev/null 2>&1; do
        [ $SECONDS -lt $deadline ] || fail "xscreensaver did not lock: $(cat "$session/locker.log")"
        sleep 0.2
    done
}

# end_locker: kills the locker and its helpers, because lockers ignore milder signals.
end_locker() {
    kill -KILL -- "-$locker" 2>/dev/null || true
    wait "$locker" 2>/dev/null || true
}
