// Frame step 24: the key bindings of the running interaction. A finished
// "!" line runs as a command line; a finished "<" line, or else the last
// key alone, is a key name looked up in `cle_fonc` in order, and the first
// exact match runs its function.
#include <cstdio>
#include <cstring>

#include "anim/interne.h"
#include "interp/interp.h"
#include "lang/lang.h"

namespace {
constexpr unsigned char RC = 13;
// The text of a typed line, copied out of the buffer before it runs (the
// line may read keys itself).
char ligne[CLAVIER_MAX + 2];
}  // namespace

int inter_cles() {
  char* b = fen.clavier;
  if (!b[0]) return 0;
  std::size_t n = std::strlen(b);
  const bool fini = static_cast<unsigned char>(b[n - 1]) == RC;
  if (b[0] == '!') {
    if (!fini) return 0;
    std::memcpy(ligne, b + 1, n - 1);
    ligne[n - 2] = ';';
    ligne[n - 1] = 0;
    clavier_vide();
    if (n > 2) inter_ligne(ligne);
    return 0;
  }
  const char* nom = b;
  if (b[0] == '<') {
    if (!fini) return 0;
    b[n - 1] = 0;
    nom = b + 1;
  }
  int r = 0;
  for (const Cle_fonc& c : inter.cle_fonc) {
    if (!c.fonc) break;
    if (std::strcmp(c.nom, nom) != 0) continue;
    r = inter_lance(c.fonc);
    break;
  }
  clavier_vide();
  if (r < 0) interaction_fin();
  return r;
}

int inter_cle_lie(const char* fonction, const char* nom) {
  if (std::strlen(nom) > LONG_CLE) {
    std::printf("%s: ", nom);
    message(0, MES_DEBORDEMENT);
    return -1;
  }
  Objet* f = fonction_trouve(fonction);
  if (!f) f = fonction_cherche(fonction);
  if (!f) {
    std::printf("%s: ", fonction);
    message(0, MES_ABSENT);
    return -1;
  }
  for (Cle_fonc& c : inter.cle_fonc) {
    if (c.fonc && std::strcmp(c.nom, nom) != 0) continue;
    std::snprintf(c.nom, sizeof c.nom, "%s", nom);
    c.fonc = f;
    return 0;
  }
  std::printf("TROP D'ASCII\x07\n");
  return -1;
}
