# Completion of norvex-export and norvex-rules for bash: the programs know what may stand there.

_norvex() {
    local line=${COMP_LINE:0:COMP_POINT} words current prefix candidate
    read -ra words <<<"$line"
    [[ $line == *[[:space:]] ]] && words+=("")
    current=${words[-1]}
    # bash replaces no more than what stands behind an equals sign or a colon.
    prefix=${current%"${current##*[=:]}"}
    COMPREPLY=()
    while IFS=$'\t' read -r candidate _; do
        if [[ $candidate == :files ]]; then
            compopt -o filenames 2>/dev/null
            while read -r candidate; do COMPREPLY+=("$candidate"); done < <(compgen -f -- "${current##*=}")
        else
            COMPREPLY+=("${candidate#"$prefix"}")
        fi
    done < <("$1" --complete "${words[@]:1}" 2>/dev/null)
}
complete -F _norvex norvex-export norvex-rules
