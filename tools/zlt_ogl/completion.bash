# Completion of zlt_ogl for bash.
_zlt_ogl() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} at
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "info check trace --help --version" -- "$word")
        return
    fi
    # Behind the program everything is the program's own.
    for ((at = 2; at < COMP_CWORD; ++at)); do
        case ${COMP_WORDS[at]} in
            --) ((++at)); break ;;
            -o | --output | --sarif | --frames) ((++at)) ;;
            -*) ;;
            *) break ;;
        esac
    done
    if [ "$at" -lt "$COMP_CWORD" ] && [ "$command" != info ]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    case $word in
        -*)
            case $command in
                info) mapfile -t COMPREPLY < <(compgen -W "--json --help" -- "$word") ;;
                check)
                    mapfile -t COMPREPLY < <(compgen -W "--sarif --stack --break --exit-code --children --help" -- "$word")
                    ;;
                trace)
                    mapfile -t COMPREPLY < <(compgen -W "--output --frames --mark-frames --children --help" -- "$word")
                    ;;
            esac
            ;;
        *)
            case ${COMP_WORDS[COMP_CWORD - 1]} in
                -o | --output | --sarif) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
                --frames) COMPREPLY=() ;;
                *) mapfile -t COMPREPLY < <(compgen -c -f -- "$word") ;;
            esac
            ;;
    esac
}
complete -o filenames -F _zlt_ogl zlt_ogl
