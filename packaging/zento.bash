# bash completion for zento
_zento() {
    local cur prev words cword
    _init_completion -n = || return
    local command=${words[1]}
    if ((cword == 1)); then
        mapfile -t COMPREPLY < <(compgen -W 'record plan render recover screenshot demo doctor toggle --help --version' -- "$cur")
        return
    fi
    case $prev in
    --settings | --config | --overrides | --music) _filedir; return ;;
    --output) if [[ $command == demo ]]; then _filedir -d; else _filedir; fi; return ;;
    --screen | --window | --area | --seconds | --size | --fps) return ;;
    esac
    local options
    case $command in
    record) options='--screen --window --area --seconds --microphone --camera --system-audio --toggle' ;;
    screenshot) options='--screen --window --area --edit --output' ;;
    plan) options='--settings --config --overrides --music --size --fps --output' ;;
    render) options='--settings --output --gif' ;;
    demo) options='--output' ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    elif [[ $command == plan || $command == render || $command == recover ]]; then
        _filedir -d
    fi
}
complete -F _zento zento
