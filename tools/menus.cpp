// The pop-up menus of the modes: one slot per mode, whose first two entries
// are the "exec" and "menu" submenus, then the mode's own entries. Entering
// a mode destroys the two submenus and the function menus and makes them
// again from the chains, so that what the chains hold now is what the
// right button offers.
//
// Invariants: a slot's GLUT id is fen.menus[slot] (below 1: none); its
// "exec" entry is at pos_exec and its "menu" entry at pos_menu. Every menu
// this file makes is in `registre` with the texts of its entries, and is
// forgotten there when destroyed.
#include <GL/freeglut.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "core/message.h"
#include "display/display.h"
#include "lang/lang.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace outils {
std::vector<MenuFonc> menus_fonc;
}

namespace {
using outils::MenuFonc;

// The modes that own a slot, by slot; the last four are free.
constexpr int modes_slots[NB_MENUS] = {0, 16, 74, 85, 127, 156, 161, -1, -1, -1, -1};
// A GLUT value of a slot menu: the slot and the owner's value.
constexpr int PAR_SLOT = 100000;

struct Slot {
  int pos_exec = 1, pos_menu = 2;
  char titre[LONG_TITRE + 1] = "";
  const char* texte = titre;
  bool exec = true, menu = true;  // which submenus the mode shows entries in
  std::span<const EntreeMode> entrees;
  void (*choix)(int) = nullptr;
  std::vector<int> sous;  // GLUT ids of the mode's own submenus
};
Slot slots[NB_MENUS];

// Menus read from files stay across rebuilds; those of the "menu" chain are
// made again each time, after them.
std::vector<MenuFonc> menus_fichier;
std::vector<int> ids_fonc;  // GLUT ids of the function menus as last built
std::map<int, std::vector<std::string>> registre;
int derniere_racine = 0;  // to see a new session of the window system
int mode_menus = 0;
bool attache_menus = true;

int cree(void (*cb)(int)) {
  int id = glutCreateMenu(cb);
  registre[id].clear();
  return id;
}
int cree_racine(int r) {
  int id = menu_racine_cree(r);
  registre[id].clear();
  return id;
}
void entree(int id, const std::string& t, int v) {
  glutAddMenuEntry(t.c_str(), v);
  registre[id].push_back(t);
}
void sous_menu(int id, const std::string& t, int sous) {
  glutAddSubMenu(t.c_str(), sous);
  registre[id].push_back(t);
}
// A menu without entries would open as a window of no size, which the X
// server refuses (BadValue): an empty root gets a mark that chooses nothing
// (value 0 names no entry) and that the register does not list.
void marque_si_vide(int id) {
  if (registre[id].empty()) glutAddMenuEntry("-", 0);
}
void detruit(int& id) {
  if (id > 0) {
    glutDestroyMenu(id);
    registre.erase(id);
  }
  id = -1;
}

void choix_slot(int v) {
  int s = v / PAR_SLOT;
  if (s < 0 || s >= NB_MENUS || !slots[s].choix) return;
  slots[s].choix(v % PAR_SLOT);
}

// "clavier": the mode in hand ends and the keyboard goes back to the console.
void choix_clavier(int) {
  int m = fen.mode_interactif < 0 ? -fen.mode_interactif : fen.mode_interactif;
  if (m != 0) {
    const Outil* o = outil(m);
    if (o && o->sortie) o->sortie();
    fen.mode_interactif = 0;
  }
  clavier_vide();
  fen.clavier_capture = false;
  if (mode_menus != 0) entre_mode(0);
}
constexpr EntreeMode entrees_shell[] = {{"clavier", 1}};

void racine_choisie(int racine, int valeur) { menu_choix(racine, valeur); }

// A function's menu: its head up to its ")" as title, one entry per line
// of its body, the text between the first "{" and the last "}".
bool menu_de_fonction(const char* nom, MenuFonc& m) {
  Objet* f = fonction_cherche(nom);
  std::size_t n = 0;
  const char* t = f ? fonction_texte(f, &n) : nullptr;
  if (!t) {
    const char* a6 = mot_nom(0, outils::A_FONC);
    std::printf("%s %s: ", a6 ? a6 : "", nom);
    message(0, outils::M_INTROUVABLE);
    return false;
  }
  std::string_view texte(t, n);
  std::size_t ferme = texte.find(')');
  std::string_view tete = texte.substr(0, ferme == std::string_view::npos ? texte.size() : ferme + 1);
  std::size_t d = tete.find_first_not_of(" \t\r\n");
  tete = d == std::string_view::npos ? std::string_view{} : tete.substr(d);
  m.titre.assign(tete.substr(0, LONG_TITRE));
  std::replace(m.titre.begin(), m.titre.end(), '\n', ' ');
  std::size_t a = texte.find('{'), b = texte.rfind('}');
  if (a == std::string_view::npos || b == std::string_view::npos || b <= a) return true;
  std::string_view corps = texte.substr(a + 1, b - a - 1);
  while (!corps.empty()) {
    std::size_t fin = corps.find('\n');
    std::string_view l = corps.substr(0, fin);
    corps = fin == std::string_view::npos ? std::string_view{} : corps.substr(fin + 1);
    std::size_t i = l.find_first_not_of(" \t\r"), j = l.find_last_not_of(" \t\r");
    if (i == std::string_view::npos) continue;
    l = l.substr(i, j - i + 1);
    m.lignes.emplace_back(l);
    m.etiquettes.emplace_back(l.substr(0, LONG_TITRE));
  }
  return true;
}

// Function menus, those of the files first; `ids_fonc` is then in step.
void fonctions_reconstruit() {
  outils::menus_fonc = menus_fichier;
  for (int n = 1;; ++n) {
    const char* nom = outils::chaine_entree(true, n);
    if (!nom) break;
    if (outils::menus_fonc.size() >= static_cast<std::size_t>(NB_FONC_MENUS)) {
      message(1, outils::M_TROP_MENUS_FONC);
      break;
    }
    MenuFonc m;
    if (menu_de_fonction(nom, m)) outils::menus_fonc.push_back(std::move(m));
  }
}

int racine_exec() {
  int id = cree_racine(0);
  for (int n = 1;; ++n) {
    const char* t = outils::chaine_entree(false, n);
    if (!t) break;
    entree(id, t, n);
  }
  marque_si_vide(id);
  return id;
}

int racine_menu(bool avec) {
  for (int& id : ids_fonc) detruit(id);
  ids_fonc.clear();
  if (avec) {
    for (std::size_t k = 0; k < outils::menus_fonc.size(); ++k) {
      const MenuFonc& m = outils::menus_fonc[k];
      int id = menu_racine_cree(1);
      registre[id].clear();
      for (std::size_t n = 0; n < m.etiquettes.size() && n < 999; ++n)
        entree(id, m.etiquettes[n], VALEUR_FONC(static_cast<int>(k + 1), static_cast<int>(n + 1)));
      marque_si_vide(id);
      ids_fonc.push_back(id);
    }
  }
  int id = cree_racine(1);
  for (std::size_t k = 0; k < ids_fonc.size(); ++k) {
    const std::string& t = outils::menus_fonc[k].titre;
    sous_menu(id, t.empty() ? std::string("?") : t, ids_fonc[k]);
  }
  marque_si_vide(id);
  return id;
}

// The slot's own menu, made once per window: "exec", "menu", the mode's
// entries.
void slot_cree(int s) {
  Slot& sl = slots[s];
  for (int& id : sl.sous) detruit(id);
  sl.sous.clear();
  std::vector<int> sous_ids;
  for (const EntreeMode& e : sl.entrees) {
    if (e.sous.empty()) continue;
    int id = cree(choix_slot);
    for (const EntreeMode& f : e.sous) entree(id, f.texte, s * PAR_SLOT + f.valeur);
    sous_ids.push_back(id);
  }
  int id = cree(choix_slot);
  fen.menus[s] = id;
  sous_menu(id, "exec", fen.racines[0]);
  sous_menu(id, "menu", fen.racines[1]);
  sl.pos_exec = 1, sl.pos_menu = 2;
  std::size_t k = 0;
  for (const EntreeMode& e : sl.entrees) {
    if (e.sous.empty()) entree(id, e.texte, s * PAR_SLOT + e.valeur);
    else sous_menu(id, e.texte, sous_ids[k++]);
  }
  sl.sous = sous_ids;
}

// At each opening of the window: the menus of a new session of the window
// system are not ours any more; then the shell's menu.
void ouverture() {
  if (fen.racines[0] <= derniere_racine) {
    // The window system started again: its ids begin anew.
    ids_fonc.clear();
    for (Slot& s : slots) s.sous.clear();
  }
  // The slots and roots of the last window are gone with it.
  registre.clear();
  derniere_racine = fen.racines[0];
  registre[fen.racines[0]].clear();
  registre[fen.racines[1]].clear();
  entre_mode(0);
}
}  // namespace

