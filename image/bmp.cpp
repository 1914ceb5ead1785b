// The .bmp file: a Windows bitmap of 24 bits, rows padded to four bytes,
// pixels blue, green, red. Written bottom row first, which is the image's
// own row order; read from any 24-bit uncompressed file, bottom-up or
// top-down. Other depths and compressions are refused by message.
#include <cstring>

#include "core/message.h"
#include "image/fichier.h"

namespace {
constexpr int TETE = 54;  // file header 14 bytes, information header 40
}

mot* ima_lit_bmp(const char* chemin) {
  std::vector<octet> f;
  if (!lit_tout(chemin, &f)) return nullptr;
  if (f.size() < TETE || f[0] != 'B' || f[1] != 'M') return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  const octet* p = f.data();
  std::uint32_t debut = lit_u32(p + 10), taille_info = lit_u32(p + 14);
  long w = static_cast<std::int32_t>(lit_u32(p + 18));
  long h = static_cast<std::int32_t>(lit_u32(p + 22));
  int bits = lit_u16(p + 28);
  std::uint32_t compression = lit_u32(p + 30);
  if (taille_info < 40 || taille_info > f.size()) return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  if (bits != 24 || compression != 0) {
    std::printf("%s: %d bits, compression %u: ", chemin, bits, compression);
    message(1, MES_IMA_BMP);
    return nullptr;
  }
  // A negative height is a file stored top row first.
  bool descendant = h < 0;
  if (descendant) h = -h;
  if (!ima_taille_ok(w, h)) {
    std::printf("%s: %ld x %ld: ", chemin, w, h);
    message(1, MES_IMA_TAILLE);
    return nullptr;
  }
  long pas = (3 * w + 3) & ~3L;
  if (debut < 14 + taille_info || debut > f.size() || static_cast<long>(f.size() - debut) / pas < h)
    return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  if (trace_ima()) std::printf("nom=%s x=%ld y=%ld\n", chemin, w, h);
  mot* b = ima_alloue_nu(w, h);
  if (!b) return nullptr;
  for (long y = 0; y < h; ++y) {
    const octet* q = p + debut + pas * (descendant ? h - 1 - y : y);
    octet* r = ima_rouge(b, static_cast<int>(y));
    octet* g = r + w;
    octet* bl = g + w;
    for (long x = 0; x < w; ++x, q += 3) bl[x] = q[0], g[x] = q[1], r[x] = q[2];
  }
  return b;
}

int ima_ecrit_bmp(const mot* b, const char* chemin) {
  long w = ima_l(b), h = ima_h(b);
  long pas = (3 * w + 3) & ~3L;
  std::vector<octet> f(TETE + pas * h, 0);
  octet* p = f.data();
  p[0] = 'B';
  p[1] = 'M';
  ecrit_u32(p + 2, static_cast<std::uint32_t>(f.size()));
  ecrit_u32(p + 10, TETE);
  ecrit_u32(p + 14, 40);
  ecrit_u32(p + 18, static_cast<std::uint32_t>(w));
  ecrit_u32(p + 22, static_cast<std::uint32_t>(h));
  ecrit_u16(p + 26, 1);
  ecrit_u16(p + 28, 24);
  ecrit_u32(p + 30, 0);     // no compression
  ecrit_u32(p + 34, 0);     // image size left to the reader
  ecrit_u32(p + 38, 2952);  // pixels a metre
  ecrit_u32(p + 42, 2952);
  ecrit_u32(p + 46, 0);
  ecrit_u32(p + 50, 0);
  for (long y = 0; y < h; ++y) {
    octet* q = p + TETE + pas * y;
    const octet* r = ima_rouge(b, static_cast<int>(y));
    const octet* g = r + w;
    const octet* bl = g + w;
    for (long x = 0; x < w; ++x, q += 3) q[0] = bl[x], q[1] = g[x], q[2] = r[x];
  }
  return ecrit_tout(chemin, f.data(), f.size());
}
