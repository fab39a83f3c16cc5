# Completions of tessit(1) for bash.

_tessit() {
    local word=$2 command= words
    ((COMP_CWORD > 1)) && command=${COMP_WORDS[1]}
    case $command:$word in
        events:-*) words='--raw-references --help' ;;
        same:-*) words='--help' ;;
        events:* | same:*) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
        *) words='events same --help --version' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -o filenames -F _tessit tessit
