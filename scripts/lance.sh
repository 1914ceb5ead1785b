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
exec orvane ini=/usr/orvane/initb.h "$@"
