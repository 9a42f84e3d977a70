# Completes the commands, options, lines, feeds and settings of linewatch in fish.
function __linewatch_complete
    set -l words (commandline -opc)
    $words[1] complete $words[2..-1] (commandline -ct) 2>/dev/null
end
complete -c linewatch -a '(__linewatch_complete)'
