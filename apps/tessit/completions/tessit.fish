# Completions of tessit(1) for fish.

complete -c tessit -n __fish_use_subcommand -f
complete -c tessit -n __fish_use_subcommand -a check -d 'Tell whether documents are well-formed'
complete -c tessit -n __fish_use_subcommand -a events -d 'Print one line for each node of the documents'
complete -c tessit -n __fish_use_subcommand -a same -d 'Tell whether two documents say the same thing'
complete -c tessit -n __fish_use_subcommand -l version -d 'Print the version'
complete -c tessit -s h -l help -d 'Print how the tool, or the command, is used'
complete -c tessit -n '__fish_seen_subcommand_from check' -l quiet -d 'Print nothing: the exit status tells'
complete -c tessit -n '__fish_seen_subcommand_from check' -l record -d 'Tell all that breaks a rule'
complete -c tessit -n '__fish_seen_subcommand_from check events same' -l limits -x -d 'Refuse what has more'
complete -c tessit -n '__fish_seen_subcommand_from check events' -l external -d 'Read external entities beside the document'
complete -c tessit -n '__fish_seen_subcommand_from events' -l conforming -d 'Refuse what is not well-formed, print more nodes'
complete -c tessit -n '__fish_seen_subcommand_from events' -l raw-references -d 'Leave references in attribute values as written'
complete -c tessit -n '__fish_seen_subcommand_from check events same' -l json -d 'Report errors as JSON, one object a line'
