// The live scene's benchmark: frames per second of the whole frame of a
// running interaction (cadence 0) over n volumes of about 1000 vertices,
// against the bare drawing of the same records as the OpenGL benchmark
// draws them (clear, lights, projection, aff_rt, swap), in one process on
// one window. The volumes move at every frame: a hook turns every record
// about two axes, so that the frame places each record by its own matrix.
// Prints "n fps_dessin fps_image" for each count given.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "anim/anim.h"
#include "core/bloc.h"
#include "core/objet.h"
#include "display/display.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "gl_maillage.h"
#include "interp/interp.h"
#include "lang/lang.h"
#include "startup/startup.h"

int main(int argc, char** argv) {
  tas::init();
  if (piles_alloue(100, 100000, 20000, 1000)) return 1;
  // The frame reads keyword values (the background colour): the real
  // vocabulary, with illumination on as in the OpenGL benchmark.
  if (kom_charge("env/koma.h", 0) < 0 || kom_charge("env/komb.h", 1) < 0) return 1;
  if (mes_charge("env/mesa.h", 0) < 0 || mes_charge("env/mesb.h", 1) < 0) return 1;
  if (nb_etats[1] > 23) etats[1][23] = 1;
  // The hook's phrase `interaction` needs its handler.
  interaction_enregistre();
  interp_init();
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGBA);
  glutInitWindowSize(640, 480);
  fen.fenetre = glutCreateWindow("bench_inter");
  glutDisplayFunc([] {});
  fen.dimx = 640, fen.dimy = 480;
  for (int k = 0; k < 10; ++k) glutMainLoopEvent();
  double secondes = std::getenv("SECONDES") ? std::atof(std::getenv("SECONDES")) : 2;
  int repete = std::getenv("REPETE") ? std::atoi(std::getenv("REPETE")) : 3;
  Objet* l = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  const float pos[3] = {0, 0, -1e6f};
  attribut_ecrit_1(l, 1, B_SOM, pos, 3, 1);
  oeil_courant.oeil[2] = -3000;
  const Maillage m = maillage(1000);
  const int ns = static_cast<int>(m.som.size() / 3);
  long nq = static_cast<long>(m.quads.size() / 4);
  std::vector<mot> f{static_cast<mot>(4 + 8 * nq), BLOC_LISTE, static_cast<mot>(nq), 0};
  for (long q = 0; q < nq; ++q) {
    f.insert(f.end(), {8, BLOC_ENTIER, 1, 4});
    for (int j = 0; j < 4; ++j) f.push_back(m.quads[4 * q + j] + 1);
  }
  // Every record turns a little more at each frame (fonc_1).
  static const char texte[] =
      "bouge()\n{\n  externe angle_banc\n  si (angle_banc == NIL) angle_banc = 0\n  angle_banc += 1.5\n"
      "  interaction roty(angle_banc) rotx(angle_banc * 0.5)\n}\n";
  fonctions_analyse(texte, sizeof texte - 1);
  Objet* bouge = fonction_trouve("bouge");
  if (!bouge) return 1;
  for (int a = 1; a < argc; ++a) {
    const int n = std::atoi(argv[a]);
    // n small meshes side by side, 32 to a row.
    std::vector<float> s(m.som.size());
    for (int i = 0; i < n; ++i) {
      Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, i + 1);
      const float dx = -1600.f + 100.f * static_cast<float>(i % 32), dy = -1200.f + 100.f * static_cast<float>(i / 32);
      for (int k = 0; k < ns; ++k) {
        s[3 * k] = m.som[3 * k] / 10 + dx;
        s[3 * k + 1] = m.som[3 * k + 1] / 10 + dy;
        s[3 * k + 2] = m.som[3 * k + 2] / 10;
      }
      const float coul[3] = {0.8f, 0.6f, 0.4f}, illum[5] = {2, 1, 0, 0, 0};
      if (!o || vol_som_ecrit(o, s.data(), ns, 3) || vol_fac_ecrit(o, f.data()) || vol_coul_ecrit(o, coul) ||
          vol_illum_ecrit(o, illum, 5))
        return 1;
    }
    ArgsInter args;
    args.cadence = 0;
    // IMMOBILE=1: the same frame without the hook, for comparison.
    if (!std::getenv("IMMOBILE")) args.fonc[1] = bouge;
    if (interaction_debut(args) < 0) return 1;
    double dessin = 0, image = 0;
    for (int r = 0; r < repete; ++r) {
      glEnable(GL_DEPTH_TEST);
      dessin = std::max(dessin, images_par_seconde(secondes, [&] {
                          glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
                          lum_gl();
                          projection_set(1);
                          aff_rt(nullptr);
                          glutSwapBuffers();
                          glFinish();
                        }));
      image = std::max(image, images_par_seconde(secondes, [&] {
                         interaction_image();
                         glFinish();
                       }));
    }
    // A hook that failed would have ended the scene: the figures would
    // then be those of an empty frame.
    if (!interaction_en_cours()) {
      std::fprintf(stderr, "bench_inter: the scene ended by itself\n");
      return 1;
    }
    interaction_fin();
    std::printf("%d %d %.2f %.2f\n", n, ns, dessin, image);
    std::fflush(stdout);
    objet_supprime_type(1, B_VOL);
  }
  return 0;
}
