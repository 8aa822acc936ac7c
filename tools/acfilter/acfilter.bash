# Bash completion for acfilter.
_acfilter() {
    local command=${COMP_WORDS[1]} current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options="--config --security --repository --timeout --log-level --log-file --format --help"
    local requests="--ip --no-login"
    case $command in
    filter) options+=" $requests --users-from" ;;
    report) options+=" $requests --users-from --output --values --full" ;;
    diff) options+=" $requests --to --to-security --users-from --attribute --grant --revoke --for-user --for-group
        --excluding --full --strict" ;;
    explain) options+=" $requests --full --attribute --grant --revoke" ;;
    check) options+=" --strict" ;;
    esac
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "filter explain check report diff --help --version" -- "$current")
        return
    fi
    case $previous in
    -c | --config | --to | --log-file | --users-from | --output) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    --format) mapfile -t COMPREPLY < <(compgen -W "text json$([ "$command" != report ] || echo " csv html")" -- "$current") ;;
    --log-level) mapfile -t COMPREPLY < <(compgen -W "3 6 7" -- "$current") ;;
    -s | --security | --to-security) mapfile -t COMPREPLY < <(compgen -W "sqlite3://db= postgresql://host=" -- "$current") ;;
    *) [[ $current != -* ]] || mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current") ;;
    esac
}
complete -o filenames -F _acfilter acfilter
