#!/usr/bin/env bash
# The language against CPython 3, Lua 5.4 and numpy on the same programs, in
# one run: a scalar loop, recursion, and float vector arithmetic. Each
# program times itself, so start-up and compilation are left out; the best
# of five runs is kept. Prints the times and the ratios.
set -e
cd "$(dirname "$0")/.."
orvane=${ORVANE:-build/orvane}
python=${PYTHON:-/usr/bin/python3}
lua=${LUA:-lua5.4}
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# ---- orvane: the functions are read by name from .fon files ----------------
cat >"$tmp/fib.fon" <<'F'
fib(n)
{
  si (n < 2) retour n
  retour fib(n - 1) + fib(n - 2)
}
F
cat >"$tmp/boucle.ova" <<'F'
s = 0
t0 = num systeme
pour (i = 1, 3000000) s = s + i
t1 = num systeme
$ t1 - t0
F
cat >"$tmp/fib.ova" <<'F'
t0 = num systeme
r = fib(25)
t1 = num systeme
$ t1 - t0
F
cat >"$tmp/vecteur.ova" <<'F'
v = remplir(20000, 1)
t0 = num systeme
pour (k = 1, 5000) v = v * 1.0001 + 1
t1 = num systeme
$ t1 - t0
F

# ---- CPython -----------------------------------------------------------------
cat >"$tmp/boucle.py" <<'F'
import time
t0 = time.perf_counter()
s = 0
for i in range(1, 3000001): s = s + i
print(time.perf_counter() - t0)
F
cat >"$tmp/fib.py" <<'F'
import time
def fib(n):
    if n < 2: return n
    return fib(n - 1) + fib(n - 2)
t0 = time.perf_counter()
r = fib(25)
print(time.perf_counter() - t0)
F
cat >"$tmp/vecteur.py" <<'F'
import time, numpy as np
v = np.ones(20000, dtype=np.float32)
t0 = time.perf_counter()
for k in range(5000): v = v * np.float32(1.0001) + np.float32(1)
print(time.perf_counter() - t0)
F
cat >"$tmp/vecteur64.py" <<'F'
import time, numpy as np
v = np.ones(20000)
t0 = time.perf_counter()
for k in range(5000): v = v * 1.0001 + 1
print(time.perf_counter() - t0)
F

# ---- Lua: globals at the top level, as in the other two ----------------------
cat >"$tmp/boucle.lua" <<'F'
local t0 = os.clock()
s = 0
for i = 1, 3000000 do s = s + i end
print(os.clock() - t0)
F
cat >"$tmp/fib.lua" <<'F'
function fib(n)
  if n < 2 then return n end
  return fib(n - 1) + fib(n - 2)
end
local t0 = os.clock()
r = fib(25)
print(os.clock() - t0)
F

racine=$PWD
ln -s "$racine/env" "$tmp/env"
meilleur() {  # command...: the smallest of three self-timed runs
  local m=""
  for _ in 1 2 3 4 5; do
    local t
    t=$("$@" | tail -1 | tr -d ' ')
    m=$(awk -v a="$m" -v b="$t" 'BEGIN { print (a == "" || b < a) ? b : a }')
  done
  echo "$m"
}
# The prompt shares the line with the output: keep the last number.
ova_temps() { (cd "$tmp" && "$racine/$orvane" gra=0 ID ini=env/initb.h <"$1" |
  grep -oE '[0-9]+\.[0-9]+' | tail -1); }

printf "%-10s %10s %10s %10s %10s   %s\n" programme orvane "python/np32" lua numpy64 "ratios"
for p in boucle fib vecteur; do
  o=$(meilleur ova_temps "$tmp/$p.ova")
  py=$(meilleur "$python" "$tmp/$p.py")
  if [ "$p" = vecteur ]; then
    lu="-"
    n64=$(meilleur "$python" "$tmp/vecteur64.py")
    ratios=$(awk -v o="$o" -v n="$py" -v n64="$n64" 'BEGIN { printf "orvane/numpy32 %.2f (goal <= 1.5), orvane/numpy64 %.2f", o / n, o / n64 }')
  else
    lu=$(meilleur "$lua" "$tmp/$p.lua")
    n64="-"
    ratios=$(awk -v o="$o" -v p="$py" -v l="$lu" 'BEGIN { printf "orvane/python %.2f (goal <= 1), orvane/lua %.2f (goal <= 2)", o / p, o / l }')
  fi
  printf "%-10s %10s %10s %10s %10s   %s\n" "$p" "$o" "$py" "$lu" "$n64" "$ratios"
done
