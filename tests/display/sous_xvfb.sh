#!/usr/bin/env bash
# Runs a command with DISPLAY on an Xvfb server of its own, which it stops
# afterwards. The server picks a free display number itself (-displayfd),
# so that runs in parallel never meet.
set -u
dossier=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$dossier/num" 2>/dev/null &
serveur=$!
for _ in $(seq 1 200); do
  [ -s "$dossier/num" ] && break
  sleep 0.02
done
if [ ! -s "$dossier/num" ]; then
  echo "Xvfb n'a pas demarre" >&2
  kill "$serveur" 2>/dev/null
  rm -rf "$dossier"
  exit 1
fi
export DISPLAY=":$(head -n1 "$dossier/num")"
# The number comes a little before the server takes clients.
for _ in $(seq 1 250); do
  xdotool getmouselocation >/dev/null 2>&1 && break
  sleep 0.02
done
# The GL driver keeps what it allocated until the process ends with the
# window still open: not a leak of ours, so the checked build does not count
# leaks under this server (its other checks stay on).
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0"
"$@"
code=$?
kill "$serveur" 2>/dev/null
wait "$serveur" 2>/dev/null
rm -rf "$dossier"
exit $code
