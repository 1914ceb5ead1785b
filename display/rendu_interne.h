// Private to the software renderer: the z-buffer, the projected vertices,
// the polygon in work, the lights of a volume and the span writers.
//
// Invariants: when `zb.mode` is 1 only `zb.court` is held, when 2 only
// `zb.flot`, each of exactly zb.l x zb.h entries; a buffer whose size is
// not the working image's is reallocated before a volume is drawn. Window
// coordinates follow OpenGL: x right, y up, pixel (i, j) has its centre at
// (i + 0.5, j + 0.5), row 0 is the bottom row of the image; the depth runs
// from 0 (near plane) to 1 (far plane), and the 16-bit z-buffer holds the
// eye distance on a scale of equal ratios instead.
#pragma once
#include <cstdint>
#include <memory>

#include "core/bloc.h"
#include "display/display.h"
#include "image/image.h"

struct Vol_aff;

// The current values of keyword (1, ord), or null with no message when the
// vocabulary has none.
reel* mot_valeurs(int ord, int* n);
reel* mot_defauts(int ord, int* n);

// ---- z-buffer ---------------------------------------------------------------
constexpr std::int16_t ZB_COURT_LOIN = 32767;
constexpr float ZB_FLOT_LOIN = 1.0e9f;
struct Zbuf {
  int mode = -1;  // -1 until the first use reads the start-up key
  int l = 0, h = 0;
  std::unique_ptr<std::int16_t[]> court;
  std::unique_ptr<float[]> flot;
};
extern Zbuf zb;
// Makes the buffer of `mode` at the working image's size when it is not.
int zbuf_pret(int mode, int l, int h);

// ---- projected vertices -------------------------------------------------------
// Clip coordinates, window coordinates and eye coordinates of a vertex,
// with its outcode: one bit per side of the view volume it lies beyond
// (x-, x+, y-, y+, near, far), SOM_NAN when a coordinate is not finite.
constexpr int SOM_NAN = 64;
struct SomP {
  float c[4];
  float s[3];
  float e[3];
  int code;
};

// A vertex of a polygon in work: 24 floats, all interpolated by clipping.
struct Pt {
  float c[4];   // clip
  float s[3];   // window
  float e[3];   // eye position (per-pixel lighting, 16-bit depth)
  float n[3];   // eye normal (per-pixel lighting)
  float k[4];   // lit colour 0..255 (smooth) or material colour 0..1 (per pixel)
  float pad[7]; // [0..2]: the point in object space, under pigments
};
static_assert(sizeof(Pt) == 24 * sizeof(float));

// ---- lights -------------------------------------------------------------------
constexpr int LUM_MAX = 100;
struct LumP {
  float pos[4];      // eye space; w 0 for a light at infinity
  float dir[3];      // spot direction, unit, eye space
  float cos_coupe;   // cone; -2 when the light is no spot
  float diff[3], specu[3];
  float att;         // the three attenuation terms; 0: none
};
// The material of the point being lit: diffuse colour (0..1), specular
// coefficient, shininess; the volume's lights and the ambient term.
struct Eclairage {
  const LumP* lum = nullptr;
  int n = 0;
  float amb[3] = {0, 0, 0};  // scene ambient x material ambient, 0..1
  float specu = 0, brillance = 0;
};
// Lights of the volume (all of the scene when `nums` is null) into `out`.
int lum_preparer(const int* nums, int n, LumP* out);
// The colour of one point, levels 0..255 (unclamped above is clamped here).
// p: eye position, nrm: unit eye normal, kd: diffuse colour 0..1.
void eclaire(const float* p, const float* nrm, const float* kd, const Eclairage& e, float* out);

// ---- spans ----------------------------------------------------------------------
struct Trace {
  mot* ima = nullptr;
  int l = 0, h = 0;
  int zmode = 0;
  float alpha = 1;           // 1: opaque
  float coul[3] = {0, 0, 0}; // flat colour, levels
  const Eclairage* ecl = nullptr;
  // The 16-bit depth's scale, from zbuf_echelle.
  float z_proche = 1;
  int z_dec = 0;
  // The pigments of the face being filled (kind TRI_PIGMENT).
  const Pigment* pig = nullptr;
  int n_pig = 0;
};
// The scale of the 16-bit depth for a view from `proche` to `loin`: the
// distance's float bits from the near plane's, shifted right by the least
// count that puts the far plane within the buffer, so that each step is
// the same small part of the distance (a thousandth over the default
// range) at every depth.
void zbuf_echelle(float proche, float loin, Trace& t);
// Kinds of shading of a triangle.
// TRI_PIGMENT lights each pixel as TRI_PIXEL does, with the diffuse
// colour the coefficient (in `k`) times the pigments' colour at the point
// of object space that `pad` carries.
enum { TRI_PLAT = 0, TRI_GOURAUD = 1, TRI_PIXEL = 2, TRI_PIGMENT = 3, TRI_SORTES = 4 };
// The filler of triangles (a, b, c) of window points for a kind of shading
// and the trace's depth mode and blending; only the fields the kind reads
// are used.
using FnTri = void (*)(const Pt& a, const Pt& b, const Pt& c, const Trace& t);
FnTri triangle_choisi(int sorte, const Trace& t);
// A line between two window points (z ignored), clipped to the image.
void ligne(const Trace& t, float x0, float y0, float x1, float y1, const float* coul);
// A filled square of side `cote` centred at (x, y), and a number at its right.
void carre(const Trace& t, float x, float y, int cote, const float* coul);
void numero(const Trace& t, int x, int y, long n, const float* coul);
