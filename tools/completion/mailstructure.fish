# Completion of the command line of mailstructure, for fish. It is installed to
# share/fish/vendor_completions.d, where fish finds it.

# Prints the command that the line names before the cursor. Without one, tree is meant.
function __mailstructure_command
    set -l words (commandline -opc)
    if set -q words[2]
        and contains -- $words[2] tree json part scan merge extract check map report dump help
        echo $words[2]
    else
        echo tree
    end
end

function __mailstructure_command_is
    contains -- (__mailstructure_command) $argv
end

function __mailstructure_at_first_word
    test (count (commandline -opc)) -eq 1
end

# Prints those of the words that are no options and no values of options.
function __mailstructure_plain_words
    set -l take_next --charset --color --colour --fail-on --format --max-size --memlimit --name \
        -o --output --range --rules
    set -l is_value no
    for word in $argv
        if test $is_value = yes
            set is_value no
        else if contains -- $word $take_next
            set is_value yes
        else if not string match -qr -- '^-.' $word
            echo $word
        end
    end
end

# Whether the word at the cursor is the section that part is to write.
function __mailstructure_at_section
    set -l words (commandline -opc)
    __mailstructure_command_is part
    and not string match -qr -- '^--(all|list|name)(=|$)' $words
    and test (count (__mailstructure_plain_words $words)) -eq 2
end

complete -c mailstructure -n __mailstructure_at_first_word -a tree -d 'Draw the tree of a message'
complete -c mailstructure -n __mailstructure_at_first_word -a json -d 'Print trees as JSON'
complete -c mailstructure -n __mailstructure_at_first_word -a part -d 'Write a piece of a message'
complete -c mailstructure -n __mailstructure_at_first_word -a scan -d 'Print rows about mailboxes'
complete -c mailstructure -n __mailstructure_at_first_word -a merge -d 'Join shards of a scan'
complete -c mailstructure -n __mailstructure_at_first_word -a extract -d 'Write out attachments'
complete -c mailstructure -n __mailstructure_at_first_word -a check \
    -d 'Tell where readers disagree'
complete -c mailstructure -n __mailstructure_at_first_word -a map -d 'Draw what each byte is of'
complete -c mailstructure -n __mailstructure_at_first_word -a report -d 'Write a page about a scan'
complete -c mailstructure -n __mailstructure_at_first_word -a dump -d 'Print the library'\''s dump'
complete -c mailstructure -n __mailstructure_at_first_word -a help -d 'Print the help'
complete -c mailstructure -n __mailstructure_at_first_word -l version -d 'Print the version'
complete -c mailstructure -s h -l help -d 'Print the help'

complete -c mailstructure -n '__mailstructure_command_is help' -f \
    -a 'tree json part scan merge extract check map report dump help'
complete -c mailstructure -n 'not __mailstructure_command_is help check merge report' -l rules -x \
    -a 'standard classic' -d 'Rules to read messages by'
complete -c mailstructure -n 'not __mailstructure_command_is help merge report' -l max-size -x \
    -d 'Refuse larger messages'

complete -c mailstructure -n '__mailstructure_command_is tree' -l all \
    -d 'Draw preambles and epilogues of line ends too'
complete -c mailstructure -n '__mailstructure_command_is tree' -l ascii -d 'Draw with ASCII alone'
complete -c mailstructure -n '__mailstructure_command_is tree' -l utf8 -d 'Draw with UTF-8'
complete -c mailstructure -n '__mailstructure_command_is tree' -l bytes -d 'Give sizes in bytes'
complete -c mailstructure -n '__mailstructure_command_is tree' -l decoded -d 'Show decoded sizes'
complete -c mailstructure -n '__mailstructure_command_is tree' -l color -x -a 'auto always never' \
    -d 'Colour the tree'

complete -c mailstructure -n '__mailstructure_command_is json' -l flat -d 'One line for each entity'
complete -c mailstructure -n '__mailstructure_command_is json' -l pretty -d 'Print on many lines'

# fish does not tell what stands behind the cursor, where the file is. So this offers the sections
# that every message has.
complete -c mailstructure -n __mailstructure_at_section -f -a 'HEADER TEXT'
complete -c mailstructure -n '__mailstructure_command_is part' -s o -l output -r -F \
    -d 'Write to this file'
complete -c mailstructure -n '__mailstructure_command_is part' -l force -d 'Replace the output file'
complete -c mailstructure -n '__mailstructure_command_is part' -l decode -f -a 'strict lenient' \
    -d 'Undo the transfer encoding'
