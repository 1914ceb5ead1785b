// The walk over volumes of `aff`: a list of numbers, or every object of a
// kind, and for each volume `aff_vol_1`, which decides from the volume's
// attributes and the enable flags what this display needs, prepares it
// into a Vol_aff and hands it to an engine: OpenGL for method 1 when a
// window exists, else the software engine. Mode -68 makes every decision
// and the projected vertices (b13, b32), and draws nothing.
#include <GL/freeglut.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "display/aff_attributs.h"
#include "display/aff_interne.h"
#include "display/display.h"
#include "geom/geom.h"
#include "image/image.h"
#include "startup/startup.h"

Aff_bilan aff_bilan;

bool drapeau(int ord) { return etat_ou(1, ord, 0) > 0; }

namespace {
using namespace aff_b;

// How deep volumes that stand for others may nest.
constexpr int PROFONDEUR_MAX = 16;

// Lists reused from one volume to the next: no allocation once they have
// grown to the scene's size.
std::vector<int> lumieres;
std::vector<float> ecran_proj;
std::vector<int> liste_faces;
// The pigments of the volume being displayed: every record read, then the
// volume's list and each face's as spans of it.
std::vector<Pigment> pig_tous;
std::vector<Pig_liste> pig_faces;
std::vector<int> pig_debut;
Pig_liste pig_vol;
// The textures of the software engine: per face the image as a pigment,
// the corners' coordinates and each face's first corner.
std::vector<int> tex_ima;
std::vector<Pigment> tex_pig;
std::vector<Pig_liste> tex_fac;
std::vector<float> tex_mappe;
std::vector<int> tex_deb;

// The texture lists of `src` for the faces `fac`: 0 (with or without a
// texture), or -1 after the message of vol_textures.
int texture_prepare(Objet* src, const mot* fac, int nf, Vol_aff& v) {
  if (vol_textures(src, nf, tex_ima) < 0) return -1;
  int ima = 0;
  if (tex_ima.empty() || vol_mappe(src, tex_mappe, &ima) != 0) return 0;
  tex_deb.assign(1, 0);
  const mot* f = fac + 4;
  for (int i = 0; i < nf; ++i, f = face_suivante(f)) {
    int k;
    face_contour(f, &k);
    tex_deb.push_back(tex_deb.back() + k);
  }
  // Coordinates made for other faces than those displayed are not used.
  if (2L * tex_deb.back() != static_cast<long>(tex_mappe.size())) return 0;
  tex_pig.assign(static_cast<std::size_t>(nf), Pigment{});
  tex_fac.assign(static_cast<std::size_t>(nf), Pig_liste{});
  for (int i = 0; i < nf; ++i) {
    if (!tex_ima[i]) continue;
    Pigment& p = tex_pig[i];
    p.type = -2;
    p.flags = PIGMENT_FAIT;
    // A texture read from a file into the table shows as it does in GL.
    p.rgb = texture_pixels(tex_ima[i], &p.rgb_l, &p.rgb_h);
    if (!p.rgb) p.ima = ima_bloc(tex_ima[i]);
    tex_fac[i] = Pig_liste{&p, 1};
  }
  v.tex = tex_fac.data();
  v.mappe = tex_mappe.data();
  v.mappe_deb = tex_deb.data();
  return 0;
}

// Reads (b104) and (b104, b15) of `src` for a volume of nf faces. 0, or -1
// after a message.
int pigments_prepare(Objet* src, int nf, Vol_aff& v) {
  const mot k1[2] = {1, PIGMENTS}, k2[4] = {1, PIGMENTS, 1, FAC};
  const mot* lv = vol_valeur(src, 1, k1);
  const mot* lf = vol_valeur(src, 2, k2);
  if (!lv && !lf) return 0;
  pig_tous.clear();
  pig_debut.clear();
  static Pigment lus[PIGMENTS_MAX];
  auto lit = [&](const mot* l) {
    int n = pigments_lit(l, lus, PIGMENTS_MAX);
    pig_debut.push_back(static_cast<int>(pig_tous.size()));
    if (n > 0) pig_tous.insert(pig_tous.end(), lus, lus + n);
    return n;
  };
  if (lit(lv) < 0) return -1;
  int nfl = 0;
  if (lf && lf[1] == BLOC_BLOCS) {
    nfl = std::min<int>({lf[2], lf[0] - 4, nf});
    for (int i = 0; i < nfl; ++i)
      if (lit(bloc_pointe(lf[4 + i])) < 0) return -1;
  }
  pig_debut.push_back(static_cast<int>(pig_tous.size()));
  auto span = [&](int k) {
    Pig_liste p;
    p.p = pig_tous.data() + pig_debut[k];
    p.n = pig_debut[k + 1] - pig_debut[k];
    return p;
  };
  pig_vol = span(0);
  v.pig = &pig_vol;
  if (nfl > 0) {
    pig_faces.assign(static_cast<std::size_t>(nf), Pig_liste{});
    for (int i = 0; i < nfl; ++i) pig_faces[i] = span(i + 1);
    v.pig_fac = pig_faces.data();
  }
  return 0;
}

bool dans(const int* l, int n, int x) {
  for (int k = 0; k < n; ++k)
    if (l[k] == x) return true;
  return false;
}

// A light applies to this volume unless its own (b4) names other volumes.
bool lumiere_pour(Objet* l, int numero) {
  const mot* v = attribut_valeur_1(l->donnees, 1, VOL);
  if (!v || v[0] < 4) return true;
  std::vector<float> x;
  if (!aff_nombres(v, x) || x.empty()) return true;
  for (float f : x)
    if (f == static_cast<float>(numero)) return true;
  return false;
}

// The lights of the volume: every light of the scene, or the volume's own
// list (b24), each filtered by the volumes it names.
void lumieres_du_volume(const mot* propres, int numero) {
  lumieres.clear();
  if (propres) {
    std::vector<float> x;
    if (!aff_nombres(propres, x)) return;
    for (float f : x) {
      mot n;
      if (!reel_entier(f, &n)) continue;
      Objet* l = objet_trouve(B_LUM, 0, n, nullptr);
      if (l && l->env == 1 && lumiere_pour(l, numero)) lumieres.push_back(n);
    }
    return;
  }
  for (Objet* l = piles.obj_base; l < piles.obj_haut; ++l)
    if (l->type == B_LUM && l->env == 1 && lumiere_pour(l, numero)) lumieres.push_back(l->numero);
}

// The box of the vertices: 8 corners and 6 faces, for method 2.
struct Boite {
  float som[24];
  float n_fac[18];
  float centre[3];
  std::array<mot, 4 + 6 * 8> fac;
};

void boite_de(const float* s, int n, int d, Boite* b) {
  float lo[3] = {s[0], s[1], s[2]}, hi[3] = {s[0], s[1], s[2]};
  for (int i = 1; i < n; ++i)
    for (int k = 0; k < 3; ++k) {
      lo[k] = std::min(lo[k], s[i * d + k]);
      hi[k] = std::max(hi[k], s[i * d + k]);
    }
  for (int c = 0; c < 8; ++c) {
    b->som[3 * c] = c & 1 ? hi[0] : lo[0];
    b->som[3 * c + 1] = c & 2 ? hi[1] : lo[1];
    b->som[3 * c + 2] = c & 4 ? hi[2] : lo[2];
  }
  // Corners from 1; each face in contour order.
  constexpr int faces[6][4] = {{1, 3, 4, 2}, {5, 6, 8, 7}, {1, 2, 6, 5},
                               {3, 7, 8, 4}, {1, 5, 7, 3}, {2, 4, 8, 6}};
  mot* f = b->fac.data();
  f[0] = static_cast<mot>(b->fac.size());
  f[1] = BLOC_LISTE;
  f[2] = 6;
  f[3] = 0;
  for (int i = 0; i < 6; ++i) {
    mot* p = f + 4 + 8 * i;
    p[0] = 8, p[1] = BLOC_ENTIER, p[2] = 1, p[3] = 4;
    for (int k = 0; k < 4; ++k) p[4 + k] = faces[i][k];
  }
}

// The first vertex that is not finite, from 1; 0 when all are.
int sommet_non_fini(const float* s, int n, int d) {
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < 3; ++k)
      if (!std::isfinite(s[static_cast<long>(i) * d + k])) return i + 1;
  return 0;
}

