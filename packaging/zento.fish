# fish completion for zento
set -l commands record plan render recover screenshot demo doctor toggle
complete -c zento -f
complete -c zento -n "not __fish_seen_subcommand_from $commands" -a "$commands"
complete -c zento -n '__fish_seen_subcommand_from record screenshot' -l screen -x -d 'A display, counted from 0'
complete -c zento -n '__fish_seen_subcommand_from record screenshot' -l window -x -d 'A window by its X11 number'
complete -c zento -n '__fish_seen_subcommand_from record screenshot' -l area -x -d 'A part of the desktop: X,Y,W,H'
complete -c zento -n '__fish_seen_subcommand_from record' -l seconds -x -d 'How long to record'
complete -c zento -n '__fish_seen_subcommand_from record' -l microphone -d 'The microphone too'
complete -c zento -n '__fish_seen_subcommand_from record' -l camera -d 'The camera too'
complete -c zento -n '__fish_seen_subcommand_from record' -l system-audio -d 'What plays too'
complete -c zento -n '__fish_seen_subcommand_from record' -l toggle -d 'Start or stop one in the application'
complete -c zento -n '__fish_seen_subcommand_from plan render recover' -a '(__fish_complete_directories)'
complete -c zento -n '__fish_seen_subcommand_from plan render' -l settings -r -F -d 'Settings'
complete -c zento -n '__fish_seen_subcommand_from plan' -l config -r -F -d 'A plan configuration'
complete -c zento -n '__fish_seen_subcommand_from plan' -l overrides -r -F -d 'Edits'
complete -c zento -n '__fish_seen_subcommand_from plan' -l music -r -F -d 'Music'
complete -c zento -n '__fish_seen_subcommand_from plan' -l size -x -d 'Size: WxH'
complete -c zento -n '__fish_seen_subcommand_from plan' -l fps -x -d 'Frame rate'
complete -c zento -n '__fish_seen_subcommand_from plan render screenshot demo' -l output -r -F -d 'Where to'
complete -c zento -n '__fish_seen_subcommand_from render' -l gif -d 'A GIF too'
complete -c zento -n '__fish_seen_subcommand_from screenshot' -l edit -d 'Open the editor on it'
