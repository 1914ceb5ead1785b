#!/usr/bin/env bash
# The language against CPython 3 (inside a function), Lua 5.4 (with locals,
# and with globals for the scalar loop), LuaJIT's interpreter with the JIT
# off, and numpy float32 for the vector arithmetic, on the same programs in
# one run. Each program times itself, so start-up and compilation are left
# out; the median of five runs is kept. Then callgrind's instructions per
# iteration of the scalar loop, fib, the elements and the sin loop (they do
# not depend on the machine's load), and the start-up time to the end of
# empty input.
# CALLGRIND=0 skips the instruction counts.
set -e
cd "$(dirname "$0")/.."
orvane=$(realpath "${ORVANE:-build/orvane}")  # the programs run from a temporary folder
python=${PYTHON:-/usr/bin/python3}
lua=${LUA:-lua5.4}
luajit=${LUAJIT:-luajit}
command -v "$luajit" >/dev/null || luajit=""
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# ---- orvane: each program is a text with the counts as N, M ------------------
# The functions are read by name from .fon files.
cat >"$tmp/fib.fon" <<'F'
fib(n)
{
  si (n < 2) retour n
  retour fib(n - 1) + fib(n - 2)
}
F
ova_boucle='s = 0
t0 = num systeme
pour (i = 1, N) s = s + i
t1 = num systeme
$ t1 - t0'
ova_fib='t0 = num systeme
r = fib(N)
t1 = num systeme
$ t1 - t0'
ova_elements='x = vecteur(1000)
t0 = num systeme
pour (j = 1, N) pour (i = 0, 999) x[i] = x[i] + 1
t1 = num systeme
$ t1 - t0'
ova_chaines='s = "a"
t0 = num systeme
pour (i = 1, N) s = s, "b"
t1 = num systeme
$ t1 - t0'
ova_sinus='s = 0
t0 = num systeme
pour (i = 1, N) s = s + sin(i)
t1 = num systeme
$ t1 - t0'
ova_vecteur='v = remplir(20000, 1)
t0 = num systeme
pour (k = 1, N) v = v * 1.0001 + 1
t1 = num systeme
$ t1 - t0'

# ---- CPython, inside a function ------------------------------------------------
py_boucle='def f(n):
    s = 0
    for i in range(1, n + 1): s = s + i
    return s'
py_fib='def fib(n):
    if n < 2: return n
    return fib(n - 1) + fib(n - 2)
def f(n): return fib(n)'
py_elements='def f(n):
    x = [0.0] * 1000
    for j in range(n):
        for i in range(1000): x[i] = x[i] + 1
    return x'
py_chaines='def f(n):
    s = "a"
    for i in range(n): s = s + "b"
    return s'
py_sinus='import math
def f(n):
    s = 0.0
    for i in range(1, n + 1): s = s + math.sin(i)
    return s'
py_vecteur='import numpy as np
def f(n):
    v = np.ones(20000, dtype=np.float32)
    a, b = np.float32(1.0001), np.float32(1)
    for k in range(n): v = v * a + b
    return v'

# ---- Lua: locals, the scalar loop also with a global ---------------------------
lua_boucle='local s = 0
for i = 1, N do s = s + i end'
lua_boucle_g='s = 0
for i = 1, N do s = s + i end'
lua_fib='local function fib(n)
  if n < 2 then return n end
  return fib(n - 1) + fib(n - 2)
end
local r = fib(N)'
lua_elements='local x = {}
for i = 0, 999 do x[i] = 0 end
for j = 1, N do for i = 0, 999 do x[i] = x[i] + 1 end end'
lua_chaines='local s = "a"
for i = 1, N do s = s .. "b" end'
lua_sinus='local s, sin = 0, math.sin
for i = 1, N do s = s + sin(i) end'

# The counts of each program: timed runs, then two smaller ones for callgrind.
declare -A n=([boucle]=3000000 [fib]=25 [elements]=1000 [chaines]=100000 [sinus]=1000000 [vecteur]=5000)
declare -A cg1=([boucle]=100000 [fib]=15 [elements]=20 [sinus]=100000)
declare -A cg2=([boucle]=200000 [fib]=16 [elements]=40 [sinus]=200000)

racine=$PWD
ln -s "$racine/env" "$tmp/env"
ecrit_ova() {  # program count file
  local t="ova_$1"
  printf '%s\n' "${!t//N/$2}" >"$3"
}
ecrit_py() {
  local t="py_$1"
  printf '%s\nimport time\nt0 = time.perf_counter()\nf(%s)\nprint(f\"{time.perf_counter() - t0:.6f}\")\n' "${!t}" "$2" >"$3"
}
ecrit_lua() {  # program count file
  local t="lua_$1"
  { echo 'local t0 = os.clock()'; printf '%s\n' "${!t//N/$2}"; echo 'print(os.clock() - t0)'; } >"$3"
}
median() {  # command...: the median of five self-timed runs
  local ts=()
  for _ in 1 2 3 4 5; do ts+=("$("$@" | tail -1 | tr -d ' ')"); done
  printf '%s\n' "${ts[@]}" | sort -g | sed -n 3p
}
# The prompt shares the line with the output: keep the last number.
ova_temps() { (cd "$tmp" && "$orvane" gra=0 ID ini=env/initb.h <"$1" |
  grep -oE '[0-9]+\.[0-9]+' | tail -1); }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b == "-" || b == "" || b + 0 == 0) print "-"; else printf "%.2f", a / b }'; }