// The volumes that stand for a numbered one are displayed instead.
int remplacants(const Aff_appel& a, const mot* v, int recursion) {
  std::vector<float> x;
  if (!aff_nombres(v, x) || recursion >= PROFONDEUR_MAX) return 0;
  for (float f : x) {
    mot n;
    if (!reel_entier(f, &n)) continue;
    Objet* o = objet_trouve(B_VOL, 0, n, nullptr);
    if (!o || o->env != 1) continue;
    int r = aff_vol_1(a, o, recursion + 1);
    if (r < 0) return r;
  }
  return 0;
}

// (b13, b32) on the volume: room for 7 floats a vertex, which the software
// engine fills as it projects. A list the user gave is left as it is and
// the engine projects into its own workspace.
float* projetes(Objet* o, int ns, bool* donne) {
  const mot cle[4] = {1, PROJ, 1, SOMMET};
  mot* a = vol_attribut(o, 2, cle);
  *donne = a && a[1] == BLOC_PHRASE;
  if (*donne) return nullptr;
  mot lg = 4 + PROJ_PAS * ns;
  a = attribut_prepare(o, 2, cle, lg);
  if (!a) return nullptr;
  mot* v = a + a[2];
  v[0] = lg, v[1] = BLOC_REEL, v[2] = ns, v[3] = PROJ_PAS;
  std::fill(reels(v + 4), reels(v + 4) + PROJ_PAS * ns, 0.f);
  a[1] = 1;
  return reels(v + 4);
}

