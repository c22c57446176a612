#!/usr/bin/env bash
# Writes the man pages and the shell completion from what the programs say of themselves and from the documents, and the
# packages' changelog: manuals.sh SOURCE_DIR BIN_DIR PLUGIN OUTPUT_DIR VERSION CONTACT
set -euo pipefail
export LC_ALL=C
source=$1 bin=$2 plugin=$3 output=$4 release=$5 contact=$6
programs=(zorv-local zorv-explain zorv-check zorv-fleet lumo-sim)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
rm -rf "$output"
mkdir -p "$output"

# Runs command lines of the console from standard input.
console() {
    "$bin/zorv-local" --root "$scratch" --plugin "$plugin" --log /dev/null
}

# Help texts of the form "NAME ARGUMENTS: TEXT", with more lines of text indented, as entries of a man page.
entries() {
    sed -E -e 's/[\\]/\\e/g' -e 's/-/\\-/g' -e 's/^    //' -e "s/^'/\\\\\&'/" \
        -e 's/^([a-z]+)( [^:]*)?: (.*)/.TP\n\\fB\1\\fR\2\n\3/'
}

commands=$(console <<<help)
names=$(sed -nE 's/^  ([^ :]+).*/\1/p' <<<"$commands")

for program in "${programs[@]}"; do
    {
        cat "$source/docs/man/$program.h2m"
        if [ "$program" = zorv-local ]; then
            printf '\n[COMMANDS]\n'
            # shellcheck disable=SC2086  # a list of words
            printf 'help %s\n' $names | console | entries
        fi
        printf '\n[SEE ALSO]\n'
        printf '.BR %s (1),\n' "${programs[@]}" | grep -v " $program "
        printf '.BR route_config (5)\n'
    } >"$scratch/more"
    # The first line: those of the libraries are the ones of the machine that builds.
    version=$("$bin/$program" --version | head -n 1)
    help2man --no-info --version-string "$version" --include "$scratch/more" --output "$output/$program.1" "$bin/$program"
done

{
    printf '# NAME\n\nroute_config - the causality graphs that the diagnosis walks\n\n# DESCRIPTION\n\n'
    printf 'The file is /VRA/zorv/conf/route_config.json.\n'
    sed -n '/^## Route configuration/,/^## /p' "$source/docs/file-formats.md" | sed -e '/^## /d'
} | lowdown -s -tman -M title=ROUTE_CONFIG -M section=5 -M date= -o "$output/route_config.5"

# The options of the console's commands, as their help shows them: a line each, "[NAME]="--OPTION:VALUE ..."".
command_options() {
    sed -nE 's/^  ([^ :]+)( [^:]*--[^:]*):.*/\1\2/p' <<<"$commands" | while read -r name arguments; do
        printf '  [%s]="%s"\n' "$name" "$(grep -oE -e '--[a-z-]+( [A-Z]+)?' <<<"$arguments" | sed -E 's/ |$/:/' | paste -sd ' ')"
    done
}

# Tables for the completion: the options of each program and command with the kind of their value, and what else they
# complete.
{
    printf '# Made by cmake/manuals.sh from the programs'"'"' own help.\ndeclare -gA _zorv_options=(\n'
    for program in "${programs[@]}"; do
        printf '  [%s]="%s"\n' "$program" \
            "$("$bin/$program" --help | sed -nE 's/^ +(-.,)?(--[a-z-]+)( ([A-Z]+)(hhmmss)?([ =:].*|$)|.*)$/\2:\4/p' | paste -sd ' ')"
    done
    command_options
    printf ')\n_zorv_commands="%s"\n' "$(paste -sd ' ' <<<"$names")"
    printf '_zorv_scenarios="%s"\n\n' "$("$bin/lumo-sim" --list | cut -d ' ' -f 1 | paste -sd ' ')"
    cat "$source/cli/completion.bash"
} >"$output/completion"

gzip -9n "$output"/*.[15]

# The changelog as Debian writes it.
{
    printf 'libsmartdiagnose (%s) unstable; urgency=medium\n\n' "$release"
    sed -n '/^- /,$p' "$source/CHANGELOG.md" | sed -e 's/^- /* /' | fmt -t -w 76 | sed -e 's/^/  /'
    printf '\n -- %s  %s\n' "$contact" "$(date -R -u -d "@${SOURCE_DATE_EPOCH:-$(stat -c %Y "$source/CHANGELOG.md")}")"
} | gzip -9n >"$output/changelog.gz"
