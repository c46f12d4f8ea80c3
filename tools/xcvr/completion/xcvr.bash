# bash completion for xcvr

_xcvr() {
   local current=${COMP_WORDS[COMP_CWORD]}
   local previous=${COMP_WORDS[COMP_CWORD - 1]}
   local command='' word
   COMPREPLY=()

   for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
      case $word in
      show | hexdump | explain | check | agent | watch | control-set | media-types)
         command=$word
         break
         ;;
      esac
   done

   if [[ $previous == --family ]]; then
      mapfile -t COMPREPLY < <(compgen -W 'sfp qsfp qsfp-dd osfp cfp2' -- "$current")
      return
   fi

   local options='--help'
   case $command in
   '') options+=' --version' ;;
   show) options+=' --family --json --connect' ;;
   check) options+=' --family --json' ;;
   agent) options+=' --listen --slot --slice' ;;
   watch) options+=' --connect' ;;
   media-types) options+=' --json' ;;
   control-set)
      options+=' --lane --application --data-path --explicit --tx-adaptive --tx-eq --rx-pre'
      options+=' --rx-post --rx-amplitude --force --output --json'
      ;;
   *) options+=' --family' ;;
   esac

   if [[ $current == -* ]]; then
      mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
   elif [[ -z $command ]]; then
      mapfile -t COMPREPLY < <(compgen -W 'show hexdump explain check agent watch control-set media-types' -- "$current")
   elif [[ $command != media-types ]]; then
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
   fi
}

complete -F _xcvr xcvr