int slot_mode(int mode) {
  if (mode < 0) mode = -mode;
  for (int s = 0; s < NB_MENUS; ++s)
    if (modes_slots[s] == mode) return s;
  return -1;
}

void menu_mode_def(int mode, std::span<const EntreeMode> entrees, void (*choix)(int)) {
  int s = slot_mode(mode);
  if (s < 0) return;
  slots[s].entrees = entrees;
  slots[s].choix = choix;
}

void menu_titre(int mode, std::string_view titre) {
  int s = slot_mode(mode);
  if (s < 0) return;
  std::size_t n = std::min<std::size_t>(titre.size(), LONG_TITRE);
  titre.copy(slots[s].titre, n);
  slots[s].titre[n] = 0;
}

const char* menu_titre_de(int mode) {
  int s = slot_mode(mode);
  return s < 0 ? nullptr : slots[s].texte;
}

int entre_mode_menu(int mode, bool attache) {
  int s = slot_mode(mode);
  if (s < 0) return -1;
  mode_menus = mode < 0 ? -mode : mode;
  attache_menus = attache;
  if (fen.fenetre < 1 || !fen.glut_pret) {
    fonctions_reconstruit();
    return 0;
  }
  int courante = glutGetWindow();
  glutSetWindow(fen.fenetre);
  Slot& sl = slots[s];
  fonctions_reconstruit();
  detruit(fen.racines[0]);
  if (sl.exec) {
    fen.racines[0] = racine_exec();
  } else {
    fen.racines[0] = cree_racine(0);
    marque_si_vide(fen.racines[0]);
  }
  detruit(fen.racines[1]);
  fen.racines[1] = racine_menu(sl.menu);
  if (fen.menus[s] < 1) {
    slot_cree(s);
  } else {
    glutSetMenu(fen.menus[s]);
    glutChangeToSubMenu(sl.pos_exec, "exec", fen.racines[0]);
    glutChangeToSubMenu(sl.pos_menu, "menu", fen.racines[1]);
  }
  glutSetMenu(fen.menus[s]);
  if (attache) glutAttachMenu(GLUT_RIGHT_BUTTON);
  else glutDetachMenu(GLUT_RIGHT_BUTTON);
  if (courante > 0 && courante != fen.fenetre) glutSetWindow(courante);
  return 0;
}

