// The entries of the running interaction's pop-up menu, by number, with
// the line each prints; and the "memoire" submenu, which writes the
// rotations of the `mem` volumes into the memory object.
#include <cstdio>
#include <cstdlib>

#include "anim/interne.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int A_INVITE_CMD = 48, B_MEM = 148;
constexpr float RAD = 0.017453f;

void ligne(const char* t) {
  std::fputs(t, stdout);
  std::fflush(stdout);
}

int lit_ligne(char* buf, int n) {
  bool reprise = false;
  return console_lit(buf, n, &reprise);
}

void souris(int c, const char* t) {
  inter.cmd_souris = c;
  ligne(t);
}
}  // namespace

void interaction_menu(int entree) {
  if (!inter.en_cours) return;
  switch (entree) {
    case 1:
      ligne("quitter sans valider\n");
      inter.quitter_sans_valider = true;
      interaction_fin();
      return;
    case 2:
      ligne("quitter en validant\n");
      for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) vol_inter_valide(v);
      interaction_fin();
      return;
    case 3: {
      ligne("interpreteur\n");
      message(0, A_INVITE_CMD);
      std::fflush(stdout);
      char buf[512];
      if (lit_ligne(buf, sizeof buf) >= 0) inter_ligne(buf);
      return;
    }
    case 4:
      ligne("reset\n");
      inter.cmd_souris = inter.souris_active = 0;
      for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
        vol_inter_restaure(v);
        v->actif = 0;
      }
      return;
    case 5:
      ligne("valider\n");
      for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) vol_inter_valide(v);
      return;
    case 6: {
      ligne("designer = ");
      char buf[64];
      if (lit_ligne(buf, sizeof buf) < 0) return;
      char* fin = nullptr;
      long n = std::strtol(buf, &fin, 10);
      Vol_inter* v = fin != buf ? vol_inter_de(static_cast<int>(n)) : nullptr;
      if (!v) {
        std::printf("%s: ", buf);
        message(0, MES_ABSENT);
        return;
      }
      v->actif = 1;
      v->hist[9] = v->angle, v->hist[10] = v->rotx, v->hist[11] = v->roty;
      v->taches[11] = reel_mot(v->rotz);
      inter.souris_active = 1;
      inter.pick_x = fen.dimx / 2, inter.pick_y = fen.dimy / 2;
      return;
    }
    case 7:
      ligne("rayon\n");
      inter.cmd_rayon = 68;
      return;
    case 8: return souris(95, "tirer(vol)\n");
    case 9: return souris(9, "dep(oeil)\n");
    case 10: return souris(10, "rotxy(oeil)\n");
    case 11: return souris(11, "rotxz(oeil)\n");
    case 12: return souris(34, "rota(vol)\n");
    case 13: return souris(35, "rotx(vol)\n");
    case 14: return souris(36, "roty(vol)\n");
    case 15: return souris(37, "rotz(vol)\n");
    case 16: return souris(31, "dep(vol)\n");
    case 17:
      inter.projection = 13;
      ligne("pers\n");
      return;
    case 18:
      inter.projection = 63;
      ligne("ortho\n");
      return;
  }
}

void interaction_memoire(int entree) {
  if (!inter.en_cours || entree < 1 || entree > 4) return;
  for (int i = 0; i < inter.nb_mem; ++i) {
    Vol_inter* v = vol_inter_de(inter.mem_vols[i]);
    if (!v) continue;
    // Entries 1 to 3 all write the angle about the axis; entry 4 the axis
    // with it.
    float x[4] = {v->angle * RAD, 0, 0, 0};
    int n = 1;
    if (entree == 4) x[0] = v->axe[0], x[1] = v->axe[1], x[2] = v->axe[2], x[3] = v->angle * RAD, n = 4;
    // The phrase vol(num) mem = values, built here and run as the
    // language's: the volume's memory attribute holds them.
    char t[200];
    if (n == 1)
      std::snprintf(t, sizeof t, "%s(%d) %s = %.9g", mot_nom(1, B_VOL), v->num, mot_nom(1, B_MEM),
                    static_cast<double>(x[0]));
    else
      std::snprintf(t, sizeof t, "%s(%d) %s = %.9g, %.9g, %.9g, %.9g", mot_nom(1, B_VOL), v->num, mot_nom(1, B_MEM),
                    static_cast<double>(x[0]), static_cast<double>(x[1]), static_cast<double>(x[2]),
                    static_cast<double>(x[3]));
    inter_ligne(t);
  }
}
