// What the geometry's command handlers share: arguments read as numbers,
// the objects a phrase names, values written in place of the phrase.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "geom/commande_interne.h"
#include "startup/startup.h"

bool lit_nombres(const mot* v, Nombres* r) {
  r->x = nullptr;
  r->n = 0;
  r->copie.clear();
  if (!v) return false;
  // A scalar pair: the tag, then the value.
  if (v[0] == BLOC_REEL) {
    r->x = reels(v + 1);
    r->n = 1;
    return true;
  }
  if (v[0] == BLOC_ENTIER) {
    r->copie.assign(1, static_cast<float>(v[1]));
  } else if (v[0] >= 4 && v[1] == BLOC_REEL) {
    r->x = reels(v + 4);
    r->n = v[0] - 4;
    return true;
  } else if (v[0] >= 4 && v[1] == BLOC_ENTIER) {
    r->copie.assign(v + 4, v + v[0]);
  } else {
    return false;
  }
  r->x = r->copie.data();
  r->n = static_cast<long>(r->copie.size());
  return true;
}

int mauvais_argument(const mot* e, int n) {
  const char* nom = mot_nom(e[1], e[2]);
  std::printf("%s: ", nom ? nom : "?");
  message(0, n);
  return -1;
}

int lit_params(mot* e, float* dst, int max) {
  mot* v = el_valeur(e);
  if (!v) return 0;
  Nombres r;
  if (!lit_nombres(v, &r)) return mauvais_argument(e, MES_VALEUR);
  for (long k = 0; k < r.n && k < max; ++k) dst[k] = r[k];
  return r.n > 0x7fffffff ? 0x7fffffff : static_cast<int>(r.n);
}

int lit_numeros(mot* e, std::vector<int>& out) {
  out.clear();
  mot* v = el_valeur(e);
  if (!v) return 0;
  Nombres r;
  if (!lit_nombres(v, &r)) return mauvais_argument(e, MES_VALEUR);
  out.reserve(r.n);
  for (long k = 0; k < r.n; ++k) {
    float x = r[k];
    // Numbers far out of any table are refused like fractions.
    mot n;
    if (x != std::trunc(x) || !reel_entier(x, &n)) return mauvais_argument(e, MES_INDICE);
    out.push_back(n);
  }
  return static_cast<int>(out.size());
}

bool cible_lit(Cibles& c, mot* e) {
  int ord = e[2];
  if (e[1] == 0) {
    if (ord != A_NUM && ord != A_NOM) return false;
    c.ids = el_valeur(e);
    c.donne = true;
    return true;
  }
  if (e[1] != 1) return false;
  switch (ord) {
    case B_VOL: case B_GRILLE117: case B_GRILLE133:
      ord = B_VOL;
      break;
    case B_LUM: case B_IMAGE: case B_TRA: case B_CIN: case B_VUE: case B_BROSSE: case 115: case 152:
      break;
    default:
      return false;
  }
  if (c.donne && c.genre != ord) return true;  // a second kind is passed over
  c.genre = ord;
  if (el_valeur(e)) c.ids = el_valeur(e);
  c.donne = true;
  return true;
}

long nb_ids(const mot* a) {
  if (!a || a[0] < 4) return 0;
  if (a[1] == BLOC_CHAINE) return 1;
  return a[1] == BLOC_REEL ? a[0] - 4 : a[2];
}

Objet* cible(const Cibles& c, long i) {
  if (!c.ids) return nullptr;
  return objet_trouve_arg(1, c.genre, c.ids, static_cast<int>(i));
}

int introuvable(const Cibles& c) {
  const char* nom = mot_nom(1, c.genre);
  std::printf("%s", nom ? nom : "?");
  const mot* a = c.ids;
  if (a && a[0] > 4 && a[1] == BLOC_REEL)
    std::printf(" %d", entier_sature(lit_reel(a + 4)));
  else if (a && a[0] > 4 && a[1] == BLOC_CHAINE)
    std::printf(" %s", bloc_texte(const_cast<mot*>(a)));
  std::printf(": ");
  message(0, MES_ABSENT);
  return -1;
}

void rend_nil(mot* bloc) { entete(bloc, 4, BLOC_NIL, 0, 1); }

int rend_reels(mot* bloc, const mot* limite, const float* x, long n) {
  if (n <= 0) {
    rend_nil(bloc);
    return 0;
  }
  if (n > 0x3fffffff || limite - bloc < 4 + n) return PILE_PLEINE;
  // The floats may stand inside the phrase: moved before the header.
  std::memmove(bloc + 4, x, n * sizeof(float));
  entete(bloc, static_cast<mot>(4 + n), BLOC_REEL, static_cast<mot>(n), 1);
  return 0;
}

int rend_valeur(mot* bloc, const mot* limite, const mot* valeur) {
  mot l = valeur[0] > 0 ? valeur[0] : 2;
  if (limite - bloc <= l) return PILE_PLEINE;
  std::memmove(bloc, valeur, sizeof(mot) * l);
  return 0;
}

int route_absente(mot* bloc, int env, int ord) {
  const char* nom = mot_nom(env, ord);
  std::printf("%s: non implemente", nom ? nom : "?");
  cloche();
  return rend_rien(bloc);
}

int sommets_sur_pile(Objet* o, mot* dst, const mot* limite) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  if (!s) return geom_erreur_valeur(o->numero, MES_NUL);
  if (limite - dst < 4 + 3L * n) return PILE_PLEINE;
  entete(dst, 4 + 3 * n, BLOC_REEL, n, 3);
  reel* q = reels(dst + 4);
  for (const reel *p = s, *fin = s + static_cast<long>(n) * d; p < fin; p += d, q += 3) std::memcpy(q, p, 3 * sizeof(float));
  return n;
}

int vol_ligne_ecrit(Objet* o, const reel* p, int n) {
  if (vol_som_ecrit(o, p, n, 3)) return -1;
  std::vector<mot> f;
  long nf = n > 1 ? n - 1 : 0;
  try {
    f.resize(4 + 6 * nf);
  } catch (const std::bad_alloc&) {
    erreur_memoire(nf, 6);
    return -1;
  }
  entete(f.data(), static_cast<mot>(f.size()), BLOC_LISTE, static_cast<mot>(nf), 0);
  for (long i = 0; i < nf; ++i) {
    mot* s = f.data() + 4 + 6 * i;
    entete(s, 6, BLOC_ENTIER, 1, 2);
    s[4] = static_cast<mot>(i + 1);
    s[5] = static_cast<mot>(i + 2);
  }
  // A line is no grid; its closed flag is kept.
  vol_grille_fixe(o, 0, 0, 0, 0, vol_ferme(o));
  return vol_fac_ecrit(o, f.data());
}
