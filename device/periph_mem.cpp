// Shared-memory channels: a POSIX shared object of 1024 bytes mapped for
// writing. Words 0 to 99 are `sortie`, written here; words 100 to 255 are
// `entree`, written by the other process. Each area carries one Bloc whose
// word 0 is the handshake: 0 empty, its length when a message is there. The
// writer stores word 0 last (release) and the reader reads it first
// (acquire), so a reader that sees it non-zero sees the whole Bloc. The
// reader of an area empties it; this side never empties `entree`.
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "device/periph_interne.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
mot charge(volatile mot* w) { return __atomic_load_n(w, __ATOMIC_ACQUIRE); }
void range(volatile mot* w, mot v) { __atomic_store_n(w, v, __ATOMIC_RELEASE); }

// A Bloc that the `sortie` area can carry, with its length; a scalar pair
// becomes a one-float block. 0 after a message when it is too long.
mot prepare(const mot* v, mot* tampon) {
  if (v[0] == BLOC_REEL || v[0] == BLOC_ENTIER) {
    tampon[0] = 5, tampon[1] = v[0], tampon[2] = 1, tampon[3] = 1, tampon[4] = v[1];
    return 5;
  }
  if (v[0] < 4 || v[0] > MEM_MOTS_SORTIE) {
    std::printf("MEMOIRE PARTAGEE ");
    message(0, MES_ENTETE);
    return 0;
  }
  std::memcpy(tampon, v, 4 * static_cast<std::size_t>(v[0]));
  return v[0];
}

void publie(volatile mot* zone, const mot* b, mot n) {
  range(zone, 0);
  for (mot k = 1; k < n; ++k) zone[k] = b[k];
  range(zone, n);
}

// Waits for a condition on a word, spinning first (a round trip takes a
// few microseconds), then yielding the processor. An interrupt ends it.
// The tick counts whole milliseconds, so the wait ends one tick past the
// limit: it never gives up before the timeout asked for.
template <class F>
bool attend(F condition, long ms) {
  std::int64_t fin = tic_ms() + (ms < 0 ? 0 : ms) + 1;
  for (long tour = 0;; ++tour) {
    if (condition()) return true;
    if (ms >= 0 && tic_ms() >= fin) return false;
    if (interrompu) return false;
    if (tour > 20000) sched_yield();
  }
}
}  // namespace

int mem_ouvre(Periph* p, const Ouverture& o) {
  std::printf("Memoire partagee Windows (%s)\n", o.nom.c_str());
  std::string nom = o.nom[0] == '/' ? o.nom : "/" + o.nom;
  int fd = shm_open(nom.c_str(), O_RDWR | O_CREAT, 0666);
  struct stat st {};
  if (fd < 0 || fstat(fd, &st) != 0 || (st.st_size != 0 && st.st_size != MEM_OCTETS) ||
      (st.st_size == 0 && ftruncate(fd, MEM_OCTETS) != 0)) {
    if (fd >= 0) close(fd);
    std::printf("ERREUR CreateFileMapping %s\n", o.nom.c_str());
    return -1;
  }
  void* m = mmap(nullptr, MEM_OCTETS, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  close(fd);
  if (m == MAP_FAILED) {
    std::printf("ERREUR MapViewOfFile\x07\n");
    return -1;
  }
  p->sortie = static_cast<volatile mot*>(m);
  p->entree = p->sortie + MEM_MOTS_SORTIE;
  range(p->sortie, 0);
  range(p->entree, 0);
  return 0;
}

int mem_ecrit(Periph* p, const mot* donnee) {
  mot b[MEM_MOTS_SORTIE];
  mot n = prepare(donnee, b);
  if (n == 0) return -1;
  publie(p->sortie, b, n);
  return 0;
}

int mem_lit(Periph* p, mot* phrase, const mot* limite, const mot* envoi, float etape) {
  if (!p->sortie || !p->entree) {
    std::printf("MEMOIRE PARTAGEE ");
    message(0, MES_ENTETE);
    return 0;
  }
  range(p->sortie, 0);
  if (envoi) {
    mot b[MEM_MOTS_SORTIE];
    mot n = prepare(envoi, b);
    if (n == 0) return -1;
    publie(p->sortie, b, n);
    volatile mot* s = p->sortie;
    attend([s] { return charge(s) == 0; }, -1);
  }
  if (etape != 0 && periph_etape) periph_etape(etape);
  volatile mot* e = p->entree;
  if (!attend([e] { return charge(e) != 0; }, p->timeout)) std::printf("TIMEOUT\x07\n");
  mot n = charge(e);
  if (n == 0) {
    phrase[0] = 0;
    return 0;
  }
  mot tag = e[1];
  bool forme = n >= 4 && n <= MEM_MOTS_ENTREE && (tag == BLOC_REEL || tag == BLOC_ENTIER || tag == BLOC_CHAINE);
  if (!forme) {
    std::printf("MEMOIRE PARTAGEE ");
    message(0, MES_ENTETE);
    resultat_nil(phrase);
    return 0;
  }
  if (phrase + n > limite) return PILE_PLEINE;
  for (mot k = 1; k < n; ++k) phrase[k] = e[k];
  phrase[0] = n;
  if (tag == BLOC_CHAINE) {
    if (n == 4) return resultat_texte(phrase, limite, "", 0);
    reinterpret_cast<char*>(phrase + n)[-1] = 0;  // a text always ends in the block
  } else {
    phrase[2] = n - 4, phrase[3] = 1;
  }
  return 0;
}
