# SPDX-License-Identifier: MIT
# What the program itself says of its commands and options; read by the other scripts here.

# Names of the commands, one a line. $1: the program
commandsOf() {
    "$1" --help | sed -n '/^Commands:/,/^$/ s/^  \([a-z]*\) .*/\1/p'
}

# Names of options, short and long, one a line. $1: the program, $2: a command, or nothing
optionsOf() {
    "$1" ${2:+"$2"} --help | grep -oE '^  (-[A-Za-z0-9],)?--[a-z-]+' | tr -d ' ' | tr , '\n' | sort
}
