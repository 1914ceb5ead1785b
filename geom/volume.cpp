// The volume's own attributes: vertices, faces, colours and illumination,
// read as pointers into their Blocs and written with the rules that keep the
// derived data honest.
#include <algorithm>
#include <cstring>

#include "core/message.h"
#include "geom/interne.h"

Geom geom;

bool est_volume(const Objet* o) { return o && o->type == B_VOL && o->env == 1; }

bool forme_grille(int forme) {
  switch (forme) {
    case B_GRILLE: case B_GRILLE20: case B_GRILLE21: case B_GRILLE117: case B_GRILLE119:
    case B_GRILLE133:
      return true;
  }
  return false;
}

void vol_grille_fixe(Objet* o, int forme, int nx, int ny, int nz, int ferme) {
  o->sous_type = static_cast<std::uint16_t>(forme);
  o->f1 = static_cast<std::uint16_t>(nx);
  o->f2 = static_cast<std::uint16_t>(ny);
  o->f3 = static_cast<std::uint16_t>(nz);
  o->f4 = static_cast<std::uint16_t>(ferme);
}

long nb_som_grille(int nx, int ny, int nz, int ferme) {
  if (nx < 0 || ny < 0 || nz < 0) return 0;
  long par_ligne = ferme ? nx : nx + 1;
  return par_ligne * (ny + 1L) * (nz + 1L);
}

bool grille_utilisable(Objet* o, int nb_som) {
  return forme_grille(vol_forme(o)) && nb_som > 0 &&
         nb_som_grille(vol_nx(o), vol_ny(o), vol_nz(o), vol_ferme(o)) == nb_som;
}

reel* vol_som(Objet* o, int* nb, int* d) {
  *nb = 0;
  *d = 3;
  mot* v = vol_valeur(o, 1, CLE_SOM);
  if (!v || v[1] != BLOC_REEL || v[2] < 0 || v[3] < 3 ||
      v[0] < 4 + static_cast<long>(v[2]) * v[3])
    return nullptr;
  *nb = v[2];
  *d = v[3];
  return reels(v + 4);
}

mot* vol_fac(Objet* o) {
  mot* f = vol_valeur(o, 1, CLE_FAC);
  return f && f[1] == BLOC_LISTE ? f : nullptr;
}

const mot* face_contour(const mot* face, int* k) {
  if (face[3] != 0) {
    *k = face[3];
    return face + 4;
  }
  if (face[2] < 1) {
    *k = 0;
    return face + 4;
  }
  *k = face[4 + 3];
  return face + 8;
}

namespace {
int contour_verifie(const mot* c, const mot* fin, int nb_som, int face) {
  if (c + 4 > fin || c[3] <= 0 || c[0] < 4 + c[3] || c + c[0] > fin)
    return geom_erreur_valeur(face, MES_TROP);
  for (int j = 0; j < c[3]; ++j)
    if (c[4 + j] < 1 || c[4 + j] > nb_som) return geom_erreur_valeur(c[4 + j], MES_INDICE);
  return 0;
}
}  // namespace

int fac_verifie(const mot* fac, int nb_som) {
  if (!fac || fac[0] < 4 || fac[1] != BLOC_LISTE || fac[2] < 0) return geom_erreur_valeur(0, MES_TROP);
  const mot* fin = fac + fac[0];
  const mot* p = fac + 4;
  for (int i = 1; i <= fac[2]; ++i, p += p[0]) {
    if (p + 4 > fin || p[0] < 4 || p + p[0] > fin || p[3] < 0) return geom_erreur_valeur(i, MES_TROP);
    if (p[3] > 0) {
      if (contour_verifie(p, fin, nb_som, i)) return -1;
      continue;
    }
    // Composite: outer contour, then holes, all inside the face.
    const mot* c = p + 4;
    for (int j = 0; j < p[2]; ++j, c += c[0])
      if (contour_verifie(c, p + p[0], nb_som, i)) return -1;
  }
  return 0;
}

// ---- appearance ------------------------------------------------------------------
namespace {
constexpr float COUL_DEFAUT[3] = {1, 1, 1};
constexpr float ILLUM_DEFAUT[5] = {1, 1, 0, 0, 0};
float coul_lue[3], illum_lue[5];

// The values given, completed by the defaults (a user may give fewer).
const reel* complete(Objet* o, const mot* cle, const float* defaut, int n, float* dst) {
  mot* v = vol_valeur(o, 1, cle);
  std::copy(defaut, defaut + n, dst);
  if (v && v[1] == BLOC_REEL && v[0] > 4) {
    int nv = std::min<int>(n, v[0] - 4);
    std::copy(reels(v + 4), reels(v + 4) + nv, dst);
  }
  return dst;
}

int ecrit_reels(Objet* o, const mot* cle, const float* v, int n) {
  mot* a = attribut_prepare(o, 1, cle, 4 + n);
  if (!a) return -1;
  mot* b = valeur_de(a);
  entete(b, 4 + n, BLOC_REEL, n, 1);
  std::memcpy(b + 4, v, n * sizeof(float));
  a[1] = BLOC_PHRASE;
  return 0;
}
}  // namespace

