// Pigment records, their defaults by type, the colour maps and the reading
// of a pigment list from a volume's attributes.
//
// Invariants: a post-processed pigment (flag bit 3) has a type of 1..19,
// octaves of 0..64, a finite frequency, and a colour map. The maps are
// built once: 13 palettes, each in 7 variants, make the 91 entries 0..90.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "core/message.h"
#include "display/display.h"

namespace {
constexpr int M_PIGMENT = 14;  // message 1:14

// Palettes: stops of (position, r, g, b).
struct Palette {
  int n;
  float s[6][4];
};
constexpr Palette PALETTES[13] = {
    {2, {{0, 0, 0, 0}, {1, 1, 1, 1}}},                                                       // 0 grey
    {4, {{0, .95f, .93f, .88f}, {.6f, .85f, .82f, .78f}, {.85f, .35f, .3f, .32f}, {1, .1f, .1f, .15f}}},  // 1 marble
    {3, {{0, .75f, .5f, .25f}, {.7f, .6f, .35f, .15f}, {1, .35f, .18f, .06f}}},              // 2 wood
    {4, {{0, .1f, .1f, .1f}, {.4f, .55f, .45f, .45f}, {.7f, .85f, .8f, .78f}, {1, .3f, .25f, .25f}}},    // 3 granite
    {4, {{0, .45f, .2f, .05f}, {.3f, .9f, .6f, .3f}, {.6f, .6f, .3f, .15f}, {1, .95f, .85f, .7f}}},     // 4 agate
    {2, {{0, .95f, .85f, .35f}, {1, .1f, .08f, .02f}}},                                      // 5 leopard
    {3, {{0, .05f, .2f, .6f}, {.5f, .5f, .75f, 1}, {1, 1, 1, 1}}},                           // 6 sky
    {3, {{0, .9f, .1f, .1f}, {.5f, .95f, .9f, .1f}, {1, .1f, .2f, .9f}}},                    // 7 red-yellow-blue
    {2, {{0, 1, 1, 1}, {1, .05f, .05f, .05f}}},                                              // 8 checker
    {3, {{0, .1f, .5f, .1f}, {.5f, .6f, .9f, .3f}, {1, .05f, .25f, .05f}}},                  // 9 greens
    {4, {{0, .2f, 0, .3f}, {.35f, .9f, .2f, .4f}, {.7f, 1, .8f, .2f}, {1, 1, 1, .9f}}},     // 10 fire
    {3, {{0, .85f, .8f, .7f}, {.5f, .6f, .25f, .2f}, {1, .3f, .3f, .35f}}},                  // 11 brick
    {6, {{0, 1, 0, 0}, {.2f, 1, 1, 0}, {.4f, 0, 1, 0}, {.6f, 0, 1, 1}, {.8f, 0, 0, 1}, {1, 1, 0, 1}}},  // 12 rainbow
};

std::unique_ptr<Carte_coul[]> cartes;

void cartes_pretes() {
  if (cartes) return;
  cartes.reset(new (std::nothrow) Carte_coul[CARTES_NB]);
  if (!cartes) {
    std::printf("color");
    std::exit(0);
  }
  for (int i = 0; i < CARTES_NB; ++i) {
    const Palette& p = PALETTES[i / 7];
    int var = i % 7;
    Carte_coul& c = cartes[i];
    c.n = p.n;
    for (int k = 0; k < p.n; ++k) {
      const float* s = p.s[var == 1 ? p.n - 1 - k : k];
      c.pos[k] = var == 1 ? 1 - s[0] : s[0];
      float r = s[1], g = s[2], b = s[3];
      switch (var) {
        case 2: r *= .6f, g *= .6f, b *= .6f; break;           // darker
        case 3: r = .4f + .6f * r, g = .4f + .6f * g, b = .4f + .6f * b; break;  // lighter
        case 4: { float t = r; r = g, g = b, b = t; } break;    // channels turned
        case 5: { float t = b; b = g, g = r, r = t; } break;
        case 6: r = g = b = .3f * r + .59f * g + .11f * b; break;  // grey
        default: break;
      }
      c.rgb[k][0] = r, c.rgb[k][1] = g, c.rgb[k][2] = b;
    }
  }
}

// The palette each type takes when no map is given.
constexpr int CARTE_TYPE[PIGMENT_TYPES + 1] = {0, 0, 7, 14, 21, 28, 63, 42, 56, 35, 84, 43, 47, 73, 49, 70, 77, 49, 70, 42};

int sature(double x, int lo, int hi) {
  if (!(x > lo)) return lo;
  return x < hi ? static_cast<int>(x) : hi;
}
}  // namespace

const Carte_coul* carte_coul(int i) {
  cartes_pretes();
  return i >= 0 && i < CARTES_NB ? &cartes[i] : nullptr;
}

Pigment* Create_Pigment() {
  Pigment* p = new (std::nothrow) Pigment;
  if (!p) {
    std::printf("probleme fonction Create_Pigment \n");
    std::exit(0);
  }
  return p;
}

float* Create_Colour() {
  float* c = new (std::nothrow) float[8]();
  if (!c) {
    std::printf("color");
    std::exit(0);
  }
  return c;
}

