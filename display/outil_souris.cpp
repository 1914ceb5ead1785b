// The mouse tool: it owns the events in mode 16. Each frame updates the
// mouse's speed and acceleration and runs the function it was given; a
// failing function, or escape, gives the events back to the shell.
#include <cstdio>
#include <string>

#include "core/objet.h"
#include "display/display.h"
#include "display/interne.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int MODE = 16;
std::string ligne;  // "f()" or empty

int pas() {
  souris_vitesse();
  if (!ligne.empty() && execute_au_sommet(ligne.c_str()) < 0) {
    std::fputs("clavier\n", stdout);
    std::fflush(stdout);
    return -1;
  }
  return 0;
}

void sortie() {
  fen.mode_interactif = 0;
  std::fputs("clavier\n", stdout);
  std::fflush(stdout);
}
}  // namespace

int execute_au_sommet(const char* texte) {
  if (!interp.fonction) {
    cadre = Cadre{};
    piles_reset();
  }
  int r = execute_ligne(texte);
  std::fflush(stdout);
  return r;
}

void outil_souris_enregistre() {
  Outil o;
  o.pas = pas;
  o.sortie = sortie;
  o.projection = entree_outil_2d;
  outil_enregistre(MODE, o);
}

void outil_souris_entre(const char* fonction) {
  ligne = fonction && *fonction ? std::string(fonction) + "()" : std::string();
  entree_outil_2d();
  horloge(1, fen.frequence);
  fen.mode_interactif = MODE;
}

void outil_souris_sort() { sortie(); }