// True when every vertex lies outside the working image grown by `marge`
// pixels, all on the same side.
bool hors_ecran(const float* som, int ns, int d, float marge) {
  mot* im = ima_ecran();
  if (!im) return false;
  float l = static_cast<float>(ima_l(im)), h = static_cast<float>(ima_h(im));
  ecran_proj.resize(static_cast<std::size_t>(ns) * PROJ_PAS);
  aff_projette(som, ns, d, ima_l(im), ima_h(im), ecran_proj.data());
  int cotes = 15, derriere = 0;
  for (int i = 0; i < ns; ++i) {
    const float* p = ecran_proj.data() + static_cast<long>(i) * PROJ_PAS;
    // Behind the eye a vertex's place on the screen says nothing.
    if (p[3] <= 0) {
      ++derriere;
      continue;
    }
    int c = 0;
    if (p[4] < -marge) c |= 1;
    if (p[4] > l + marge) c |= 2;
    if (p[5] < -marge) c |= 4;
    if (p[5] > h + marge) c |= 8;
    cotes &= c;
  }
  if (derriere) return derriere == ns;
  return cotes != 0;
}

const float* reels_ou_nul(const mot* v) { return v && v[1] == BLOC_REEL ? reels(v + 4) : nullptr; }
}  // namespace

