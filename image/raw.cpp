// The .raw file: width and height as exactly four ASCII digits each, then
// four bytes a pixel (red, green, blue, a filler), rows in image order. A
// width over 9999 keeps its four low digits, so such a file reads back
// wrong: that limit of the format stands.
#include <cstring>

#include "core/message.h"
#include "image/fichier.h"

namespace {
long quatre_chiffres(const octet* p) {
  long v = 0;
  for (int k = 0; k < 4; ++k) {
    // A header that is not digits reads as 0.
    if (p[k] < '0' || p[k] > '9') return 0;
    v = v * 10 + (p[k] - '0');
  }
  return v;
}
}  // namespace

mot* ima_lit_raw(const char* chemin) {
  std::vector<octet> f;
  if (!lit_tout(chemin, &f)) return nullptr;
  if (f.size() < 8) return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  long w = quatre_chiffres(f.data()), h = quatre_chiffres(f.data() + 4);
  if (!ima_taille_ok(w, h)) {
    std::printf("%s: %ld x %ld: ", chemin, w, h);
    message(1, MES_IMA_TAILLE);
    return nullptr;
  }
  if (static_cast<long>(f.size()) - 8 < 4 * w * h) return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  mot* b = ima_alloue_nu(w, h);
  if (!b) return nullptr;
  const octet* p = f.data() + 8;
  for (long y = 0; y < h; ++y) {
    octet* r = ima_rouge(b, static_cast<int>(y));
    octet* g = r + w;
    octet* bl = g + w;
    for (long x = 0; x < w; ++x, p += 4) r[x] = p[0], g[x] = p[1], bl[x] = p[2];
  }
  return b;
}

int ima_ecrit_raw(const mot* b, const char* chemin) {
  int w = ima_l(b), h = ima_h(b);
  std::vector<octet> f(8 + 4L * w * h);
  char tete[16];
  std::snprintf(tete, sizeof tete, "%04d", w % 10000);
  std::snprintf(tete + 4, sizeof tete - 4, "%04d", h % 10000);
  std::memcpy(f.data(), tete, 8);
  octet* p = f.data() + 8;
  for (int y = 0; y < h; ++y) {
    const octet* r = ima_rouge(b, y);
    for (int x = 0; x < w; ++x, p += 4) p[0] = r[x], p[1] = r[x + w], p[2] = r[x + 2 * w], p[3] = 0;
  }
  return ecrit_tout(chemin, f.data(), f.size());
}
