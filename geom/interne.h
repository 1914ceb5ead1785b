// Private helpers of the geometry folder.
#pragma once
#include <new>

#include "geom/geom.h"

// The object, then message (0, n); gives -1.
int geom_erreur(const Objet* o, int n);
// "%d: " with the value, then message (0, n); gives -1.
int geom_erreur_valeur(long v, int n);

// Vertices of a volume that must have some: null after message 14 (not a
// volume) or 22 (no vertices).
reel* som_requis(Objet* o, int* nb, int* d);

// Keys.
constexpr mot CLE_SOM[] = {1, B_SOM};
constexpr mot CLE_FAC[] = {1, B_FAC};
constexpr mot CLE_COUL[] = {1, B_COUL};
constexpr mot CLE_COUL_FAC[] = {1, B_COUL, 1, B_FAC};
constexpr mot CLE_COUL_SOM[] = {1, B_COUL, 1, B_SOMMET};
constexpr mot CLE_ILLUM[] = {1, B_ILLUM};
constexpr mot CLE_NORMALE_FAC[] = {1, B_NORMALE, 1, B_FAC};
constexpr mot CLE_NORMALE_SOM[] = {1, B_NORMALE, 1, B_SOMMET};
constexpr mot CLE_VOISIN[] = {1, B_VOISIN, 1, B_FAC, 1, B_SOMMET};
constexpr mot CLE_SEGMENT[] = {1, B_SEGMENT};
constexpr mot CLE_CENTRE[] = {0, A_CENTRE};
constexpr mot CLE_CENTRE_COPIE[] = {0, A_CENTRE, 0, A_TOP};
constexpr mot CLE_AFFICHE[] = {1, B_AFFICHE, 1, B_SOM};
constexpr mot CLE_MATRICE[] = {0, A_MATRICE};
constexpr mot CLE_POIDS[] = {1, B_POIDS, 1, B_SOMMET};
constexpr mot CLE_BORNES[] = {1, B_BORNES};

// A table built from the checked faces of a volume of nb vertices by
// `recherche(fac)`; null after a reported failure (bad faces, no memory).
template <class R>
mot* table_des_faces(Objet* o, int nb, R recherche) {
  mot* fac = vol_fac(o);
  if (fac && fac_verifie(fac, nb)) return nullptr;
  try {
    return recherche(fac);
  } catch (const std::bad_alloc&) {
    erreur_memoire(nb, 8);
    return nullptr;
  }
}

// Keeps a freshly built table t as the volume's attribute of that key,
// marked valid, and releases t. The attribute's header, or null.
inline mot* garde_table(Objet* o, int n, const mot* cle, mot* t) {
  if (!t) return nullptr;
  mot* a = attribut_prepare(o, n, cle, t[0]);
  if (a) {
    bloc_copie(valeur_de(a), t);
    a[1] = 1;
  }
  bloc_libere(t);
  return a;
}

// A value Bloc header.
inline void entete(mot* b, mot lg, mot tag, mot nl, mot nc) {
  b[0] = lg;
  b[1] = tag;
  b[2] = nl;
  b[3] = nc;
}

// A float attribute of nb rows of nc under the key, filled by f(floats),
// marked generated. The attribute's header, or null after a message.
template <class F>
mot* reels_generes(Objet* o, int paires, const mot* cle, long nb, int nc, F f) {
  if (4 + nb * nc > 0x7fffffff) return geom_erreur_valeur(nb, MES_DEBORDEMENT), nullptr;
  mot* a = attribut_prepare(o, paires, cle, static_cast<mot>(4 + nb * nc));
  if (!a) return nullptr;
  mot* v = valeur_de(a);
  entete(v, static_cast<mot>(4 + nb * nc), BLOC_REEL, static_cast<mot>(nb), nc);
  f(reels(v + 4));
  a[1] = 1;
  return a;
}

// Calls f(numero, contour, k) for each face of a checked face list, numbers
// from 1; a composite face gives its outer contour.
template <class F>
void pour_faces(const mot* fac, F f) {
  const mot* p = fac + 4;
  for (int i = 1; i <= fac[2]; ++i, p = face_suivante(p)) {
    int k;
    const mot* c = face_contour(p, &k);
    f(i, c, k);
  }
}

// Calls f(numero, contour, k) for every contour of every face.
template <class F>
void pour_contours(const mot* fac, F f) {
  const mot* p = fac + 4;
  for (int i = 1; i <= fac[2]; ++i, p = face_suivante(p)) {
    if (p[3] != 0) {
      f(i, p + 4, p[3]);
      continue;
    }
    const mot* c = p + 4;
    for (int j = 0; j < p[2]; ++j, c += c[0]) f(i, c + 4, c[3]);
  }
}

// Number of vertices of a grid, 0 when the sizes are not those of a grid.
long nb_som_grille(int nx, int ny, int nz, int ferme);
// True when the volume is a grid form whose vertex count matches its sizes.
bool grille_utilisable(Objet* o, int nb_som);
// Face normals of a single-layer grid with the precision p, stride 3.
void normales_fac_grille(const reel* som, int d, int nx, int ny, int ferme, int p, reel* out);
// Vertex normals of a single-layer grid from its face normals.
void normales_som_grille(const reel* nf, int nx, int ny, int ferme, reel* out, int pas);
