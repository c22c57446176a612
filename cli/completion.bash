# shellcheck shell=bash disable=SC2154  # the tables stand above, in the installed file

# Completes the options, what an option takes, the console's commands and, after "--", nothing.
_zorv_complete() {
    local program=${1##*/} word=$2 before=$3 option words=
    for option in ${_zorv_options[$program]}; do
        if [ "${option%%:*}" = "$before" ] && [ -n "${option#*:}" ]; then
            case ${option#*:} in
            DIR) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
            FILE) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
            *) [ "$before" != --scenario ] || mapfile -t COMPREPLY < <(compgen -W "$_zorv_scenarios" -- "$word") ;;
            esac
            return
        fi
        words+=" ${option%%:*}"
    done
    if [[ $word != -* ]]; then
        words=
        case $program in
        zorv-local) words=$_zorv_commands ;;
        zorv-check | zorv-fleet) words=$(compgen -f -- "$word") ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _zorv_complete zorv-local zorv-explain zorv-check zorv-fleet lumo-sim
