# bash completion for mosswick
_mosswick() {
    local cur=${COMP_WORDS[COMP_CWORD]}
    local commands="add paste show hide toggle restore clear remove quit list"
    if [[ $COMP_CWORD -eq 1 ]]; then
        COMPREPLY=($(compgen -W "$commands --help --version --summon" -- "$cur"))
        return
    fi
    case ${COMP_WORDS[1]} in
    add)
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$cur"))
        ;;
    list)
        [[ $COMP_CWORD -eq 2 ]] && COMPREPLY=($(compgen -W "--json" -- "$cur"))
        ;;
    remove)
        # The IDs on the running shelf; nothing when none runs.
        local ids
        ids=$(mosswick list 2>/dev/null | cut -f1)
        COMPREPLY=($(compgen -W "$ids" -- "$cur"))
        ;;
    esac
}
complete -F _mosswick mosswick
