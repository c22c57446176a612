# shellcheck shell=bash disable=SC2154  # the tables stand above, in the installed file

# Whose options and words stand at the cursor: the program's, or those of the command of zorv-local before it.
_zorv_subject() {
    local program=$1 i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ $program = zorv-local && " $_zorv_commands " = *" ${COMP_WORDS[i]} "* &&
            ! " ${_zorv_options[zorv-local]} " = *" ${COMP_WORDS[i - 1]}:"[A-Z]* ]]; then
            program=${COMP_WORDS[i]}
        fi
    done
    case $program in
    explain | overview) echo zorv-explain ;;
    check) echo zorv-check ;;
    *) echo "$program" ;;
    esac
}

# What is there of files (-f) or folders (-d).
_zorv_files() {
    compopt -o filenames 2>/dev/null # outside of a completion there is nothing to set
    mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

# Completes options, what an option takes, the console's commands and the files that a program or command takes.
_zorv_complete() {
    local word=$2 before=$3 subject option words=
    subject=$(_zorv_subject "${1##*/}")
    for option in ${_zorv_options[$subject]}; do
        if [ "${option%%:*}" = "$before" ] && [ -n "${option#*:}" ]; then
            case ${option#*:} in
            DIR) _zorv_files -d "$word" ;;
            FILE) _zorv_files -f "$word" ;;
            *) [ "$before" != --scenario ] || mapfile -t COMPREPLY < <(compgen -W "$_zorv_scenarios" -- "$word") ;;
            esac
            return
        fi
        words+=" ${option%%:*}"
    done
    if [[ $word != -* ]]; then
        case $subject in
        zorv-local | help) words=$_zorv_commands ;;
        zorv-check | zorv-fleet | capture)
            _zorv_files -f "$word"
            return
            ;;
        *) words= ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _zorv_complete zorv-local zorv-explain zorv-check zorv-fleet lumo-sim
