# shellcheck shell=bash
# A private virtual desktop to show the creature on: an X server, a session bus, a window manager, a compositor and a
# wallpaper, with folders of its own for preferences and data, so that nothing of the user's is read or changed.
# To be sourced. One shell serves one desktop:
#
#   desktop_start RATIO [bare]     bare leaves the compositor out
#   program_start [FLAGS...]       starts the creature afresh, with empty preferences, and waits until it is up
#   shot FILE [GEOMETRY]           what the screen shows now; the strip around the notch unless told otherwise
#   program_stop, desktop_stop     the latter also runs when the shell exits
#
# Positions and sizes are points of the screen, from its top left corner.

DESKTOP_WIDTH=1512
DESKTOP_HEIGHT=982
CENTER=$((DESKTOP_WIDTH / 2))
STRIP_WIDTH=${STRIP_WIDTH:-480}
STRIP_HEIGHT=${STRIP_HEIGHT:-260}

GLIMMET_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
GLIMMET_PROGRAM=${GLIMMET_BUILD:-$GLIMMET_ROOT/build}/glimmet

DESKTOP_DIR=
DESKTOP_PIDS=()
PROGRAM_PID=
PROGRAM_LOG=

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# until_true SECONDS COMMAND...: waits until the command succeeds; fails when the time is over.
until_true() {
  local deadline=$((${EPOCHREALTIME/./} + $1 * 1000000))
  shift
  until "$@"; do
    [ "${EPOCHREALTIME/./}" -lt "$deadline" ] || return 1
    sleep 0.05
  done
}

px() { awk -v points="$1" -v ratio="$RATIO" 'BEGIN { printf "%d", points * ratio + 0.5 }'; }

desktop_start() {
  RATIO=${1:-1}
  DESKTOP_DIR=$(mktemp -d "${TMPDIR:-/tmp}/glimmet-desktop.XXXXXX")
  trap desktop_stop EXIT
  trap 'exit 130' INT TERM
  mkdir -m 700 "$DESKTOP_DIR/runtime"
  export XDG_RUNTIME_DIR=$DESKTOP_DIR/runtime
  use_fresh_home
  start_x_server
  start_session_bus
  start_window_manager
  draw_wallpaper
  [ "${2:-}" = bare ] || start_compositor
  pointer $((DESKTOP_WIDTH - 60)) $((DESKTOP_HEIGHT - 60))
}

desktop_stop() {
  trap - EXIT
  program_stop
  local pid
  for pid in $(printf '%s\n' "${DESKTOP_PIDS[@]}" | tac); do
    end_process "$pid"
  done
  DESKTOP_PIDS=()
  [ -z "$DESKTOP_DIR" ] || rm -rf "$DESKTOP_DIR"
  DESKTOP_DIR=
}

# Asks a process to end, and after two seconds no longer asks.
end_process() {
  kill "$1" 2>/dev/null || return 0
  until_true 2 process_gone "$1" || kill -KILL "$1" 2>/dev/null || true
  wait "$1" 2>/dev/null || true
}

process_gone() {
  local state
  state=$(awk '/^State:/ { print $2 }' "/proc/$1/status" 2>/dev/null) || return 0
  [ -z "$state" ] || [ "$state" = Z ]
}

use_fresh_home() {
  local home=$DESKTOP_DIR/home
  rm -rf "$home"
  mkdir -p "$home"/{config,data,cache,Downloads}
  export XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache
  echo "XDG_DOWNLOAD_DIR=\"$home/Downloads\"" >"$home/config/user-dirs.dirs"
}

start_x_server() {
  local number channel=$DESKTOP_DIR/display
  [ -d /tmp/.X11-unix ] || mkdir -m 1777 /tmp/.X11-unix
  mkfifo "$channel"
  exec {display_fd}<>"$channel"
  Xvfb -displayfd "$display_fd" -screen 0 "$(px $DESKTOP_WIDTH)x$(px $DESKTOP_HEIGHT)x24" -dpi 96 -nolisten tcp -noreset \
    >"$DESKTOP_DIR/xvfb.log" 2>&1 &
  DESKTOP_PIDS+=($!)
  read -r -t 30 -u "$display_fd" number || fail "no X server came up: $(cat "$DESKTOP_DIR/xvfb.log")"
  exec {display_fd}<&-
  export DISPLAY=:$number
  unset WAYLAND_DISPLAY XAUTHORITY
}

