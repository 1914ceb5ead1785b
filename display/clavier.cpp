// The keyboard buffer of the window and the key table. The buffer is
// `fen.clavier`: byte 0 is a mark ("<" or "!") while a line is captured,
// and the terminator always follows the last stored character, so the
// buffer is a C string at every moment. `clavier_i` is where the next
// character goes; it stays below CLAVIER_MAX.
#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "display/display.h"
#include "display/interne.h"
#include "startup/startup.h"

namespace {
constexpr unsigned char RC = 13;
constexpr int LONG_NOM = 24;

struct Touche {
  char nom[LONG_NOM + 1];
  char fonction[64];
};
// Searched from the first until an empty entry; the first match runs.
Touche touches[NB_TOUCHES];

// Runs the function bound to the name; false when none is.
bool touche_lance(const char* nom) {
  for (const Touche& t : touches) {
    if (!t.nom[0]) break;
    if (std::strcmp(t.nom, nom) != 0) continue;
    std::string l = std::string(t.fonction) + "()";
    execute_au_sommet(l.c_str());
    return true;
  }
  return false;
}
}  // namespace

void clavier_vide() {
  fen.clavier[0] = 0;
  fen.clavier_i = 0;
  fen.clavier_capture = false;
}

void clavier_touche(unsigned char c) {
  int& i = fen.clavier_i;
  if (c == '<' || c == '!') {
    // A mark starts a line: it stays at byte 0.
    fen.clavier[0] = static_cast<char>(c);
    fen.clavier[1] = 0;
    i = 1;
    fen.clavier_capture = true;
    return;
  }
  fen.clavier[i] = static_cast<char>(c);
  fen.clavier[i + 1] = 0;
  if (c == RC) {
    i = 0;
    fen.clavier_capture = false;
    return;
  }
  if (!fen.clavier_capture) return;  // the last key alone, at byte 0
  if (++i >= CLAVIER_MAX) {
    message(0, MES_DEBORDEMENT);
    std::fflush(stdout);
    --i;  // the last position is written again
  }
}

bool commande_clavier() {
  char* b = fen.clavier;
  if (!b[0]) return false;
  std::size_t n = std::strlen(b);
  bool fini = static_cast<unsigned char>(b[n - 1]) == RC;
  if (b[0] == '!') {
    if (!fini || n < 2) return false;
    b[n - 1] = ';';
    // The buffer is free before the line runs: the line may read keys.
    std::string ligne(b + 1);
    clavier_vide();
    execute_au_sommet(ligne.c_str());
    return true;
  }
  if (b[0] == '<') {
    if (!fini) return false;  // a line not finished is left alone
    std::string nom(b + 1, n - 2);
    // A name with no binding stays, for the language to read.
    if (!touche_lance(nom.c_str())) return false;
    clavier_vide();
    return true;
  }
  std::string nom(b);
  if (!touche_lance(nom.c_str())) return false;
  clavier_vide();
  return true;
}

int clavier_lire(char* dst, int taille) {
  const char* b = fen.clavier;
  int n = 0;
  auto copie = [&](const char* s, std::size_t lg) {
    n = static_cast<int>(lg < static_cast<std::size_t>(taille - 1) ? lg : static_cast<std::size_t>(taille - 1));
    std::memcpy(dst, s, static_cast<std::size_t>(n));
  };
  std::size_t lg = std::strlen(b);
  if (lg == 0 || b[0] == '!') {
  } else if (b[0] == '<') {
    if (lg >= 2 && static_cast<unsigned char>(b[lg - 1]) == RC) copie(b + 1, lg - 2);
  } else {
    copie(b, 1);
  }
  dst[n] = 0;
  return n;
}

int touche_lie(const char* nom, const char* fonction) {
  for (Touche& t : touches) {
    if (t.nom[0] && std::strcmp(t.nom, nom) != 0) continue;
    std::snprintf(t.nom, sizeof t.nom, "%s", nom);
    std::snprintf(t.fonction, sizeof t.fonction, "%s", fonction);
    return 0;
  }
  return -1;
}

void touches_vide() {
  for (Touche& t : touches) t.nom[0] = 0;
}
