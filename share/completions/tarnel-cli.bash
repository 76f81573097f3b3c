# bash completion for tarnel-cli

_tarnel_cli()
{
    local verbs="hide list extract verify delete update passwd search recover salvage"
    local algorithms="BLOWFISH CAST5 DES SERPENT-256 RIJNDAEL-256 TRIPLEDES TWOFISH"
    local options="--json --no-input --quiet --on-error --password-file --password-fd --help"
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} verb= word
    # "=" is a word of its own here.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD-2]}
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ " $verbs " == *" $word "* ]]; then
            verb=$word
            break
        fi
    done

    compopt -o filenames 2>/dev/null
    case $prev in
        --algorithm) COMPREPLY=($(compgen -W "$algorithms" -- "${cur^^}")); return ;;
        --on-error) COMPREPLY=($(compgen -W "abort retry ignore" -- "$cur")); return ;;
        --originals) COMPREPLY=($(compgen -W "keep trash destroy" -- "$cur")); return ;;
        --type) COMPREPLY=($(compgen -W "all image video audio program bmp jpg gif tif pcx png wmf avi mov mpg mp3 wav snd mid exe dll ocx" -- "$cur")); return ;;
        --title | --password-fd | --new-password-fd) return ;;
        --to) mapfile -t COMPREPLY < <(compgen -d -- "$cur"); return ;;
        --password-file | --new-password-file) mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;
    esac

    if [[ $cur == -* ]]; then
        case $verb in
            hide) options+=" --title --algorithm --compress --no-folders --new --write-protect --originals" ;;
            extract) options+=" --to --overwrite --flat" ;;
            salvage) options+=" --to" ;;
            recover) options+=" --yes" ;;
            passwd) options+=" --new-password-file --new-password-fd" ;;
            search) options+=" --type --algorithm --recursive --newest-only" ;;
            '') options+=" --version" ;;
        esac
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    elif [[ -z $verb ]]; then
        COMPREPLY=($(compgen -W "$verbs" -- "$cur"))
    elif [[ $verb == search ]]; then
        mapfile -t COMPREPLY < <(compgen -d -- "$cur")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    fi
}

complete -F _tarnel_cli tarnel-cli
