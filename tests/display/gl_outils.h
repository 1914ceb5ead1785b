// For the OpenGL engine's tests: one Xvfb server and GLUT windows in the
// test's own process, a scene drawn into the back buffer and read back.
#pragma once
#include "../geom/outils.h"
#include "outils_fenetre.h"

#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cmath>
#include <functional>
#include <map>

#include "display/display.h"
#include "display/moteurs.h"
#include "display/oeil.h"

// The window of that size, made current, with the eye back at its default.
inline void contexte(int w = 200, int h = 200) {
  // Stopped when the process ends: it holds the test's output open.
  static Xvfb serveur;
  static bool pret = false;
  if (!pret) {
    int argc = 1;
    char nom[] = "gl_test";
    char* argv[] = {nom, nullptr};
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGBA);
    pret = true;
  }
  static std::map<std::pair<int, int>, int> fenetres;
  int& id = fenetres[{w, h}];
  if (!id) {
    glutInitWindowSize(w, h);
    id = glutCreateWindow("gl_test");
    glutDisplayFunc([] {});
    for (int k = 0; k < 20; ++k) glutMainLoopEvent();
  }
  glutSetWindow(id);
  fen.fenetre = id;
  fen.dimx = w, fen.dimy = h;
  glViewport(0, 0, w, h);
  glDrawBuffer(GL_BACK);
  glReadBuffer(GL_BACK);
  // Parallel by default: one world unit a pixel, the origin at the centre.
  oeil_courant = Oeil{};
  oeil_courant.projection = 63;
  // GL keeps what a light was given until it is given something else: a
  // test starts from GL's own defaults.
  for (int i = 0; i < 8; ++i) {
    const float dif[4] = {i == 0 ? 1.f : 0, i == 0 ? 1.f : 0, i == 0 ? 1.f : 0, 1}, pos[4] = {0, 0, 1, 0},
                dir[3] = {0, 0, -1};
    glLightfv(GL_LIGHT0 + i, GL_DIFFUSE, dif);
    glLightfv(GL_LIGHT0 + i, GL_POSITION, pos);
    glLightfv(GL_LIGHT0 + i, GL_SPOT_DIRECTION, dir);
    glLightf(GL_LIGHT0 + i, GL_SPOT_CUTOFF, 180);
    glLightf(GL_LIGHT0 + i, GL_CONSTANT_ATTENUATION, 1);
    glLightf(GL_LIGHT0 + i, GL_LINEAR_ATTENUATION, 0);
    glLightf(GL_LIGHT0 + i, GL_QUADRATIC_ATTENUATION, 0);
  }
  brouillard_etat = Brouillard{};
  brouillard_applique();
  glDisable(GL_BLEND);
  glDisable(GL_LIGHTING);
  // Unlit volumes set the ambient part too: GL's default again.
  const float amb[4] = {0.2f, 0.2f, 0.2f, 1};
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, amb);
}

// Flag states of list b: illumination (23) and z-buffer (25) on.
inline void drapeaux() {
  static mot t[200];
  std::fill(t, t + 200, 0);
  t[23] = 1, t[25] = 1;
  etats[1] = t;
  nb_etats[1] = 200;
}

struct Image {
  int w = 0, h = 0;
  std::vector<unsigned char> p;  // RGB, row 0 at the bottom
  const unsigned char* at(int x, int y) const { return &p[3 * (static_cast<std::size_t>(y) * w + x)]; }
  int r(int x, int y) const { return at(x, y)[0]; }
  bool fond(int x, int y) const { return at(x, y)[0] == 0 && at(x, y)[1] == 0 && at(x, y)[2] == 0; }
  long dessines() const {
    long n = 0;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) n += !fond(x, y);
    return n;
  }
};

// Black background, depth on, the projection of the eye, then f.
inline Image scene(const std::function<void()>& f) {
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  projection_set(1);
  f();
  glFinish();
  Image im;
  im.w = fen.dimx, im.h = fen.dimy;
  im.p.resize(3 * static_cast<std::size_t>(im.w) * im.h);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, im.w, im.h, GL_RGB, GL_UNSIGNED_BYTE, im.p.data());
  return im;
}

// A square of side 2a centred at c, facing the eye (its normal is -z):
// clockwise in x right, y up, as the screen shows it with y down.
inline Objet* carre(int numero, float a, float cx, float cy, float cz) {
  return volume_de({cx - a, cy - a, cz, cx - a, cy + a, cz, cx + a, cy + a, cz, cx + a, cy - a, cz}, {{1, 2, 3, 4}},
                   numero);
}

inline Objet* lumiere(int numero, std::initializer_list<std::pair<int, std::vector<float>>> attr) {
  Objet* l = objet_cree(1, B_LUM, 0, nullptr, nullptr, numero);
  for (auto& [ord, v] : attr) attribut_ecrit_1(l, 1, ord, v.data(), static_cast<int>(v.size()), 1);
  return l;
}
