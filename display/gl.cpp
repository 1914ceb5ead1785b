// The GL helpers, one call each, the reshape of the window and the working
// image (object 0) that follows the window's size.
//
// The working image's block: word 4 the width, 5 the height, 6 the byte
// count w x 3 x h, pixels from word 7 in planar rows (w red bytes, w green,
// w blue), row 0 at the bottom as the GL read-back gives it.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "core/objet.h"
#include "display/display.h"
#include "image/image.h"
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

// The working image 0 follows the window's size; the RGBA buffer is where
// glReadPixels lands before the planes are filled.
int image_ecran_taille(int w, int h) {
  auto* rvba = static_cast<unsigned char*>(tas::alloue(static_cast<std::size_t>(w) * h * 4));
  if (!rvba) {
    message(0, MES_ALLOCATION);
    return -1;
  }
  if (ima_ecran_retaille(w, h) < 0) {
    tas::libere(rvba);
    return -1;
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
  if (fen.fenetre < 1 || !ecran.rvba) return -1;
  mot* ima = ima_ecran();
  if (!ima) return -1;
  int w = ima[4], h = ima[5];
  // A file read into image 0 changed its size: read only what both hold.
  if (w != ecran.largeur || h != ecran.hauteur) return -1;
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

// The working image 0 drawn into the window at its bottom left, so that what
// the image commands wrote there is what the window shows.
int fenetre_montre_image() {
  if (fen.fenetre < 1 || !ecran.rvba) return -1;
  const mot* ima = ima_ecran();
  if (!ima) return -1;
  int w = ima[4], h = ima[5];
  if (w != ecran.largeur || h != ecran.hauteur) return -1;
  const auto* p = reinterpret_cast<const unsigned char*>(ima + 7);
  unsigned char* d = ecran.rvba;
  for (int y = 0; y < h; ++y) {
    const unsigned char* r = p + 3L * w * y;
    for (int x = 0; x < w; ++x, d += 4) {
      d[0] = r[x];
      d[1] = r[w + x];
      d[2] = r[2 * w + x];
      d[3] = 255;
    }
  }
  // The pixels go as they are: a depth test left on by an OpenGL frame
  // would let the first copy write depth 0 and refuse every later one, and
  // fog or blending would change them.
  glPushAttrib(GL_ENABLE_BIT);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_FOG);
  glDisable(GL_BLEND);
  glDisable(GL_ALPHA_TEST);
  glDisable(GL_TEXTURE_2D);
  glWindowPos2i(0, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glDrawPixels(w, h, GL_RGBA, GL_UNSIGNED_BYTE, ecran.rvba);
  glPopAttrib();
  glFlush();
  return 0;
}
