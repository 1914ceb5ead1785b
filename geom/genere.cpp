// The derived data of a volume in the order its users rely on: a vertex
// normal needs the face normals, and both need the faces.
#include <cstdio>

#include "geom/interne.h"

namespace {
int echec(const char* etape) {
  std::printf("%s\n", etape);
  return -1;
}
}  // namespace

int vol_genere(Objet* o) {
  int nb, d;
  if (!est_volume(o)) return geom_erreur(o, MES_USAGE);
  int forme = vol_forme(o);
  if (!vol_som(o, &nb, &d)) {
    // These forms may lawfully have no stored vertices.
    if (forme == B_SURFACE || forme == B_NUAGE) return 0;
    return geom_erreur_valeur(o->numero, MES_NUL);
  }
  if (forme == B_SOM || forme == B_NUAGE) return 0;
  if (!vol_fac(o) && grille_utilisable(o, nb)) {
    // A grid keeps no faces of its own: they follow from its sizes.
    mot* f = gen_fac_grille(vol_nx(o), vol_ny(o), vol_nz(o), vol_ferme(o));
    if (!f) return echec(vol_ferme(o) ? "gen_fac_fermer" : "gen_fac_ouvert");
    mot* a = attribut_prepare(o, 1, CLE_FAC, f[0] - 6);
    if (a) {
      bloc_copie(valeur_de(a), f + 6);
      a[1] = 1;
    }
    bloc_libere(f);
    if (!a) return echec(vol_ferme(o) ? "gen_fac_fermer" : "gen_fac_ouvert");
  }
  if (!vol_fac(o)) return 0;
  if (!gen_normale_fac(o, nullptr, 0, 1)) return echec("gen_normale_fac");
  if (!gen_normale_som(o, nullptr, 0)) return echec("gen_normale_som");
  if (!generer_segment_vol(o, 0, 1, 0)) return echec("generer_segment_vol");
  if (!gen_voisin_fac_som(o, 0)) return echec("gen_voisin_fac_som");
  return 0;
}
