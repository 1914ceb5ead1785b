// One frame of the real-time drawing asked from the console (`aff gl`
// alone): the records the interaction loop keeps when it runs, otherwise
// records made for this frame of every volume and freed after it, so that
// a scene typed at the prompt shows through the same OpenGL path as in the
// loop. The frame is the loop's: back buffer, depth test, clear, lights,
// projection reset, aff_rt of all records, swap.
//
// Where the loop clears the colour only on its flag, this frame always
// clears colour (with the background of `aff fond`, black before any) and
// depth: the back buffer holds nothing defined after the
// previous swap, and a single frame has no earlier picture to keep.
#include <GL/freeglut.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/objet.h"
#include "display/display.h"
#include "display/moteurs.h"
#include "geom/geom.h"
#include "startup/startup.h"

const std::vector<Vol_rt*>& rt_a_dessiner();

namespace {
constexpr int B_FOND = 1;
}

int aff_rt_image() {
  if (fen.fenetre < 1) return -1;
  std::vector<Vol_rt*> faits;
  if (rt_a_dessiner().empty())
    for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
      if (est_volume(o) && o->numero > 0)
        if (Vol_rt* r = vol_rt_cree(o)) faits.push_back(r);
  glDrawBuffer(GL_BACK);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  // The background of `aff`'s b1, as the software engine clears with it.
  int n = 0;
  const reel* c = mot_valeur(1, B_FOND, &n);
  float rgb[3] = {0, 0, 0};
  for (int k = 0; k < 3 && c && k < n; ++k) rgb[k] = std::isfinite(c[k]) ? std::clamp(c[k], 0.f, 1.f) : 0.f;
  glClearColor(rgb[0], rgb[1], rgb[2], 0.f);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  int r = lum_gl();
  projection_set(1);
  aff_rt(nullptr);
  glutSwapBuffers();
  // The picture shown is read from the buffer it was drawn in: Mesa's
  // software GL keeps a front of its own that a swap does not write.
  glReadBuffer(GL_BACK);
  for (Vol_rt* x : faits) vol_rt_libere(x);
  return r < 0 ? r : 0;
}

