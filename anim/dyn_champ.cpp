// Force fields and force images. A field object (type b122) acts on the
// volumes of its `vol` list, or on all: uniformly (its `coe` vector), from
// one point (towards it, or swirling about X, Y or Z), or about the axis of
// two points. A strength curve of triples (distance, value, spare) read in
// ascending distance replaces the strength.
//
// Which fields act on a vertex: its own (`cha`, `som`) record if any (a
// number 0 there names every field; the whole list given as one name, that
// field for every vertex), else
// the volume's `cha` list; the global chain of every field object acts on
// volumes that name none.
#include <array>
#include <cmath>
#include <cstring>

#include "anim/dyn.h"
#include "geom/geom.h"
#include "image/image.h"

namespace dyn {
namespace {
int type_champ(Objet* f) {
  if (f->sous_type >= B_ROTAK && f->sous_type <= B_ROTZK) return f->sous_type;
  for (int t = B_ROTAK; t <= B_ROTZK; ++t)
    if (vol_valeur(f, 1, std::array<mot, 2>{1, t}.data())) return t;
  return 0;
}

}  // namespace

Objet* champ_de(float x) {
  mot n = 0;
  if (!reel_entier(x, &n)) return nullptr;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == B_CHA && o->numero == n) return o;
  return nullptr;
}

float courbe(const reel* c, int nb, float d) {
  const int n = nb / 3;
  if (n < 1) return 0;
  if (d <= c[0]) return c[1];
  for (int j = 1; j < n; ++j) {
    const float x0 = c[3 * (j - 1)], x1 = c[3 * j];
    if (d <= x1) {
      const float t = x1 > x0 ? (d - x0) / (x1 - x0) : 1.f;
      return c[3 * (j - 1) + 1] + t * (c[3 * j + 1] - c[3 * (j - 1) + 1]);
    }
  }
  return c[3 * (n - 1) + 1];
}

void champ_un(Objet* f, Objet* o, const float* p, float* F) {
  int nv = 0;
  if (const reel* l = val1(f, 1, B_VOLK, 1, &nv)) {
    bool dedans = false;
    for (int k = 0; k < nv && !dedans; ++k) dedans = static_cast<float>(o->numero) == l[k];
    if (!dedans) return;
  }
  int nc = 0;
  const reel* coe = val1(f, 1, B_COE, 1, &nc);
  float s = coe ? coe[0] : 0;
  int np = 0, ncb = 0;
  const reel* pts = val1(f, 1, B_PTS, 3, &np);
  const reel* cb = val1(f, 1, B_COURBE, 3, &ncb);
  const int type = type_champ(f);
  if (pts && np >= 6) {
    const float* q0 = pts;
    const float* q1 = pts + 3;
    float u[3] = {q1[0] - q0[0], q1[1] - q0[1], q1[2] - q0[2]};
    unit(u);
    if (cb) {
      const float r[3] = {p[0] - q0[0], p[1] - q0[1], p[2] - q0[2]};
      s = courbe(cb, ncb, norme(r));
    }
    if (type == B_ROTAK) {
      const float t = (p[0] - q0[0]) * u[0] + (p[1] - q0[1]) * u[1] + (p[2] - q0[2]) * u[2];
      float r[3] = {q0[0] + t * u[0] - p[0], q0[1] + t * u[1] - p[1], q0[2] + t * u[2] - p[2]};
      const float dd = norme(r);
      unit(r);
      float w[3];
      croix(u, r, w);
      if (cb) s = courbe(cb, ncb, dd);
      for (int x = 0; x < 3; ++x) F[x] += s * w[x];
    } else {
      for (int x = 0; x < 3; ++x) F[x] += s * u[x];
    }
  } else if (pts) {
    float u[3] = {pts[0] - p[0], pts[1] - p[1], pts[2] - p[2]};
    if (cb) s = courbe(cb, ncb, norme(u));
    unit(u);
    if (type >= B_ROTXK) {
      const float ax[3] = {type == B_ROTXK ? 1.f : 0.f, type == B_ROTYK ? 1.f : 0.f, type == B_ROTZK ? 1.f : 0.f};
      float w[3];
      croix(u, ax, w);
      for (int x = 0; x < 3; ++x) u[x] = w[x];
    }
    for (int x = 0; x < 3; ++x) F[x] += s * u[x];
  } else if (coe && nc >= 3) {
    for (int x = 0; x < 3; ++x) F[x] += coe[x];
  }
  champ_fonction(f, p, F);
}

