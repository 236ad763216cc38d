# Completion of zlt_ogl for bash.
_zlt_ogl() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} at
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "info check trace capture replay dump report export --help --version" -- "$word")
        return
    fi
    # Behind the program everything is the program's own.
    for ((at = 2; at < COMP_CWORD; ++at)); do
        case ${COMP_WORDS[at]} in
            --) ((++at)); break ;;
            -o | --output | --sarif | --frames | --png | --loop | --calls | --name | --chrome) ((++at)) ;;
            -*) ;;
            *) break ;;
        esac
    done
    if [ "$at" -lt "$COMP_CWORD" ] && [[ $command == @(check|trace|capture) ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    case $word in
        -*)
            case $command in
                info) mapfile -t COMPREPLY < <(compgen -W "--json --help" -- "$word") ;;
                check)
                    mapfile -t COMPREPLY < <(compgen -W "--more --sarif --stack --break --exit-code --children --help" -- "$word")
                    ;;
                trace)
                    mapfile -t COMPREPLY < <(compgen -W "--output --frames --mark-frames --children --help" -- "$word")
                    ;;
                capture)
                    mapfile -t COMPREPLY < <(compgen -W "--output --frames --go-on --verify --children --help" -- "$word")
                    ;;
                replay)
                    mapfile -t COMPREPLY < <(compgen -W "--verify --png --frames --loop --window --help" -- "$word")
                    ;;
                export) mapfile -t COMPREPLY < <(compgen -W "--frames --name --help" -- "$word") ;;
                report) mapfile -t COMPREPLY < <(compgen -W "--output --chrome --open --help" -- "$word") ;;
                dump) mapfile -t COMPREPLY < <(compgen -W "--frames --calls --json --help" -- "$word") ;;
            esac
            ;;
        *)
            case ${COMP_WORDS[COMP_CWORD - 1]} in
                -o | --output | --sarif | --png | --chrome) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
                --frames | --loop | --calls | --name) COMPREPLY=() ;;
                *) [[ $command == @(replay|dump|report|export) ]] && mapfile -t COMPREPLY < <(compgen -f -- "$word") ||
                    mapfile -t COMPREPLY < <(compgen -c -f -- "$word") ;;
            esac
            ;;
    esac
}
complete -o filenames -F _zlt_ogl zlt_ogl
