#compdef quorvane-host
# Completion of quorvane-host for zsh.
case $words[CURRENT-1] in
    --script | --from) _files ;;
    --player) compadd mpris scripted ;;
    run) compadd -- --player --script --only ;;
    install | update) compadd -- --from ;;
    lock) compadd -- -- ;;
    --) _command_names -e ;;
    set | unset)
        compadd fetch-artwork pause-on-lock resume-on-unlock quiet-wake privacy privacy. idle-minutes ignore prefer
        ;;
    fetch-artwork | pause-on-lock | resume-on-unlock | quiet-wake) compadd on off ;;
    privacy | privacy.*) compadd full player controls ;;
    ignore | prefer) compadd none ;;
    *quorvane-host)
        compadd -- run install update launch status quit remove enable disable players set unset lock --help --version
        ;;
esac
