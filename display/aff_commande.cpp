// The command `aff` (b8):
//   aff                        every volume, shaded
//   aff vol(1, 3) illum(0)     volumes 1 and 3 in wire
//   aff vol(2) gl              volume 2 through OpenGL (the software engine
//                              when there is no window)
//   aff gl                     one frame of the real-time path (aff_rt) of
//                              every volume; without a window, aff alone
//   aff(0,0,0, 9,0,0, 0,9,0) coul(1,0,0)   a polygon through the points
//   aff sommet(x,y,z, ...)     the points marked
//   aff vol(1) generer         the test pass: (b13, b32) made, nothing drawn
// Registered at start-up: it works without a window, into the working
// image 0.
#include <GL/freeglut.h>

#include <cmath>
#include <vector>

#include "core/message.h"
#include "display/aff_interne.h"
#include "display/display.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
using namespace aff_b;

const mot* valeur(mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

// The phrase's element after aff is `ord` alone, without a value.
bool f_seul(mot* e, int ord) {
  mot* f = e + e[0];
  return f[1] == 1 && f[2] == ord && !valeur(f);
}

// The working volume of a list of points: n vertices, one face of all of
// them in order, the colour of the phrase's b17. Displayed through the
// phrase with vol(-12345) in place of its first element, then deleted.
int aff_points(mot* bloc, const mot* limite, const mot* points) {
  std::vector<float> x;
  if (!aff_nombres(points, x)) {
    mot_imprime(1, AFF);
    message(0, MES_VALEUR);
    return ECHEC;
  }
  int n = static_cast<int>(x.size() / 3);
  if (n == 0) return 0;
  std::vector<mot> fac{0, BLOC_LISTE, 1, 0, 4 + n, BLOC_ENTIER, 1, n};
  for (int i = 1; i <= n; ++i) fac.push_back(i);
  fac[0] = static_cast<mot>(fac.size());
  if (Objet* ancien = objet_trouve(B_VOL, 0, VOL_TEMPORAIRE, nullptr)) objet_supprime(ancien);
  // The working volume becomes the current object while it is shown; the
  // one before it is current again after.
  Objet* courant = objet_courant;
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, VOL_TEMPORAIRE);
  if (!o) return ECHEC;
  int r = vol_som_ecrit(o, x.data(), n, 3);
  if (r >= 0) r = vol_fac_ecrit(o, fac.data());
  mot* e = bloc + 4;
  for (mot k = 0; k < bloc[2] && r >= 0; ++k, e += e[0]) {
    std::vector<float> c;
    if (e[1] == 1 && e[2] == COUL && aff_nombres(valeur(e), c) && c.size() >= 3) r = vol_coul_ecrit(o, c.data());
  }
  if (r >= 0) r = aff_scene(bloc, limite, VOL_TEMPORAIRE);
  if (Objet* t = objet_trouve(B_VOL, 0, VOL_TEMPORAIRE, nullptr)) {
    if (objet_courant == t) objet_courant = courant && courant->type ? courant : nullptr;
    objet_supprime(t);
  }
  return r < 0 ? r : 0;
}

int cmd_aff(mot* bloc, mot* affecte, const mot* limite) {
  mot* e = bloc + 4;
  int r = 0;
  // aff = points stands for aff(points).
  const mot* points = valeur(e) ? valeur(e) : affecte;
  if (points) {
    r = aff_points(bloc, limite, points);
  } else {
    const mot* sommets = nullptr;
    mot* f = e;
    for (mot k = 0; k < bloc[2]; ++k, f += f[0])
      if (f[1] == 1 && f[2] == SOMMET && valeur(f)) {
        sommets = valeur(f);
        break;
      }
    if (sommets) {
      r = aff_points(bloc, limite, sommets);
    } else if (bloc[2] == 2 && f_seul(e, GL) && fen.fenetre > 0) {
      r = aff_rt_image();
    } else {
      // The front buffer: a picture drawn piece by piece stays in sight.
      if (fen.fenetre > 0) gl_avant();
      r = aff_scene(bloc, limite, 0);
    }
  }
  bloc[0] = 0;
  return r;
}
}  // namespace

void oeil_commandes_enregistre();

void aff_enregistre() {
  commande_enregistre(1, AFF, cmd_aff);
  oeil_commandes_enregistre();
}
