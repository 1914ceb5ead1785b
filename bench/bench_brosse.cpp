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
#include "image/image.h"
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
  // A frame of playback: a 768 x 576 .png read and drawn, as the tool of
  // mode 127 does at each image.
  mot* b = ima_alloue(W, H);
  if (!b) return 1;
  std::uniform_int_distribution<int> o(0, 255);
  for (int yy = 0; yy < H; ++yy)
    for (int xx = 0; xx < 3 * W; ++xx) ima_rouge(b, yy)[xx] = (xx + yy) % 3 ? static_cast<octet>(xx / 3 + yy) : static_cast<octet>(o(g));
  if (ima_ecrit_png(b, "/tmp/bench_brosse.png") < 0) return 1;
  std::vector<unsigned char> rvb(static_cast<std::size_t>(W) * H * 3);
  std::vector<double> lecture;
  for (int k = 0; k < 50; ++k) {
    auto t = std::chrono::steady_clock::now();
    mot* l = ima_lit_fichier("/tmp/bench_brosse.png");
    if (!l) return 1;
    for (int yy = 0; yy < H; ++yy) {
      const octet* r = ima_rouge(l, yy);
      unsigned char* d = rvb.data() + 3 * static_cast<std::size_t>(W) * yy;
      for (int xx = 0; xx < W; ++xx) d[3 * xx] = r[xx], d[3 * xx + 1] = r[W + xx], d[3 * xx + 2] = r[2 * W + xx];
    }
    glWindowPos2i(0, 0);
    glDrawPixels(W, H, GL_RGB, GL_UNSIGNED_BYTE, rvb.data());
    glFinish();
    bloc_libere(l);
    lecture.push_back(ms_depuis(t));
  }
  std::remove("/tmp/bench_brosse.png");
  std::printf("image png 768x576 lue et montree: mediane %.2f ms (%.0f images/s au plus)\n", mediane(lecture),
              1000 / mediane(lecture));
  std::printf("dab r=50 (%d): fenetre mediane %.3f ms moyenne %.3f ms; memoire mediane %.3f ms moyenne %.3f ms\n", N,
              mediane(fenetre), moyenne(fenetre), mediane(memoire), moyenne(memoire));
  return 0;
}
