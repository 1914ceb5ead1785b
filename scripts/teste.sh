#!/usr/bin/env bash
# Installs, builds and runs every test: unit tests and transcripts, on the
# release build, then again on the checked build (scripts/verifie.sh).
set -e
racine="$(cd "$(dirname "$0")/.." && pwd)"
bash "$racine/scripts/installe.sh"
bash "$racine/scripts/construit.sh"
(cd "$racine/build" && ctest --output-on-failure --timeout 600 -j2 "$@")
bash "$racine/scripts/verifie.sh" "$@"
