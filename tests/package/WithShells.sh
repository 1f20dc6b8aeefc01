#!/bin/bash
# Looks at the manual pages and at what shells offer behind the tab key, as they are installed. Shells and readers of
# pages that this machine lacks are passed over; bash is there.
# Usage: WithShells.sh ROOT, with the programs on PATH
set -eu
share=$1/usr/share
fail() { echo "$1" >&2; exit 1; }

for program in norvex-export norvex-rules; do
    page=$share/man/man1/$program.1.gz
    if command -v mandoc >/dev/null; then
        told=$(zcat "$page" | mandoc -T lint -W warning | grep -v "missing date" || true)
        [ -z "$told" ] || fail "$told"
    fi
    text=$(if command -v man >/dev/null; then man -l "$page"; else zcat "$page"; fi | tr -s ' \n' ' ')
    for section in NAME SYNOPSIS DESCRIPTION OPTIONS EXAMPLES "EXIT STATUS" FILES "SEE ALSO"; do
        [[ $text == *"$section"* ]] || fail "$page has no $section"
    done
    # Whatever --help has is in the page.
    for option in $($program --help | grep -o '^ *--[a-z-]*'); do
        zcat "$page" | grep -qF -- "${option//-/\\-}" || fail "$page lacks $option"
    done
done

offered_by_bash() (
    . "$share/bash-completion/completions/${1%% *}"
    COMP_LINE=$1 COMP_POINT=${#1}
    _norvex "${1%% *}"
    echo "${COMPREPLY[*]}"
)
offered_by_fish() { fish --no-config -c "source $share/fish/vendor_completions.d/${1%% *}.fish; complete -C '$1'" | cut -f1; }
# What zsh shows after the tab key, in a terminal of its own.
offered_by_zsh() {
    zsh -fc 'zmodload zsh/zpty
        zpty shell zsh -f -i
        zpty -w shell "stty rows 50 columns 200; PS1= ; unsetopt zle_bracketed_paste; fpath=($1 \$fpath); autoload -U compinit; compinit -u -D"
        zpty -w shell "echo rea\"\"dy"; zpty -r shell text "*ready*"
        zpty -w -n shell "$2"$'"'\\t\\t'"'
        repeat 30 { sleep 0.1; while zpty -rt shell more; do print -rn -- $more; done }' \
        zsh "$share/zsh/vendor-completions" "$1" 2>&1 |
        sed 's/\x1b\[[0-9;?]*[a-zA-Z]//g' | tr -cd '[:print:]\r\n'
}

for shell in bash fish zsh; do
    command -v $shell >/dev/null || continue
    while IFS='|' read -r line wanted; do
        offered=$(offered_by_$shell "$line" | tr -s '\r\n ' ' ')
        for word in $wanted; do
            [[ " $offered " == *"$word"* ]] || fail "$shell offers '$offered' behind '$line', without $word"
        done
    done <<'LINES'
norvex-export in.mov out.mp4 --form|--format
norvex-export --format mp|mp3 mp4 mpegts
norvex-export --video h26|h264
norvex-export --preset web|web-1080p web-av1
norvex-rules |fit find diff
norvex-rules show audio pcm_s16|pcm_s16be pcm_s16le
norvex-rules find --audio fl|flac
LINES
done
cd "$share" && [[ " $(offered_by_bash "norvex-rules check no") " == *" norvex "* ]] || fail "bash offers no files"
