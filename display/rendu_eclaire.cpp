// Lighting of the software renderer: the same sums as OpenGL's fixed
// function for the state that the OpenGL engine sets, so that one scene
// lights alike in both. A light is a `lum` object: (b86) its position,
// given in eye space as (x, -y, oeil.z - z); (b10) a spot's direction,
// (-dx, -dy, -dz); (b26) its cone, the second float a half-angle in
// radians (only 0..90 degrees make a spot, as OpenGL refuses the rest);
// (b17) its diffuse colour; (b42) one value for the three attenuation
// terms. Light i is OpenGL's GL_LIGHT0 + i in table order: the first one's
// default diffuse and specular are white, the others' black. The viewer is
// at infinity along +z (no local viewer). The fog, when on, blends the lit
// colour as OpenGL's does.
#include <cmath>

#include "core/objet.h"
#include "display/display.h"
#include "display/oeil.h"
#include "display/rendu_interne.h"
#include "geom/geom.h"

namespace {
constexpr int B_VISE = 10, B_CONE = 26, B_COUL_L = 17, B_ATT = 42, B_POS = 86;

// A light without (b86) keeps the position its identifier last held; at
// first, OpenGL's default: at infinity toward the viewer.
float pos_gardee[LUM_MAX][4];
bool pos_pretes = false;

const reel* flottants(Objet* o, int ord, int min) {
  mot cle[2] = {1, ord};
  mot* v = vol_valeur(o, 1, cle);
  if (!v || v[1] != BLOC_REEL || v[0] < 4 + min) return nullptr;
  return reels(v + 4);
}

void prepare_une(Objet* o, int i, LumP* l) {
  const float blanc = i == 0 ? 1.f : 0.f;
  for (int k = 0; k < 3; ++k) l->diff[k] = l->specu[k] = blanc;
  l->cos_coupe = -2;
  l->att = 0;
  l->dir[0] = l->dir[1] = 0;
  l->dir[2] = -1;
  if (const reel* p = flottants(o, B_POS, 3)) {
    pos_gardee[i][0] = p[0];
    pos_gardee[i][1] = -p[1];
    pos_gardee[i][2] = oeil_courant.oeil[2] - p[2];
    pos_gardee[i][3] = 1;
    if (const reel* d = flottants(o, B_VISE, 3)) {
      float dd[3] = {-d[0], -d[1], -d[2]};
      double m = std::sqrt(static_cast<double>(dd[0]) * dd[0] + dd[1] * dd[1] + dd[2] * dd[2]);
      if (m > 0) for (int k = 0; k < 3; ++k) l->dir[k] = static_cast<float>(dd[k] / m);
      if (const reel* c = flottants(o, B_CONE, 2)) {
        double deg = 57.295776 * c[1];
        if (deg >= 0 && deg <= 90) l->cos_coupe = static_cast<float>(std::cos(deg * M_PI / 180));
      }
    }
  }
  for (int k = 0; k < 4; ++k) l->pos[k] = pos_gardee[i][k];
  if (l->pos[3] == 0) {
    // At infinity the position is a direction, used unit.
    double m = std::sqrt(static_cast<double>(l->pos[0]) * l->pos[0] + l->pos[1] * l->pos[1] + l->pos[2] * l->pos[2]);
    if (m > 0) for (int k = 0; k < 3; ++k) l->pos[k] = static_cast<float>(l->pos[k] / m);
  }
  if (const reel* c = flottants(o, B_COUL_L, 3)) for (int k = 0; k < 3; ++k) l->diff[k] = c[k];
  if (const reel* a = flottants(o, B_ATT, 1)) l->att = a[0];
}
// The fog of the OpenGL engine on a lit colour (levels), as its fixed
// function blends it: the fog coordinate is the eye depth |z|, the factor
// of the law clamped to 0..1 weighs the colour against the fog's.
void brouille(const float* p, float* c) {
  const Brouillard& b = brouillard_etat;
  float z = std::fabs(p[2]), f = 1;
  if (b.loi == 1) f = std::exp(-b.densite * z);
  else if (b.loi == 2) f = std::exp(-(b.densite * z) * (b.densite * z));
  else f = b.fin != b.debut ? (b.fin - z) / (b.fin - b.debut) : 1.f;
  f = f > 0 ? (f < 1 ? f : 1.f) : 0.f;
  for (int k = 0; k < 3; ++k) c[k] = f * c[k] + (1 - f) * 255.f * b.coul[k];
}
}  // namespace

int lum_preparer(const int* nums, int n, LumP* out) {
  if (!pos_pretes) {
    for (auto& p : pos_gardee) p[0] = p[1] = p[3] = 0, p[2] = 1;
    pos_pretes = true;
  }
  int i = 0, nb = 0;
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut && i < LUM_MAX; ++o) {
    if (o->type != B_LUM || o->env != 1) continue;
    bool pris = !nums;
    for (int k = 0; !pris && k < n; ++k) pris = nums[k] == o->numero;
    if (pris) prepare_une(o, i, &out[nb++]);
    ++i;
  }
  return nb;
}

void eclaire(const float* p, const float* nrm, const float* kd, const Eclairage& e, float* out) {
  float r = e.amb[0], g = e.amb[1], b = e.amb[2];
  for (int i = 0; i < e.n; ++i) {
    const LumP& l = e.lum[i];
    float L[3], att = 1;
    if (l.pos[3] != 0) {
      L[0] = l.pos[0] - p[0];
      L[1] = l.pos[1] - p[1];
      L[2] = l.pos[2] - p[2];
      float d2 = L[0] * L[0] + L[1] * L[1] + L[2] * L[2];
      float d = std::sqrt(d2);
      if (d > 0) {
        float inv = 1 / d;
        L[0] *= inv, L[1] *= inv, L[2] *= inv;
      }
      if (l.att != 0) {
        float den = l.att * (1 + d + d2);
        att = den > 1e-30f ? 1 / den : 1e30f;
      }
      if (l.cos_coupe > -1.5f) {
        float c = -(L[0] * l.dir[0] + L[1] * l.dir[1] + L[2] * l.dir[2]);
        if (c < l.cos_coupe) continue;
      }
    } else {
      L[0] = l.pos[0], L[1] = l.pos[1], L[2] = l.pos[2];
    }
    float nl = nrm[0] * L[0] + nrm[1] * L[1] + nrm[2] * L[2];
    if (!(nl > 0)) continue;
    r += att * nl * l.diff[0] * kd[0];
    g += att * nl * l.diff[1] * kd[1];
    b += att * nl * l.diff[2] * kd[2];
    if (e.specu != 0) {
      float h[3] = {L[0], L[1], L[2] + 1};
      float hm = std::sqrt(h[0] * h[0] + h[1] * h[1] + h[2] * h[2]);
      float nh = hm > 0 ? (nrm[0] * h[0] + nrm[1] * h[1] + nrm[2] * h[2]) / hm : 0;
      if (nh > 0) {
        float s = att * e.specu * (e.brillance == 0 ? 1.f : std::pow(nh, e.brillance));
        r += s * l.specu[0], g += s * l.specu[1], b += s * l.specu[2];
      }
    }
  }
  // Levels, clamped as OpenGL clamps the lit colour; NaN goes to 0.
  out[0] = r > 0 ? (r < 1 ? r * 255 : 255.f) : 0.f;
  out[1] = g > 0 ? (g < 1 ? g * 255 : 255.f) : 0.f;
  out[2] = b > 0 ? (b < 1 ? b * 255 : 255.f) : 0.f;
  if (brouillard_etat.actif) brouille(p, out);
}
