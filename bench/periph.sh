#!/usr/bin/env bash
# Channels at speed: UDP packets read per second from a Python sender with
# no loss, and shared-memory round trips with a native reader.
set -e
cd "$(dirname "$0")/.."
build/bench/bench_periph bench/envoi_udp.py build/bench/mem_pair
