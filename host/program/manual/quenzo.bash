# bash completion for quenzo; made from its table of commands: do not edit.

_quenzo_command() {
    options='' arguments=() further=none
    case $1 in
@COMMANDS@
    *) return 1 ;;
    esac
}

# The words so far, the unfinished one included. The shell takes words apart at : and =, which are letters here.
_quenzo_words() {
    local line=${COMP_LINE:0:COMP_POINT} piece rest
    words=()
    for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        rest=${line#"${line%%[![:space:]]*}"}
        [[ $rest == "$piece"* ]] || piece=$rest
        if [[ $rest == "$line" && ${#words[@]} -gt 0 ]]; then
            words[-1]+=$piece
        else
            words+=("$piece")
        fi
        line=${rest#"$piece"}
    done
}

# The numbers of the channels that can be exported.
_quenzo_channels() {
    local program records=${QUENZO_DEVELOP_INFO-}
    program=$(readlink -f "$(type -P "${words[0]}")")
    sed -n 's/.*"id"[[:space:]]*:[[:space:]]*\([0-9][0-9]*\).*/\1/p' \
        "${records:-${program%/*}/../Script/develop_info.json}" 2>/dev/null
}

# Offers what fits a kind of value: _quenzo_offer KIND WORD
_quenzo_offer() {
    local IFS=$'\n' found=()
    case $1 in
    file:* | folder) compopt -o filenames 2>/dev/null ;;
    esac
    case $1 in
    file:) mapfile -t found < <(compgen -f -- "$2") ;;
    file:*)
        shopt -q extglob && local had=1 || shopt -s extglob
        mapfile -t found < <(compgen -d -- "$2"; compgen -f -X "!*.@(${1#file:})" -- "$2")
        [[ ${had-} ]] || shopt -u extglob
        ;;
    folder) mapfile -t found < <(compgen -d -- "$2") ;;
    serial) mapfile -t found < <(compgen -W "$("${words[0]}" devices 2>/dev/null)" -- "$2") ;;
    channel) mapfile -t found < <(compgen -W "$(_quenzo_channels)" -- "$2") ;;
    words:*) mapfile -t found < <(IFS='|'; compgen -W "${1#words:}" -- "$2") ;;
    esac
    COMPREPLY+=("${found[@]}")
}

_quenzo() {
    local words options arguments further
    local -A valued=()
    COMPREPLY=()
    _quenzo_words
    # What every command has may stand before it.
    while ((${#words[@]} > 2)) && [[ ${words[1]} == -?* ]]; do
        words=("${words[0]}" "${words[@]:2}")
    done
    local last=$((${#words[@]} - 1)) word=${words[-1]} i value=none count=0 plain=
    if ((last == 1)); then
        mapfile -t COMPREPLY < <(compgen -W '@NAMES@ help version --help --version' -- "$word")
        return
    fi
    if [[ ${words[1]} == help ]]; then
        ((last > 2)) || mapfile -t COMPREPLY < <(compgen -W '@NAMES@' -- "$word")
        return
    fi
    _quenzo_command "${words[1]}" || return 0
    for ((i = 2; i < last; ++i)); do
        if [[ $plain || ${words[i]} != -?* ]]; then
            count=$((count + 1))
        elif [[ ${words[i]} == -- ]]; then
            plain=1
        elif [[ ${valued[${words[i]}]-} ]]; then
            ((++i < last)) || value=${valued[${words[i - 1]}]}
        fi
    done
    if [[ $value != none ]]; then
        _quenzo_offer "$value" "$word"
    elif [[ ! $plain && $word == --*=* ]]; then
        _quenzo_offer "${valued[${word%%=*}]-none}" "${word#*=}"
        word=${word#*=}
    elif [[ ! $plain && $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    else
        _quenzo_offer "${arguments[count]-$further}" "$word"
    fi
    # What stands before the shell's own last piece is there already.
    if [[ $word == *[:=]* && $COMP_WORDBREAKS == *:* ]]; then
        local before=${word%"${word##*[:=]}"}
        COMPREPLY=("${COMPREPLY[@]#"$before"}")
    fi
}
complete -F _quenzo quenzo
