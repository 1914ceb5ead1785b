// The brush's dab: time of one dab of radius 50 in a 768 x 576 window
// (read the box, mix, draw it back), and of the mix alone in memory, over
// random places and colours. Prints "dab_fenetre_ms dab_memoire_ms" as
// medians, then the means.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

#include "core/bloc.h"
#include "display/display.h"
#include "tools/tools.h"

namespace {
double ms_depuis(std::chrono::steady_clock::time_point t) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t).count();
}
double mediane(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}
double moyenne(const std::vector<double>& v) {
  double s = 0;
  for (double x : v) s += x;
  return s / static_cast<double>(v.size());
}
}  // namespace

int main(int argc, char** argv) {
  tas::init();
  const int W = 768, H = 576, N = argc > 1 ? std::atoi(argv[1]) : 2000;
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_RGBA);
  glutInitWindowSize(W, H);
  fen.fenetre = glutCreateWindow("bench_brosse");
  fen.dimx = W, fen.dimy = H;
  glutDisplayFunc([] {});
  for (int k = 0; k < 20; ++k) glutMainLoopEvent();
  glViewport(0, 0, W, H);
  glDrawBuffer(GL_FRONT);
  glReadBuffer(GL_FRONT);
  glClearColor(0.2f, 0.3f, 0.4f, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  Pinceau& p = pinceaux[0];
  p = Pinceau{};
  p.forme = FORME_ROND, p.mode = MODE_DRAW, p.rayon = 50, p.transp = 0.3f, p.alea = 0.5f, p.taille_max = 10;
  pinceau_courant = 1;
  if (pinceau_masques(p) < 0) return 1;
  std::mt19937 g(5);
  std::uniform_int_distribution<int> x(0, W - 1), y(0, H - 1);
  std::uniform_real_distribution<float> c(0, 1);
  std::vector<double> fenetre, memoire;
  for (int k = 0; k < N; ++k) {
    p.coul[0] = c(g), p.coul[1] = c(g), p.coul[2] = c(g);
    p.mode = k % 4 == 3 ? MODE_LISSER : MODE_DRAW;
    auto t = std::chrono::steady_clock::now();
    touche(x(g), y(g));
    glFinish();
    fenetre.push_back(ms_depuis(t));
  }
  std::vector<unsigned char> boite(static_cast<std::size_t>(p.w) * p.h * 4, 90);
  for (int k = 0; k < N; ++k) {
    p.mode = k % 4 == 3 ? MODE_LISSER : MODE_DRAW;
    auto t = std::chrono::steady_clock::now();
    touche_boite(p, boite.data(), p.w, p.h);
    memoire.push_back(ms_depuis(t));
  }
  std::printf("dab r=50 (%d): fenetre mediane %.3f ms moyenne %.3f ms; memoire mediane %.3f ms moyenne %.3f ms\n", N,
              mediane(fenetre), moyenne(fenetre), mediane(memoire), moyenne(memoire));
  return 0;
}
