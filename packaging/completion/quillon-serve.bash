# Completion of quillon-serve and quillon for bash. The options are those that --help tells.
_quillon_serve() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} name
    COMPREPLY=()
    case $before in
    --mode) mapfile -t COMPREPLY < <(compgen -W 'classic auto standard' -- "$word") ;;
    --profile)
        for name in ~/.quillon/*.cnf; do
            name=${name##*/} name=${name%.cnf}
            [[ $name == "*" || $name != "$word"* ]] || COMPREPLY+=("$(printf %q "$name")")
        done
        ;;
    --address | --port | --trust-proxy | --name | --path-prefix | --announce-as) ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$("$1" --help 2>/dev/null |
                sed -nE 's/^ +(-[a-z], )?(--[a-z-]+).*/\2/p')" -- "$word")
        else
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        ;;
    esac
}
complete -F _quillon_serve quillon-serve quillon