complete -c mailstructure -n '__mailstructure_command_is part' -l charset -x -a utf-8 \
    -d 'Convert text to this charset'
complete -c mailstructure -n '__mailstructure_command_is part' -l range -x \
    -a 'header mime body contents epilogue' -d 'Write a recorded range'
complete -c mailstructure -n '__mailstructure_command_is part' -l all \
    -d 'Save all attachments in the folder of -o'
complete -c mailstructure -n '__mailstructure_command_is part' -l name -x \
    -d 'Choose attachments by file name'
complete -c mailstructure -n '__mailstructure_command_is part' -l list -d 'List all sections'
complete -c mailstructure -n '__mailstructure_command_is part' -l unquote \
    -d 'Undo the quoting of lines in an mbox'

complete -c mailstructure -n '__mailstructure_command_is scan' -l summary -d 'Print totals alone'
complete -c mailstructure -n '__mailstructure_command_is scan' -s o -l output -r -F \
    -d 'Write rows to this new file'
complete -c mailstructure -n '__mailstructure_command_is scan' -l sqlite -r -F \
    -d 'Write tables to this new file'
complete -c mailstructure -n '__mailstructure_command_is scan' -l resume \
    -d 'Go on where this command was interrupted'
complete -c mailstructure -n '__mailstructure_command_is scan' -l checkpoint -x \
    -d 'How often to note where to go on'
complete -c mailstructure -n '__mailstructure_command_is scan' -l hash -x -a 'none message parts' \
    -d 'Hash by SHA-256'
complete -c mailstructure -n '__mailstructure_command_is scan' -l findings -x -a 'none count' \
    -d 'Count what is wrong with messages'
complete -c mailstructure -n '__mailstructure_command_is scan extract' -l mbox -x \
    -a 'auto strict any thunderbird' -d 'Which lines separate messages'
complete -c mailstructure -n '__mailstructure_command_is scan extract' -l content-length -x \
    -a 'verify ignore' -d 'How to read Content-Length'
complete -c mailstructure -n '__mailstructure_command_is scan extract' -l one \
    -d 'Every file is one message'
complete -c mailstructure -n '__mailstructure_command_is scan extract' -l threads -x \
    -d 'How many threads to use'
complete -c mailstructure -n '__mailstructure_command_is scan extract' -l progress -x \
    -a 'auto always never' -d 'Show how far the command has come'

complete -c mailstructure -n '__mailstructure_command_is extract' -s o -l output -r -F \
    -d 'Write to this folder'
complete -c mailstructure -n '__mailstructure_command_is extract' -l index -r -F \
    -d 'Write the index to this new file'

complete -c mailstructure -n '__mailstructure_command_is scan' -l shard -x \
    -d 'Scan one of N shares, I/N'
complete -c mailstructure -n '__mailstructure_command_is scan' -l by-plan -r -F \
    -d 'Divide by this plan'
complete -c mailstructure -n '__mailstructure_command_is scan' -l plan -x \
    -d 'Print a plan for N shards'

complete -c mailstructure -n '__mailstructure_command_is merge' -s o -l output -r -F \
    -d 'Write rows to this new file'
complete -c mailstructure -n '__mailstructure_command_is merge' -l sqlite -r -F \
    -d 'Write tables to this new file'

complete -c mailstructure -n '__mailstructure_command_is check' -l json \
    -d 'Print a line of JSON for each finding'
complete -c mailstructure -n '__mailstructure_command_is check' -l fail-on -x \
    -a 'danger fault note' -d 'Fail if a finding has this level'
complete -c mailstructure -n '__mailstructure_command_is check' -l rules \
    -d 'Show both trees where they differ'

complete -c mailstructure -n '__mailstructure_command_is map' -s o -l output -r -F \
    -d 'Write to this file'
complete -c mailstructure -n '__mailstructure_command_is map' -l force -d 'Replace the output file'
complete -c mailstructure -n '__mailstructure_command_is map' -l format -x -a 'svg html' \
    -d 'Write a drawing or a page'

complete -c mailstructure -n '__mailstructure_command_is report' -s o -l output -r -F \
    -d 'Write to this file'
complete -c mailstructure -n '__mailstructure_command_is report' -l force \
    -d 'Replace the output file'

complete -c mailstructure -n '__mailstructure_command_is dump' -l keep-text -d 'Print texts too'
complete -c mailstructure -n '__mailstructure_command_is dump' -l memlimit -x \
    -d 'Bound for the memory of the fields, in bytes'
