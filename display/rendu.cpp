// The software renderer (placeholder until the engine lands: draws nothing).
#include "display/moteurs.h"
#include "display/oeil.h"

Oeil oeil_courant;
static int mode_zbuf = 0;

int rendu_vol(const Vol_aff&) { return 0; }
int init_zbuf(int) { return 0; }
int zbuf_mode() { return mode_zbuf; }
int zbuf_mode_fixe(int mode) { if (mode < 0) return -1; mode_zbuf = mode; return 0; }
void oeil_matrices(int, int, float vue[16], float proj[16]) {
  for (int i = 0; i < 16; ++i) vue[i] = proj[i] = (i % 5 == 0) ? 1.f : 0.f;
}
