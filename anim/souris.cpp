// The mouse of the running interaction: picking the records under the
// pointer, the drags that `cmd_souris` names, the eye moved by the mouse,
// and the eye's glide towards a record.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cmath>
#include <cstdio>

#include "anim/interne.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "geom/geom.h"

namespace {
constexpr float PI = 3.14159265f;
constexpr int PICK_COTE = 5;

bool cmd_vol(int c) { return c == 31 || c == 34 || c == 35 || c == 36 || c == 37 || c == 95; }

// Angles at the selection: a drag turns from them.
struct Depart {
  float angle, rotx, roty, rotz;
};

float borne(float a, const reel* lim) {
  if (!lim) return a;
  const float mn = lim[0] * 57.295776f, mx = lim[1] * 57.295776f;
  return a < mn ? mn : (a > mx ? mx : a);
}

void oeil_sphere(int x, int y, bool z) {
  Oeil& e = oeil_courant;
  const float r = inter.dist_oeil;
  float p[3] = {r, 0, 0};
  const float a = 2 * PI * x / (fen.dimx > 0 ? fen.dimx : 1) - PI;
  const float b = 2 * PI * y / (fen.dimy > 0 ? fen.dimy : 1) - PI;
  // About y (or z), then about x.
  float q[3];
  if (!z) q[0] = p[0] * std::cos(a), q[1] = 0, q[2] = -p[0] * std::sin(a);
  else q[0] = p[0] * std::cos(a), q[1] = p[0] * std::sin(a), q[2] = 0;
  float s[3] = {q[0], q[1] * std::cos(b) - q[2] * std::sin(b), q[1] * std::sin(b) + q[2] * std::cos(b)};
  for (int k = 0; k < 3; ++k) e.oeil[k] = e.vise[k] + s[k];
}
}  // namespace

// The selecting form of the pick: the nearest record under the pointer
// becomes `actif`; its angles at that moment are kept for the drag.
int inter_pick(int x, int y, bool selectionne) {
  if (fen.fenetre < 1 || !inter.pick) return 0;
  GLuint* tampon = reinterpret_cast<GLuint*>(inter.pick + 4);
  glSelectBuffer(1000 - 4, tampon);
  glRenderMode(GL_SELECT);
  glInitNames();
  glPushName(0);
  GLint vp[4];
  glGetIntegerv(GL_VIEWPORT, vp);
  oeil_courant.projection = inter.projection;
  projection_set(1);
  // The pick region multiplies the projection that was just built.
  GLfloat p[16];
  glMatrixMode(GL_PROJECTION);
  glGetFloatv(GL_PROJECTION_MATRIX, p);
  glLoadIdentity();
  gluPickMatrix(x, vp[3] - y, PICK_COTE, PICK_COTE, vp);
  glMultMatrixf(p);
  glMatrixMode(GL_MODELVIEW);
  int i = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant, ++i) {
    if (!v->rt) continue;
    glLoadName(static_cast<GLuint>(i + 1));
    glPushMatrix();
    glMultMatrixf(v->mat);
    aff_rt(v->rt);
    glPopMatrix();
  }
  GLint n = glRenderMode(GL_RENDER);
  int choisi = 0;
  GLuint zmin = ~0u;
  for (GLint h = 0, k = 0; h < n && k + 3 < 1000 - 4; ++h) {
    GLuint nb = tampon[k], z1 = tampon[k + 1];
    if (nb > 0 && z1 <= zmin) zmin = z1, choisi = static_cast<int>(tampon[k + 3]);
    k += 3 + static_cast<int>(nb);
  }
  if (!selectionne) return choisi;
  i = 0;
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    ++i;
    v->actif = i == choisi;
    if (v->actif) {
      v->hist[9] = v->angle, v->hist[10] = v->rotx, v->hist[11] = v->roty;
      v->taches[11] = reel_mot(v->rotz);
    }
  }
  return choisi;
}

void inter_souris(int bouton, int etat, int x, int y) {
  if (!inter.en_cours) return;
  vols_inter_suivent();
  if (etat == 0) {
    if (bouton == 0 && !inter.souris_active && cmd_vol(inter.cmd_souris)) {
      inter.pick_x = x, inter.pick_y = y;
      if (inter_pick(x, y, true) > 0) inter.souris_active = 1;
    }
    return;
  }
  inter.cmd_rayon = 0;
  inter.souris_active = 0;
}

