# Completion of keyvora-mappings for fish.
set -l commands check explain list rehearse cheatsheet schema help version
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -f
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a check -d 'Say what is wrong with a mapping document'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a explain -d 'Say what typing letters does'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a list -d 'List the sequences that can fire'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a rehearse -d 'Hold every action against the spreadsheet that runs'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a cheatsheet -d 'Write a sheet to print'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a schema -d 'Write the JSON schema'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a help -d 'Say how to use the program'
complete -c keyvora-mappings -n "not __fish_seen_subcommand_from $commands" -a version -d 'Say the version'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from check' -l watch -d 'Check again at every save'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from check' -l strict -d 'Let warnings count as errors'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from check' -l json -d 'Write JSON for programs'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from list' -l tab -x -d 'Only those that start with these letters'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from rehearse' -l all -d 'Say what was found for every sequence'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from cheatsheet' -l html -d 'For the browser and the printer'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from cheatsheet' -l markdown -d 'Tables'
complete -c keyvora-mappings -n '__fish_seen_subcommand_from help' -f -a 'check explain list rehearse cheatsheet schema'
