// OpenGL drawing of volumes (placeholder until the engine lands: draws nothing).
#include "display/moteurs.h"

int aff_gl_vol(const Vol_aff&) { return 0; }
void projection_set(int) {}
int lum_gl() { return 0; }
void lum_eteindre() {}
int lum_id(int i) { return i >= 0 && i < 8 ? 0x4000 + i : -1; }
