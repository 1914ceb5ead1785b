// The mouse: the last position and button, the press position, and speed
// and acceleration over the mouse clock. Events go on to the tool of the
// mode, when it takes them.
#include <ctime>

#include "display/display.h"

std::int64_t ticks_ms() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<std::int64_t>(t.tv_sec) * 1000 + t.tv_nsec / 1000000;
}

long horloge(int reset, long rate) {
  std::int64_t t = ticks_ms();
  if (reset) {
    fen.horloge_depart = t;
    return 0;
  }
  return static_cast<long>((t - fen.horloge_depart) * rate / 1000);
}

void souris_bouton(int bouton, int etat, int x, int y) {
  if (etat == 0) {
    fen.clic_x = fen.souris_x = x;
    fen.clic_y = fen.souris_y = y;
    fen.clic_z = fen.souris_z = 0;
    fen.appuye = 1;
    fen.bouton = bouton >= 0 && bouton <= 2 ? bouton : -1;
  } else {
    fen.souris_x = x;
    fen.souris_y = y;
    fen.appuye = 0;
    fen.bouton = -1;
  }
  const Outil* o = outil(fen.mode_interactif);
  if (o && o->souris) o->souris(bouton, etat, x, y);
}

void souris_mouvement(int x, int y) {
  // A drag moves the press position: the tools follow it.
  fen.clic_x = fen.souris_x = x;
  fen.clic_y = fen.souris_y = y;
  const Outil* o = outil(fen.mode_interactif);
  if (o && o->mouvement) o->mouvement(x, y);
}

void souris_passif(int x, int y) {
  fen.souris_x = x;
  fen.souris_y = y;
  const Outil* o = outil(fen.mode_interactif);
  if (o && o->passif) o->passif(x, y);
}

void souris_vitesse() {
  long dt = horloge(0, fen.frequence);
  if (dt <= 0) return;
  const int pos[3] = {fen.souris_x, fen.souris_y, fen.souris_z};
  int* prec[3] = {fen.prec_x, fen.prec_y, fen.prec_z};
  const float d = static_cast<float>(dt);
  for (int k = 0; k < 3; ++k) {
    int* h = prec[k];
    fen.vitesse[k] = static_cast<float>(pos[k] - h[0]) / d;
    fen.accel[k] = static_cast<float>(pos[k] - 2 * h[0] + h[1]) / (d * d);
    h[2] = h[1];
    h[1] = h[0];
    h[0] = pos[k];
  }
  horloge(1, fen.frequence);
}