void Post_Pigment(Pigment* p) {
  if (!p) {
    std::printf("Missing pigment \n");
    std::exit(0);
  }
  if (p->flags & PIGMENT_FAIT) return;
  if (p->type <= 0 || p->type > PIGMENT_TYPES) {
    if (p->type == 0) std::printf("No pigment type given \n");
    p->type = 1;
  }
  p->flags |= PIGMENT_FAIT;
  cartes_pretes();
  // Defaults by type: the fields the evaluator reads that the list left 0.
  switch (p->type) {
    case 1:  // bozo: plain noise, no extra field
      p->champs[0] = p->champs[1] = 0;
      break;
    case 8:  // checker: the size of a square
    case 16:  // bricks: the mortar's width
    case 17:  // hexagons: the cell's size
      if (p->champs[0] == 0) p->champs[0] = p->type == 16 ? 0.08 : 1;
      break;
    case 11:  // ripples and waves: the number of centres
    case 12:
      if (p->champs[0] == 0) p->champs[0] = 3;
      break;
    case 14:  // radial and spiral: the number of arms
    case 15:
      if (p->champs[0] == 0) p->champs[0] = 6;
      break;
    case 18:  // the Mandelbrot set: its iterations
      if (p->champs[0] == 0) p->champs[0] = 48;
      break;
    default:
      break;
  }
  if (!p->carte) p->carte = &cartes[CARTE_TYPE[p->type]];
  p->octaves = std::max(0, std::min(p->octaves, 64));
  if (!std::isfinite(p->frequence)) p->frequence = 1;
  if (!std::isfinite(p->phase)) p->phase = 0;
  if (!std::isfinite(p->omega)) p->omega = 0.5;
  if (!std::isfinite(p->lambda)) p->lambda = 2;
  for (double& t : p->turbulence)
    if (!std::isfinite(t)) t = 0;
  for (double& t : p->champs)
    if (!std::isfinite(t)) t = 0;
  for (double& t : p->rapports)
    if (!std::isfinite(t)) t = 0.5;
}

int pigments_lit(const mot* v, Pigment* out, int max) {
  if (!v || v[0] < 4) return 0;
  // One float vector alone is a list of one.
  const mot* un[1] = {v};
  int nb = 1;
  const mot* const* el = un;
  std::vector<const mot*> tous;
  if (v[1] == BLOC_BLOCS) {
    nb = std::max(0, std::min<int>(v[2], v[0] - 4));
    for (int i = 0; i < nb; ++i) tous.push_back(bloc_pointe(v[4 + i]));
    el = tous.data();
  }
  int n = 0;
  for (int i = 0; i < nb; ++i) {
    const mot* e = el[i];
    if (!e || e[0] < 4) continue;
    if (e[1] == BLOC_CHAINE) {
      if (n > 0) {
        std::size_t l = std::min<std::size_t>(31, 4 * static_cast<std::size_t>(e[0] - 4));
        std::strncpy(out[n - 1].nom, reinterpret_cast<const char*>(e + 4), l);
        out[n - 1].nom[31] = 0;
      }
      continue;
    }
    if (e[1] != BLOC_REEL || e[0] < 5) continue;
    int k = e[0] - 4;
    const float* x = reels(e + 4);
    double c = x[0];
    if (!(c >= 10 && c < 120)) continue;  // not a pigment: passed on
    if (!bruit.pret) Initialize_Noise();
    if (n >= max) {
      std::printf("%d: ", n + 1);
      message(0, MES_ENTETE);
      return -1;
    }
    Pigment& p = out[n];
    p = Pigment{};
    int ci = static_cast<int>(c);
    if (ci == 10) {
      // The form that holds a colour only.
      for (int j = 0; j < 3; ++j) p.coul[j] = k > 1 + j && std::isfinite(x[1 + j]) ? x[1 + j] : 0;
      p.flags = PIGMENT_FAIT;
      p.type = -1;
      ++n;
      continue;
    }
    if (ci >= 100) p.type = ci - 100;
    double ent = k > 1 ? x[1] : -1;
    if (!(ent >= -1 && ent < CARTES_NB)) {
      std::printf("%d: ", std::isfinite(ent) ? sature(ent, -2147483647, 2147483647) : 0);
      message(1, M_PIGMENT);
      return -1;
    }
    int entree = static_cast<int>(ent);
    cartes_pretes();
    if (entree >= 0) p.carte = &cartes[entree];
    Post_Pigment(&p);
    // The values after the entry: omega, lambda, octaves, frequency, phase,
    // then the rest of the record in order; 0 for each one missing.
    auto val = [&](int j) { return 2 + j < k ? static_cast<double>(x[2 + j]) : 0.0; };
    p.omega = val(0);
    p.lambda = val(1);
    p.octaves = sature(val(2), 0, 64);
    p.frequence = val(3);
    p.phase = val(4);
    double* suite[10] = {&p.turbulence[0], &p.turbulence[1], &p.turbulence[2], &p.champs[0], &p.champs[1],
                         &p.champs[2], &p.champs[3], &p.rapports[0], &p.rapports[1], &p.rapports[2]};
    for (int j = 0; j < 10 && 7 + j < k; ++j) *suite[j] = val(5 + j);
    // Values that are not finite count as missing.
    p.flags &= ~PIGMENT_FAIT;
    if (p.type == 0) p.type = 1;  // already announced
    Post_Pigment(&p);
    ++n;
  }
  return n;
}
