// Image blocks and image objects, and the working image 0 that stands for
// the window. A block made here has a spare row behind its pixels; word 0
// is always its true allocated length, so a block copies and saves as the
// words it is.
#include <cstring>

#include "core/message.h"
#include "image/interne.h"
#include "startup/startup.h"

ImaFenetre ima_fenetre;

bool ima_taille_ok(long w, long h) { return w >= 1 && h >= 1 && w <= IMA_PIXELS_MAX && h <= IMA_PIXELS_MAX / w; }

mot* ima_alloue(long w, long h) {
  mot* b = ima_alloue_nu(w, h);
  if (b) std::memset(b + IMA_ENTETE, 0, sizeof(mot) * (b[0] - IMA_ENTETE));
  return b;
}

mot* ima_alloue_nu(long w, long h) {
  if (!ima_taille_ok(w, h)) {
    std::printf("%ld x %ld: ", w, h);
    message(1, MES_IMA_TAILLE);
    return nullptr;
  }
  long octets = w * 3 * h;
  long mots = (w * 3 * (h + 1)) / 4 + 8;
  mot* b = bloc_alloue(static_cast<mot>(mots));
  if (!b) return nullptr;
  b[1] = BLOC_IMAGE;
  b[2] = b[3] = 0;
  b[4] = static_cast<mot>(w);
  b[5] = static_cast<mot>(h);
  b[6] = static_cast<mot>(octets);
  // The spare words behind the pixels are cleared; the pixels are the
  // caller's to fill.
  std::memset(b + IMA_ENTETE + octets / 4, 0, sizeof(mot) * (mots - IMA_ENTETE - octets / 4));
  return b;
}

bool ima_valide(const mot* b) {
  if (!b || b[0] < IMA_ENTETE + 1 || b[1] != BLOC_IMAGE) return false;
  long w = b[4], h = b[5];
  if (!ima_taille_ok(w, h) || b[6] != w * 3 * h) return false;
  return (static_cast<long>(b[0]) - IMA_ENTETE) * 4 >= b[6];
}

Objet* ima_objet(int n) {
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == BLOC_IMAGE && o->env == 1 && o->numero == n) return o;
  return nullptr;
}

mot* ima_bloc(int n) {
  if (n == 0) return ima_ecran();
  Objet* o = ima_objet(n);
  return o && ima_valide(o->donnees) ? o->donnees : nullptr;
}

int ima_installe(int n, mot* b) {
  Objet* o = ima_objet(n);
  if (!o) {
    o = objet_cree(1, BLOC_IMAGE, 0, nullptr, nullptr, n);
    if (!o) {
      bloc_libere_force(b);
      return -1;
    }
  }
  mot* ancien = o->donnees;
  o->donnees = b;
  if (ancien != b) bloc_supprime(ancien);
  if (n == 0) ecran.image_ecran = o;
  return 0;
}

mot* ima_ecran() {
  Objet* o = ecran.image_ecran;
  if (!o || o->type != BLOC_IMAGE || o->numero != 0) o = ecran.image_ecran = ima_objet(0);
  if (o && ima_valide(o->donnees)) return o->donnees;
  // No start-up made it (a test, a library use): the window's size, or the
  // video size before any key was read.
  int w = ecran.largeur > 0 ? ecran.largeur : ecran.video_l;
  int h = ecran.hauteur > 0 ? ecran.hauteur : ecran.video_h;
  mot* b = ima_alloue(w, h);
  if (!b || ima_installe(0, b) < 0) return nullptr;
  return b;
}

int ima_ecran_retaille(int w, int h) {
  mot* b = ima_alloue(w, h);
  if (!b) return -1;
  return ima_installe(0, b);
}
