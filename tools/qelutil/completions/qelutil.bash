# bash completion for qelutil
# Written by qelutil_pages from the program's commands; `./dev pages` renews it.

_qelutil_zones() {
    "${COMP_WORDS[0]}" zone list --iana 2>/dev/null | sed 's/.* //'
}

_qelutil() {
    local current=${COMP_WORDS[COMP_CWORD]} previous='' command='' options='' words='' files=''
    local -i at
    # bash makes words of their own of "--to", "=" and "ics".
    [ "$current" = = ] && current=
    for ((at = 1; at < COMP_CWORD; ++at)); do
        [ "${COMP_WORDS[at]}" = = ] && continue
        previous=${COMP_WORDS[at]}
        case $previous in
        auto | always | never) [ "$command" ] || continue ;;
        -*) continue ;;
        esac
        case $command in
        '') command=$previous ;;
        zone)
            case $previous in
            list | show | convert | changes) command+=" $previous" ;;
            esac
            ;;
        esac
    done
    case ${command%% *} in
    '' | convert | show | rule | expand | date | zone | encode | decode | charset | field | status | stream | log | schema) ;;
    *) command=convert ;;
    esac
    case $command in
    '')
        options='-h --help --version --color --config'
        case $previous in
        --color) COMPREPLY=($(compgen -W 'auto always never' -- "$current")); return ;;
        --config) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        esac
        words='convert show rule expand date zone encode decode charset field status stream log schema'
        ;;
    'convert')
        options='-h --help --to -o --output -d --output-dir --split --beside --zone --charset --count-means --only --distinct-uids --overwrite --strict -n --dry-run --report --open --threads --json -v --verbose'
        case $previous in
        --to) COMPREPLY=($(compgen -W 'ics vcs' -- "$current")); return ;;
        -o | --output) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        -d | --output-dir) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
        --split) COMPREPLY=(); return ;;
        --zone) COMPREPLY=($(compgen -W "$(_qelutil_zones)" -- "$current")); return ;;
        --charset) COMPREPLY=(); return ;;
        --count-means) COMPREPLY=($(compgen -W 'dates periods' -- "$current")); return ;;
        --only) COMPREPLY=($(compgen -W 'events todos notes' -- "$current")); return ;;
        --report) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        --threads) COMPREPLY=(); return ;;
        esac
        files=1
        ;;
    'show')
        options='-h --help --since --through --next --search --only --zone --charset --calendar --json'
        case $previous in
        --since) COMPREPLY=(); return ;;
        --through) COMPREPLY=(); return ;;
        --next) COMPREPLY=(); return ;;
        --search) COMPREPLY=(); return ;;
        --only) COMPREPLY=($(compgen -W 'events todos notes' -- "$current")); return ;;
        --zone) COMPREPLY=($(compgen -W "$(_qelutil_zones)" -- "$current")); return ;;
        --charset) COMPREPLY=(); return ;;
        esac
        files=1
        ;;
    'rule')
        options='-h --help --start --from --count-means --to --count --calendar --json'
        case $previous in
        --start) COMPREPLY=(); return ;;
        --from) COMPREPLY=($(compgen -W 'v10 ical positional' -- "$current")); return ;;
        --count-means) COMPREPLY=($(compgen -W 'dates periods' -- "$current")); return ;;
        --to) COMPREPLY=($(compgen -W 'v10 ical positional' -- "$current")); return ;;
        --count) COMPREPLY=(); return ;;
        esac
        ;;
    'expand')
        options='-h --help --start --from --count-means --since --through --exclude --count --record --calendar --json'
        case $previous in
        --start) COMPREPLY=(); return ;;
        --from) COMPREPLY=($(compgen -W 'v10 ical positional' -- "$current")); return ;;
        --count-means) COMPREPLY=($(compgen -W 'dates periods' -- "$current")); return ;;
        --since) COMPREPLY=(); return ;;
        --through) COMPREPLY=(); return ;;
        --exclude) COMPREPLY=(); return ;;
        --count) COMPREPLY=(); return ;;
        esac
        ;;
    'date')
        options='-h --help --from --add --until --json'
        case $previous in
        --from) COMPREPLY=($(compgen -W 'date day seconds unix duration length' -- "$current")); return ;;
        --add) COMPREPLY=(); return ;;
        --until) COMPREPLY=(); return ;;
        esac
        ;;
    'zone')
        options='-h --help'
        words='list show convert changes'
        ;;
    'zone list')
        options='-h --help --table --iana --json'
        ;;
    'zone show')
        options='-h --help --json'
        words=$(_qelutil_zones)
        ;;
    'zone convert')
        options='-h --help --from --to --json'
        case $previous in
        --from) COMPREPLY=($(compgen -W "$(_qelutil_zones)" -- "$current")); return ;;
        --to) COMPREPLY=($(compgen -W "$(_qelutil_zones)" -- "$current")); return ;;
        esac
        ;;
    'zone changes')
        options='-h --help --year --json'
        case $previous in
        --year) COMPREPLY=(); return ;;
        esac
        words=$(_qelutil_zones)
        ;;
    'encode')
        options='-h --help -t --text -o --output --wrap --value --column'
        case $previous in
        -t | --text) COMPREPLY=(); return ;;
        -o | --output) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        --wrap) COMPREPLY=(); return ;;
        --column) COMPREPLY=(); return ;;
        esac
        words='base64 qp md5 cipher'
        files=1
        ;;
    'decode')
        options='-h --help -t --text -o --output'
        case $previous in
        -t | --text) COMPREPLY=(); return ;;
        -o | --output) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        esac
        words='base64 qp cipher'
        files=1
        ;;
    'charset')
        options='-h --help -t --text -o --output --from --to --list --json'
        case $previous in
        -t | --text) COMPREPLY=(); return ;;
        -o | --output) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        --from) COMPREPLY=(); return ;;
        --to) COMPREPLY=(); return ;;
        esac
        files=1
        ;;
    'field')
        options='-h --help --type --list --json'
        case $previous in
        --type) COMPREPLY=($(compgen -W 'event todo contact note email' -- "$current")); return ;;
        esac
        ;;
    'status')
        options='-h --help --list --json'
        ;;
    'stream')
        options='-h --help -t --text --types --json'
        case $previous in
        -t | --text) COMPREPLY=(); return ;;
        --types) COMPREPLY=(); return ;;
        esac
        files=1
        ;;
    'log')
        options='-h --help --errors --thread --since --through --search --summary -f --follow --set --tail --json'
        case $previous in
        --thread) COMPREPLY=(); return ;;
        --since) COMPREPLY=(); return ;;
        --through) COMPREPLY=(); return ;;
        --search) COMPREPLY=(); return ;;
        --set) COMPREPLY=($(compgen -W 'MaxFileSize= MaxBackupCount= KeepLogFiles= VTraceVerbosity= TracingOptions= LogManagerLevel= LogManagerDetail= RetroactiveTracingBufferSize= SeparateLogForEachProcess= KeepLogFileOpen=' -- "$current")); compopt -o nospace; return ;;
        --tail) COMPREPLY=(); return ;;
        esac
        files=1
        ;;
    'schema')
        options='-h --help'
        ;;
    esac
    [ "$command" ] || files=1
    case $current in
    -*) COMPREPLY=($(compgen -W "$options" -- "$current")) ;;
    *)
        COMPREPLY=($(compgen -W "$words" -- "$current"))
        if [ "$files" ] && [ ${#COMPREPLY[@]} -eq 0 ]; then
            compopt -o filenames
            # A line for each name: names have blanks.
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi
        ;;
    esac
}
complete -F _qelutil qelutil
