// The tools as the live scene sees them: the mode menu of `interaction`
// with its entries 1 to 16 and the "memoire" submenu, the buttons and
// labels of a frame, the menu files, and the `puls` phrases that a running
// scene hands over or that attach themselves to its lists.
#include <cstdio>
#include <string>
#include <vector>

#include "anim/anim.h"
#include "interp/interp.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace {
constexpr int MODE_INTER = 85;
constexpr int LISTE_PULS = 2;  // liste_2: after fonc_2, ahead of the dynamics
constexpr int MEMOIRE = 100;   // values of the "memoire" entries are 101 to 104

constexpr EntreeMode memoire[] = {
    {"rotx ", MEMOIRE + 1}, {"roty ", MEMOIRE + 2}, {"rotz ", MEMOIRE + 3}, {"x,y,z,an ", MEMOIRE + 4}};
// The texts differ from the lines the entries print (8 to 16) on purpose.
constexpr EntreeMode entrees_inter[] = {
    {"quitter sans valider", 1}, {"quitter en validant", 2}, {"interpreteur", 3}, {"reset", 4},
    {"valider", 5},              {"designer", 6},            {"rayon", 7},        {"tirer", 8},
    {"dep(oeily)", 9},           {"rotxy(oeil)", 10},        {"rotxz(oeil)", 11}, {"rota", 12},
    {"rotx", 13},                {"roty", 14},               {"rotz", 15},        {"dep", 16},
    {"memoire", 0, memoire}};

bool attache = true;

void dessine() {
  dessine_puls();
  dessine_textes();
}

void entre(int mode) { entre_mode_menu(mode, attache); }
void attache_def(bool a) { attache = a; }

int exec_un(const char* ligne) { return exec_ajoute(ligne) < 0 ? -1 : 0; }

// Blank-separated function names, each a function menu.
int menu_noms(const char* noms) {
  std::string t = noms;
  for (std::size_t i = t.find_first_not_of(' '); i != std::string::npos; i = t.find_first_not_of(' ', i)) {
    std::size_t f = t.find(' ', i);
    if (menu_ajoute(t.substr(i, f == std::string::npos ? std::string::npos : f - i)) < 0) return -1;
    i = f;
  }
  return 0;
}
}  // namespace

void inter_menu_choix(int valeur) {
  if (valeur > MEMOIRE) interaction_memoire(valeur - MEMOIRE);
  else interaction_menu(valeur);
}

namespace outils {
// puls ... vol(n): the phrase, without its `vol`, joins liste_2 of the
// running scene with volume n's record as target; it then runs at every
// frame. Nothing runs: nothing to add it to.
int puls_liste(mot* bloc) {
  int vol = 0;
  std::vector<mot> p{4, BLOC_PHRASE, 0, 0};
  mot* e = bloc + 4;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0]) {
    if (e[1] == 1 && e[2] == B_VOL) {
      float x = 0;
      if (e[0] > 3 && bloc_nombres(e + 3, &x, 1) > 0) vol = static_cast<int>(x);
      continue;
    }
    p.insert(p.end(), e, e + e[0]);
    ++p[2];
  }
  p[0] = static_cast<mot>(p.size());
  if (interaction_en_cours() && interaction_liste_ajoute(LISTE_PULS, vol, p.data()) < 0) return ECHEC;
  resultat_nil(bloc);
  return 0;
}

void inter_enregistre() {
  menu_mode_def(MODE_INTER, entrees_inter, inter_menu_choix);
  outils_inter.dessine_puls = dessine;
  outils_inter.affiche_menu = affiche_menu;
  outils_inter.entre_mode = entre;
  outils_inter.lit_menus = lit_menus;
  outils_inter.attache_menu = attache_def;
  outils_inter.puls = puls_commande;
  outils_inter.exec_ajoute = exec_un;
  outils_inter.menu_ajoute = menu_noms;
}
}  // namespace outils
