// Command dispatch: the first element of a phrase chooses its handler by
// one table per list, indexed by ordinal. A keyword's handler is found from
// its ordinal in the table below; anything without one reads or writes an
// attribute of the object that the phrase names.
#include <array>
#include <cstdio>

#include "core/message.h"
#include "image/image.h"
#include "interp/commande_interne.h"
#include "interp/fonctions_interne.h"
#include "net/net.h"
#include "startup/startup.h"

namespace {
constexpr int NB_ORDINAUX = 200;
using Table = std::array<Gestionnaire, NB_ORDINAUX>;

constexpr void pose(Table& t, std::initializer_list<int> ords, Gestionnaire g) {
  for (int o : ords) t[o] = g;
}

// The geometry's handlers leave to the attribute routine the phrases that
// are not theirs.
template <Gestionnaire G>
int ou_attribut(mot* bloc, mot* valeur, const mot* limite) {
  int r = G(bloc, valeur, limite);
  return r == POUR_ATTRIBUT ? attribut(bloc, valeur, limite) : r;
}

// Keywords that choose by the element count: one thing alone, another on
// a selected object.
template <Gestionnaire SEUL, Gestionnaire AUTRE>
int selon_seul(mot* bloc, mot* valeur, const mot* limite) {
  return bloc[2] == 1 ? SEUL(bloc, valeur, limite) : AUTRE(bloc, valeur, limite);
}

// The transformations: rota, sec (ale) and bosse alone are values of the
// configuration; matrice alone a built-in, exec alone the engine's.
constexpr Gestionnaire transfo_cle = selon_seul<valeur_cle, transformer>;
constexpr Gestionnaire transfo_interne = selon_seul<interne, transformer>;
constexpr Gestionnaire transfo_exec = selon_seul<non_implemente, transformer>;

// A handler that leaves some phrases (answers above 0) to another.
template <Gestionnaire G, Gestionnaire SINON>
int ou_sinon(mot* bloc, mot* valeur, const mot* limite) {
  int r = G(bloc, valeur, limite);
  return r > 0 ? SINON(bloc, valeur, limite) : r;
}

bool est_transfo(Gestionnaire g) {
  return g == transformer || g == transfo_cle || g == transfo_interne || g == transfo_exec;
}

// generer(...) alone is the built-in; the bare word generates the default
// object.
int generer_seul(mot* bloc, mot* valeur, const mot* limite) {
  return premier_element(bloc)[0] > 3 ? interne(bloc, valeur, limite) : generer(bloc, valeur, limite);
}

// The network command takes the phrases that train, recall or search; the
// others create the network or reach its attributes.
// Behind another object (vol(2) res), the phrase is an attribute's:
// creation would hand it back here.
int res_ou_creation(mot* bloc, mot* valeur, const mot* limite) {
  int r = res_commande(bloc, valeur, limite);
  if (r != COMMANDE_SUITE) return r;
  mot* e = premier_element(bloc);
  return e[1] == 1 && e[2] == B_RES ? creation(bloc, valeur, limite) : attribut(bloc, valeur, limite);
}
int interaction_res(mot* bloc, mot* valeur, const mot* limite) {
  int r = res_interaction(bloc, valeur, limite);
  return r == COMMANDE_SUITE ? non_implemente(bloc, valeur, limite) : r;
}

// List "a". Ordinals handled by the statement level never reach here.
constexpr Table table_a = [] {
  Table t{};
  t.fill(attribut);
  pose(t, {0, 1, 6, 7, 9, 13, 20, 26, 27, 28, 37, 39, 40, 41, 42, 43, 44, 46, 47, 48, 49, 50, 51,
           53, 54, 55, 56, 59, 67, 71, 72, 73, 74, 75, 76, 77, 78, 81, 83, 84, 85, 86, 87, 88, 89,
           90, 91, 94, 95, 99, 100, 103, 111, 114, 115, 116, 117, 118},
       interne);
  pose(t, {A_OUI, A_NON}, listes_oui_non);
  pose(t, {A_NUM, A_NOM, A_NOMMER}, nommer);
  pose(t, {A_DETRUIRE}, detruire);
  pose(t, {A_MATRICE_CMD}, transfo_interne);
  pose(t, {A_EXEC}, transfo_exec);
  pose(t, {A_GENERER}, selon_seul<generer_seul, generer>);
  pose(t, {A_FENETRE}, selon_seul<generer, non_implemente>);
  // Object files, extrusion, session state, textures, movies, devices:
  // their folders come later.
  pose(t, {14, 33, 15, 24, 34, 60, 61, 63, 70, 101, 106}, non_implemente);
  // Images read and written by name; other kinds wait for the object files.
  pose(t, {A_LIRE, A_ECRIRE}, ou_sinon<ima_lire_ecrire, non_implemente>);
  return t;
}();

// List "b".
constexpr Table table_b = [] {
  Table t{};
  t.fill(attribut);
  pose(t, {4, 24, 49, 88, 114, 117, 118, 122, 133}, creation);
  pose(t, {B_NORMALE, B_PARAM, B_DYN}, configuration_seul);
  // Images, display, dynamics, devices, tools and the other handlers of
  // their own: their folders come later.
  pose(t, {1,   2,   5,   6,   7,   8,   9,   10,  11,  12,  13,  16,  18,  19,  20,  21,  25,  26,
           28,  33,  42,  45,  46,  47,  48,  50,  51,  52,  53,  55,  60,  61,  62,  64,  66,  67,  68,
           74,  75,  76,  77,  78,  79,  80,  81,  82,  83,  84,  85,  89,  90,  91,  93,  94,  95,
           96,  99,  100, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 125, 127, 128,
           129, 130, 131, 132, 136, 137, 138, 139, 140, 142, 144, 145, 146, 148, 153, 154, 155, 156,
           157, 158},
       non_implemente);
  // Images.
  pose(t, {B_IMA}, ima_commande);
  // Networks, and their training on screen.
  pose(t, {B_RES}, res_ou_creation);
  pose(t, {85}, interaction_res);
  // Geometry.
  pose(t, {B_DEP, B_DEP2, B_ROTX, B_ROTY, B_ROTZ, B_HOM, B_HOMX, B_HOMY, B_HOMZ, B_HOMO, B_SECX, B_SECY, B_SECZ,
           B_SYMX, B_SYMY, B_SYMZ, B_SYM, B_TORD, B_PLIE, B_EFFILE, B_TIRER},
       transformer);
  pose(t, {B_ROTA, B_SEC, B_BOSSE}, transfo_cle);
  pose(t, {B_SOM, B_SEQ}, selon_seul<valeur_cle, ou_attribut<sommets_commande>>);
  pose(t, {B_FAC}, ou_attribut<faces_commande>);
  pose(t, {B_GRILLE, B_CUBE, B_SPHERE, B_CYLINDRE, B_CONE, B_TORE}, ou_attribut<forme_commande>);
  pose(t, {B_COURBE}, ou_attribut<courbe_commande>);
  pose(t, {B_AJUST}, ou_attribut<ajust_commande>);
  return t;
}();
// Handlers registered at run time, asked first.
Gestionnaire enregistres[2][NB_ORDINAUX] = {};
}  // namespace

