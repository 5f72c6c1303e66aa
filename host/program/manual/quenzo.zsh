#compdef quenzo
# zsh completion for quenzo; made from its table of commands: do not edit.

_quenzo_names() {
    local -a names=(
        @NAMES@
    )
    _describe -t commands command names "$@"
}

_quenzo_serials() {
    local -a serials=(${(f)"$(_call_program devices $_quenzo_program devices 2>/dev/null)"})
    compadd -a "$@" serials
}

# The numbers of the channels that can be exported.
_quenzo_channels() {
    local records=${QUENZO_DEVELOP_INFO:-${${_quenzo_program:c}:A:h}/../Script/develop_info.json}
    local -a channels=(${(f)"$(sed -n 's/.*"id"[[:space:]]*:[[:space:]]*\([0-9][0-9]*\).*/\1/p' $records 2>/dev/null)"})
    compadd -a "$@" channels
}

_quenzo() {
    local _quenzo_program=$words[1]
    # What every command has may stand before it.
    while (( CURRENT > 2 )) && [[ $words[2] == -?* ]]; do
        words[2]=()
        (( CURRENT-- ))
    done
    if (( CURRENT == 2 )); then
        local -a more=('help:tells of a command' 'version:prints the version')
        _quenzo_names
        _describe -t more 'command' more
        return
    fi
    shift words
    (( CURRENT-- ))
    case $words[1] in
    (help)
        (( CURRENT > 2 )) || _quenzo_names
        ;;
@COMMANDS@
    esac
}

_quenzo "$@"
