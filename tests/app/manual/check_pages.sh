#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#   check_pages.sh options PAGES PROGRAM   each command has a page, each option is in page and help
#   check_pages.sh groff   PAGES PROGRAM   man and groff read the pages without a warning
#   check_pages.sh mandoc  PAGES PROGRAM   so does mandoc
set -euo pipefail
pages=$2 program=$3
source "$(dirname "$0")/commands.sh"

require() {
    command -v "$1" >/dev/null && return
    echo "There is no $1 here: not tested"
    exit 77
}

# Of a page without the backslashes of its language.
plain() {
    sed -e 's/\\f[BIR]//g' -e 's/\\-/-/g' "$1"
}

# The options that a page explains.
explained() {
    plain "$1" | grep -A1 '^\.TP' | grep -oE -- '^--?[A-Za-z0-9].*' | grep -oE -- '(^|, )--?[A-Za-z0-9-]+' |
        tr -d ', ' | sort
}

# The options in the examples of a page, one a line behind the command they are given to.
inExamples() {
    plain "$1" | sed -n '/^\.SH EXAMPLES/,/^\.SH SEE/p' | grep -oE 'beatatlas [a-z]+ .*' | sed 's/ -- .*//' |
        while read -r _ command rest; do
            for word in $rest; do
                [[ $word == --* ]] && echo "$command ${word%%=*}"
            done
        done || true
}

checkPage() {
    local command=$1 page=$pages/beatatlas${1:+-$1}.1 section other option
    [[ -f $page ]] || { echo "there is no $page"; return 1; }
    diff <(tr ' ' '\n' <<<"${known[$command.]# }") <(explained "$page"; echo) ||
        { echo "help (<) and $page (>) differ in their options"; return 1; }
    for section in NAME SYNOPSIS DESCRIPTION OPTIONS 'EXIT STATUS' EXAMPLES 'SEE ALSO'; do
        grep -qx "\.SH $section" "$page" || { echo "$page lacks $section"; return 1; }
    done
    while read -r other option; do
        [[ ${known[$other.]:-} == *" $option "* ]] ||
            { echo "$page: $other has no option $option"; return 1; }
    done < <(inExamples "$page")
}

case $1 in
options)
    declare -A known
    for command in "" $(commandsOf "$program"); do
        known[$command.]=" $(optionsOf "$program" "$command" | tr '\n' ' ')"
    done
    for command in "" $(commandsOf "$program"); do checkPage "$command"; done
    # Neither a page too many, nor one referred to that is not there.
    [[ $(find "$pages" -name '*.1' | wc -l) -eq $(($(commandsOf "$program" | wc -l) + 1)) ]]
    for name in $(sed -e 's/\\-/-/g' "$pages"/*.1 | grep -oE '^\.BR beatatlas[a-z-]* \(1\)' | cut -d' ' -f2); do
        [[ -f $pages/$name.1 ]] || { echo "no page is named $name"; exit 1; }
    done
    ;;
groff)
    require groff
    require man
    for page in "$pages"/*.1; do
        said=$(groff -ww -man -Tutf8 -rLL=80n "$page" 2>&1 >/dev/null)
        [[ -z $said ]] || { echo "$page: $said"; exit 1; }
        said=$(MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
        [[ -z $said ]] || { echo "$page: $said"; exit 1; }
    done
    ;;
mandoc)
    require mandoc
    mandoc -T lint -W warning "$pages"/*.1
    ;;
esac