int aff_vol_1(const Aff_appel& a, Objet* o, int recursion) {
  // 1. Who is displayed.
  int numero = o->numero;
  if (numero != 0) objet_courant = o;
  int mode = a.mode;
  if (numero < 0 && mode >= 1) return 0;
  if (!drapeau(AFF) && mode != MODE_TEST) return 0;
  if (a.selection && recursion >= 0 && numero != 0 && mode != MODE_TEST &&
      !dans(a.selection, a.nb_selection, numero))
    return 0;
  // 2. By which method.
  int methode = a.methode;
  if (drapeau(BOITE)) methode = METHODE_BOITE;
  if (methode == METHODE_DEFAUT) methode = drapeau(GL) ? METHODE_GL : METHODE_DEFAUT;
  // 4. A volume may take the attributes of another.
  Objet* src = o;
  if (drapeau(SUBST)) {
    std::vector<float> x;
    const mot* s = attribut_valeur_1(o->donnees, 1, SUBST);
    mot n;
    if (s && aff_nombres(s, x) && !x.empty() && reel_entier(x[0], &n))
      if (Objet* autre = objet_trouve(B_VOL, 0, n, nullptr); autre && autre->env == 1) src = autre;
  }
  // 5. Control grids are never shown; surfaces of lines have their own
  // display, not part of this one.
  int forme = vol_forme(src);
  if (forme == CONTROLE) return 0;
  if (forme == NAPPE && drapeau(NAPPE) && recursion != -NAPPE) return 0;
  // 6. The attributes, in the order of the list.
  Aff_attributs at;
  if (int r = aff_lit_attributs(src, numero, mode, &at); r < 0) return r;
  if (at.remplace) return remplacants(a, at.remplace, recursion);
  if (at.methode >= 0) methode = at.methode == 0 && drapeau(GL) ? METHODE_GL : at.methode;
  if (at.methode >= 0 && drapeau(BOITE)) methode = METHODE_BOITE;
  bool rapide = mode == 0 && drapeau(RAPIDE) && at.rapide;
  // 7. The vertices, or nothing to do.
  const mot* vs = at.som_aff ? at.som_aff : at.som;
  if (!vs || vs[1] != BLOC_REEL || vs[2] <= 0 || vs[3] < 3 ||
      vs[0] < 4 + static_cast<long>(vs[2]) * vs[3])
    return 0;
  int ns = vs[2], d = vs[3];
  const float* som = reels(vs + 4);
  if (int k = sommet_non_fini(som, ns, d)) {
    std::printf("vol %d sommet %d: ", numero, k);
    message(1, M_SOMMET_NON_FINI);
    return 0;
  }
  const mot* fac = at.fac && at.fac[1] == BLOC_LISTE ? at.fac : nullptr;
  if (fac && fac_verifie(fac, ns) < 0) return -1;
  int nf = fac ? fac[2] : 0;
  float coul[3] = {1, 1, 1};
  if (a.coul_donnee) {
    std::copy(a.coul, a.coul + 3, coul);
  } else if (const float* c = at.coul ? reels_ou_nul(at.coul) : nullptr; c && at.coul[0] >= 7) {
    std::copy(c, c + 3, coul);
  } else {
    int nv = 0;
    if (reel* dflt = mot_defaut(1, COUL, &nv); dflt && nv >= 3) std::copy(dflt, dflt + 3, coul);
  }
  // 8. Method 2: the box in place of the volume.
  Boite boite;
  if (methode == METHODE_BOITE && nf > 0) {
    boite_de(som, ns, d, &boite);
    som = boite.som;
    ns = 8;
    d = 3;
    fac = boite.fac.data();
    nf = 6;
    at.aretes = nullptr;
    ++aff_bilan.boites;
  }
  // 9. Shown by the image display: not this one.
  if (at.image) return 0;
  // A margin (b6, or flag [6] for a numbered volume): a volume wholly
  // outside the screen grown by it is not drawn.
  float marge = at.marge_donnee ? at.marge : (numero != 0 ? static_cast<float>(etat_ou(1, MARGE, 0)) : 0.f);
  if (marge != 0 && mode != MODE_TEST && hors_ecran(som, ns, d, marge)) {
    ++aff_bilan.hors_ecran;
    return 0;
  }
  // 10. Illumination.
  float illum[5] = {1, 1, 0, 0, 0};
  if (const float* il = reels_ou_nul(at.illum)) std::copy(il, il + std::min<int>(5, at.illum[0] - 4), illum);
  int type = std::isfinite(illum[0]) && std::fabs(illum[0]) < 4 ? static_cast<int>(illum[0]) : 1;
  bool gl = methode == METHODE_GL && fen.fenetre > 0;
  if (mode > 0 && (methode <= 0 || gl || methode == METHODE_BOITE)) {
    if (type == 0) mode = 0;
    else if (std::abs(type) >= 2) at.besoin_n_som = at.besoin_n_fac = true;
    else at.besoin_n_fac = true;
  }
  // 11. Normals.
  if (forme == PAVE && vol_nz(src) != 0) at.besoin_n_som = false;
  const float* n_fac = nullptr;
  const float* n_som = nullptr;
  int pas_n = 3;
  if ((at.besoin_n_fac || at.besoin_n_som) && nf > 0 && methode == METHODE_BOITE) {
    for (int i = 0; i < 6; ++i) normale_face(fac + 4 + 8 * i, som, 3, boite.n_fac + 3 * i, boite.centre);
    n_fac = boite.n_fac;
    type = type < 0 ? -1 : 1;
  } else if ((at.besoin_n_fac || at.besoin_n_som) && nf > 0) {
    // Displayed vertices of another count than the stored ones cannot go
    // through the stored faces' generators: the engine makes its own.
    int nb_b86 = 0, d_b86 = 3;
    vol_som(src, &nb_b86, &d_b86);
    if (nb_b86 == ns) {
      const float* s_gen = at.som_aff ? som : nullptr;
      if (mot* nf_a = gen_normale_fac(src, s_gen, 0, 1)) {
        n_fac = reels(nf_a + nf_a[2] + 4);
        pas_n = (nf_a + nf_a[2])[3];
      }
      if (at.besoin_n_som)
        if (mot* ns_a = gen_normale_som(src, s_gen, 0)) {
          n_som = reels(ns_a + ns_a[2] + 4);
          pas_n = (ns_a + ns_a[2])[3];
        }
    }
  }
  // 12. Clouds and volumes without faces.
  bool nuage = at.nuage || forme == AMAS;
  if (nuage || nf == 0) {
    if (!nuage) {
      ++aff_bilan.sans_faces;
      return 0;
    }
    // The cloud display proper belongs to the bodies' tools; here its
    // vertices are shown as points.
    ++aff_bilan.nuages;
    if (mode != MODE_TEST && mode != MODE_NUMEROS) mode = MODE_POINTS;
    fac = nullptr;
    nf = 0;
  }
  // The volume as the engines take it.
  lumieres_du_volume(at.lum, numero);
  Vol_aff v;
  v.numero = numero;
  v.mode = mode;
  v.type = type;
  v.som = som;
  v.ns = ns;
  v.dim = d;
  v.fac = fac;
  v.nf = nf;
  if (at.aretes && at.aretes[1] == BLOC_ENTIER && at.aretes[3] == 2) {
    v.aretes = at.aretes;
    v.ne = at.aretes[2];
  }
  // 13. The caller's list of faces.
  // Numbers past this volume's faces are passed over.
  if (a.faces) {
    liste_faces.clear();
    for (int k = 0; k < a.nb_faces; ++k)
      if (a.faces[k] >= 1 && a.faces[k] <= nf) liste_faces.push_back(a.faces[k]);
    // An empty list still says "these faces only": none.
    static const int aucune = 0;
    v.liste_fac = liste_faces.empty() ? &aucune : liste_faces.data();
    v.n_liste = static_cast<int>(liste_faces.size());
  }
  v.n_fac = n_fac;
  v.n_som = n_som;
  v.pas_n = pas_n;
  v.coul = coul;
  v.c_fac = at.c_fac;
  v.c_som = at.c_som;
  v.illum = illum;
  v.lum = lumieres.data();
  v.nlum = static_cast<int>(lumieres.size());
  v.zbu = at.zbu;
  v.rapide = rapide && !at.vues && !a.selection;
  v.tri = at.tri;
  // 14. The pigments, with flag [104] on, for the software engine.
  if (mode > 0 && !gl && fac && drapeau(PIGMENTS) && pigments_prepare(src, nf, v) < 0) return -1;
  // The textures, with flag [54] on.
  if (mode > 0 && !gl && fac && drapeau(TEX) && texture_prepare(src, fac, nf, v) < 0) return -1;
  aff_bilan.mode = mode;
  aff_bilan.methode = methode;
  aff_bilan.type = type;
  aff_bilan.rapide = v.rapide;
  aff_bilan.nlum = v.nlum;
  aff_bilan.n_liste = v.liste_fac ? v.n_liste : -1;
  // 15. OpenGL, with its edges completed.
  if (gl && mode != MODE_TEST) {
    if (!v.aretes && (mode == 0 || type == 0) && methode != METHODE_BOITE && src == o) {
      if (mot* ar = generer_segment_vol(src, 0, 1, 0); ar && ar[1] == BLOC_ENTIER && ar[3] == 2) {
        v.aretes = ar;
        v.ne = ar[2];
      }
    }
    ++aff_bilan.gl;
    return aff_gl_vol(v);
  }
  // 16. The software engine, which projects into (b13, b32) and, in the
  // test pass, stops there.
  bool donne = false;
  v.proj = projetes(o, ns, &donne);
  if (!v.proj && !donne) return -1;
  ++(mode == MODE_TEST ? aff_bilan.test : aff_bilan.logiciel);
  return rendu_vol(v);
}

int aff_vols(const Aff_appel& a, const int* liste, int n) {
  for (int k = 0; k < n; ++k) {
    // A number that names no volume has no effect.
    Objet* o = objet_trouve(B_VOL, 0, liste[k], nullptr);
    if (!o || o->env != 1) continue;
    int r = aff_vol_1(a, o, a.recursion);
    if (r < 0) return r;
  }
  return 0;
}

int aff_tous(const Aff_appel& a, int genre) {
  // Volumes made while the walk runs (by a statement of an attribute) wait
  // for the next display.
  Objet* fin = piles.obj_haut;
  for (Objet* o = piles.obj_base; o < fin; ++o) {
    if (o->type != genre || o->env != 1) continue;
    int r = aff_vol_1(a, o, a.recursion);
    if (r < 0) return r;
  }
  return 0;
}
