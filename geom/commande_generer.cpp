// The command generer: derived data of volumes on demand.
//   generer vol(1)                   everything, in the order its users need
//   generer vol(1,2) normale fac     face normals (normale sommet: vertex normals)
//   generer vol(1) centre            centres, recomputed
//   generer vol(1) segment           the edges
//   generer vol(1) voisin            faces around each vertex
//   generer vol(1) boite [fac]       the box of the volume [of each face]
//   generer vol(1) boite sommet      boxes of groups of vertices (normale(p): p a group)
//   generer vol(1) boite trait       boxes of the grid's rows (bornes: its columns)
//   generer vol(1) choc              weights of the vertices
//   generer vol(3) nappe num(1,2)    volume 3 stretched over the lines 1 and 2
//   generer vol(1) fac taille(x,y,z) faces from the line of vertices to a point
//   generer [normale fac ...]        a new volume, copy of volume 0 (or of the
//                                    default square), takes the next number
// With the state of edi on, each volume generated is printed as +number.
// The routes that build a volume from others (ruled surfaces, adhesion,
// masks, meshes from a point, skeleton links) say that they are not here.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "geom/commande_interne.h"
#include "startup/startup.h"

namespace {
constexpr int B_SURF = 20, B_PAVE = 21, B_TEX = 54, B_SUIV = 62, B_RAPIDE = 69, B_MASQUE = 75, B_TRAIT = 76,
              B_SCENE = 115, B_MAILLE = 135, B_RESSORT = 151;
constexpr int Q_CENTRE = -A_CENTRE;  // a42 as what to generate, apart from b42

struct Demande {
  int quoi = 0, sur = 0;
  int genre = B_VOL;
  mot* ids = nullptr;
  mot* source = nullptr;  // further objects (a57, a82)
  float point[3] = {0, 0, 0};
  int precision = 1;
  bool force = false, transfo = false;
  mot* absente = nullptr;  // an element whose route this system lacks
};

bool est_transfo(int ord) {
  return ord == B_DEP || ord == B_DEP2 || (ord >= B_ROTA && ord <= B_HOMO) || (ord >= B_SECX && ord <= B_SEC) ||
         (ord >= B_SYMX && ord <= B_SYM);
}

int lit(Demande& d, mot* bloc) {
  int r = 0;
  mot* prec = nullptr;  // b13 waits for the keyword after it
  pour_elements(bloc, [&](mot* e) {
    if (r < 0) return;
    mot* v = el_valeur(e);
    float x[3] = {0, 0, 0};
    if (prec) {
      if (e[1] == 1 && (e[2] == B_SOMMET || e[2] == B_VUE)) {
        if (!d.absente) d.absente = e;
      } else {
        r = mauvais_argument(prec, MES_VALEUR);
      }
      prec = nullptr;
      return;
    }
    if (e[1] == 0) {
      switch (e[2]) {
        case A_LIB: case A_OPT: case A_GENERER: case A_TEM:
          if (lit_params(e, x, 1) < 0) r = -1;
          break;
        case A_MATRICE_CMD: case A_MATRICE: if (!d.absente) d.absente = e; break;
        case A_CENTRE: d.quoi = Q_CENTRE; break;
        case A_TOP: d.force = true; break;
        case A_NUM: case A_NOM: d.source = v; break;
        case A_TAILLE: {
          int k = lit_params(e, x, 3);
          if (k < 0) r = -1;
          else if (k > 3 || !(std::fabs(x[0]) < 1e9f)) r = mauvais_argument(e, MES_INDICE);
          else std::memcpy(d.point, x, sizeof(float) * k);
          break;
        }
      }
      return;
    }
    if (e[1] != 1) return;
    switch (e[2]) {
      case B_VOL: case B_LUM: case B_CIN: case B_VUE: case B_SCENE: case B_BROSSE:
        d.genre = e[2];
        if (v) d.ids = v;
        break;
      case B_IMAGE: case B_TEX: case B_AFFICHE: case B_SUIV: case B_VIT: case B_AJUST: case B_MAILLE:
      case B_RESSORT: case B_TABLEAU: case B_RES:
        if (!d.absente) d.absente = e;
        break;
      case B_PROJ: prec = e; break;
      case B_SEGMENT: case B_MASQUE: case B_SURFACE: case B_POIDS: case B_BOITE: case B_VOISIN: case B_SURF:
        d.quoi = e[2];
        break;
      case B_NORMALE: {
        int k = lit_params(e, x, 1);
        if (k < 0) r = -1;
        if (mot p; k > 0 && reel_entier(x[0], &p, 1, 999999)) d.precision = p;
        d.force = true;
        if (d.quoi == 0) d.quoi = B_NORMALE;
        break;
      }
      case B_FAC: case B_PAVE: case B_SOMMET: case B_TRAIT: case B_BORNES: case B_SOM:
        d.sur = e[2];
        break;
      case B_F4: case B_RAPIDE: d.force = true; break;
      default:
        if (est_transfo(e[2])) d.transfo = true;
    }
  });
  if (r == 0 && prec) r = mauvais_argument(prec, MES_VALEUR);
  return r;
}

// Boxes: the least and greatest coordinates, 6 floats.
void boite(const reel* s, int d, const int* liste, int n, float* b) {
  for (int k = 0; k < 3; ++k) b[k] = FLT_MAX, b[3 + k] = -FLT_MAX;
  for (int j = 0; j < n; ++j) {
    const reel* p = s + static_cast<long>(liste ? liste[j] - 1 : j) * d;
    for (int k = 0; k < 3; ++k) b[k] = std::min(b[k], p[k]), b[3 + k] = std::max(b[3 + k], p[k]);
  }
}

mot* boite_vol(Objet* o) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  if (!s) return geom_erreur_valeur(o->numero, MES_NUL), nullptr;
  const mot cle[] = {1, B_BOITE};
  return reels_generes(o, 1, cle, 6, 1, [&](reel* b) { boite(s, d, nullptr, n, b); });
}

