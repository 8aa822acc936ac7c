# Bash completion for acfilter.
_acfilter() {
    local command=${COMP_WORDS[1]} current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options="--config --security --repository --timeout --log-level --log-file --format --help"
    local requests="--ip --no-login" rows="--data --table --key"
    case $command in
    filter) options+=" $requests --users-from" ;;
    report) options+=" $requests $rows --record --users-from --output --values --full" ;;
    diff) options+=" $requests $rows --to --to-security --users-from --attribute --grant --revoke --for-user --for-group
        --excluding --full --strict" ;;
    explain) options+=" $requests $rows --record --full --attribute --grant --revoke" ;;
    check) options+=" --strict" ;;
    test) options+=" $rows --users-from --only --fail-fast --coverage --min-coverage --allow-command --init" ;;
    esac
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "filter explain check report diff test --help --version" -- "$current")
        return
    fi
    case $previous in
    -c | --config | --to | --log-file | --users-from | --output) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    --format)
        local formats="text json"
        [ "$command" != report ] || formats+=" csv html"
        [ "$command" != test ] || formats+=" junit"
        mapfile -t COMPREPLY < <(compgen -W "$formats" -- "$current")
        ;;
    --log-level) mapfile -t COMPREPLY < <(compgen -W "3 6 7" -- "$current") ;;
    --data) mapfile -t COMPREPLY < <(compgen -W "sqlite3://db= postgresql://host= command:" -- "$current") ;;
    -s | --security | --to-security) mapfile -t COMPREPLY < <(compgen -W "sqlite3://db= postgresql://host=" -- "$current") ;;
    *) [[ $command == test && $current != -* ]] && mapfile -t COMPREPLY < <(compgen -f -- "$current")
        [[ $current != -* ]] || mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current") ;;
    esac
}
complete -o filenames -F _acfilter acfilter