float image_force(Objet* o, const reel* ci, int nci, int i, float* F) {
  if (!ci || nci < 7) return -1;
  mot num = 0;
  if (!reel_entier(ci[0], &num)) return -1;
  const mot* im = ima_bloc(num);
  const int nx = vol_nx(o);
  if (!im || nx < 2) return -1;
  int nb = 0, d = 3;
  vol_som(o, &nb, &d);
  const int ny = nb / nx;
  const int W = ima_l(im), H = ima_h(im);
  const int row = (i - 1) / nx, col = (i - 1) % nx;
  const float x = static_cast<float>(col) * static_cast<float>(W - 1) / static_cast<float>(nx - 1);
  const float y = ny > 1 ? static_cast<float>(row) * static_cast<float>(H - 1) / static_cast<float>(ny - 1) : 0.f;
  const float h = (static_cast<float>(W) / static_cast<float>(nx - 1)) / 2;
  int x0 = static_cast<int>(std::lround(x - h)), x1 = static_cast<int>(std::lround(x + h));
  int y0 = static_cast<int>(std::lround(y - h)), y1 = static_cast<int>(std::lround(y + h));
  if (x0 < 0) x0 = 0;
  if (y0 < 0) y0 = 0;
  if (x1 > W - 1) x1 = W - 1;
  if (y1 > H - 1) y1 = H - 1;
  if (x1 < x0 || y1 < y0) return -1;
  double somme = 0;
  for (int yy = y0; yy <= y1; ++yy) {
    const octet* r = ima_rouge(im, yy);
    for (int xx = x0; xx <= x1; ++xx) somme += ci[1] * r[xx] + ci[2] * r[W + xx] + ci[3] * r[2 * W + xx];
  }
  const float s = static_cast<float>(somme / (3.0 * 255.0 * (x1 - x0 + 1) * (y1 - y0 + 1)));
  for (int k = 0; k < 3; ++k) F[k] = s * ci[4 + k];
  return s;
}

void champs(Objet* o, int i, const float* p, float* F) {
  bool propre = false;
  // The vertex's own record, read once a step by the vertex step.
  if (etat.cha_de == o && etat.cha_nom) {
    champ_un(etat.cha_nom, o, p, F);
    propre = true;
  } else if (etat.cha_de == o && etat.l_cha) {
    const mot* r = etat.rec_cha[static_cast<std::size_t>(i - 1)];
    const int lg = rec_long(r);
    if (lg >= 1) {
      // A number 0 names every field.
      for (int m = 0; m < lg; ++m) {
        if (rec_val(r)[m] == 0) {
          for (Objet* f = piles.obj_base; f < piles.obj_haut; ++f)
            if (f->type == B_CHA && f != o) champ_un(f, o, p, F);
        } else if (Objet* f = champ_de(rec_val(r)[m])) {
          champ_un(f, o, p, F);
        }
      }
      propre = true;
    }
  }
  int nc = 0;
  if (!propre) {
    if (const reel* l = val1(o, 1, B_CHA, 1, &nc)) {
      for (int k = 0; k < nc; ++k)
        if (Objet* f = champ_de(l[k])) champ_un(f, o, p, F);
      propre = true;
    }
  }
  int ni = 0;
  if (const reel* ci = val2(o, 1, B_CHA, 1, B_IMA, 7, &ni)) image_force(o, ci, ni, i, F);
  if (etat.cha_de == o && etat.l_ima) {
    const mot* r = etat.rec_ima[static_cast<std::size_t>(i - 1)];
    if (rec_long(r) >= 7) image_force(o, rec_val(r), rec_long(r), i, F);
  }
  if (!propre && !(etat.cha_de == o && etat.l_cha))
    for (Objet* f = piles.obj_base; f < piles.obj_haut; ++f)
      if (f->type == B_CHA && f != o) champ_un(f, o, p, F);
}

Objet* champ_nomme(Objet* o) {
  const mot* v = vol_valeur(o, 2, std::array<mot, 4>{1, B_CHA, 1, B_SOMK}.data());
  if (!v || v[0] < 5 || v[1] != BLOC_CHAINE) return nullptr;
  const char* nom = reinterpret_cast<const char*>(v + 4);
  for (Objet* f = piles.obj_base; f < piles.obj_haut; ++f)
    if (f->type == B_CHA && f->nom && std::strcmp(f->nom, nom) == 0) return f;
  return nullptr;
}

bool champs_globaux() {
  for (Objet* f = piles.obj_base; f < piles.obj_haut; ++f)
    if (f->type == B_CHA) return true;
  return false;
}
}  // namespace dyn
