# SPDX-License-Identifier: MIT
# Reads command lines and prints what bash offers for the last word of each: LINE<tab>WORD.
# Readline would break words at blanks, '=' and ':'; so does this.
source "$1"
while IFS= read -r COMP_LINE; do
    COMP_POINT=${#COMP_LINE}
    mapfile -t COMP_WORDS < <(grep -oE '[=:]|[^ =:]+' <<<"$COMP_LINE")
    [[ $COMP_LINE == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    "$(complete -p beatatlas | sed 's/.*-F \([^ ]*\) .*/\1/')"
    for word in "${COMPREPLY[@]}"; do
        # Readline puts the slash behind folders.
        [[ -d $word && $word != */ ]] && word+=/
        printf '%s\t%s\n' "$COMP_LINE" "$word"
    done
done
