#!/usr/bin/env bash
# Installs what orvane needs to build and test on Debian: apt-get, through
# sudo when not root, and only for the packages that are missing.
set -e
paquets=(g++ cmake make libgtest-dev libmimalloc-dev libjpeg62-turbo-dev libpng-dev zlib1g-dev lua5.4 luajit valgrind python3 python3-numpy
         python3-pil imagemagick hyperfine
         freeglut3-dev libgl-dev libglu1-mesa-dev libx11-dev libreadline-dev libgl1-mesa-dri
         xvfb xauth xdotool libfftw3-dev python3-sklearn libfann-dev
         libasound2-dev liblo-dev liblo-tools socat pkg-config ffmpeg)
manque=()
for p in "${paquets[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || manque+=("$p")
done
[ ${#manque[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${manque[@]}" >/dev/null
