# bash completion for orvwebpage
_orvwebpage() {
  local cur prev words cword
  _init_completion || return
  local commands="url keys search links nodes estimate size help"
  local command="" i
  for ((i = 1; i < cword; i++)); do
    case "${words[i]}" in
      -*) ;;
      *) command="${words[i]}"; break ;;
    esac
  done
  if [[ -z "$command" ]]; then
    COMPREPLY=($(compgen -W "$commands --help --version" -- "$cur"))
    return
  fi
  case "$prev" in
    --html|--from) _filedir; return ;;
    --entry|--example|--base|--timeout|--deadline|--max-memory|--delay|--max-requests|--user-agent|--hosts|--jobs)
      return ;;
  esac
  local options="--help --json"
  case "$command" in
    url) options+=" --no-sort" ;;
    keys) options+=" --entry" ;;
    search) options+=" --entry --example" ;;
    links) options+=" --entry --html --base --timeout --user-agent" ;;
    nodes) options+=" --timeout --user-agent" ;;
    estimate) options+=" --max-requests --timeout --deadline --max-memory --delay --user-agent --hosts
      --ignore-robots --jobs --from --explain" ;;
    size) options+=" --max-requests --timeout --deadline --max-memory --delay --user-agent --hosts
      --ignore-robots --jobs --from --explain" ;;
    help) COMPREPLY=($(compgen -W "$commands" -- "$cur")); return ;;
  esac
  if [[ "$cur" == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$cur"))
  else
    _filedir
  fi
}
complete -F _orvwebpage orvwebpage
