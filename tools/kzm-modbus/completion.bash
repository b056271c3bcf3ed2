# shellcheck shell=bash
# Bash completion of kzm-modbus. It asks the program's --help, so that it has no list of commands and options of its own.

# The form of what follows an option, as the help says it: FILE, LEVEL, TEXT:{alarm,measurement}; nothing for a switch.
_kzm_modbus_form() {
    sed -nE "s/ Excludes:.*//; s/^ *(-[a-z],)?$1(,--[a-z-]+)? ([A-Z][^ ]*).*/\3/p" <<<"$2"
}

_kzm_modbus() {
    local word=$2 before=$3 help commands command='' said form=''
    help=$("$1" --help 2>/dev/null)
    commands=$(sed -nE '/^Commands:/,/^$/s/^  ([a-z-]+) .*/\1/p' <<<"$help")
    for said in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $'\n'$commands$'\n' == *$'\n'$said$'\n'* ]]; then command=$said && break; fi
    done
    if [[ $command ]]; then help+=$'\n'$("$1" "$command" --help 2>/dev/null); fi
    if [[ $before == -* ]]; then form=$(_kzm_modbus_form "$before" "$help"); fi

    local choices=() files=
    case $form in
        *'{'*) choices=(-W "$(sed 's/.*{\(.*\)}.*/\1/; y/,/ /' <<<"$form")") ;;
        LEVEL) choices=(-W 'error warning information trace') ;;
        DEVICE:*) choices=(-W "$(compgen -G '/dev/tty[A-Z]*')") ;;
        FILE) choices=(-f) files=1 ;;
        ?*) choices=() ;;
        *)
            if [[ $word == -* ]]; then
                choices=(-W "$(sed -nE 's/^ *((-[a-z]),)?(--[a-z-]+).*/\2 \3/p' <<<"$help")")
            elif [[ $command ]]; then
                choices=(-f) files=1
            else
                choices=(-W "$commands")
            fi
            ;;
    esac
    COMPREPLY=()
    if [[ ${choices[*]} ]]; then mapfile -t COMPREPLY < <(compgen "${choices[@]}" -- "$word"); fi
    if [[ $files ]]; then compopt -o filenames 2>/dev/null || true; fi
}
complete -F _kzm_modbus kzm-modbus
