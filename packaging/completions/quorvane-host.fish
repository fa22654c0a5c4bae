# Completion of quorvane-host for fish.
function __quorvane_host_after -d "Whether the word before the cursor's fits a pattern"
    for pattern in $argv
        string match -q -- $pattern (commandline -opc)[-1]; and return 0
    end
    return 1
end
complete -c quorvane-host -f
complete -c quorvane-host -n "__quorvane_host_after '*quorvane-host'" -a \
    "run install update launch status quit remove enable disable players set unset lock --help --version"
complete -c quorvane-host -n "__quorvane_host_after run" -a "--player --script --only"
complete -c quorvane-host -n "__quorvane_host_after install update" -a --from
complete -c quorvane-host -n "__quorvane_host_after lock" -a --
complete -c quorvane-host -n "__quorvane_host_after --" -a "(__fish_complete_command)"
complete -c quorvane-host -n "__quorvane_host_after --player" -a "mpris scripted"
complete -c quorvane-host -n "__quorvane_host_after --script --from" -F
complete -c quorvane-host -n "__quorvane_host_after set unset" -a \
    "fetch-artwork pause-on-lock resume-on-unlock quiet-wake privacy privacy. idle-minutes ignore prefer"
complete -c quorvane-host -n "__quorvane_host_after fetch-artwork pause-on-lock resume-on-unlock quiet-wake" -a "on off"
complete -c quorvane-host -n "__quorvane_host_after privacy 'privacy.*'" -a "full player controls"
complete -c quorvane-host -n "__quorvane_host_after ignore prefer" -a none
