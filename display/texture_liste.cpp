// The texture lists of a volume: (b54) for the whole volume and one list
// per face in (b54, b15), or in (b15, b54), which `vol(1) fac(3) tex(2)`
// writes. An element names an image by its number or by its name:
//   vol(1) tex = 3                the volume's list: image 3
//   vol(1) tex = "damier", 4      image named "damier", then image 4
//   vol(1) tex fac = 3, 0, 5      one number a face (0: the volume's list)
//   vol(1) tex fac = (3, 4), "d"  face 1: images 3 and 4; face 2: "d"
// In (b54) alone, the floats after the image number are the vertices'
// coordinates (texture_mappe.cpp), not further images.
//
// A face shows the first texture of its own list, or of the volume's when
// it has none; the others of the list must exist too and are made ready in
// GL, so that a list is checked whole. A face's list holds at most
// TEX_FACE_MAX textures.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "core/objet.h"
#include "display/display.h"
#include "geom/geom.h"
#include "image/image.h"

namespace {
constexpr int B_TEX = 54;

struct Lecture {
  std::vector<int>& out;  // image numbers
  int erreur = 0;
};

// The image a float names: its number when such an image exists.
int par_numero(float x, Lecture& l) {
  if (!(x > -2e9f && x < 2e9f)) {
    std::printf("%g: ", static_cast<double>(x));
    message(0, MES_ABSENT);
    return l.erreur = -1;
  }
  int n = static_cast<int>(x);
  if (n == 0) return 0;  // no texture
  if (!ima_objet(n) || !ima_bloc(n)) {
    std::printf("%d: ", n);
    message(0, MES_ABSENT);
    return l.erreur = -1;
  }
  return n;
}

int par_nom(const mot* e, Lecture& l) {
  std::string nom(reinterpret_cast<const char*>(e + 4), strnlen(reinterpret_cast<const char*>(e + 4), 4 * static_cast<std::size_t>(e[0] - 4)));
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o) {
    if (o->env != 1 || o->type != BLOC_IMAGE || !ima_valide(o->donnees)) continue;
    const char* n = objet_nom(o);
    if (n && nom == n) return o->numero;
  }
  std::printf("%s: ", nom.c_str());
  message(0, MES_ABSENT);
  return l.erreur = -1;
}

void ajoute(int n, Lecture& l) {
  if (n > 0) l.out.push_back(n);
}

// One element of a list: floats (each an image), a string, or a list of
// these. `premier`: only the first float counts (the volume's own vector).
void element(const mot* e, Lecture& l, bool premier, int profondeur) {
  if (l.erreur || !e || e[0] < 4 || profondeur > 4) return;
  switch (e[1]) {
    case BLOC_REEL: {
      long n = premier ? std::min<long>(1, e[0] - 4) : e[0] - 4;
      for (long i = 0; i < n && !l.erreur; ++i) ajoute(par_numero(lit_reel(e + 4 + i), l), l);
      return;
    }
    case BLOC_CHAINE:
      ajoute(par_nom(e, l), l);
      return;
    case BLOC_LISTE: {
      const mot* c = e + 4;
      for (mot i = 0; i < e[2] && !l.erreur && c < e + e[0] && c[0] > 0; ++i, c += c[0])
        element(c, l, false, profondeur + 1);
      return;
    }
    case BLOC_BLOCS:
      for (mot i = 0; i < e[2] && 4 + i < e[0] && !l.erreur; ++i)
        element(bloc_pointe(e[4 + i]), l, false, profondeur + 1);
      return;
  }
}

// Face i's element of a per-face value, or null; `un_reel` is set when it
// is the i-th float of a vector (one image a face).
const mot* de_face(const mot* v, int i, float* un_reel, bool* reel) {
  *reel = false;
  if (!v || v[0] < 4) return nullptr;
  if (v[1] == BLOC_REEL) {
    if (i >= v[0] - 4) return nullptr;
    *un_reel = lit_reel(v + 4 + i);
    *reel = true;
    return v;
  }
  if (v[1] == BLOC_LISTE) {
    const mot* c = v + 4;
    for (mot k = 0; k < v[2] && c < v + v[0] && c[0] > 0; ++k, c += c[0])
      if (k == i) return c;
    return nullptr;
  }
  if (v[1] == BLOC_BLOCS) return i < v[2] && 4 + i < v[0] ? bloc_pointe(v[4 + i]) : nullptr;
  if (v[1] == BLOC_CHAINE) return i == 0 ? v : nullptr;
  return nullptr;
}

int trop(int n) {
  std::printf("%d: ", n);
  message(0, MES_ENTETE);
  return -1;
}

std::vector<int> du_vol, de_la_face;
}  // namespace

int vol_textures(Objet* o, int nf, std::vector<int>& ima, std::vector<int>* toutes) {
  ima.clear();
  du_vol.clear();
  if (toutes) toutes->clear();
  const mot k1[2] = {1, B_TEX}, k2[4] = {1, B_TEX, 1, B_FAC}, k3[4] = {1, B_FAC, 1, B_TEX};
  const mot* lv = vol_valeur(o, 1, k1);
  const mot* lf = vol_valeur(o, 2, k2);
  if (!lf) lf = vol_valeur(o, 2, k3);
  if (!lv && !lf) return 0;
  Lecture l{du_vol};
  element(lv, l, true, 0);
  if (l.erreur) return -1;
  if (static_cast<int>(du_vol.size()) > TEX_FACE_MAX) return trop(TEX_FACE_MAX + 1);
  if (toutes) toutes->insert(toutes->end(), du_vol.begin(), du_vol.end());
  bool une = !du_vol.empty();
  ima.assign(static_cast<std::size_t>(nf > 0 ? nf : 0), du_vol.empty() ? 0 : du_vol[0]);
  for (int i = 0; lf && i < nf; ++i) {
    float x = 0;
    bool reel = false;
    const mot* e = de_face(lf, i, &x, &reel);
    if (!e) continue;
    de_la_face.clear();
    Lecture f{de_la_face};
    if (reel) ajoute(par_numero(x, f), f);
    else element(e, f, false, 0);
    if (f.erreur) return -1;
    if (static_cast<int>(de_la_face.size()) > TEX_FACE_MAX) return trop(TEX_FACE_MAX + 1);
    if (toutes) toutes->insert(toutes->end(), de_la_face.begin(), de_la_face.end());
    if (!de_la_face.empty()) ima[i] = de_la_face[0], une = true;
  }
  if (!une) ima.clear();
  return 0;
}
