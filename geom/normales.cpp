// Face and vertex normals of a volume, cached in (b63, b15) and (b63, b32).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "core/message.h"
#include "geom/interne.h"
#include "geom/newell.h"
#include "startup/startup.h"

namespace {
constexpr int MAX_FACES_SOMMET = 100;

// Work tables kept from call to call: normals are remade after every move.
std::vector<double> sommes;
std::vector<int> comptes;

inline int grossier(int n, int p) { return n <= 0 ? 0 : std::max(1, n / p); }

bool en_cache(const mot* a, int force, int nl, int nc) {
  if (!a || a[1] == 0 || force) return false;
  const mot* v = a + a[2];
  return v[1] == BLOC_REEL && v[2] == nl && v[3] == nc && v[0] >= 4 + nl * nc;
}

mot* remplit(Objet* o, const mot* cle, int nl, int nc) {
  if (static_cast<long>(nl) * nc > 0x3fffffff) {
    geom_erreur_valeur(nl, MES_DEBORDEMENT);
    return nullptr;
  }
  mot* a = attribut_prepare(o, 2, cle, 4 + nl * nc);
  if (a) entete(valeur_de(a), 4 + nl * nc, BLOC_REEL, nl, nc);
  return a;
}
}  // namespace

int pas_normale() {
  if (geom.pas_normale > 0) return geom.pas_normale;
  MotCle* m = mot_entree(1, B_NORMALE);
  return m && m->nv == 6 ? 6 : 3;
}

void normale_face(const mot* face, const reel* som, int d, float* out, float* centre) {
  int k;
  const mot* c = face_contour(face, &k);
  newell(k, [&](int j) { return som + static_cast<long>(c[j] - 1) * d; }, out, centre);
}

mot* gen_normale_fac(Objet* o, const reel* sommets, int force, int precision) {
  int nb, d;
  reel* som = som_requis(o, &nb, &d);
  if (!som) return nullptr;
  const reel* s = sommets ? sommets : som;
  mot* a = vol_attribut(o, 2, CLE_NORMALE_FAC);
  if (grille_utilisable(o, nb) && vol_nz(o) == 0) {
    int p = std::max(1, precision);
    int nx = vol_nx(o), ny = vol_ny(o), ferme = vol_ferme(o);
    int cx = grossier(nx, p), cy = grossier(ny, p);
    int nf = (ferme && cx < 2 ? 0 : cx) * cy;
    if (en_cache(a, force, nf, 3)) return a;
    a = remplit(o, CLE_NORMALE_FAC, nf, 3);
    if (!a) return nullptr;
    normales_fac_grille(s, d, nx, ny, ferme, p, reels(valeur_de(a) + 4));
    a[1] = 1;
    return a;
  }
  mot* fac = vol_fac(o);
  int nf = fac ? fac[2] : 0;
  int pas = pas_normale();
  if (en_cache(a, force, nf, pas)) return a;
  if (fac && fac_verifie(fac, nb)) return nullptr;
  a = remplit(o, CLE_NORMALE_FAC, nf, pas);
  if (!a) return nullptr;
  reel* out = reels(valeur_de(a) + 4);
  float centre[3];
  if (nf)
    pour_faces(fac, [&](int i, const mot* c, int k) {
      reel* n = out + static_cast<long>(i - 1) * pas;
      newell(k, [&](int j) { return s + static_cast<long>(c[j] - 1) * d; }, n,
             pas == 6 ? n + 3 : centre);
    });
  a[1] = 1;
  return a;
}

mot* gen_normale_som(Objet* o, const reel* sommets, int force) {
  int nb, d;
  reel* som = som_requis(o, &nb, &d);
  if (!som) return nullptr;
  const reel* s = sommets ? sommets : som;
  mot* af = gen_normale_fac(o, sommets, force, 1);
  if (!af) return nullptr;
  const mot* vf = valeur_de(af);
  const reel* nf = reels(vf + 4);
  int pas_f = vf[3];
  bool grille = grille_utilisable(o, nb) && vol_nz(o) == 0;
  int pas = grille ? 3 : pas_normale();
  mot* a = vol_attribut(o, 2, CLE_NORMALE_SOM);
  if (en_cache(a, force, nb, pas)) return a;
  if (grille) {
    a = remplit(o, CLE_NORMALE_SOM, nb, 3);
    if (!a) return nullptr;
    normales_som_grille(nf, vol_nx(o), vol_ny(o), vol_ferme(o), reels(valeur_de(a) + 4), 3);
    a[1] = 1;
    return a;
  }
  mot* fac = vol_fac(o);
  if (fac && (fac_verifie(fac, nb) || fac[2] != vf[2])) return nullptr;
  try {
    sommes.assign(3 * static_cast<std::size_t>(nb), 0.0);
    comptes.assign(nb, 0);
  } catch (const std::bad_alloc&) {
    erreur_memoire(nb, 16);
    return nullptr;
  }
  // Sums in the order of the faces; a vertex takes at most 100 of them.
  if (fac)
    pour_contours(fac, [&](int i, const mot* c, int k) {
      const reel* n = nf + static_cast<long>(i - 1) * pas_f;
      for (int j = 0; j < k; ++j) {
        int v = c[j] - 1;
        if (comptes[v] == MAX_FACES_SOMMET) {
          objet_imprime(o);
          std::printf("%d ", v + 1);
          message(0, MES_TROP);
          continue;
        }
        ++comptes[v];
        double* t = &sommes[3 * static_cast<std::size_t>(v)];
        t[0] += n[0];
        t[1] += n[1];
        t[2] += n[2];
      }
    });
  a = remplit(o, CLE_NORMALE_SOM, nb, pas);
  if (!a) return nullptr;
  reel* out = reels(valeur_de(a) + 4);
  for (int v = 0; v < nb; ++v) {
    normer_d(&sommes[3 * static_cast<std::size_t>(v)], out + static_cast<long>(v) * pas);
    if (pas == 6)
      for (int k = 0; k < 3; ++k) out[static_cast<long>(v) * 6 + 3 + k] = s[static_cast<long>(v) * d + k];
  }
  a[1] = 1;
  return a;
}
