// What the tools' files share among themselves.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "core/bloc.h"

namespace outils {
constexpr int M_TAILLE = 2, M_INTROUVABLE = 9, M_ALLOCATION = 28;  // env 0
constexpr int M_TROP_MENUS_FONC = 35;                               // env 1
constexpr int A_FONC = 6, A_NOM = 82, A_PULS = 95, A_EXEC = 69;
constexpr int B_VOL = 4, B_COUL = 17, B_MENU = 74, B_CADENCE = 106;
constexpr int LONG_LIGNE = 127;  // characters of a chain's text or a file's line

// A function menu: its title and, per entry, the label shown and the line
// that runs. Ordinary heap: no word points into it.
struct MenuFonc {
  std::string titre;
  std::vector<std::string> etiquettes, lignes;
};
extern std::vector<MenuFonc> menus_fonc;

// Runs one line through the shell's line runner, the output flushed.
int lance_ligne(std::string_view ligne);
// A text of a string Bloc value, or null.
const char* chaine_de(const mot* v);
// Up to `max` numbers of a value; -1 when it holds something else.
// Text of entry n (from 1) of the `exec` chain or of the "menu" chain;
// null past the end.
const char* chaine_entree(bool menu, int n);
// The menus are rebuilt for the mode that now holds the window.
void reconstruit();
}  // namespace outils
