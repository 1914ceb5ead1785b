// The arena: one 4 GiB reservation handed to mimalloc as an exclusive arena,
// so that every address the system writes into a word fits in 32 bits.
#include <sys/mman.h>

#include <mimalloc.h>

#include "core/bloc.h"

namespace tas {
char* base = nullptr;
namespace {
mi_heap_t* tas_heap = nullptr;
constexpr std::size_t TAILLE = std::size_t{1} << 32;
constexpr std::size_t ALIGNE = std::size_t{64} << 20;
}  // namespace

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
  mi_arena_id_t id;
  if (!mi_manage_os_memory_ex(base + ALIGNE, TAILLE - ALIGNE, true, false, true, -1, true, &id))
    return false;
  tas_heap = mi_heap_new_in_arena(id);
  return tas_heap != nullptr;
}

void* alloue(std::size_t octets) {
  if (!tas_heap && !init()) return nullptr;
  return mi_heap_malloc(tas_heap, octets);
}

void libere(void* p) { mi_free(p); }
}  // namespace tas
