// The software renderer's z-buffer and the language's key `zbu` (b25):
// mode 0 none, 1 a 16-bit integer per pixel (far: 32767), 2 a float per
// pixel (far: 1.0e9). One buffer lives at a time, at the working image's
// size; mode 2 holds the window depth 0..1, mode 1 the distance from the
// eye along its line of sight on a scale of equal ratios.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <new>

#include "core/message.h"
#include "display/moteurs.h"
#include "display/rendu_interne.h"
#include "interp/interp.h"
#include "startup/startup.h"

Zbuf zb;

namespace {
constexpr int B_ZBU = 25;

void libere() {
  zb.court.reset();
  zb.flot.reset();
  zb.l = zb.h = 0;
}

// The mode's value (b25) follows the command, so that a volume without its
// own mode reads the same as the z-buffer.
void valeur_mot(int mode) {
  int n = 0;
  reel* v = mot_valeurs(B_ZBU, &n);
  if (v && n >= 1) v[0] = static_cast<float>(mode);
}

void remplit() {
  long n = static_cast<long>(zb.l) * zb.h;
  if (zb.court) std::fill(zb.court.get(), zb.court.get() + n, ZB_COURT_LOIN);
  if (zb.flot) std::fill(zb.flot.get(), zb.flot.get() + n, ZB_FLOT_LOIN);
}

int cmd_zbu(mot* bloc, mot* valeur, const mot*) {
  mot* e = bloc + 4;
  const mot* v = e[0] > 3 ? e + 3 : valeur;
  if (v && v[0] >= 4 && v[1] == BLOC_NIL) v = nullptr;
  if (!v) {
    if (init_zbuf(0) < 0) return ECHEC;
    int m = zbuf_mode();
    long n = static_cast<long>(zb.l) * zb.h * (m == 2 ? 2 : m);
    std::printf("zbuffer = %ld shorts\n", n);
    bloc[0] = 0;
    return 0;
  }
  float x;
  if (v[0] == BLOC_REEL) x = lit_reel(v + 1);
  else if (v[0] == BLOC_ENTIER) x = static_cast<float>(v[1]);
  else if (v[0] > 4 && v[1] == BLOC_REEL) x = lit_reel(v + 4);
  else if (v[0] > 4 && v[1] == BLOC_ENTIER) x = static_cast<float>(v[4]);
  else {
    message(0, MES_VALEUR);
    return ECHEC;
  }
  mot m;
  if (!reel_entier(x, &m)) m = x < 0 ? -1 : 3;
  if (zbuf_mode_fixe(m) < 0) return ECHEC;
  if (init_zbuf(1) < 0) return ECHEC;
  bloc[0] = 0;
  return 0;
}
}  // namespace

reel* mot_valeurs(int ord, int* n) {
  MotCle* m = mot_entree(1, ord);
  if (!m || !m->courant || m->nv < 1) return nullptr;
  *n = m->nv;
  return reels(m->courant + 4);
}

reel* mot_defauts(int ord, int* n) {
  MotCle* m = mot_entree(1, ord);
  if (!m || !m->defaut || m->nv < 1) return nullptr;
  *n = m->nv;
  return reels(m->defaut + 4);
}

int zbuf_mode() {
  if (zb.mode < 0) {
    int n = 0;
    reel* v = mot_valeurs(B_ZBU, &n);
    mot m;
    zb.mode = (v && n >= 1 && reel_entier(v[0], &m, 0, 2)) ? m : std::clamp(ecran.zbu, 0, 2);
  }
  return zb.mode;
}

int zbuf_mode_fixe(int mode) {
  if (mode < 0 || mode > 2) {
    std::printf("%d: ", mode);
    message(0, MES_INDICE);
    return -1;
  }
  static const char* const lignes[3] = {"zbuffer off\n", "zbuffer 16 bits\n", "zbuffer 32 bits\n"};
  std::fputs(lignes[mode], stdout);
  zb.mode = mode;
  valeur_mot(mode);
  return 0;
}

int zbuf_pret(int mode, int l, int h) {
  if (mode == 0) {
    libere();
    return 0;
  }
  bool bon = zb.l == l && zb.h == h && (mode == 1 ? zb.court != nullptr : zb.flot != nullptr);
  if (bon) return 1;
  libere();
  long n = static_cast<long>(l) * h;
  if (mode == 1) zb.court.reset(new (std::nothrow) std::int16_t[n]);
  else zb.flot.reset(new (std::nothrow) float[n]);
  if (!zb.court && !zb.flot) {
    std::printf("init_zbuf %ld: ", n);
    message(0, MES_ALLOCATION);
    return -1;
  }
  zb.l = l;
  zb.h = h;
  remplit();
  return 0;
}

void zbuf_echelle(float proche, float loin, Trace& t) {
  if (!(proche > 0) || !std::isfinite(proche)) proche = 1;
  if (!(loin > proche) || !std::isfinite(loin)) loin = proche * 1e5f;
  t.z_proche = proche;
  const std::uint32_t etendue = std::bit_cast<std::uint32_t>(loin) - std::bit_cast<std::uint32_t>(proche);
  t.z_dec = 0;
  while (t.z_dec < 31 && (etendue >> t.z_dec) >= static_cast<std::uint32_t>(ZB_COURT_LOIN - 1)) ++t.z_dec;
}

int init_zbuf(int effacer) {
  mot* im = ima_ecran();
  if (!im) return -1;
  int r = zbuf_pret(zbuf_mode(), ima_l(im), ima_h(im));
  if (r < 0) return -1;
  if (r == 1 && effacer) remplit();
  return 0;
}

void rendu_enregistre() {
  commande_enregistre(1, B_ZBU, cmd_zbu);
  textures_enregistre();
}
