#!/usr/bin/env bash
# Writes the entry points of the window and sound libraries that the program
# loads only when it first needs them (core/charge.cpp):
#   tardif.sh OUT.cpp ARCHIVE... -- GROUPE:LIB.so...
# Every function that the archives call and that one of the shared libraries
# defines gets a hidden two-instruction stub `jmp *slot`, its slot first
# pointing at a resolver that loads the library's group and fills the slots.
# The table is made from the archives at each build, so a new call into GL,
# X11 or ALSA needs nothing by hand. Data symbols cannot go through a stub:
# the script refuses them.
set -euo pipefail
sortie="$1"; shift
archives=()
while [ "$#" -gt 0 ] && [ "$1" != "--" ]; do archives+=("$1"); shift; done
shift
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT

nm -u "${archives[@]}" 2>/dev/null | awk 'NF==2 {print $2}' | sort -u >"$tmp/und"
nm --defined-only "${archives[@]}" 2>/dev/null | awk 'NF==3 {print $3}' | sort -u >"$tmp/def"
comm -23 "$tmp/und" "$tmp/def" >"$tmp/besoin"

bibs=(); groupes=()
: >"$tmp/dyn"
i=0
for gb in "$@"; do
  g="${gb%%:*}"; so="${gb#*:}"
  soname=$(readelf -d "$so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
  [ -n "$soname" ] || soname=$(basename "$so")
  bibs+=("$soname"); groupes+=("$g")
  # The first library that defines a name keeps it.
  nm -D --defined-only "$so" | awk -v i="$i" '{n=$3; sub(/@.*/, "", n); print n, $2, i}' >>"$tmp/dyn"
  i=$((i + 1))
done
sort -k1,1 -s "$tmp/dyn" | awk '!vu[$1]++' >"$tmp/dyn_u"
join "$tmp/besoin" "$tmp/dyn_u" >"$tmp/pris"
if awk '$2 != "T" && $2 != "W" && $2 != "i" {print; e=1} END {exit !e}' "$tmp/pris"; then
  echo "tardif.sh: data symbols cannot be loaded late (above)" >&2
  exit 1
fi

n=$(wc -l <"$tmp/pris")
{
  echo "// Written by scripts/tardif.sh at build time: do not edit."
  echo "#include <cstdint>"
  echo "extern \"C\" {"
  echo "extern const std::uint32_t orvane_tardif_nb = $n;"
  echo "extern const std::uint32_t orvane_tardif_nb_bib = ${#bibs[@]};"
  printf 'extern const char* const orvane_tardif_bibs[] = {'
  for b in "${bibs[@]}"; do printf '"%s", ' "$b"; done
  echo "};"
  printf 'extern const std::uint8_t orvane_tardif_groupe[] = {'
  for g in "${groupes[@]}"; do printf '%s, ' "$g"; done
  echo "};"
  echo "extern const char* const orvane_tardif_noms[] = {"
  awk '{printf "  \"%s\",\n", $1}' "$tmp/pris"
  echo "};"
  echo "extern const std::uint8_t orvane_tardif_bib[] = {"
  awk '{printf "%s,", $3} NR % 32 == 0 {print ""} END {print ""}' "$tmp/pris"
  echo "};"
  echo "}"
  echo 'asm(R"(
  .pushsection .data.orvane_tardif,"aw"
  .p2align 3
  .globl orvane_tardif_fentes
  .hidden orvane_tardif_fentes
orvane_tardif_fentes:'
  awk '{printf "  .quad orvane_tardif_r%d\n", NR - 1}' "$tmp/pris"
  echo '  .popsection
  .pushsection .text
  .p2align 4'
  awk '{printf "  .globl %s\n  .hidden %s\n  .type %s, @function\n%s:\n  jmp *orvane_tardif_fentes+%d(%%rip)\n", $1, $1, $1, $1, 8 * (NR - 1)}' "$tmp/pris"
  # Each resolver stub passes its number in r11, which no call uses for
  # arguments (rax carries the vector count of a variadic call).
  awk '{printf "orvane_tardif_r%d:\n  movl $%d, %%r11d\n  jmp orvane_tardif_commun\n", NR - 1, NR - 1}' "$tmp/pris"
  echo 'orvane_tardif_commun:
  pushq %rbp
  movq %rsp, %rbp
  andq $-16, %rsp
  subq $208, %rsp
  movq %rdi, 0(%rsp)
  movq %rsi, 8(%rsp)
  movq %rdx, 16(%rsp)
  movq %rcx, 24(%rsp)
  movq %r8, 32(%rsp)
  movq %r9, 40(%rsp)
  movq %rax, 48(%rsp)
  movq %r10, 56(%rsp)
  movdqu %xmm0, 64(%rsp)
  movdqu %xmm1, 80(%rsp)
  movdqu %xmm2, 96(%rsp)
  movdqu %xmm3, 112(%rsp)
  movdqu %xmm4, 128(%rsp)
  movdqu %xmm5, 144(%rsp)
  movdqu %xmm6, 160(%rsp)
  movdqu %xmm7, 176(%rsp)
  movl %r11d, %edi
  call orvane_tardif_resout
  movq %rax, %r11
  movq 0(%rsp), %rdi
  movq 8(%rsp), %rsi
  movq 16(%rsp), %rdx
  movq 24(%rsp), %rcx
  movq 32(%rsp), %r8
  movq 40(%rsp), %r9
  movq 48(%rsp), %rax
  movq 56(%rsp), %r10
  movdqu 64(%rsp), %xmm0
  movdqu 80(%rsp), %xmm1
  movdqu 96(%rsp), %xmm2
  movdqu 112(%rsp), %xmm3
  movdqu 128(%rsp), %xmm4
  movdqu 144(%rsp), %xmm5
  movdqu 160(%rsp), %xmm6
  movdqu 176(%rsp), %xmm7
  movq %rbp, %rsp
  popq %rbp
  jmp *%r11
  .popsection
)");'
} >"$sortie.tmp"
# Same contents: the file keeps its date and orvane is not relinked for nothing.
if cmp -s "$sortie.tmp" "$sortie"; then rm "$sortie.tmp"; else mv "$sortie.tmp" "$sortie"; fi
