# Completion of lightmotion(1) for bash.
_lightmotion() {
  local word=$2 before=$3
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'run check presets serve tune --help --version' -- "$word")
    return
  fi
  local presets='auto calm street'
  if [[ ${COMP_WORDS[1]} == presets ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$presets -h --help" -- "$word")
    return
  fi
  if [[ ${COMP_WORDS[1]} == check ]]; then
    if [[ $before == --size ]]; then
      mapfile -t COMPREPLY < <(compgen -W '640x360 1280x720 1920x1080' -- "$word")
    elif [[ $word == -* ]]; then
      mapfile -t COMPREPLY < <(compgen -W '--source --size --entry-points --json -h --help' -- "$word")
    else
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
    return
  fi
  if [[ ${COMP_WORDS[1]} == serve ]]; then
    case $before in
      --port | --token | --fps | --scale | --max-gap | --timeout | --reconnect | --frozen) ;;
      --host) mapfile -t COMPREPLY < <(compgen -W '127.0.0.1 0.0.0.0' -- "$word") ;;
      *)
        if [[ $word == -* ]]; then
          mapfile -t COMPREPLY < <(compgen -W '-c --config --host --port --token --plugin
            --fps --scale --max-gap --timeout --reconnect --frozen -h --help' -- "$word")
        else
          mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        ;;
    esac
    return
  fi
  if [[ ${COMP_WORDS[1]} == tune ]]; then
    case $before in
      --quiet | --motion | --seconds | --jobs | --fps | --scale | --max-gap | --timeout | --reconnect | --frozen) ;;
      --picture) mapfile -t COMPREPLY < <(compgen -f -X '!*.png' -- "$word"; compgen -d -- "$word") ;;
      *)
        if [[ $word == -* ]]; then
          mapfile -t COMPREPLY < <(compgen -W '--quiet --motion -c --config -o --output --picture --json --seconds
            --jobs --plugin --fps --scale --max-gap --timeout --reconnect --frozen -h --help' -- "$word")
        else
          mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        ;;
    esac
    return
  fi
  case $before in
    --preset) mapfile -t COMPREPLY < <(compgen -W "$presets" -- "$word") ;;
    -a | --annotate)
      mapfile -t COMPREPLY < <(for kind in mp4 mkv mov; do compgen -f -X "!*.$kind" -- "$word"; done
        compgen -d -- "$word")
      ;;
    --out) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    --events)
      mapfile -t COMPREPLY < <(for kind in json jsonl csv; do compgen -f -X "!*.$kind" -- "$word"; done
        compgen -d -- "$word")
      ;;
    --report) mapfile -t COMPREPLY < <(compgen -f -X '!*.html' -- "$word"; compgen -d -- "$word") ;;
    --heatmap) mapfile -t COMPREPLY < <(compgen -f -X '!*.png' -- "$word"; compgen -d -- "$word") ;;
    --snapshots | --clips) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    --fps | --scale | --max-gap | --timeout | --reconnect | --frozen | --keep | --keep-size) ;;
    --rotate) mapfile -t COMPREPLY < <(compgen -W 'day 100MB' -- "$word") ;;
    --jobs | --file-timeout | --min-event | --gap | --pre | --post | --explain) ;;
    --shard) mapfile -t COMPREPLY < <(compgen -W slurm -- "$word") ;;
    --progress) mapfile -t COMPREPLY < <(compgen -W 'bar json none' -- "$word") ;;
    --mqtt | --mqtt-camera | --mqtt-discovery) ;;
    -c | --config | -o | --output | --plugin | --mqtt-password-file | --mqtt-ca)
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      ;;
    *)
      if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '-c --config --preset -o --output -a --annotate --plugin -q --quiet -v --verbose
          --events --min-event --gap --pre --post --explain
          --report --heatmap --snapshots --clips
          --mqtt --mqtt-camera --mqtt-password-file --mqtt-ca --mqtt-discovery --progress
          --fps --scale --max-gap --timeout --reconnect --frozen --rotate --keep --keep-size
          --out --jobs --shard --file-timeout --force
          -h --help' -- "$word")
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi
      ;;
  esac
}
# Readline adds slashes and quotes to file names.
complete -o filenames -F _lightmotion lightmotion
