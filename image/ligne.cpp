// Row access: a row of an image read into, or written from, three byte
// arrays. The planar layout makes each a run of three plain copies.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "core/message.h"
#include "image/interne.h"

Lignes lignes_ima;

bool Lignes::taille(long n) {
  if (static_cast<long>(r.size()) >= n) return true;
  try {
    r.resize(n);
    g.resize(n);
    b.resize(n);
  } catch (const std::bad_alloc&) {
    std::printf("%ld: ", n);
    message(0, MES_ALLOCATION);
    return false;
  }
  return true;
}

int ima_entier(float x) {
  if (!(x == x)) return 0;
  return std::clamp(entier_sature(x), -(1 << 30), 1 << 30);
}

namespace {
// The part of [x, x + n) on row y that lies in a w x h image: the first
// pixel and the count, or a count of 0.
int coupe(int* x, int y, int n, int w, int h, int* saut) {
  *saut = 0;
  if (y < 0 || y >= h || n <= 0) return 0;
  long debut = *x, fin = static_cast<long>(*x) + n;
  if (debut < 0) {
    *saut = static_cast<int>(-debut);
    debut = 0;
  }
  if (fin > w) fin = w;
  if (fin <= debut) return 0;
  *x = static_cast<int>(debut);
  return static_cast<int>(fin - debut);
}
}  // namespace

int lire_ligne(int x, int y, int n, octet* r, octet* g, octet* b, const mot* image) {
  if (!image) image = ima_ecran();
  if (!image) return 0;
  int w = ima_l(image), saut;
  int k = coupe(&x, y, n, w, ima_h(image), &saut);
  if (k == 0) return 0;
  const octet* p = ima_rouge(image, y) + x;
  std::memcpy(r + saut, p, k);
  std::memcpy(g + saut, p + w, k);
  std::memcpy(b + saut, p + 2L * w, k);
  return k;
}

int ecrire_ligne(int x, int y, int n, const octet* r, const octet* g, const octet* b, mot* image) {
  if (!image) image = ima_ecran();
  if (!image) return 0;
  int w = ima_l(image), saut;
  int k = coupe(&x, y, n, w, ima_h(image), &saut);
  if (k == 0) return 0;
  octet* p = ima_rouge(image, y) + x;
  std::memcpy(p, r + saut, k);
  std::memcpy(p + w, g + saut, k);
  std::memcpy(p + 2L * w, b + saut, k);
  return k;
}
