# SPDX-License-Identifier: MIT
# Reads command lines and prints what fish offers for the last word of each: LINE<tab>WORD.
set fish_complete_path
source $argv[1]
while read -l line
    for word in (complete -C $line | string replace -r '\t.*' '')
        printf '%s\t%s\n' $line $word
    end
end
