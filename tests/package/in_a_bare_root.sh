#!/bin/sh
# Runs in the bare root, with the packages in /packages: installs, uses and removes them.
set -eu
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
packages="liblightmotion1 liblightmotion-dev lightmotion python3-lightmotion gstreamer1.0-lightmotion"

step() { echo "---- $*"; }
fail() { echo "failed: $*" >&2; exit 1; }
quietly() { "$@" >/tmp/log 2>&1 || { cat /tmp/log; fail "$*"; }; }
install() { quietly apt-get install -y --no-install-recommends "$@"; }
as_user() { setpriv --reuid=nobody --regid=nogroup --clear-groups env HOME=/tmp "$@"; }
# This project's files and folders, anywhere.
ours() { find / -xdev -path /packages -prune -o -path /proc -prune -o -iname '*lightmotion*' -print; }

step "nothing of ours is here"
[ -z "$(ours)" ] || fail "$(ours)"
quietly apt-get update

step "library and program install with what they depend on, and run"
install /packages/liblightmotion1_*.deb /packages/lightmotion_*.deb
ldconfig -p | grep -q 'liblightmotion\.so\.1 ' || fail "the linker does not know the library"
version=$(dpkg-query -W -f '${Version}' lightmotion)
[ "$(as_user lightmotion --version)" = "lightmotion $version" ] || fail "another version than $version"
cd /tmp
as_user lightmotion run --quiet --output scene.jsonl --annotate scene.mp4
lines=$(wc -l <scene.jsonl)
[ "$lines" -gt 300 ] || fail "the built-in scene has boxes in $lines frames only"
as_user lightmotion run --quiet scene.mp4 --config /usr/share/doc/lightmotion/examples/night.json --output again.jsonl
[ -s again.jsonl ] || fail "nothing moves in the annotated scene"

step "hosts build against the development files with a C compiler, with CMake, and run; Python needs the library only"
install /packages/liblightmotion-dev_*.deb gcc libc6-dev pkg-config
examples=/usr/share/doc/liblightmotion-dev/examples
# shellcheck disable=SC2046  # lists of words
cc -std=c11 -Wall -Wextra -Werror $examples/c/host.c $(pkg-config --cflags lightmotion) -o host-c
printf '#include <plugin/entry_points.h>\nint main(void) { return !terminate(); }\n' >linked.c
# shellcheck disable=SC2046
cc linked.c $(pkg-config --cflags --libs lightmotion) -o linked
as_user ./linked
install g++ cmake make python3
quietly cmake -S $examples/cpp -B host-cpp
quietly cmake --build host-cpp
for host in ./host-c host-cpp/host $examples/python/host.py; do
  as_user "$host" >"$(basename "$host").jsonl" 2>/tmp/log || { cat /tmp/log; fail "$host"; }
done
[ "$(wc -l <host-c.jsonl)" = 39 ] || fail "the square moves in 39 frames"
cmp host-c.jsonl host.jsonl
cmp host-c.jsonl host.py.jsonl

step "the Python module runs, with numpy and without it"
install /packages/python3-lightmotion_*.deb
cat >module.py <<'EOF'
import lightmotion

detector = lightmotion.Detector(width=160, height=120, format="grey")
for number in range(9):
    frame = bytearray([60]) * (160 * 120)
    for y in range(48, 72) if number > 0 else ():
        frame[160 * y + 5 * number:160 * y + 5 * number + 24] = bytes([200]) * 24
    boxes = detector(frame, 1 + 40 * number)
print(len(boxes))
EOF
[ "$(as_user python3 module.py)" = 1 ] || fail "one square moves"
install python3-numpy
python3 -c 'import lightmotion, numpy
frame = numpy.zeros((120, 160), numpy.uint8)
detector = lightmotion.Detector.for_frame(frame)
detector(frame)
assert detector.foreground().shape == (120, 160)'

step "GStreamer finds the element"
install /packages/gstreamer1.0-lightmotion_*.deb gstreamer1.0-tools gstreamer1.0-plugins-base
as_user gst-launch-1.0 -m videotestsrc pattern=ball num-buffers=60 ! lightmotion ! fakesink >/tmp/log
grep -q event-end /tmp/log || { cat /tmp/log; fail "the ball does not move"; }

step "the packages install once more over themselves"
quietly dpkg -i /packages/*.deb

step "the library does not go while somebody needs it; all go without a trace"
if dpkg --remove liblightmotion1 >/tmp/log 2>&1; then fail "the library went"; fi
# shellcheck disable=SC2086  # a list of words
quietly apt-get purge -y $packages
[ -z "$(dpkg --audit)" ] || fail "$(dpkg --audit)"
[ -z "$(ours)" ] || fail "left behind: $(ours)"
if ldconfig -p | grep -q lightmotion; then fail "the linker still knows the library"; fi
if as_user ./linked 2>/dev/null; then fail "a program still finds the library"; fi
echo "everything went well"