void inter_mouvement(int x, int y) {
  if (!inter.en_cours) return;
  vols_inter_suivent();
  if (fen.bouton == 1) {
    oeil_courant.foc = x * 2.99f / (fen.dimx > 0 ? fen.dimx : 1) + 0.01f;
    return;
  }
  Oeil& e = oeil_courant;
  switch (inter.cmd_souris) {
    case 9: {
      float dx = fen.dimx / 2.f - x, dy = y - fen.dimy / 2.f;
      float ex = e.vise[0] - e.oeil[0], ey = e.vise[1] - e.oeil[1];
      e.oeil[0] = dx, e.oeil[1] = dy;
      e.vise[0] = dx + ex, e.vise[1] = dy + ey;
      return;
    }
    case 10:
    case 11:
      oeil_sphere(x, y, inter.cmd_souris == 11);
      return;
  }
  if (inter.cmd_rayon == 68) {
    std::printf("r = %d\n", x);
    std::fflush(stdout);
    return;
  }
  if (!inter.souris_active) return;
  const float d = static_cast<float>(inter.pick_x - x) * 360.f / (fen.dimx > 0 ? fen.dimx : 1);
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (!v->actif) continue;
    switch (inter.cmd_souris) {
      case 31:
        v->pos[0] = x - fen.dimx / 2.f, v->pos[1] = y - fen.dimy / 2.f;
        break;
      case 34:
        v->axe[0] = inter.vue[0], v->axe[1] = inter.vue[1], v->axe[2] = inter.vue[2];
        v->angle = borne(v->hist[9] + d, v->lim_rota);
        break;
      case 35:
        v->rotx = borne(v->hist[10] + d, v->lim_rotx);
        break;
      case 36:
        v->roty = borne(v->hist[11] + d, v->lim_roty);
        break;
      case 37:
        v->rotz = borne(lit_reel(&v->taches[11]) - d, v->lim_rotz);
        break;
      case 95:
        if (v->som && v->courant >= 1 && v->courant <= v->nb_som) {
          reel* p = v->som + static_cast<long>(v->courant - 1) * v->stride;
          p[0] = x - fen.dimx / 2.f, p[1] = y - fen.dimy / 2.f;
        }
        break;
    }
    vol_inter_matrice(v);
  }
}

int inter_glide(int num, int n) {
  Vol_inter* v = vol_inter_de(num);
  if (!v) {
    std::printf("%d: ", num);
    message(0, MES_ABSENT);
    return -1;
  }
  Oeil& e = oeil_courant;
  float vue[16], proj[16];
  oeil_matrices(fen.dimx, fen.dimy, vue, proj);
  float c[3] = {v->pos[0] + v->centre[0], v->pos[1] + v->centre[1], v->pos[2] + v->centre[2]}, a[3], b[3];
  matrice_applique(vue, c, a);
  matrice_applique(proj, a, b);
  // Only a record outside the window is glided to.
  const float w = proj[3] * a[0] + proj[7] * a[1] + proj[11] * a[2] + proj[15];
  if (w > 0 && std::fabs(b[0]) <= w && std::fabs(b[1]) <= w) return 0;
  if (n < 1) n = 1;
  for (int k = 0; k < 3; ++k) {
    inter.glide_oeil[k] = e.oeil[k], inter.glide_vise[k] = e.vise[k];
    float cible_vise = c[k], cible_oeil = c[k] + (e.oeil[k] - e.vise[k]);
    inter.glide_d_vise[k] = (cible_vise - e.vise[k]) / n;
    inter.glide_d_oeil[k] = (cible_oeil - e.oeil[k]) / n;
  }
  inter.glide_n = n, inter.glide_k = 0, inter.tache_eye = num;
  return 0;
}

void inter_glide_pas() {
  if (inter.glide_k >= inter.glide_n) return;
  const int k = ++inter.glide_k;
  Oeil& e = oeil_courant;
  for (int j = 0; j < 3; ++j) {
    e.oeil[j] = inter.glide_oeil[j] + k * inter.glide_d_oeil[j];
    e.vise[j] = inter.glide_vise[j] + k * inter.glide_d_vise[j];
  }
}
