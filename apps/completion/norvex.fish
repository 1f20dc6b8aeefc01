# Completion of norvex-export and norvex-rules for fish: the programs know what may stand there.

function __norvex_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    for line in ($words[1] --complete $words[2..-1] "$current" 2>/dev/null)
        if test "$line" = :files
            __fish_complete_path "$current"
        else
            echo $line
        end
    end
end
for program in norvex-export norvex-rules
    complete -c $program -f -a '(__norvex_complete)'
end
