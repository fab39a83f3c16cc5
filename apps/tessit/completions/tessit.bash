# Completions of tessit(1) for bash.

_tessit() {
    local word=$2 command= words
    ((COMP_CWORD > 1)) && command=${COMP_WORDS[1]}
    case $command:$word in
        check:-*) words='--quiet --external --record --limits --json --help' ;;
        events:-*) words='--conforming --external --raw-references --limits --json --help' ;;
        same:-*) words='--limits --json --help' ;;
        check:* | events:* | same:*) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
        *) words='check events same --help --version' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -o filenames -F _tessit tessit