// Per face: its box (b141, b15), or the centre of its outer contour (a42, b15).
mot* par_face(Objet* o, bool centres) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  mot* fac = vol_fac(o);
  if (!s || !fac) return geom_erreur_valeur(o->numero, MES_NUL), nullptr;
  if (fac_verifie(fac, n)) return nullptr;
  const mot cle_b[] = {1, B_BOITE, 1, B_FAC}, cle_c[] = {0, A_CENTRE, 1, B_FAC};
  int nc = centres ? 3 : 6;
  return reels_generes(o, 2, centres ? cle_c : cle_b, fac[2], nc, [&](reel* out) {
    pour_faces(fac, [&](int i, const mot* c, int k) {
      reel* q = out + static_cast<long>(i - 1) * nc;
      if (!centres) {
        boite(s, d, c, k, q);
        return;
      }
      double m[3] = {0, 0, 0};
      for (int j = 0; j < k; ++j)
        for (int a = 0; a < 3; ++a) m[a] += s[static_cast<long>(c[j] - 1) * d + a];
      for (int a = 0; a < 3; ++a) q[a] = k ? static_cast<float>(m[a] / k) : 0.f;
    });
  });
}

// Faces from the line of the volume's vertices to a point, which becomes
// the last vertex: triangles point, i, i + 1.
int eventail(Objet* o, const float* p) {
  int n, d;
  reel* s = vol_som(o, &n, &d);
  if (!s || n < 2) return geom_erreur_valeur(o->numero, MES_NUL);
  std::vector<float> v;
  std::vector<mot> f{0, BLOC_LISTE, n - 1, 0};
  for (int i = 0; i < n; ++i) v.insert(v.end(), s + static_cast<long>(i) * d, s + static_cast<long>(i) * d + 3);
  v.insert(v.end(), p, p + 3);
  for (int i = 1; i < n; ++i) f.insert(f.end(), {7, BLOC_ENTIER, 1, 3, n + 1, i, i + 1});
  f[0] = static_cast<mot>(f.size());
  if (vol_som_ecrit(o, v.data(), n + 1, 3)) return -1;
  vol_grille_fixe(o, 0, 0, 0, 0, vol_ferme(o));
  return vol_fac_ecrit(o, f.data());
}

// Everything derived, rebuilt when forced.
int tout(Objet* o, bool force) {
  if (force) {
    invalider_vol(o, 0);
    attribut_supprime(o, 3, CLE_VOISIN);
    attribut_supprime(o, 1, CLE_SEGMENT);
  }
  return vol_genere(o);
}

// One volume; false after a failure (reported).
bool un(const Demande& d, Objet* o, int* absente) {
  int f = d.force ? 1 : 0;
  switch (d.quoi) {
    case 0:
      if (d.sur == B_FAC) return eventail(o, d.point) == 0;
      if (d.sur == B_PAVE) return boite_vol(o) != nullptr;
      if (d.sur == B_SOMMET) return *absente = B_SOMMET, true;
      return tout(o, d.force) == 0;
    case B_SURF:
    case B_NORMALE:
      if (d.sur == B_FAC || d.quoi == B_SURF) return gen_normale_fac(o, nullptr, f, d.precision) != nullptr;
      if (d.sur == B_SOMMET) return gen_normale_som(o, nullptr, f) != nullptr;
      return gen_normale_fac(o, nullptr, f, d.precision) && gen_normale_som(o, nullptr, 1);
    case Q_CENTRE:
      if (d.sur == B_FAC || d.precision > 1) return par_face(o, true) != nullptr;
      return gen_centre(o, 1) && gen_centre_copie(o, 1);
    case B_SEGMENT:
      return generer_segment_vol(o, etat_ou(0, A_EDI, 0) > 0, entier_sature(d.point[0]), f) != nullptr;
    case B_VOISIN:
      return gen_voisin_fac_som(o, f) != nullptr;
    case B_BOITE:
      if (d.sur == B_FAC) return par_face(o, false) != nullptr;
      if (d.sur == B_SOMMET) return gen_boite_sommets(o, d.precision) != nullptr;
      if (d.sur == B_TRAIT || d.sur == B_BORNES) return gen_boite_lignes(o, d.sur == B_BORNES) != nullptr;
      return boite_vol(o) != nullptr;
    case B_POIDS:
      return gen_poids_sommets(o) != nullptr;
  }
  *absente = d.quoi;  // masks, weights, surfaces of lines
  return true;
}

