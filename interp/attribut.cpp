// The fallback of the command dispatch: a phrase that no handler claims
// reads or writes an attribute stored on the objects that it names.
//   vol(1) coul(1,0,0)     writes (coul) on volume 1
//   vol(1) coul            reads it (nil when absent)
//   lum(1,2) foc           reads over two lights, values appended
//   vol(1) sommet(3) coul  the row 3 of the attribute (sommet, coul)
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "interp/commande_interne.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

namespace {
constexpr int MAX_PAIRES = 4;  // the dispatchers by count take 1 to 4 pairs

bool type_objet(int ord) {
  switch (ord) {
    case B_VOL: case B_LUM: case B_IMA: case B_TRA: case B_CIN: case B_VUE: case B_BRO: case B_CHA:
    case B_ALP: case B_TAB: case B_RES:
      return true;
  }
  return false;
}

bool second_niveau(int ord) { return ord == B_FAC || ord == B_SOMMET || ord == B_SOM || ord == B_NEU; }

struct Chemin {
  int type = 0;
  int identite = 0;          // a57 or a82 with no argument: the number or name is read
  mot* ids = nullptr;        // identifiers of the objects
  mot* selection = nullptr;  // rows chosen by a second-level keyword
  mot* acces = nullptr;      // the value to write, when an argument stands
  int n = 0;
  mot paires[2 * MAX_PAIRES];
};

// Number of identifiers, or rows, in an argument.
long compte(const mot* a) {
  if (!a || a[0] <= 0) return 0;
  if (a[1] == BLOC_CHAINE) return 1;
  return a[1] == BLOC_REEL ? a[0] - 4 : a[2];
}

// The float naming row k (1-based) of a selection; 0 for elements of other
// kinds, which name no row.
float reel_rangee(const mot* s, long k) {
  if (s[0] < 0) return lit_reel(s + 1);
  return s[1] == BLOC_REEL ? lit_reel(s + 3 + k) : 0.f;
}

// Row k of a selection, for a read: a float that is no int32 names no row
// and is passed over like a row below 1.
long rangee(const mot* s, long k) {
  mot r = 0;
  return reel_entier(reel_rangee(s, k), &r) ? r : 0;
}

// The words a Bloc of values may hold: the arena's 4 GiB.
constexpr long MOTS_VALEUR_MAX = 0x3fffffff;

// The value as floats: a block, or a scalar pair.
bool flottants(const mot* v, const reel** x, long* n) {
  if (v[0] == BLOC_REEL) {
    *x = reels(v + 1);
    *n = 1;
    return true;
  }
  if (v[0] > 0 && v[1] == BLOC_REEL) {
    *x = reels(v + 4);
    *n = v[0] - 4;
    return true;
  }
  return false;
}

// A new attribute of this path holding rows of width w, n rows, zeroed.
mot* nouvel_attribut(const Chemin& c, long rangs, long w) {
  mot h = 4 + 2 * c.n;
  mot* a = bloc_alloue(static_cast<mot>(h + 4 + rangs * w));
  if (!a) return nullptr;
  a[0] = static_cast<mot>(h + 4 + rangs * w);
  phrase_paires(a, c.n, c.paires);
  mot* q = a + h;
  q[0] = static_cast<mot>(4 + rangs * w);
  q[1] = BLOC_REEL;
  q[2] = static_cast<mot>(rangs);
  q[3] = static_cast<mot>(w);
  std::memset(q + 4, 0, sizeof(mot) * rangs * w);
  return a;
}

// Paths led by b113, b111, b89, b151, b122, b159, b153, b33 or a41.
bool chemin_dynamique(const mot* p) {
  if (p[0] == 0) return p[1] == 41;
  return p[0] == 1 && (p[1] == 113 || p[1] == 111 || p[1] == 89 || p[1] == 151 || p[1] == 122 || p[1] == 159 ||
                       p[1] == 153 || p[1] == 33);
}

// Writes v into the object's attribute of this path. The keyword's declared
// row width shapes the value (cut, or filled with zeros); a keyword that
// declares none keeps the value whole. With a selection only those rows are
// written, the attribute growing to hold them.
int ecrire_attribut(Objet* o, const Chemin& c, const mot* v) {
  const reel* x;
  long n;
  if (!flottants(v, &x, &n)) {
    // Other values are stored as they are.
    int pos;
    mot* ancien = attribut_trouve_pos(o, &pos, c.n, c.paires);
    mot h = 4 + 2 * c.n;
    mot* a = bloc_alloue(h + v[0]);
    if (!a) return -1;
    a[0] = h + v[0];
    phrase_paires(a, c.n, c.paires);
    std::memcpy(a + h, v, sizeof(mot) * v[0]);
    if (ancien) {
      o->donnees[pos] = ptr_vers_mot(a);
      bloc_supprime(ancien);
      attributs_bougent();
    } else if (liste_ajoute(o, a) < 0) {
      bloc_libere(a);
      return -1;
    }
    return 0;
  }
  long w = mot_dim(c.paires[2 * c.n - 2], c.paires[2 * c.n - 1]);
  // A path of the dynamics holds more than its last keyword declares, as
  // (for, axe): three floats then three vertex numbers. It keeps a longer
  // value whole.
  if (c.n > 1 && chemin_dynamique(c.paires) && n > w) w = n;
  if (w <= 0) w = n;
  if (w <= 0) w = 1;
  long sel = c.selection ? compte(c.selection) : 0;
  // Every selected row goes through one checked conversion, bounded by what
  // a block of rows of this width can hold, before anything is allocated:
  // the count that sizes the block is the count that clears and fills it.
  long rangs = 1;
  const mot max = static_cast<mot>((MOTS_VALEUR_MAX - 4 - (4 + 2 * MAX_PAIRES)) / w);
  for (long k = 1; k <= sel; ++k) {
    mot r;
    if (entier_de(reel_rangee(c.selection, k), &r, INT32_MIN, max) < 0) return -1;
    rangs = std::max(rangs, static_cast<long>(r));
  }
  int pos;
  mot* ancien = attribut_trouve_pos(o, &pos, c.n, c.paires);
  mot* q = ancien ? ancien + ancien[2] : nullptr;
  // The block is reused when the value fits its shape.
  bool garde = ancien && q[1] == BLOC_REEL && q[3] == w && (sel > 0 ? q[2] >= rangs : q[2] == 1);
  mot* a = ancien;
  if (!garde) {
    // A new block: the old rows are kept under a selection, replaced otherwise.
    long anciens = ancien && sel > 0 && q[1] == BLOC_REEL && q[3] == w ? q[2] : 0;
    a = nouvel_attribut(c, std::max(rangs, anciens), w);
    if (!a) return -1;
    if (anciens) std::memcpy(a + a[2] + 4, q + 4, sizeof(mot) * anciens * w);
  }
  mot* t = a + a[2];
  reel* d = reels(t + 4);
  if (sel == 0) {
    for (long k = 0; k < w; ++k) d[k] = k < n ? x[k] : 0.f;
  } else {
    for (long k = 1; k <= sel; ++k) {
      long r = rangee(c.selection, k);
      if (r < 1) continue;
      for (long j = 0; j < w; ++j) d[(r - 1) * w + j] = j < n ? x[j] : 0.f;
    }
  }
  if (a != ancien) {
    if (ancien) {
      o->donnees[pos] = ptr_vers_mot(a);
      bloc_supprime(ancien);
      attributs_bougent();
    } else if (liste_ajoute(o, a) < 0) {
      bloc_libere(a);
      return -1;
    }
  }
  return 0;
}

// Appends the attribute's values (or the selected rows) to the result.
int lire_attribut(Objet* o, const Chemin& c, mot* acc, const mot* limite) {
  mot* a = attribut_trouve(o->donnees, c.n, c.paires);
  if (!a) return 0;
  mot* t = a + a[2];
  if (!c.selection || t[1] != BLOC_REEL || t[3] <= 0) {
    int r = bloc_ajoute(acc, limite, t, 0);
    return r == -1 ? 0 : r;  // unlike values are passed over
  }
  for (long k = 1, s = compte(c.selection); k <= s; ++k) {
    long r = rangee(c.selection, k);
    if (r < 1 || r > t[2]) continue;
    int e = bloc_ajoute(acc, limite, t, static_cast<int>(r));
    if (e == -12) return e;
  }
  return 0;
}

// vol(1) num, vol("tete") nom: the number or the name of the first object
// found; nil when there is none.
int identite(mot* bloc, const mot* limite, const Chemin& c) {
  for (long i = 1, nb = compte(c.ids); i <= nb; ++i) {
    Objet* o = objet_trouve_arg(1, c.type, c.ids, static_cast<int>(i));
    if (!o) continue;
    if (c.identite == A_NUM) return resultat_scalaire(bloc, limite, static_cast<float>(o->numero));
    const char* n = o->nom ? o->nom : "";
    return resultat_chaine(bloc, limite, n, std::strlen(n));
  }
  resultat_nil(bloc);
  return 0;
}

// Colour per face or per vertex: the path (coul, fac) or (coul, sommet), in
// either order. Its value is the geometry's records (w, r, g, b), one per
// face or vertex; w below 1 is a face or vertex with no colour of its own.
int coul_par_element(const Chemin& c) {
  if (c.type != B_VOL || c.n != 2 || c.paires[0] != 1 || c.paires[2] != 1) return 0;
  int a = c.paires[1], b = c.paires[3];
  if (a == B_COUL && (b == B_FAC || b == B_SOMMET)) return b;
  if (b == B_COUL && (a == B_FAC || a == B_SOMMET)) return a;
  return 0;
}

long nb_elements(Objet* o, int sel) {
  int n = 0, d;
  if (sel == B_FAC) {
    mot* f = vol_fac(o);
    return f ? f[2] : 0;
  }
  return vol_som(o, &n, &d) ? n : 0;
}

int ecrire_coul_element(Objet* o, const Chemin& c, int sel, const mot* v) {
  const reel* x;
  long n;
  if (!flottants(v, &x, &n)) {
    message(0, M_TYPE);
    return -1;
  }
  float rgb[3] = {0, 0, 0};
  for (long k = 0; k < 3 && k < n; ++k) rgb[k] = x[k];
  if (!c.selection) {
    // No selection: every face (or vertex) takes the colour.
    for (long i = 1, nb = nb_elements(o, sel); i <= nb; ++i)
      if (vol_coul_element_ecrit(o, sel, static_cast<int>(i), rgb) < 0) return -1;
    return 0;
  }
  for (long k = 1, s = compte(c.selection); k <= s; ++k) {
    mot r;
    if (entier_de(reel_rangee(c.selection, k), &r) < 0) return -1;
    if (r >= 1 && vol_coul_element_ecrit(o, sel, r, rgb) < 0) return -1;
  }
  return 0;
}

// Appends the colours of the selected faces (or all); those with no colour
// of their own give nothing.
int lire_coul_element(Objet* o, const Chemin& c, int sel, mot* acc, const mot* limite) {
  const mot cle[4] = {1, B_COUL, 1, sel};
  const mot* v = vol_valeur(o, 2, cle);
  if (!v || v[1] != BLOC_REEL || v[3] != -4) return lire_attribut(o, c, acc, limite);  // rows stored plainly
  long s = c.selection ? compte(c.selection) : (v[0] - 4) / 4;
  for (long k = 1; k <= s; ++k) {
    long r = c.selection ? rangee(c.selection, k) : k;
    const reel* rgb = r >= 1 && r <= INT32_MAX ? coul_element(v, static_cast<int>(r)) : nullptr;
    if (!rgb) continue;
    mot t[7] = {7, BLOC_REEL, 3, 1};
    std::memcpy(t + 4, rgb, 3 * sizeof(float));
    int e = bloc_ajoute(acc, limite, t, 0);
    if (e == -12) return e;
  }
  return 0;
}

int dump_attributs(mot* bloc) {
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o) {
    if (o->type <= 0 || !o->donnees || o->donnees[0] < 4 || o->donnees[1] != BLOC_BLOCS) continue;
    objet_imprime(o);
    std::putchar('\n');
    for (mot k = 0; k < o->donnees[2]; ++k) {
      mot* a = bloc_pointe(o->donnees[4 + k]);
      if (!a || a[1] != BLOC_PHRASE) continue;
      std::fputs("  ", stdout);
      for (mot p = 0; p < a[3]; ++p) mot_imprime(a[4 + 2 * p], a[5 + 2 * p]);
      imprimer_attribut(a + a[2], ' ');
      std::putchar('\n');
    }
  }
  bloc[0] = 0;
  return 0;
}
}  // namespace

