# SPDX-License-Identifier: MIT
# bash completion for cortana; the program itself tells what fits.
_cortana() {
    local current=${COMP_WORDS[COMP_CWORD]} word
    COMPREPLY=()
    [[ $current == '=' ]] && current=
    while IFS=$'\t' read -r word _; do
        case $word in
            :file) compopt -o filenames 2>/dev/null; mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current") ;;
            :folder) compopt -o filenames 2>/dev/null; mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -d -- "$current") ;;
            *) COMPREPLY+=("$(printf '%q' "$word")") ;;
        esac
    done < <("${COMP_WORDS[0]}" complete-words "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _cortana cortana
