// The GL helpers, one call each, the reshape of the window and the working
// image (object 0) that follows the window's size.
//
// The working image's block: word 4 the width, 5 the height, 6 the byte
// count w x 3 x h, pixels from word 7 in planar rows (w red bytes, w green,
// w blue), row 0 at the bottom as the GL read-back gives it.
#include <GL/freeglut.h>

#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "core/objet.h"
#include "display/display.h"
#include "startup/startup.h"

void gl_avant() {
  if (fen.fenetre < 1) return;
  glDrawBuffer(GL_FRONT);
  glReadBuffer(GL_FRONT);
}

void gl_arriere() {
  if (fen.fenetre < 1) return;
  glDrawBuffer(GL_BACK);
  glReadBuffer(GL_BACK);
}

void gl_echange() {
  if (fen.fenetre > 0) glutSwapBuffers();
}

void gl_profondeur(bool oui) {
  if (fen.fenetre < 1) return;
  if (oui) glEnable(GL_DEPTH_TEST);
  else glDisable(GL_DEPTH_TEST);
}

void gl_sans_lumiere() {
  if (fen.fenetre > 0) glDisable(GL_LIGHTING);
}

void fond_ecran(float r, float g, float b) {
  if (!dem.graphique || fen.fenetre < 1) return;
  glutUseLayer(GLUT_NORMAL);
  glClearColor(r, g, b, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  glFlush();
}

void projection_2d() {
  if (fen.fenetre < 1) return;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  GLint v[4];
  glGetIntegerv(GL_VIEWPORT, v);
  glViewport(0, 0, v[2], v[3]);
  glMatrixMode(GL_PROJECTION);
  gluOrtho2D(0, v[2], 0, v[3]);
  glMatrixMode(GL_MODELVIEW);
}

void entree_outil_2d() {
  if (fen.fenetre < 1) return;
  glutSetWindow(fen.fenetre);
  projection_2d();
  glutReshapeWindow(fen.dimx, fen.dimy);
  glDisable(GL_DEPTH_TEST);
  gl_avant();
}

int image_ecran_taille(int w, int h) {
  long octets = 3L * w * h;
  mot* ima = bloc_alloue(static_cast<mot>(octets / 4 + 8));
  auto* rvba = static_cast<unsigned char*>(tas::alloue(static_cast<std::size_t>(w) * h * 4));
  if (!ima || !rvba) {
    bloc_libere(ima);
    if (rvba) tas::libere(rvba);
    message(0, MES_ALLOCATION);
    return -1;
  }
  ima[1] = BLOC_IMAGE;
  ima[2] = ima[3] = 0;
  ima[4] = w;
  ima[5] = h;
  ima[6] = static_cast<mot>(octets);
  Objet* o = ecran.image_ecran;
  if (o) {
    bloc_libere(o->donnees);
    o->donnees = ima;
  }
  if (ecran.rvba) tas::libere(ecran.rvba);
  ecran.rvba = rvba;
  ecran.largeur = w;
  ecran.hauteur = h;
  ecran.centre_x = w / 2;
  ecran.centre_y = h / 2;
  ecran.clip_x1 = w - 1;
  ecran.clip_y1 = h - 1;
  ecran.pixels = static_cast<long>(w) * h;
  ecran.octets_rvb = 3 * ecran.pixels;
  fen.ima_x = w;
  fen.ima_y = h;
  return 0;
}

void Reshape_Func(int w, int h) {
  if (w < 1 || h <= 0) {
    std::printf("Warning Reshape_Func(%d, %d)\n", w, h);
    std::fflush(stdout);
    return;
  }
  if (fen.fenetre > 0) glViewport(0, 0, w, h);
  fen.dimx = w;
  fen.dimy = h;
  if (w != fen.ima_x || h != fen.ima_y) image_ecran_taille(w, h);
  int m = fen.mode_interactif;
  if (m == 16 || m == 156) {
    const Outil* o = outil(m);
    if (o && o->projection) o->projection();
  }
}

int fenetre_lit_image() {
  if (fen.fenetre < 1 || !ecran.image_ecran || !ecran.rvba) return -1;
  mot* ima = ecran.image_ecran->donnees;
  if (!ima) return -1;
  int w = ima[4], h = ima[5];
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, ecran.rvba);
  auto* p = reinterpret_cast<unsigned char*>(ima + 7);
  const unsigned char* s = ecran.rvba;
  for (int y = 0; y < h; ++y) {
    unsigned char* r = p + 3L * w * y;
    for (int x = 0; x < w; ++x, s += 4) {
      r[x] = s[0];
      r[w + x] = s[1];
      r[2 * w + x] = s[2];
    }
  }
  return 0;
}