void echec_edi() {
  if (nb_etats[0] > A_EDI) etats[0][A_EDI] = 0;
}

// The object of a generation with no target: a copy of volume 0, or else
// of the default square, under the next free number. Null after a report.
Objet* objet_defaut() {
  int m = numero_max(1, B_VOL);
  if (m >= NUMERO_MAX) return geom_erreur_valeur(m, MES_DEBORDEMENT), nullptr;
  Objet* z = objet_trouve(B_VOL, 0, 0, nullptr);
  mot* donnees = z && z->donnees ? bloc_duplique(z->donnees) : nullptr;
  if (z && z->donnees && !donnees) return nullptr;
  Objet* o = objet_cree(1, B_VOL, z ? z->sous_type : 0, nullptr, nullptr, m + 1);
  if (!o) {
    bloc_supprime(donnees);
    return nullptr;
  }
  o->donnees = donnees;
  if (z) {
    o->f1 = z->f1, o->f2 = z->f2, o->f3 = z->f3, o->f4 = z->f4;
    return o;
  }
  const mot fac[] = {12, BLOC_LISTE, 1, 0, 8, BLOC_ENTIER, 1, 4, 1, 2, 3, 4};
  const float carre[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  if (vol_som_ecrit(o, carre, 4, 3) || vol_fac_ecrit(o, fac)) {
    objet_supprime(o);
    return nullptr;
  }
  return o;
}

int nappe(Demande& d) {
  std::vector<Objet*> lignes;
  for (long i = 1, n = nb_ids(d.source); i <= n; ++i)
    if (Objet* l = objet_trouve_arg(1, B_VOL, d.source, static_cast<int>(i))) lignes.push_back(l);
  for (long i = 1, n = nb_ids(d.ids); i <= n; ++i) {
    Objet* o = objet_trouve_arg(1, B_VOL, d.ids, static_cast<int>(i));
    if (!o) o = objet_cree_arg(1, B_VOL, d.ids, static_cast<int>(i));
    if (!o || gen_nappe(o, lignes)) return -1;
    if (etat_ou(0, A_EDI, 0) > 0) std::printf("+%d\n", o->numero);
  }
  return 0;
}
}  // namespace

int generer(mot* bloc, mot*, const mot*) {
  Demande d;
  if (lit(d, bloc)) {
    echec_edi();
    return -1;
  }
  if (d.absente) return route_absente(bloc, d.absente[1], d.absente[2]);
  // Routes that build from other objects, tried in this order.
  bool absente = (d.source && d.sur == B_FAC) || (d.ids && d.transfo && d.source) || d.quoi == B_MASQUE;
  if (!absente && d.quoi == B_SURFACE && d.source && d.ids && d.genre == B_VOL) {
    if (nappe(d) == 0) return rend_rien(bloc);
    echec_edi();
    return -1;
  }
  if (absente || d.source) return route_absente(bloc, 0, A_GENERER);
  if (d.genre != B_VOL) return route_absente(bloc, 1, d.genre);
  if (!d.ids) {
    // No target: the copy is made, generated and numbered, or dropped.
    // The displayed vertices first, as the display pass would leave them.
    Objet* o = objet_defaut();
    int manque = 0;
    if (o && (!gen_som_affiche(o, 1) || !un(d, o, &manque))) objet_supprime(o), o = nullptr;
    if (o && manque) {
      objet_supprime(o);
      return route_absente(bloc, 1, manque);
    }
    if (!o) {
      echec_edi();
      return -1;
    }
    std::printf("+%d\n", o->numero);
    return rend_rien(bloc);
  }
  for (long i = 1, n = nb_ids(d.ids); i <= n; ++i) {
    Objet* o = objet_trouve_arg(1, B_VOL, d.ids, static_cast<int>(i));
    if (!o) continue;  // passed over without a message
    int manque = 0;
    if (!un(d, o, &manque)) {
      echec_edi();
      return -1;
    }
    if (manque) return route_absente(bloc, 1, manque);
    if (etat_ou(0, A_EDI, 0) > 0) std::printf("+%d\n", o->numero);
  }
  return rend_rien(bloc);
}
