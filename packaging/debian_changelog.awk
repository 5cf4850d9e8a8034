# Converts CHANGELOG.md to a Debian changelog. Variable: maintainer.
# A section is "## VERSION (YYYY-MM-DD)" or "## VERSION (unreleased)" with "- " items. The date of an unreleased
# version is SOURCE_DATE_EPOCH or, if unset, the current time.

function date_of(stamp,    command, date) {
  if (stamp == "unreleased") stamp = ENVIRON["SOURCE_DATE_EPOCH"] == "" ? "now" : "@" ENVIRON["SOURCE_DATE_EPOCH"]
  command = "LC_ALL=C date -R -u -d '" stamp "'"
  command | getline date
  close(command)
  return date
}

# Prints the words of `text` in lines of at most 78 characters, the first after "  * ".
function print_item(text,    words, count, i, line) {
  count = split(text, words, " ")
  line = "  *"
  for (i = 1; i <= count; ++i) {
    if (length(line) + 1 + length(words[i]) > 78) { print line; line = "   " }
    line = line " " words[i]
  }
  print line
}

function end_item() { if (item != "") print_item(item); item = "" }
function end_section() {
  end_item()
  if (version != "") printf "\n -- %s  %s\n", maintainer, date_of(stamp)
}

/^## / {
  end_section()
  if (version != "") print ""
  version = $2
  stamp = $3
  gsub(/[()]/, "", stamp)
  print "lightmotion (" version ") unstable; urgency=medium\n"
}
/^- /  { end_item(); item = substr($0, 3) }
/^  /  { item = item " " $0 }
END    { end_section() }