const reel* vol_coul(Objet* o) { return complete(o, CLE_COUL, COUL_DEFAUT, 3, coul_lue); }
const reel* vol_illum(Objet* o) { return complete(o, CLE_ILLUM, ILLUM_DEFAUT, 5, illum_lue); }

const reel* coul_element(const mot* valeur, int i) {
  if (!valeur || i < 1 || 4 + 4L * i > valeur[0]) return nullptr;
  const mot* r = valeur + 4 + 4L * (i - 1);
  return r[0] < 1 ? nullptr : reels(r + 1);
}

int vol_coul_ecrit(Objet* o, const float* rgb) { return ecrit_reels(o, CLE_COUL, rgb, 3); }

int vol_illum_ecrit(Objet* o, const float* v, int n) {
  float t[5];
  std::copy(ILLUM_DEFAUT, ILLUM_DEFAUT + 5, t);
  std::copy(v, v + std::clamp(n, 0, 5), t);
  return ecrit_reels(o, CLE_ILLUM, t, 5);
}

int vol_coul_element_ecrit(Objet* o, int selecteur, int i, const float* rgb) {
  int nb, d;
  mot* fac = vol_fac(o);
  if (selecteur == B_FAC)
    nb = fac ? fac[2] : 0;
  else if (!vol_som(o, &nb, &d))
    nb = 0;
  if (i < 1 || i > nb) return geom_erreur_valeur(i, MES_INDICE);
  const mot cle[4] = {1, B_COUL, 1, selecteur};
  mot lg = 4 + 4 * nb;
  mot* a = vol_attribut(o, 2, cle);
  mot* v = valeur_de(a);
  if (!v || v[0] < lg) {
    // Records of 4 words; -4 is "no colour here", and a walker hops by 4.
    mot* neuf = bloc_alloue(lg);
    if (!neuf) return -1;
    entete(neuf, lg, BLOC_REEL, nb, -4);
    for (int k = 0; k < nb; ++k) neuf[4 + 4 * k] = -4;
    if (v) std::memcpy(neuf + 4, v + 4, std::min<long>(v[0] - 4, lg - 4) * sizeof(mot));
    a = attribut_prepare(o, 2, cle, lg);
    if (!a) {
      bloc_libere(neuf);
      return -1;
    }
    bloc_copie(valeur_de(a), neuf);
    bloc_libere(neuf);
    v = valeur_de(a);
  }
  mot* r = v + 4 + 4 * (i - 1);
  r[0] = 4;
  std::memcpy(r + 1, rgb, 3 * sizeof(float));
  a[1] = BLOC_PHRASE;
  return 0;
}

// ---- geometry ---------------------------------------------------------------------
int vol_som_ecrit(Objet* o, const float* v, int nb, int d) {
  if (!est_volume(o)) return geom_erreur(o, MES_USAGE);
  if (nb < 0 || d < 3) return geom_erreur_valeur(nb < 0 ? nb : d, MES_INDICE);
  if (static_cast<long>(nb) * d > 0x3fffffff) return geom_erreur_valeur(nb, MES_DEBORDEMENT);
  mot lg = 4 + nb * d;
  mot* a = attribut_prepare(o, 1, CLE_SOM, lg);
  if (!a) return -1;
  mot* b = valeur_de(a);
  entete(b, lg, BLOC_REEL, nb, d);
  if (nb) std::memcpy(b + 4, v, static_cast<std::size_t>(nb) * d * sizeof(float));
  a[1] = BLOC_PHRASE;
  invalider_vol(o, 0);
  if (mot* c = vol_attribut(o, 2, CLE_AFFICHE)) c[1] = 0;
  return 0;
}

int vol_fac_ecrit(Objet* o, const mot* fac) {
  if (!est_volume(o)) return geom_erreur(o, MES_USAGE);
  int nb, d;
  if (!vol_som(o, &nb, &d)) return geom_erreur_valeur(o->numero, MES_NUL);
  if (fac_verifie(fac, nb)) return -1;
  mot* a = attribut_prepare(o, 1, CLE_FAC, fac[0]);
  if (!a) return -1;
  bloc_copie(valeur_de(a), fac);
  a[1] = BLOC_PHRASE;
  vol_fac_change(o);
  return 0;
}

void vol_som_change(Objet* o) {
  invalider_vol(o, 0);
  if (mot* c = vol_attribut(o, 2, CLE_AFFICHE)) c[1] = 0;
}

void vol_fac_change(Objet* o) {
  attribut_supprime(o, 3, CLE_VOISIN);
  attribut_supprime(o, 1, CLE_SEGMENT);
  invalider_vol(o, 0);
}

// Vertices of a volume that must have some; null after the report.
reel* som_requis(Objet* o, int* nb, int* d) {
  if (!est_volume(o)) {
    geom_erreur(o, MES_USAGE);
    return nullptr;
  }
  reel* s = vol_som(o, nb, d);
  if (!s) geom_erreur_valeur(o->numero, MES_NUL);
  return s;
}