start_session_bus() {
  local channel=$DESKTOP_DIR/bus-address
  mkfifo "$channel"
  exec {bus_fd}<>"$channel"
  dbus-daemon --session --nofork --nopidfile --address="unix:path=$XDG_RUNTIME_DIR/bus" --print-address="$bus_fd" \
    >"$DESKTOP_DIR/bus.log" 2>&1 &
  DESKTOP_PIDS+=($!)
  read -r -t 30 -u "$bus_fd" DBUS_SESSION_BUS_ADDRESS || fail "no session bus came up: $(cat "$DESKTOP_DIR/bus.log")"
  exec {bus_fd}<&-
  export DBUS_SESSION_BUS_ADDRESS
}

start_window_manager() {
  openbox --sm-disable >"$DESKTOP_DIR/openbox.log" 2>&1 &
  DESKTOP_PIDS+=($!)
  until_true 30 window_manager_runs || fail "no window manager came up: $(cat "$DESKTOP_DIR/openbox.log")"
}

window_manager_runs() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }

# The daemon's parent returns once the compositor owns its selection and has redirected the screen. From version 10 on it loses
# what changed in every other frame, on a server without a screen.
start_compositor() {
  local whole=
  [[ $(picom --version) == v[1-9].* ]] || whole=--no-use-damage
  picom --backend xrender $whole --config /dev/null --daemon --write-pid-path "$DESKTOP_DIR/picom.pid" \
    --log-file "$DESKTOP_DIR/picom.log" >/dev/null 2>&1 || fail "no compositor came up: $(cat "$DESKTOP_DIR/picom.log")"
  DESKTOP_PIDS+=("$(cat "$DESKTOP_DIR/picom.pid")")
}

# A sky at dusk, painted small and stretched smoothly. Light enough everywhere to tell the notch from it.
draw_wallpaper() {
  local picture=$DESKTOP_DIR/wallpaper.png
  convert -size 189x123 gradient:'#7f9fd6-#f3c9a8' \
    \( -size 189x123 radial-gradient:'#ffe9d2'-none -distort SRT '94,61 1.3,0.7 0 150,95' \) -composite \
    \( -size 189x123 radial-gradient:'#b48fd0'-none -distort SRT '94,61 1.2,0.6 0 25,70' \) -composite \
    -blur 0x6 "PNG24:$picture"
  hsetroot -fill "$picture" >/dev/null
}

# program_start [FLAGS...]: the creature with preferences that nobody has written yet.
program_start() {
  program_stop
  use_fresh_home
  program_restart "$@"
}

# The same, but with what an earlier run has left in its preferences.
program_restart() {
  [ -x "$GLIMMET_PROGRAM" ] || fail "there is no $GLIMMET_PROGRAM yet; scripts/build makes it"
  PROGRAM_LOG=$DESKTOP_DIR/program.log
  : >"$PROGRAM_LOG"
  QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR=$RATIO QT_ENABLE_HIGHDPI_SCALING=1 "$GLIMMET_PROGRAM" "$@" 2>"$PROGRAM_LOG" &
  PROGRAM_PID=$!
  until_true 30 program_told || fail "the creature did not come up: $(cat "$PROGRAM_LOG")"
  program_runs || fail "the creature ended at once: $(cat "$PROGRAM_LOG")"
}

program_runs() { [ -n "$PROGRAM_PID" ] && ! process_gone "$PROGRAM_PID"; }

# Has it said that it is up, or ended?
program_told() { grep -q '^glimmet: notch=' "$PROGRAM_LOG" || ! program_runs; }