int attribut(mot* bloc, mot* valeur, const mot* limite) {
  mot* e = premier_element(bloc);
  if (bloc[2] == 1) {
    if (e[1] == 0 && e[2] == A_POIDS) return dump_attributs(bloc);
    if (e[1] == 1 && e[2] == B_SUBST && argument(e)) {
      // The argument itself, tagged 65, is the value.
      mot* v = argument(e);
      mot l = v[0] > 0 ? v[0] : 2;
      std::memmove(bloc + 4, v, sizeof(mot) * l);
      bloc[0] = 4 + l;
      bloc[1] = B_SUBST;
      bloc[2] = 1;
      bloc[3] = 0;
      return 0;
    }
    if (e[1] == 1) return valeur_cle(bloc, valeur, limite);
  }
  Chemin c;
  for (mot k = 0; k < bloc[2]; ++k, e = element_suivant(e)) {
    if (e[1] < 0 || e[1] > 1) return e[1] < 0 ? 1 : e[1];
    if (e[1] == 0 && (e[2] == A_NUM || e[2] == A_NOM)) {
      // With an argument it names the objects; without, it asks for theirs.
      if (argument(e)) c.ids = argument(e);
      else c.identite = e[2];
      continue;
    }
    if (e[1] == 1 && type_objet(e[2]) && !c.type) {
      c.type = e[2];
      if (argument(e)) c.ids = argument(e);
      continue;
    }
    if (c.n == MAX_PAIRES) {
      message(0, 2);
      return -1;
    }
    c.paires[2 * c.n] = e[1];
    c.paires[2 * c.n + 1] = e[2];
    // Inside a path the text function's spelling names the field keyword.
    if (e[1] == 0 && e[2] == 13) c.paires[2 * c.n] = 1, c.paires[2 * c.n + 1] = 122;
    ++c.n;
    if (e[1] == 1 && second_niveau(e[2])) c.selection = argument(e);
    else c.acces = argument(e);
  }
  // A window written limit first, (lim, rota), (lim, for, rota), (lim, joi),
  // is kept under the path of what it limits followed by lim, (rota, lim),
  // where the dynamics and the scene read it.
  if (c.n >= 2 && c.paires[0] == 0 && c.paires[1] == 41) {
    for (int k = 0; k + 1 < c.n; ++k) c.paires[2 * k] = c.paires[2 * k + 2], c.paires[2 * k + 1] = c.paires[2 * k + 3];
    c.paires[2 * c.n - 2] = 0, c.paires[2 * c.n - 1] = 41;
  }
  if (c.type && c.ids && c.n == 0 && c.identite && !valeur) return identite(bloc, limite, c);
  if (!c.type || !c.ids || c.n == 0) {
    resultat_nil(bloc);
    return 0;
  }
  const mot* v = valeur ? valeur : c.acces;
  long nb = compte(c.ids);
  int coul = coul_par_element(c);
  if (v) {
    for (long i = 1; i <= nb; ++i) {
      Objet* o = objet_trouve_arg(1, c.type, c.ids, static_cast<int>(i));
      if (o && (coul ? ecrire_coul_element(o, c, coul, v) : ecrire_attribut(o, c, v)) < 0) return -1;
    }
    // A write leaves the value in place of the phrase.
    mot l = v[0] > 0 ? v[0] : 2;
    if (bloc + l >= limite) return PILE_PLEINE;
    std::memmove(bloc, v, sizeof(mot) * l);
    return 0;
  }
  // A read gathers behind the phrase, then moves into its place.
  mot* acc = bloc + bloc[0];
  if (acc + 4 >= limite) return PILE_PLEINE;
  acc[0] = 4;
  acc[1] = BLOC_NIL;
  acc[2] = 0;
  acc[3] = 1;
  for (long i = 1; i <= nb; ++i) {
    Objet* o = objet_trouve_arg(1, c.type, c.ids, static_cast<int>(i));
    if (!o) continue;
    int r = coul ? lire_coul_element(o, c, coul, acc, limite) : lire_attribut(o, c, acc, limite);
    if (r < 0) return r;
  }
  if (acc[0] == 4) {
    resultat_nil(bloc);
    return 0;
  }
  if (acc[1] == BLOC_REEL) acc[3] = 1;
  std::memmove(bloc, acc, sizeof(mot) * acc[0]);
  return 0;
}
