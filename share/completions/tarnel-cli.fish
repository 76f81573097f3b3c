# fish completion for tarnel-cli

set -l verbs hide list extract verify delete update passwd search recover salvage
set -l algorithms BLOWFISH CAST5 DES SERPENT-256 RIJNDAEL-256 TripleDES TWOFISH
set -l none "not __fish_seen_subcommand_from $verbs"

complete -c tarnel-cli -n $none -f
complete -c tarnel-cli -n $none -a hide -d 'hide files and folders in a carrier'
complete -c tarnel-cli -n $none -a list -d 'list the hidden files'
complete -c tarnel-cli -n $none -a extract -d 'bring hidden files back'
complete -c tarnel-cli -n $none -a verify -d 'say whether the hidden files are intact'
complete -c tarnel-cli -n $none -a delete -d 'take entries out for good'
complete -c tarnel-cli -n $none -a update -d 'replace the contents of a hidden file'
complete -c tarnel-cli -n $none -a passwd -d 'change the password of a hideout'
complete -c tarnel-cli -n $none -a search -d 'find carriers in a folder'
complete -c tarnel-cli -n $none -a recover -d 'put things right after an interrupted run or damage'
complete -c tarnel-cli -n $none -a salvage -d 'bring back what is whole in a damaged carrier'
complete -c tarnel-cli -n $none -l version -d 'show the version'

complete -c tarnel-cli -l json -d 'print JSON'
complete -c tarnel-cli -l no-input -d 'ask nothing'
complete -c tarnel-cli -l quiet -d 'no progress, no word of success'
complete -c tarnel-cli -l on-error -x -a 'abort retry ignore' -d 'what to do at an error'
complete -c tarnel-cli -l password-file -r -F -d 'take the password from a file'
complete -c tarnel-cli -l password-fd -x -d 'take the password from a descriptor'
complete -c tarnel-cli -l help -d 'show help'

set -l hide '__fish_seen_subcommand_from hide'
complete -c tarnel-cli -n $hide -l title -x -d 'title of a new hideout'
complete -c tarnel-cli -n $hide -l algorithm -x -a "$algorithms" -d 'algorithm of a new hideout'
complete -c tarnel-cli -n $hide -l compress -d 'compress first, at level 6'
complete -c tarnel-cli -n $hide -l no-folders -d 'do not keep the names of folders'
complete -c tarnel-cli -n $hide -l new -d 'make a new hideout, also in a damaged carrier'
complete -c tarnel-cli -n $hide -l write-protect -d 'make the carrier read-only'
complete -c tarnel-cli -n $hide -l originals -x -a 'keep trash destroy' -d 'what becomes of the originals'

set -l extract '__fish_seen_subcommand_from extract'
complete -c tarnel-cli -n $extract -l to -x -a '(__fish_complete_directories)' -d 'the folder to put them in'
complete -c tarnel-cli -n $extract -l overwrite -d 'replace existing files'
complete -c tarnel-cli -n $extract -l flat -d 'without folders'

complete -c tarnel-cli -n '__fish_seen_subcommand_from salvage' -l to -x -a '(__fish_complete_directories)' -d 'the folder to put them in'
complete -c tarnel-cli -n '__fish_seen_subcommand_from recover' -l yes -d 'do it without asking'

set -l passwd '__fish_seen_subcommand_from passwd'
complete -c tarnel-cli -n $passwd -l new-password-file -r -F -d 'take the new password from a file'
complete -c tarnel-cli -n $passwd -l new-password-fd -x -d 'take the new password from a descriptor'

set -l search '__fish_seen_subcommand_from search'
complete -c tarnel-cli -n $search -l type -x -a 'all image video audio program bmp jpg gif tif pcx png wmf avi mov mpg mp3 wav snd mid exe dll ocx' -d 'only carriers of a type'
complete -c tarnel-cli -n $search -l algorithm -x -a "$algorithms" -d 'try one algorithm only'
complete -c tarnel-cli -n $search -l recursive -d 'look into subfolders too'
complete -c tarnel-cli -n $search -l newest-only -d 'try the newest entry only'
