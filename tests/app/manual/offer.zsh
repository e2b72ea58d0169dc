# SPDX-License-Identifier: MIT
# Reads command lines and prints what zsh offers for the last word of each: LINE<tab>WORD.
# An interactive zsh runs at a terminal of its own; what its completion adds is noted before it is
# shown.
zmodload zsh/zpty
local made=$1 noted=${TMPPREFIX:-/tmp/zsh}$$ line word
zpty shell "COLUMNS=200 zsh -f -i"
say() { zpty -w shell "$1" }
wait_for() { local text; while zpty -r shell text; do [[ $text == *$1* ]] && return; done }
say "PS1= PS2= ; unsetopt zle_bracketed_paste; fpath=($made \$fpath); autoload -Uz compinit; compinit -u -D"
say "noted=$noted"
# Names of files are added without the path before them, and folders without their slash.
say 'compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd "$@"; return; fi
    local -a found; local one place=
    builtin compadd -A found "$@"
    (( ${@[(I)-p]} )) && place=${@[${@[(I)-p]} + 1]}
    for one in $found; do
        [[ -d $place$one ]] && one+=/
        print -r -- "$IPREFIX$place$one" >> $noted
    done
    builtin compadd "$@"
}'
say 'finish() { print -r -- "" >> $noted; zle kill-whole-line; print DONE }; zle -N finish; bindkey "^X^F" finish; bindkey "^I" list-choices'
say 'print READY$((1 + 1))'
wait_for READY2
while IFS= read -r line; do
    : > $noted
    zpty -w -n shell "$line"$'\t'
    zpty -w -n shell $'\x18\x06'
    wait_for DONE
    for word in ${(f)"$(<$noted)"}; do printf '%s\t%s\n' "$line" "$word"; done
done
zpty -d shell
rm -f $noted
