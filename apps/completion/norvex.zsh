#compdef norvex-export norvex-rules
# Completion of norvex-export and norvex-rules for zsh: the programs know what may stand there.

local line
local -a candidates
local -i takes_files=0
for line in "${(@f)$("${words[1]}" --complete "${(@)words[2,CURRENT]}" 2>/dev/null)}"; do
    case $line in
        :files) takes_files=1 ;;
        *$'\t'*) candidates+=("${${line%%$'\t'*}//:/\\:}:${line#*$'\t'}") ;;
        ?*) candidates+=("${line//:/\\:}") ;;
    esac
done
(( $#candidates )) && _describe norvex candidates
(( takes_files )) && _files
