// The fog: one state, given to GL whole each time a command changes it.
#include <GL/gl.h>

#include "display/display.h"
#include "display/moteurs.h"

Brouillard brouillard_etat;

namespace {
constexpr GLint LOIS[3] = {GL_LINEAR, GL_EXP, GL_EXP2};
}

void brouillard_applique() {
  const Brouillard& b = brouillard_etat;
  if (b.actif) glEnable(GL_FOG);
  else glDisable(GL_FOG);
  glFogi(GL_FOG_MODE, LOIS[b.loi >= 0 && b.loi <= 2 ? b.loi : 0]);
  glFogfv(GL_FOG_COLOR, b.coul);
  glFogf(GL_FOG_DENSITY, b.densite);
  glFogf(GL_FOG_START, b.debut);
  glFogf(GL_FOG_END, b.fin);
}
