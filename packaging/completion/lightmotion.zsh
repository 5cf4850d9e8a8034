#compdef lightmotion
# Completion of lightmotion(1) for zsh.
_lightmotion() {
  local state line
  _arguments -C \
    '(- *)'{-h,--help}'[print help and exit]' \
    '(- *)--version[print the version and exit]' \
    '1:command:((run\:"find motion in a video"
      check\:"check how a configuration will be interpreted"
      presets\:"list or print the configurations of the program"
      serve\:"watch and configure detection in a browser"
      tune\:"find settings for your own footage"))' \
    '*::argument:->arguments'
  [[ $state == arguments ]] || return
  local presets='(auto calm street)'
  if [[ $line[1] == presets ]]; then
    _arguments '(- *)'{-h,--help}'[print help and exit]' "1:preset:$presets"
    return
  fi
  if [[ $line[1] == check ]]; then
    _arguments \
      '(--size)--source[take the frame size from this video, stream or camera]:source:_files' \
      '(--source)--size[frame size]:size:(640x360 1280x720 1920x1080)' \
      '--entry-points[check for hosts that use the plug-in by its four entry points]' \
      '--json[print one JSON object, for programs]' \
      '(- *)'{-h,--help}'[print help and exit]' \
      '1:configuration:_files -g "*.json"'
    return
  fi
  local -a reading=(
    '--fps[analyse at most this many frames per second]:number:'
    '--scale[analyse smaller frames]:factor or size:'
    '--max-gap[report gaps between frames longer than this]:seconds:'
    '--timeout[how long to wait for a camera or network]:seconds:'
    '--reconnect[how long to try to reconnect]:seconds:'
    '--frozen[how long a picture may stay exactly the same]:seconds:'
  )
  if [[ $line[1] == serve ]]; then
    _arguments -s \
      '(-c --config)'{-c,--config}'[configuration to start with and to save to]:configuration:_files -g "*.json"' \
      '--host[address to listen on]:address:(127.0.0.1 0.0.0.0)' \
      '--port[port; 0 picks a free one]:number:' \
      '--token[access token]:text:' \
      '--plugin[use this plug-in by its entry points]:library:_files' \
      $reading \
      '(- *)'{-h,--help}'[print help and exit]' \
      '*:source:_files'
    return
  fi
  if [[ $line[1] == tune ]]; then
    _arguments -s \
      '*--quiet[times between which nothing moves]:FROM-TO:' \
      '*--motion[times between which something moves]:FROM-TO:' \
      '(-c --config)'{-c,--config}'[configuration to start from]:configuration:_files -g "*.json"' \
      '(-o --output)'{-o,--output}'[file for the proposed configuration]:file:_files -g "*.json"' \
      '--picture[chart of what each setting found]:file:_files -g "*.png"' \
      '--json[print one JSON object, for programs]' \
      '--seconds[how much of the source to analyse]:seconds:' \
      '--jobs[settings tried at the same time]:number:' \
      '--plugin[use this plug-in by its entry points]:library:_files' \
      $reading \
      '(- *)'{-h,--help}'[print help and exit]' \
      '*:source:_files'
    return
  fi
  _arguments -s \
    '(-c --config --preset)'{-c,--config}'[configuration]:configuration:_files -g "*.json"' \
    '(-c --config)--preset[preset to use]:preset:'$presets \
    '(-o --output)'{-o,--output}'[file for the result lines]:file:_files' \
    '(-a --annotate)'{-a,--annotate}'[video with the boxes drawn]:video:_files -g "*.(mp4|mkv|mov)"' \
    '--events[file for the events]:file:_files -g "*.(json|jsonl|csv)"' \
    '--min-event[minimum length of an event]:seconds:' \
    '--gap[quiet time that ends an event]:seconds:' \
    '--pre[time shown before each event]:seconds:' \
    '--post[time shown after each event]:seconds:' \
    '--explain[explain the boxes and events in a span of seconds]:FROM-TO:' \
    '--report[page with timeline, pictures and heat map]:file:_files -g "*.html"' \
    '--heatmap[picture of where motion was]:file:_files -g "*.png"' \
    '--snapshots[folder for the best frame of each event]:folder:_files -/' \
    '--clips[folder for each event as a video]:folder:_files -/' \
    '--plugin[use this plug-in by its entry points]:library:_files' \
    $reading \
    '--rotate[when to begin new result lines and events]:day or size:(day 100MB)' \
    '--keep[remove older clips, snapshots and rotated files]:age:' \
    '--keep-size[remove the oldest of them beyond this size]:size:' \
    '--out[folder for the results of many files]:folder:_files -/' \
    '--jobs[files processed at the same time]:number:' \
    '--shard[process only every Nth file, starting with the Ith]:I/N:(slurm)' \
    '--file-timeout[per-file time limit]:seconds:' \
    '--force[reprocess finished files]' \
    '--mqtt[broker to publish events to]:address:' \
    '--mqtt-camera[name of the camera in topics]:name:' \
    '--mqtt-password-file[file that holds the password]:file:_files' \
    '--mqtt-ca[certificates to trust]:file:_files' \
    '--mqtt-discovery[discovery topic of home-automation software]:topic:' \
    '--progress[how progress is reported]:mode:(bar json none)' \
    '(-q --quiet)'{-q,--quiet}'[no progress bar and no summary]' \
    '(-v --verbose)'{-v,--verbose}'[show the log of the plug-in and the decoder]' \
    '(- *)'{-h,--help}'[print help and exit]' \
    '*:source:_files'
}
_lightmotion "$@"
