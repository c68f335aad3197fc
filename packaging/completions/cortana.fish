# SPDX-License-Identifier: MIT
# fish completion for cortana; the program itself tells what fits.
function __cortana_offers
    set -l typed (commandline -ct)
    set -l before (commandline -opc)
    for line in ($before[1] complete-words $before[2..-1] "$typed" 2>/dev/null)
        switch $line
            case ':file'
                __fish_complete_path "$typed"
            case ':folder'
                __fish_complete_directories "$typed"
            case '*'
                echo $line
        end
    end
end
complete -c cortana -f -k -a '(__cortana_offers)'