printf "%-9s %9s %9s %9s %9s %9s   %s\n" programme orvane python lua lua_glob "luajit-j" \
  "orvane/lua orvane/python orvane/luajit (goals: <= 1.0, <= 0.5)"
for p in boucle fib elements chaines sinus vecteur; do
  ecrit_ova $p "${n[$p]}" "$tmp/$p.ova"
  ecrit_py $p "${n[$p]}" "$tmp/$p.py"
  o=$(median ova_temps "$tmp/$p.ova")
  py=$(median "$python" "$tmp/$p.py")
  lu=- lg=- lj=-
  if [ "$p" != vecteur ]; then
    ecrit_lua $p "${n[$p]}" "$tmp/$p.lua"
    lu=$(median "$lua" "$tmp/$p.lua")
    [ -n "$luajit" ] && lj=$(median "$luajit" -joff "$tmp/$p.lua")
  fi
  if [ "$p" = boucle ]; then
    ecrit_lua boucle_g "${n[$p]}" "$tmp/boucle_g.lua"
    lg=$(median "$lua" "$tmp/boucle_g.lua")
  fi
  if [ "$p" = vecteur ]; then
    r="orvane/numpy32 $(ratio "$o" "$py") (goal <= 1.0)"
  else
    r="$(ratio "$o" "$lu")      $(ratio "$o" "$py")         $(ratio "$o" "$lj")"
    [ "$p" = boucle ] && r="$r   (orvane/lua global $(ratio "$o" "$lg"))"
  fi
  printf "%-9s %9s %9s %9s %9s %9s   %s\n" "$p" "$o" "$py" "$lu" "$lg" "$lj" "$r"
done

# ---- callgrind: instructions per iteration, from two counts ---------------------
ir() {  # file.ova: the instructions of a whole run
  (cd "$tmp" && valgrind --tool=callgrind --callgrind-out-file="$tmp/cg.out" \
    "$orvane" gra=0 ID ini=env/initb.h <"$1" >/dev/null 2>"$tmp/cg.err")
  grep -oE 'Collected : [0-9]+' "$tmp/cg.err" | grep -oE '[0-9]+'
}
ir_lua() {
  valgrind --tool=callgrind --callgrind-out-file="$tmp/cg.out" "$lua" "$1" >/dev/null 2>"$tmp/cg.err"
  grep -oE 'Collected : [0-9]+' "$tmp/cg.err" | grep -oE '[0-9]+'
}
# fib's iteration is one call: fib(16) makes fib(15)'s calls and 1,597 more.
iterations() {  # program a b: the iterations between counts a and b
  case $1 in
    fib) awk -v a="$2" -v b="$3" 'BEGIN { x = 1; y = 1; for (k = 2; k <= b; ++k) { z = x + y + 1; if (k == a) ca = z; x = y; y = z } print y - ca }' ;;
    elements) echo $((($3 - $2) * 1000)) ;;
    *) echo $(($3 - $2)) ;;
  esac
}
if [ "${CALLGRIND:-1}" != 0 ] && command -v valgrind >/dev/null; then
  printf "\n%-9s %12s %12s   %s\n" programme "orvane Ir/it" "lua Ir/it" ratio
  for p in boucle fib elements sinus; do
    ecrit_ova $p "${cg1[$p]}" "$tmp/a.ova"
    ecrit_ova $p "${cg2[$p]}" "$tmp/b.ova"
    ecrit_lua $p "${cg1[$p]}" "$tmp/a.lua"
    ecrit_lua $p "${cg2[$p]}" "$tmp/b.lua"
    k=$(iterations $p "${cg1[$p]}" "${cg2[$p]}")
    o=$(( ($(ir "$tmp/b.ova") - $(ir "$tmp/a.ova")) / k ))
    l=$(( ($(ir_lua "$tmp/b.lua") - $(ir_lua "$tmp/a.lua")) / k ))
    printf "%-9s %12s %12s   %s\n" $p $o $l "$(ratio $o $l)"
  done
fi

# ---- start-up: the end of empty input, median of 40 runs ------------------------
"$python" - "$orvane" "$lua" <<'F'
import statistics, subprocess, sys, time
def med(args):
    ts = []
    for _ in range(40):
        t = time.perf_counter()
        subprocess.run(args, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
        ts.append((time.perf_counter() - t) * 1000)
    return statistics.median(ts)
o = med([sys.argv[1], "gra=0", "ID", "ini=env/initb.h"])
l = med([sys.argv[2], "-e", ""])
print(f"\nstart-up, median: orvane {o:.2f} ms, lua5.4 -e '' {l:.2f} ms (goal: orvane < 5 ms)")
F
