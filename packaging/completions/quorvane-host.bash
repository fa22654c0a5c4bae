# Completion of quorvane-host for bash.
_quorvane_host() {
    local word=${COMP_WORDS[COMP_CWORD]} words=""
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --script | --from) compopt -o default ;;
        --player) words="mpris scripted" ;;
        run) words="--player --script --only" ;;
        install | update) words="--from" ;;
        lock) words="--" ;;
        --) compopt -o default; mapfile -t COMPREPLY < <(compgen -c -- "$word"); return ;;
        set | unset)
            words="fetch-artwork pause-on-lock resume-on-unlock quiet-wake privacy privacy. idle-minutes ignore prefer"
            ;;
        fetch-artwork | pause-on-lock | resume-on-unlock | quiet-wake) words="on off" ;;
        privacy | privacy.*) words="full player controls" ;;
        ignore | prefer) words="none" ;;
        *quorvane-host)
            words="run install update launch status quit remove enable disable players set unset lock --help --version"
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _quorvane_host quorvane-host