namespace outils {
void reconstruit() { entre_mode_menu(mode_menus, attache_menus); }
void menus_enregistre() {
  menu_choisi = racine_choisie;
  apres_ouverture = ouverture;
  menu_mode_def(0, entrees_shell, choix_clavier);
}
void menus_fichier_vide() { menus_fichier.clear(); }
}  // namespace outils

int menu_fonction_ajoute(std::string_view titre, std::span<const std::string_view> etiquettes,
                         std::span<const std::string_view> lignes) {
  std::size_t chaine = 0;
  while (outils::chaine_entree(true, static_cast<int>(chaine + 1))) ++chaine;
  if (menus_fichier.size() + chaine >= static_cast<std::size_t>(NB_FONC_MENUS)) {
    message(1, outils::M_TROP_MENUS_FONC);
    return -1;
  }
  MenuFonc m;
  m.titre.assign(titre.substr(0, LONG_TITRE));
  for (std::size_t n = 0; n < etiquettes.size() && n < lignes.size(); ++n) {
    m.etiquettes.emplace_back(etiquettes[n].substr(0, LONG_TITRE));
    m.lignes.emplace_back(lignes[n]);
  }
  menus_fichier.push_back(std::move(m));
  return static_cast<int>(menus_fichier.size());
}

int nb_menus_fonction() { return static_cast<int>(outils::menus_fonc.size()); }
const char* menu_fonction_titre(int k) {
  if (k < 1 || k > nb_menus_fonction()) return nullptr;
  return outils::menus_fonc[static_cast<std::size_t>(k - 1)].titre.c_str();
}
int menu_fonction_nb(int k) {
  if (k < 1 || k > nb_menus_fonction()) return -1;
  return static_cast<int>(outils::menus_fonc[static_cast<std::size_t>(k - 1)].lignes.size());
}
const char* menu_fonction_entree(int k, int n) {
  if (k < 1 || k > nb_menus_fonction()) return nullptr;
  const MenuFonc& m = outils::menus_fonc[static_cast<std::size_t>(k - 1)];
  if (n < 1 || n > static_cast<int>(m.etiquettes.size())) return nullptr;
  return m.etiquettes[static_cast<std::size_t>(n - 1)].c_str();
}

int menu_nb_entrees(int id) {
  auto it = registre.find(id);
  return it == registre.end() ? -1 : static_cast<int>(it->second.size());
}
const char* menu_entree(int id, int n) {
  auto it = registre.find(id);
  if (it == registre.end() || n < 1 || n > static_cast<int>(it->second.size())) return nullptr;
  return it->second[static_cast<std::size_t>(n - 1)].c_str();
}
