// The OpenGL benchmark's orvane side: the mesh of gl_maillage.h as a volume,
// smooth shaded under one light, drawn by aff_rt from its runtime record,
// each frame as the real-time loop makes it (clear, lights, projection,
// aff_rt, swap). Prints "n fps" for each size given.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cstdio>
#include <cstdlib>

#include "core/bloc.h"
#include "core/objet.h"
#include "display/display.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "gl_maillage.h"

int main(int argc, char** argv) {
  tas::init();
  if (piles_alloue(10, 1000, 10, 100)) return 1;
  static mot drapeaux[200] = {};
  drapeaux[23] = 1;
  etats[1] = drapeaux;
  nb_etats[1] = 200;
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGBA);
  glutInitWindowSize(BENCH_L, BENCH_H);
  fen.fenetre = glutCreateWindow("bench_gl");
  glutDisplayFunc([] {});
  fen.dimx = BENCH_L, fen.dimy = BENCH_H;
  for (int k = 0; k < 10; ++k) glutMainLoopEvent();
  double secondes = std::getenv("SECONDES") ? std::atof(std::getenv("SECONDES")) : 2;
  Objet* l = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  const float pos[3] = {0, 0, -1e6f};
  attribut_ecrit_1(l, 1, B_SOM, pos, 3, 1);
  for (int a = 1; a < argc; ++a) {
    Maillage m = maillage(std::atol(argv[a]));
    int ns = static_cast<int>(m.som.size() / 3);
    Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, a);
    // The face list: one block of 4 + 4 words a quad.
    long nq = static_cast<long>(m.quads.size() / 4);
    std::vector<mot> f{static_cast<mot>(4 + 8 * nq), BLOC_LISTE, static_cast<mot>(nq), 0};
    for (long q = 0; q < nq; ++q) {
      f.insert(f.end(), {8, BLOC_ENTIER, 1, 4});
      for (int j = 0; j < 4; ++j) f.push_back(m.quads[4 * q + j] + 1);
    }
    const float coul[3] = {0.8f, 0.6f, 0.4f}, illum[5] = {2, 1, 0, 0, 0};
    if (!o || vol_som_ecrit(o, m.som.data(), ns, 3) || vol_fac_ecrit(o, f.data()) || vol_coul_ecrit(o, coul) ||
        vol_illum_ecrit(o, illum, 5))
      return 1;
    Vol_rt* r = vol_rt_cree(o);
    if (!r) return 1;
    glEnable(GL_DEPTH_TEST);
    auto image = [&](bool lue) {
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      lum_gl();
      projection_set(1);
      aff_rt(nullptr);
      if (lue) image_ecrit(ns);
      glutSwapBuffers();
      glFinish();
    };
    double fps = images_par_seconde(secondes, [&] { image(false); });
    image(true);
    std::printf("%d %.2f\n", ns, fps);
    std::fflush(stdout);
    vol_rt_libere(r);
    objet_supprime(o);
  }
  return 0;
}
