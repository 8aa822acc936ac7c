# Bash completion for acfilter.
_acfilter() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options="--config --security --repository --users-from --ip --no-login --format --timeout --log-level
        --log-file --help"
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "filter --help --version" -- "$current")
        return
    fi
    case $previous in
    -c | --config | --log-file | --users-from) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    --format) mapfile -t COMPREPLY < <(compgen -W "text json" -- "$current") ;;
    --log-level) mapfile -t COMPREPLY < <(compgen -W "3 6 7" -- "$current") ;;
    -s | --security) mapfile -t COMPREPLY < <(compgen -W "sqlite3://db= postgresql://host=" -- "$current") ;;
    *) [[ $current != -* ]] || mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current") ;;
    esac
}
complete -o filenames -F _acfilter acfilter
