// The arena: one 4 GiB reservation handed to mimalloc as an arena with a
// heap of its own, so that every address the system writes into a word fits
// in 32 bits. In the release build the ordinary heap draws from it too
// (start-up below); no word ever holds one of its addresses.
//
// In the checked build (AddressSanitizer) the sanitizer sees the arena as one
// mapping and would let any access inside it pass. There, each allocation is
//   [front guard: GARDE bytes, its first words hold the size and a state]
//   [the bytes asked for]
//   [back guard: GARDE bytes]
// with both guards poisoned, and a release poisons the bytes and holds the
// allocation in a quarantine (first in, first out, bounded in bytes and in
// count) before mimalloc may hand it out again. An overrun, a read before the
// start or a use after release is then reported by the sanitizer at the
// faulty access. The release build keeps the plain calls.
#include <sys/mman.h>

#include <mimalloc.h>

#include "core/bloc.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>

#include <cstdio>
#include <cstdlib>
#endif

namespace tas {
char* base = nullptr;
namespace {
mi_heap_t* tas_heap = nullptr;
constexpr std::size_t TAILLE = std::size_t{1} << 32;
constexpr std::size_t ALIGNE = std::size_t{64} << 20;

#if defined(__SANITIZE_ADDRESS__)
// 32 bytes each side keeps the user bytes on mimalloc's 16-byte alignment.
constexpr std::size_t GARDE = 32;
constexpr std::uint64_t VIVANT = 0x7a5f'0b10'c0de'0001, QUARANTAINE = 0x7a5f'0b10'c0de'0002;
// Held releases: at most this many bytes and this many allocations.
constexpr std::size_t QUAR_OCTETS = std::size_t{256} << 20;
constexpr std::size_t QUAR_NB = 1 << 16;

struct Entete {
  std::uint64_t taille;  // bytes asked for
  std::uint64_t etat;    // VIVANT or QUARANTAINE
};
static_assert(sizeof(Entete) <= GARDE);

struct Quarantaine {
  char* t[QUAR_NB];  // starts of the held allocations (front guards)
  std::size_t debut = 0, nb = 0, octets = 0;
};
Quarantaine quar;

Entete lit_entete(char* r) {
  Entete e;
  ASAN_UNPOISON_MEMORY_REGION(r, sizeof e);
  std::memcpy(&e, r, sizeof e);
  ASAN_POISON_MEMORY_REGION(r, sizeof e);
  return e;
}

void ecrit_entete(char* r, Entete e) {
  ASAN_UNPOISON_MEMORY_REGION(r, sizeof e);
  std::memcpy(r, &e, sizeof e);
  ASAN_POISON_MEMORY_REGION(r, sizeof e);
}

[[noreturn]] void mauvaise_liberation(const void* p, const char* quoi) {
  std::fprintf(stderr, "tas: %s of %p\n", quoi, p);
  __sanitizer_print_stack_trace();
  std::abort();
}

void relache_plus_ancien() {
  char* r = quar.t[quar.debut];
  quar.debut = (quar.debut + 1) % QUAR_NB;
  --quar.nb;
  std::size_t total = lit_entete(r).taille + 2 * GARDE;
  quar.octets -= total;
  ASAN_UNPOISON_MEMORY_REGION(r, total);
  mi_free(r);
}
#endif

// Start-up is mostly first touches of fresh pages, and on a virtual machine
// each costs tens of microseconds. So the ordinary heap (strings, vectors)
// shares the arena instead of taking its own memory from the system: both
// start in the same few MiB, whose first 4 are taken as 2 MiB pages where
// the kernel allows it (transparent huge pages on request), and a handful
// of faults maps what a few hundred would. Not more: past 4 MiB start-up
// touches a page here and there (the stacks' first words), and a 2 MiB
// page costs as much as a dozen faults. The arena must exist before the
// ordinary heap takes its first memory, hence the earliest constructor.
#if !defined(__SANITIZE_ADDRESS__)
constexpr std::size_t DEBUT_GRAND = std::size_t{4} << 20;
__attribute__((constructor(101))) void arene_tot() { init(); }
#endif
}  // namespace

// The checked build keeps the arena to the system's blocks: there the
// sanitizer owns the ordinary heap.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool EXCLUSIF = true;
#else
constexpr bool EXCLUSIF = false;
#endif
bool init() {
  if (tas_heap) return true;
  // Reserve one alignment more, so that the base can sit on 64 MiB.
  void* r = mmap(nullptr, TAILLE + ALIGNE, PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (r == MAP_FAILED) return false;
  auto a = reinterpret_cast<std::uintptr_t>(r);
  base = reinterpret_cast<char*>((a + ALIGNE - 1) & ~(ALIGNE - 1));
  // The first 64 MiB stay out of the allocator, so offset 0 is never handed
  // out and means null; the rest stays aligned as mimalloc requires.
#if !defined(__SANITIZE_ADDRESS__)
  madvise(base + ALIGNE, DEBUT_GRAND, MADV_HUGEPAGE);
#endif
  mi_arena_id_t id;
  if (!mi_manage_os_memory_ex(base + ALIGNE, TAILLE - ALIGNE, true, false, true, -1, EXCLUSIF, &id))
    return false;
  tas_heap = mi_heap_new_in_arena(id);
  return tas_heap != nullptr;
}

#if defined(__SANITIZE_ADDRESS__)
void* alloue(std::size_t octets) {
  if (!tas_heap && !init()) return nullptr;
  if (octets > TAILLE) return nullptr;
  std::size_t total = octets + 2 * GARDE;
  auto* r = static_cast<char*>(mi_heap_malloc(tas_heap, total));
  if (!r) return nullptr;
  ASAN_UNPOISON_MEMORY_REGION(r, total);
  ASAN_POISON_MEMORY_REGION(r, GARDE);
  ASAN_POISON_MEMORY_REGION(r + GARDE + octets, GARDE);
  ecrit_entete(r, {octets, VIVANT});
  return r + GARDE;
}

void libere(void* p) {
  if (!p) return;
  char* r = static_cast<char*>(p) - GARDE;
  if (r < base + ALIGNE || r >= base + TAILLE) mauvaise_liberation(p, "release outside the arena");
  Entete e = lit_entete(r);
  if (e.etat == QUARANTAINE) mauvaise_liberation(p, "second release");
  if (e.etat != VIVANT) mauvaise_liberation(p, "release of an address never allocated");
  e.etat = QUARANTAINE;
  ecrit_entete(r, e);
  std::size_t total = e.taille + 2 * GARDE;
  ASAN_POISON_MEMORY_REGION(r, total);
  while (quar.nb > 0 && (quar.nb == QUAR_NB || quar.octets + total > QUAR_OCTETS)) relache_plus_ancien();
  quar.t[(quar.debut + quar.nb) % QUAR_NB] = r;
  ++quar.nb;
  quar.octets += total;
}
std::size_t capacite(const void* p) {
  return lit_entete(static_cast<char*>(const_cast<void*>(p)) - GARDE).taille;
}
#else
void* alloue(std::size_t octets) {
  if (!tas_heap && !init()) return nullptr;
  return mi_heap_malloc(tas_heap, octets);
}

void libere(void* p) { mi_free(p); }

std::size_t capacite(const void* p) { return mi_usable_size(p); }
#endif

#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23  // Linux 5.14; older kernels refuse it, harmlessly
#endif
void prefaute(void* p) {
  std::size_t cap = capacite(p);
  if (cap < (std::size_t{8} << 10)) return;
  auto deb = (reinterpret_cast<std::uintptr_t>(p) + 4095) & ~std::uintptr_t{4095};
  auto fin = (reinterpret_cast<std::uintptr_t>(p) + cap) & ~std::uintptr_t{4095};
  if (fin > deb) madvise(reinterpret_cast<void*>(deb), fin - deb, MADV_POPULATE_WRITE);
}
}  // namespace tas
