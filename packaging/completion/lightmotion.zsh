#compdef lightmotion
# Completion of lightmotion(1) for zsh.
_lightmotion() {
  local state line
  _arguments -C \
    '(- *)'{-h,--help}'[print a help message and exit]' \
    '(- *)--version[print the version and exit]' \
    '1:command:((run\:"find what moves in a video"
      check\:"say what the plug-in will make of a configuration"
      presets\:"show the configurations for common places"
      serve\:"see and tune the detection in a browser"
      tune\:"find settings that suit your own footage"))' \
    '*::argument:->arguments'
  [[ $state == arguments ]] || return
  local presets='(street indoor night grainy calm sensitive)'
  if [[ $line[1] == presets ]]; then
    _arguments '(- *)'{-h,--help}'[print a help message and exit]' "1:preset:$presets"
    return
  fi
  if [[ $line[1] == check ]]; then
    _arguments \
      '(--size)--source[video, address or camera to watch with it]:source:_files' \
      '(--source)--size[size of the frames]:size:(640x360 1280x720 1920x1080)' \
      '--json[for programs\: one JSON object]' \
      '(- *)'{-h,--help}'[print a help message and exit]' \
      '1:document:_files -g "*.json"'
    return
  fi
  local -a reading=(
    '--fps[analyse at most so many frames a second]:number:'
    '--scale[analyse smaller frames]:factor or size:'
    '--max-gap[report frames that lie further apart]:seconds:'
    '--timeout[how long to wait for a camera or a network]:seconds:'
    '--reconnect[how long to try to get a lost live source back]:seconds:'
  )
  if [[ $line[1] == serve ]]; then
    _arguments -s \
      '(-c --config)'{-c,--config}'[document to begin with and to save to]:document:_files -g "*.json"' \
      '--host[where to be reached]:address:(127.0.0.1 0.0.0.0)' \
      '--port[0 for any that is free]:number:' \
      '--token[what has to be known to be let in]:text:' \
      '--plugin[the plug-in, when it is not in its usual place]:library:_files' \
      $reading \
      '(- *)'{-h,--help}'[print a help message and exit]' \
      '*:source:_files'
    return
  fi
  if [[ $line[1] == tune ]]; then
    _arguments -s \
      '*--quiet[seconds in which nothing moves]:FROM-TO:' \
      '*--motion[seconds in which something does]:FROM-TO:' \
      '(-c --config)'{-c,--config}'[document to start from]:document:_files -g "*.json"' \
      '(-o --output)'{-o,--output}'[file for the proposed document]:file:_files -g "*.json"' \
      '--picture[what each setting found when]:file:_files -g "*.png"' \
      '--json[for programs\: one JSON object]' \
      '--seconds[how much of the source is looked at]:seconds:' \
      '--jobs[settings tried at a time]:number:' \
      '--plugin[the plug-in, when it is not in its usual place]:library:_files' \
      $reading \
      '(- *)'{-h,--help}'[print a help message and exit]' \
      '*:source:_files'
    return
  fi
  _arguments -s \
    '(-c --config --preset)'{-c,--config}'[configuration document]:document:_files -g "*.json"' \
    '(-c --config)--preset[a configuration for a common place]:preset:'$presets \
    '(-o --output)'{-o,--output}'[file for the result lines]:file:_files' \
    '(-a --annotate)'{-a,--annotate}'[video with the boxes drawn]:video:_files -g "*.(mp4|mkv|mov)"' \
    '--events[file for the events]:file:_files -g "*.(json|csv)"' \
    '--min-event[shorter events do not count]:seconds:' \
    '--gap[an event ends after so long without boxes]:seconds:' \
    '--pre[shown before each event]:seconds:' \
    '--post[shown after each event]:seconds:' \
    '--explain[why there were boxes and events in a span of seconds]:FROM-TO:' \
    '--report[page with timeline, pictures and heat map]:file:_files -g "*.html"' \
    '--heatmap[picture of where things moved]:file:_files -g "*.png"' \
    '--snapshots[folder for the best frame of each event]:folder:_files -/' \
    '--clips[folder for each event as a video]:folder:_files -/' \
    '--plugin[the plug-in, when it is not in its usual place]:library:_files' \
    $reading \
    '--out[folder for the results of many files]:folder:_files -/' \
    '--jobs[files worked on at a time]:number:' \
    '--shard[only every Nth file from the Ith on]:I/N:(slurm)' \
    '--file-timeout[give a file up that is not done after so long]:seconds:' \
    '--force[files that are done are done again]' \
    '--mqtt[broker to tell events to]:address:' \
    '--mqtt-camera[name of the camera in topics]:name:' \
    '--mqtt-password-file[file that holds the password]:file:_files' \
    '--mqtt-ca[certificates to trust]:file:_files' \
    '--mqtt-discovery[where home-automation software looks for devices]:topic:' \
    '--progress[how progress is told]:mode:(bar json none)' \
    '(-q --quiet)'{-q,--quiet}'[no progress bar and no summary]' \
    '(-v --verbose)'{-v,--verbose}'[show what the plug-in and the decoder log]' \
    '(- *)'{-h,--help}'[print a help message and exit]' \
    '*:source:_files'
}
_lightmotion "$@"
