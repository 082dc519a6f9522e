# Completion of orva-host for bash: commands and options as the program's own help lists them.
_orva_host() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words
    COMPREPLY=()
    case $before in
        --for) words=$("$1" info --help 2>/dev/null | sed -n 's/.*instrument: //p' | tr -d ',') ;;
        *)
            if [ "$COMP_CWORD" -eq 1 ]; then
                words=$("$1" --help 2>/dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z][a-z]*\) .*/\1/p')
            elif [[ $word == -* ]]; then
                words=$("$1" "${COMP_WORDS[1]}" --help 2>/dev/null | grep -oE '^ +-[^ ]*' | tr ',' ' ')
            else
                return 0 # a file's name
            fi
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _orva_host orva-host
