// The language's side of the tools: `puls` makes and moves buttons, `menu`
// fills the chains of the "exec" and "menu" submenus and reads menu files:
//   menu("f g")            function menus of f and g
//   menu exec("ligne")     a command line in the "exec" submenu
//   menu lire("fichier")   a menu file
//   menu(0)                both chains and the files' menus emptied
//   menu                   the count of "exec" entries and of function menus
// Each change rebuilds the menus of the mode in hand.
#include <cstdio>
#include <string>

#include "core/message.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace outils {
void menus_enregistre();
void menus_fichier_vide();
}  // namespace outils

namespace {
constexpr int A_LIRE = 14;

int refuse() {
  mot_imprime(1, outils::B_MENU);
  message(0, M_TYPE);
  return ECHEC;
}

int compte(bool menu) {
  int n = 0;
  while (outils::chaine_entree(menu, n + 1)) ++n;
  return n;
}

int menu_commande(mot* bloc, mot* valeur, const mot* limite) {
  mot* e = bloc + 4;
  const mot* v = e[0] > 3 ? e + 3 : valeur;
  const char* exec = nullptr;
  const char* fichier = nullptr;
  mot* c = e;
  for (mot k = 1; k < bloc[2]; ++k) {
    c += c[0];
    const mot* a = c[0] > 3 ? c + 3 : nullptr;
    if (c[1] == 0 && c[2] == outils::A_EXEC) {
      if (!(exec = outils::chaine_de(a))) return refuse();
    } else if (c[1] == 0 && c[2] == A_LIRE) {
      if (!(fichier = outils::chaine_de(a))) return refuse();
    } else {
      return COMMANDE_SUITE;
    }
  }
  int r = 0;
  if (exec) {
    r = exec_ajoute(exec);
  } else if (fichier) {
    r = lit_menus(fichier);
  } else if (const char* noms = outils::chaine_de(v)) {
    std::string t = noms;
    for (std::size_t i = t.find_first_not_of(' '); i != std::string::npos && r >= 0;
         i = t.find_first_not_of(' ', i)) {
      std::size_t f = t.find(' ', i);
      r = menu_ajoute(t.substr(i, f == std::string::npos ? std::string::npos : f - i));
      i = f;
    }
  } else {
    float x;
    int n = bloc_nombres(v, &x, 1);
    if (n < 0) return refuse();
    if (n == 0) {
      outils::reconstruit();
      reel* res = resultat_reels(bloc, limite, 2);
      if (!res) return PILE_PLEINE;
      res[0] = static_cast<float>(compte(false));
      res[1] = static_cast<float>(nb_menus_fonction());
      return 0;
    }
    if (x != 0) return refuse();
    exec_vide();
    menu_vide();
    outils::menus_fichier_vide();
  }
  if (!fichier) outils::reconstruit();
  if (r < 0) return ECHEC;
  return resultat_scalaire(bloc, limite, static_cast<float>(r));
}
}  // namespace

void outils_enregistre() {
  outils::menus_enregistre();
  brosse_enregistre();
  film_enregistre();
  commande_enregistre(0, outils::A_PULS, puls_commande);
  commande_enregistre(1, outils::B_MENU, menu_commande);
}
