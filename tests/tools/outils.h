// For the tools' tests: the interpreter started as the program starts it
// (real vocabulary and messages, no window of its own), then a GLUT window
// of the test's own on an Xvfb server of its own, made the program's
// window, its menus rebuilt as an opening rebuilds them.
#pragma once
#include "../display/outils_fenetre.h"

#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>
#include <GL/glx.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "display/display.h"
#include "interp/interp.h"
#include "lang/lang.h"
#include "startup/startup.h"
#include "tools/tools.h"
#include "tests/outils/sortie.h"

constexpr int LARGEUR = 320, HAUTEUR = 240;

inline void monde_outils() {
  static bool pret = false;
  if (pret) return;
  pret = true;
  static Xvfb serveur;
  ASSERT_FALSE(serveur.ecran.empty());
  ASSERT_EQ(chdir(ORVANE_SOURCE), 0);
  outils_enregistre();
  const char* a[] = {"orvane", "gra=0", "ID", "ini=env/initb.h", nullptr};
  testing::internal::CaptureStdout();
  demarrer(4, const_cast<char**>(a));
  testing::internal::GetCapturedStdout();
  interp_init();
  int argc = 1;
  char nom[] = "tools_tests";
  char* argv[] = {nom, nullptr};
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGBA);
  glutInitWindowSize(LARGEUR, HAUTEUR);
  glutInitWindowPosition(0, 0);
  fen.fenetre = glutCreateWindow("tools_tests");
  fen.glut_pret = true;
  fen.dimx = LARGEUR, fen.dimy = HAUTEUR;
  glutDisplayFunc([] {});
  glutPassiveMotionFunc(souris_passif);
  glutMotionFunc(souris_mouvement);
  glutMouseFunc([](int b, int e, int x, int y) { souris_bouton(b, e == GLUT_UP ? 1 : 0, x, y); });
  for (int k = 0; k < 20; ++k) glutMainLoopEvent();
  glViewport(0, 0, LARGEUR, HAUTEUR);
  glDrawBuffer(GL_BACK);
  glReadBuffer(GL_BACK);
  fen.racines[0] = menu_racine_cree(0);
  fen.racines[1] = menu_racine_cree(1);
  apres_ouverture();
}

// The numbers a line prints with $.
inline std::vector<float> lit(const std::string& expr) {
  std::string s = sortie_de([&] { execute_ligne(("$ " + expr).c_str()); });
  std::vector<float> v;
  std::istringstream in(s);
  std::string m;
  while (in >> m) {
    char* e;
    float x = std::strtof(m.c_str(), &e);
    if (e != m.c_str() && *e == 0) v.push_back(x);
  }
  return v;
}

// The window's pixels, RGB, row 0 at the top as the pointer counts.
struct Pixels {
  std::vector<unsigned char> p;
  const unsigned char* at(int x, int y) const {
    return &p[3 * (static_cast<std::size_t>(HAUTEUR - 1 - y) * LARGEUR + x)];
  }
  bool rouge(int x, int y) const { return at(x, y)[0] == 255 && at(x, y)[1] == 0 && at(x, y)[2] == 0; }
  bool blanc(int x, int y) const { return at(x, y)[0] == 255 && at(x, y)[1] == 255 && at(x, y)[2] == 255; }
};
inline Pixels lit_pixels() {
  glFinish();
  Pixels im;
  im.p.resize(3 * static_cast<std::size_t>(LARGEUR) * HAUTEUR);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, LARGEUR, HAUTEUR, GL_RGB, GL_UNSIGNED_BYTE, im.p.data());
  return im;
}

// The real pointer moved over the window, and the window's events taken
// until its position is seen.
inline bool pointe(int x, int y) {
  xdo("mousemove --window " + std::to_string(glXGetCurrentDrawable()) + " " + std::to_string(x) + " " +
      std::to_string(y));
  for (int k = 0; k < 400; ++k) {
    glutMainLoopEvent();
    if (fen.souris_x == x && fen.souris_y == y) return true;
    dort(5);
  }
  return false;
}

// A press or a release of the left button, the events taken until seen.
inline bool bouton_gauche(bool appuie) {
  xdo(appuie ? "mousedown 1" : "mouseup 1");
  for (int k = 0; k < 400; ++k) {
    glutMainLoopEvent();
    if (fen.appuye == (appuie ? 1 : 0)) return true;
    dort(5);
  }
  return false;
}
