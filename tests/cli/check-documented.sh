#!/bin/bash
# The manual page and the completion know each option that the program has, and no other:
# check-documented.sh PROGRAM MANUAL COMPLETION
set -euo pipefail
program=$1 manual=$2 completion=$3
# shellcheck source=/dev/null
source "$completion"
status=0

fail()
{
    echo "$*"
    status=1
}

complete_words()
{
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    compopt() { :; } # there is no completion under way
    _scard
    printf '%s\n' "${COMPREPLY[@]}" | sort
}

# What the manual page says of one command in its synopsis.
synopsis()
{
    awk -v command="$1" '
        $1 == ".Sh" { inside = $2 == "SYNOPSIS"; next }
        $1 == ".Nm" { current = "" }
        inside && $1 == ".Cm" { current = $2 }
        inside && current == command { print }' "$manual" | grep -o 'Fl -[a-z]*' | sed 's/Fl -/--/' | sort -u || true
}

commands=$("$program" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
[ -n "$commands" ] || fail "the help names no command"
for command in $commands; do
    options=$("$program" "$command" --help | grep -o '^  \(-h, \)\?--[a-z]*' | grep -o -- '--[a-z]*' | sort -u || true)
    [ -n "$options" ] || fail "scard $command --help names no option"
    completed=$(complete_words scard "$command" -)
    [ "$completed" = "$options" ] || fail "scard $command has" $options "and the completion" $completed
    described=$(synopsis "$command"; echo --help)
    [ "$(echo "$described" | sort)" = "$options" ] || fail "scard $command has" $options "and the manual page" $described
    complete_words scard "" | grep -qx -- "$command" || fail "the completion does not know $command"
done

tables=$("$program" show --csv none x 2>&1 | sed -n 's/.*there is no table "none"; \(.*\)\./\1/p' | tr -d ' ' | tr ',' '\n' | sort || true)
[ -n "$tables" ] || fail "no table is named"
[ "$(complete_words scard show --csv "")" = "$tables" ] || fail "the completion has other tables"
for table in $tables; do
    grep -qw "$table" "$manual" || fail "the manual page does not know the table $table"
done
exit $status