void commande_enregistre(int env, int ordinal, Gestionnaire_externe g) {
  if (env < 0 || env > 1 || ordinal < 0 || ordinal >= NB_ORDINAUX) return;
  enregistres[env][ordinal] = g;
}

int non_implemente(mot* bloc, mot*, const mot*) {
  mot* e = premier_element(bloc);
  const char* nom = mot_nom(e[1], e[2]);
  std::printf("%s: non implemente", nom ? nom : "?");
  cloche();
  bloc[0] = 0;
  return 0;
}

int interne(mot* bloc, mot*, const mot* limite) { return fonction_interne(bloc, limite); }

bool fonction_seule(int ord) {
  return ord >= 0 && ord < NB_ORDINAUX && !enregistres[0][ord] && table_a[ord] == interne;
}

// Keywords that begin an attribute path of the dynamics, in which a
// transformation's keyword is a name, as in (vit, rota) or (ressort, rota):
// for b113, b111, b89, b151, b33 and a41.
bool tete_de_chemin(const mot* e) {
  if (e[1] == 0) return e[2] == 41;
  return e[1] == 1 && (e[2] == 113 || e[2] == 111 || e[2] == 89 || e[2] == 151 || e[2] == 33);
}

Gestionnaire gestionnaire_suite(mot* bloc) {
  Gestionnaire trouve = nullptr;
  mot* e = premier_element(bloc);
  bool chemin = false;
  for (mot k = 1; k < bloc[2]; ++k) {
    e = element_suivant(e);
    chemin = chemin || tete_de_chemin(e);
    if (chemin || e[2] < 0 || e[2] >= NB_ORDINAUX || e[1] < 0 || e[1] > 1) continue;
    Gestionnaire g = e[1] == 0 ? table_a[e[2]] : table_b[e[2]];
    // The elements of a transformation (som as its pivot, fac and sommet as
    // its selection) have handlers of their own: the operation goes first.
    if (est_transfo(g)) {
      // (rota, lim), (dep, lim)...: a transformation's keyword followed by
      // lim names its window, an attribute.
      if (k + 1 < bloc[2]) {
        const mot* s = element_suivant(e);
        if (s[1] == 0 && s[2] == 41) return nullptr;
      }
      return g;
    }
    // Keywords whose handlers are not written yet stay attributes here.
    if (!trouve && e[1] == 1 && g != attribut && g != creation && g != configuration_seul && g != non_implemente)
      trouve = g;
  }
  return trouve;
}

int commande(mot* bloc, const mot* limite, mot* valeur) {
  if (bloc[2] < 1) return 0;
  mot* e = premier_element(bloc);
  int env = e[1], ord = e[2];
  if (ord < 0 || ord >= NB_ORDINAUX) return attribut(bloc, valeur, limite);
  if ((env == 0 || env == 1) && enregistres[env][ord]) {
    int r = enregistres[env][ord](bloc, valeur, limite);
    if (r != COMMANDE_SUITE) return r;
  }
  switch (env) {
    case -1: return attribut(bloc, valeur, limite);
    case 0: return table_a[ord](bloc, valeur, limite);
    case 1: return table_b[ord](bloc, valeur, limite);
  }
  // An application list: env 2 elements close it (ordinal 0) or not; the
  // first element of a higher env gives its env back.
  for (mot k = 0; k < bloc[2]; ++k, e = element_suivant(e)) {
    if (e[1] > 2) return e[1];
    if (e[1] == 2 && e[2] == 0) bloc[0] = 0;
  }
  return 0;
}
