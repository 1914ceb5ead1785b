// The two chains behind the "exec" and "menu" submenus, and what a chosen
// entry of a root runs.
//
// A chain is string Blocs laid end to end, [length, BLOC_CHAINE, 1, bytes,
// text NUL-ended], closed by a zero word: entry n is reached by n - 1 steps
// of the length words, and a zero there means there is no such entry.
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "display/display.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace {
std::vector<mot> ch_exec{0}, ch_menu{0};

int ajoute(std::vector<mot>& c, std::string_view t) {
  if (t.size() > outils::LONG_LIGNE) {
    message(0, outils::M_TAILLE);
    return -1;
  }
  int n = 1;
  for (std::size_t p = 0; c[p] != 0; p += static_cast<std::size_t>(c[p])) ++n;
  c.pop_back();
  mot l = long_chaine(t.size());
  std::size_t at = c.size();
  c.resize(at + static_cast<std::size_t>(l), 0);
  c[at] = l;
  c[at + 1] = BLOC_CHAINE;
  c[at + 2] = 1;
  c[at + 3] = static_cast<mot>(t.empty() ? 1 : t.size());
  std::memcpy(reinterpret_cast<char*>(&c[at + 4]), t.data(), t.size());
  c.push_back(0);
  return n;
}

// The text of entry n (from 1), or null past the end.
const char* entree(const std::vector<mot>& c, int n) {
  if (n < 1) return nullptr;
  std::size_t p = 0;
  for (int k = 1; k < n; ++k) {
    if (c[p] == 0) return nullptr;
    p += static_cast<std::size_t>(c[p]);
  }
  if (c[p] == 0) return nullptr;
  return reinterpret_cast<const char*>(&c[p + 4]);
}
}  // namespace

namespace outils {
int lance_ligne(std::string_view ligne) {
  std::string t(ligne);
  int r = execute_ligne(t.c_str());
  std::fflush(stdout);
  return r;
}
}  // namespace outils

int exec_ajoute(std::string_view ligne) { return ajoute(ch_exec, ligne); }

int menu_ajoute(std::string_view fonction) {
  int n = 0;
  for (std::size_t p = 0; ch_menu[p] != 0; p += static_cast<std::size_t>(ch_menu[p])) ++n;
  if (n >= NB_FONC_MENUS) {
    message(1, outils::M_TROP_MENUS_FONC);
    return -1;
  }
  return ajoute(ch_menu, fonction);
}

void exec_vide() { ch_exec.assign(1, 0); }
void menu_vide() { ch_menu.assign(1, 0); }
std::span<const mot> chaine_exec() { return ch_exec; }
std::span<const mot> chaine_menu() { return ch_menu; }

int menu_choix(int racine, int valeur) {
  if (racine == 0) {
    const char* t = entree(ch_exec, valeur);
    return t ? outils::lance_ligne(t) : 0;
  }
  int k = valeur / 1000, n = valeur % 1000;
  if (k < 1 || k > static_cast<int>(outils::menus_fonc.size())) return 0;
  const outils::MenuFonc& m = outils::menus_fonc[static_cast<std::size_t>(k - 1)];
  if (n < 1 || n > static_cast<int>(m.lignes.size())) return 0;
  return outils::lance_ligne(m.lignes[static_cast<std::size_t>(n - 1)]);
}

namespace outils {
const char* chaine_entree(bool menu, int n) { return entree(menu ? ch_menu : ch_exec, n); }
}  // namespace outils
