// The language's side of lights and fog, registered when the window opens:
// `lum` alone prints the state of every GL light; `brou` sets the fog:
//   brou(loi) bro(r, g, b) zbu(debut, fin) coe(densite) lum
// with the law 0 linear, 1 exponential, 2 exponential squared; bro(0) puts
// it off, bro(r, g, b) on with that colour, and lum gives the colour to
// every light of the table as its diffuse part. What the phrase does not
// name takes its default: law 0, density 1, start 0, end 1000; the colour
// and the on state stay. The word is also the exponential function, so
// brou(x) alone is that function: the law comes with another option.
#include <GL/gl.h>

#include <cmath>

#include "core/message.h"
#include "display/display.h"
#include "display/moteurs.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int A_BROU = 47;
constexpr int B_LUM_ = 24, B_ZBU = 25, B_COE = 42, B_BRO = 120;
constexpr int M_TYPE = 81;
constexpr int M_SANS_FENETRE = 95;  // env 1

// Up to `max` finite numbers of an element's value; -1 for anything else.
int nombres(const mot* e, float* x, int max) {
  if (e[0] <= 3) return 0;
  const int n = bloc_nombres(e + 3, x, max);
  for (int k = 0; k < n && k < max; ++k)
    if (!std::isfinite(x[k])) return -1;
  return n;
}

int refuse(int env, int ord) {
  mot_imprime(env, ord);
  message(0, M_TYPE);
  return ECHEC;
}

int cmd_lum(mot* bloc, mot* valeur, const mot*) {
  mot* e = bloc + 4;
  if (bloc[2] != 1 || e[0] > 3 || valeur) return COMMANDE_SUITE;
  if (fen.fenetre < 1) {
    message(1, M_SANS_FENETRE);
    return ECHEC;
  }
  lum_voir();
  bloc[0] = 0;
  return 0;
}

int cmd_brou(mot* bloc, mot* valeur, const mot*) {
  // brou is also exp: one element with a value is the function.
  if (valeur || (bloc[2] == 1 && bloc[4] > 3)) return COMMANDE_SUITE;
  if (fen.fenetre < 1) {
    message(1, M_SANS_FENETRE);
    return ECHEC;
  }
  Brouillard b = brouillard_etat;
  b.loi = 0;
  b.densite = 1, b.debut = 0, b.fin = 1000;
  bool vers_lum = false;
  mot* e = bloc + 4;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0]) {
    float x[4] = {0, 0, 0, 1};
    int env = e[1], ord = e[2];
    if (env == 0 && ord == A_BROU) {
      int n = nombres(e, x, 1);
      if (n < 0 || (n == 1 && x[0] != 0 && x[0] != 1 && x[0] != 2)) return refuse(env, ord);
      if (n == 1) b.loi = static_cast<int>(x[0]);
    } else if (env == 1 && ord == B_BRO) {
      int n = nombres(e, x, 3);
      if (n < 0 || n == 2) return refuse(env, ord);
      if (n == 1) {
        if (x[0] < 0) return refuse(env, ord);
        b.actif = x[0] > 0;
      } else {
        if (n == 3) b.coul[0] = x[0], b.coul[1] = x[1], b.coul[2] = x[2], b.coul[3] = 1;
        b.actif = true;
      }
    } else if (env == 1 && ord == B_ZBU) {
      if (nombres(e, x, 2) != 2 || !(x[1] != x[0])) return refuse(env, ord);
      b.debut = x[0], b.fin = x[1];
    } else if (env == 1 && ord == B_COE) {
      if (nombres(e, x, 1) != 1 || x[0] < 0) return refuse(env, ord);
      b.densite = x[0];
    } else if (env == 1 && ord == B_LUM_) {
      vers_lum = true;
    }
  }
  brouillard_etat = b;
  brouillard_applique();
  if (vers_lum)
    for (int i = 0; i < lum_nb(); ++i) glLightfv(lum_table(i)[1], GL_DIFFUSE, b.coul);
  bloc[0] = 0;
  return 0;
}
}  // namespace

void commandes_gl_enregistre() {
  commande_enregistre(1, B_LUM_, cmd_lum);
  commande_enregistre(0, A_BROU, cmd_brou);
}
