#!/usr/bin/env bash
# Installs, builds, puts the environment in /usr/orvane and starts orvane on
# it; the current directory does not matter.
set -e
racine="$(cd "$(dirname "$0")/.." && pwd)"
bash "$racine/scripts/installe.sh"
bash "$racine/scripts/construit.sh"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo cmake --install "$racine/build" >/dev/null
# With no display the window opens on a virtual one, so every command works
# and pictures can still be saved as files.
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
  echo "Pas d'ecran (DISPLAY vide): la fenetre s'ouvre sous Xvfb"
  exec xvfb-run -a -s "-screen 0 1280x1024x24" orvane ini=/usr/orvane/initb.h "$@"
fi
exec orvane ini=/usr/orvane/initb.h "$@"
