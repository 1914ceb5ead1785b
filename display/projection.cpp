// The projection step of a frame: perspective or parallel from the eye.
// The eye record keeps foc > 0 and 0 < proche < loin; values that break it
// anyway (a hand-made record) leave the matrices as they were rather than
// give GL a singular matrix.
#include <GL/glu.h>

#include <cmath>

#include "display/display.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "geom/geom.h"

namespace {
constexpr int PERSPECTIVE = 13, PARALLELE = 63;
constexpr double DEGRES_FOC = 57.75;

bool fini(float x) { return std::isfinite(x); }
}  // namespace

void projection_set(int reset) {
  const Oeil& e = oeil_courant;
  if (e.projection != PERSPECTIVE && e.projection != PARALLELE) return;
  if (fen.dimx < 1 || fen.dimy < 1) return;
  // The parallel view maps 0..dimx - 1: a window of one pixel a side has
  // no such range, and keeps the matrices it had.
  if (e.projection == PARALLELE && (fen.dimx < 2 || fen.dimy < 2)) return;
  if (!(e.proche > 0) || !(e.loin > e.proche) || !fini(e.loin)) return;
  for (int i = 0; i < 3; ++i)
    if (!fini(e.oeil[i]) || !fini(e.vise[i])) return;
  if (e.projection == PERSPECTIVE && (!(e.foc > 0) || !fini(e.foc) || !fini(e.roul))) return;
  if (reset) {
    // Each step ends with a push that the frame never pops: a reset starts
    // the stack again, so that frames after frames never overflow it.
    glMatrixMode(GL_MODELVIEW);
    GLint n = 1;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &n);
    for (; n > 1; --n) glPopMatrix();
  }
  glMatrixMode(GL_PROJECTION);
  if (reset) glLoadIdentity();
  if (e.projection == PERSPECTIVE) {
    gluPerspective(e.foc * DEGRES_FOC, static_cast<double>(fen.dimx) / fen.dimy, e.proche, e.loin);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    float haut[3] = {0, -1, 0};
    if (e.roul != 0) {
      const float axe[3] = {e.vise[0] - e.oeil[0], e.vise[1] - e.oeil[1], e.vise[2] - e.oeil[2]};
      const float zero[3] = {0, 0, 0};
      float m[16], h[3];
      matrice_axe(zero, axe, std::cos(e.roul), std::sin(e.roul), m);
      // The up vector is a direction: the rotation about a line through
      // the origin moves it as a point would.
      matrice_applique(m, haut, h);
      haut[0] = h[0], haut[1] = h[1], haut[2] = h[2];
    }
    gluLookAt(e.oeil[0], e.oeil[1], e.oeil[2], e.vise[0], e.vise[1], e.vise[2], haut[0], haut[1], haut[2]);
  } else {
    glOrtho(0, fen.dimx - 1, 0, fen.dimy - 1, e.proche, e.loin);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    double x = -fen.dimx / 2.0, y = fen.dimy / 2.0;
    gluLookAt(x, y, -1000, x, y, 0, 0, -1, 0);
  }
  glPushMatrix();
}