program_stop() {
  [ -z "$PROGRAM_PID" ] || end_process "$PROGRAM_PID"
  PROGRAM_PID=
}

# pointer X Y: puts the real pointer there at once. The last pixel is a real motion, as a mouse makes it: a pointer that is
# only put somewhere sends no event that others see.
pointer() { xdotool mousemove $(($(px "$1") - 1)) "$(px "$2")" mousemove_relative 1 0; }

# pointer_glide X0 Y0 X1 Y1 SECONDS [RATE]: moves it there like a hand, in 60 steps a second or as many as told.
pointer_glide() {
  awk -v ratio="$RATIO" -v x0="$1" -v y0="$2" -v x1="$3" -v y1="$4" -v seconds="$5" -v rate="${6:-60}" 'BEGIN {
    steps = int(seconds * rate + 1)
    for (i = 1; i <= steps; i++) {
      u = i / steps; u = u * u * (3 - 2 * u)
      printf "mousemove %d %d\nmousemove_relative 1 0\nsleep %f\n",
        (x0 + (x1 - x0) * u) * ratio - 1, (y0 + (y1 - y0) * u) * ratio, 1 / rate
    }
  }' | xdotool -
}

# WIDTH HEIGHT of the strip around the notch, as the screen's pixels.
strip() {
  printf '%dx%d+%d+0' "$(px "$STRIP_WIDTH")" "$(px "$STRIP_HEIGHT")" "$(px $((CENTER - STRIP_WIDTH / 2)))"
}

shot() { import -silent -window root -crop "${2:-$(strip)}" +repage "PNG24:$1"; }

# How much two pictures differ: the part of their pixels, of a hundred, that changed visibly.
difference() {
  local changed
  changed=$(compare -metric AE -fuzz 12% "$1" "$2" null: 2>&1) || true
  awk -v changed="$changed" -v pixels="$(identify -format '%[fx:w*h]' "$1")" 'BEGIN { print 100 * changed / pixels }'
}

# differs A B PERCENT
differs() { awk -v d="$(difference "$1" "$2")" -v least="$3" 'BEGIN { exit !(d > least) }'; }

# rest FILE: waits until two looks, a quarter of a second apart, show the same, and keeps the second: longer than a blink lasts,
# and the breathing is far below what counts as a difference. What never rests (a drifting z, a munching mouth) is taken as it
# is after four seconds.
rest() {
  local before=$DESKTOP_DIR/before.png deadline=$((SECONDS + 4))
  shot "$1"
  while [ $SECONDS -lt $deadline ]; do
    mv "$1" "$before"
    sleep 0.25
    shot "$1"
    differs "$before" "$1" 0.05 || return 0
  done
}

wait_for_rest() { rest "$DESKTOP_DIR/rest.png"; }

# use_hour HOUR: lets the creature believe that it is this hour of the day.
use_hour() {
  export TZ
  TZ=SET$((10#$(date -u +%H) - $1))
}

# take OUT [--pointer=X,Y] [--after=SECONDS] [--hour=N] [FLAGS...]: starts the creature with the flags and takes its picture
# when it has come to rest, or so many seconds after its start.
take() {
  local out=$1 parked=$((DESKTOP_WIDTH - 60)),$((DESKTOP_HEIGHT - 60)) after="" argument flags=()
  shift
  for argument in "$@"; do
    case $argument in
      --pointer=*) parked=${argument#*=} ;;
      --after=*) after=${argument#*=} ;;
      --hour=*) use_hour "${argument#*=}" ;;
      *) flags+=("$argument") ;;
    esac
  done
  pointer $((DESKTOP_WIDTH - 90)) $((DESKTOP_HEIGHT - 60))
  program_start "${flags[@]}"
  pointer "${parked%,*}" "${parked#*,}"
  if [ -n "$after" ]; then
    sleep "$after"
    shot "$out"
  else
    rest "$out"
  fi
  program_runs || fail "the creature has ended: $(cat "$PROGRAM_LOG")"
}
