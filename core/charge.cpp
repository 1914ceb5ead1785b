// Loads a group of shared libraries on first need and fills the slots of the
// stubs that scripts/tardif.sh writes into the release executable.
//
// Slot k belongs to library orvane_tardif_bib[k], of group
// orvane_tardif_groupe[bib]. Until its group is loaded, a slot points at a
// resolver that loads the group and jumps on; a loaded group's slots point at
// the library's functions and never change again. ORVANE_BIB_REP, for the
// tests, names a directory to take the libraries from instead of the
// system's search.
#include "core/charge.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "core/message.h"

extern "C" {
// Defined only in the release executable: elsewhere their addresses are null.
extern const std::uint32_t orvane_tardif_nb __attribute__((weak));
extern const std::uint32_t orvane_tardif_nb_bib __attribute__((weak));
extern const char* const orvane_tardif_bibs[] __attribute__((weak));
extern const std::uint8_t orvane_tardif_groupe[] __attribute__((weak));
extern const char* const orvane_tardif_noms[] __attribute__((weak));
extern const std::uint8_t orvane_tardif_bib[] __attribute__((weak));
extern void* orvane_tardif_fentes[] __attribute__((weak));
void* orvane_tardif_resout(std::uint32_t k);
}

namespace charge {
namespace {
constexpr std::uint32_t BIB_MAX = 16;
struct Etat {
  std::recursive_mutex verrou;  // a library's constructor may call another stub
  bool charge[BIB_NB] = {};
  void* poignee[BIB_MAX] = {};
};
Etat etat;

void* ouvre(const char* soname) {
  const char* rep = std::getenv("ORVANE_BIB_REP");
  if (!rep || !*rep) return dlopen(soname, RTLD_NOW | RTLD_GLOBAL);
  std::string chemin = std::string(rep) + "/" + soname;
  return dlopen(chemin.c_str(), RTLD_NOW | RTLD_GLOBAL);
}

bool charge_groupe(Groupe_bib g) {
  std::lock_guard<std::recursive_mutex> v(etat.verrou);
  if (etat.charge[g]) return true;
  std::uint32_t nb_bib = orvane_tardif_nb_bib < BIB_MAX ? orvane_tardif_nb_bib : BIB_MAX;
  for (std::uint32_t b = 0; b < nb_bib; ++b) {
    if (orvane_tardif_groupe[b] != g || etat.poignee[b]) continue;
    etat.poignee[b] = ouvre(orvane_tardif_bibs[b]);
    if (!etat.poignee[b]) {
      std::fflush(stdout);
      std::printf("%s: ", orvane_tardif_bibs[b]);
      message(1, M_BIBLIOTHEQUE);
      return false;
    }
  }
  for (std::uint32_t k = 0; k < orvane_tardif_nb; ++k) {
    std::uint8_t b = orvane_tardif_bib[k];
    if (b >= nb_bib || orvane_tardif_groupe[b] != g) continue;
    // A function this library version lacks keeps its resolver, which
    // reports it if it is ever called.
    if (void* f = dlsym(etat.poignee[b], orvane_tardif_noms[k])) orvane_tardif_fentes[k] = f;
  }
  etat.charge[g] = true;
  return true;
}
}  // namespace
}  // namespace charge

bool charge_bib(Groupe_bib g) {
  if (&orvane_tardif_nb == nullptr || g >= BIB_NB) return true;
  return charge::charge_groupe(g);
}

// Reached from a stub whose group was not loaded by charge_bib (a call made
// before the window or the sound was opened): loads it, or ends the process
// with a line naming the function, as no value can be made up for it.
extern "C" void* orvane_tardif_resout(std::uint32_t k) {
  using namespace charge;
  if (k < orvane_tardif_nb) {
    std::uint8_t b = orvane_tardif_bib[k];
    if (b < BIB_MAX && charge_groupe(static_cast<Groupe_bib>(orvane_tardif_groupe[b]))) {
      if (void* f = dlsym(etat.poignee[b], orvane_tardif_noms[k])) return f;
    }
    std::fprintf(stderr, "orvane: %s: introuvable\n", orvane_tardif_noms[k]);
  }
  std::fflush(stdout);
  _exit(70);
}
