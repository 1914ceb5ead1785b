// A search of an image in a file: where the image fits best in the picture
// the file holds, by the least sum of absolute differences over the three
// planes. The value is x, y of the best place (its bottom-left corner) and
// the mean difference per byte there. A search whose work passes 2^31
// byte comparisons is refused by message 0:2 rather than left to run for
// minutes.
#include <cstdlib>
#include <limits>

#include "core/message.h"
#include "image/commande.h"
#include "interp/interp.h"

int ima_cherche(mot* bloc, const mot* limite, int image, const std::string& fichier) {
  if (image == 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
  mot* m = ima_bloc(image);
  if (!m) {
    std::printf("%d: ", image);
    message(0, MES_IMA_ABSENT);
    return -1;
  }
  mot* f = ima_lit_fichier(fichier);
  if (!f) return -1;
  long w = ima_l(m), h = ima_h(m), W = ima_l(f), H = ima_h(f);
  double travail = static_cast<double>(W - w + 1) * (H - h + 1) * w * h * 3;
  if (w > W || h > H || travail > 2147483648.0) {
    bloc_libere_force(f);
    std::printf("%s: ", fichier.c_str());
    message(0, MES_DEBORDEMENT);
    return -1;
  }
  long meilleur = std::numeric_limits<long>::max(), bx = 0, by = 0;
  for (long y = 0; y + h <= H; ++y)
    for (long x = 0; x + w <= W; ++x) {
      long s = 0;
      // Rows are summed until the sum passes the best found.
      for (long j = 0; j < h && s < meilleur; ++j)
        for (int c = 0; c < 3; ++c) {
          const octet* p = ima_rouge(m, static_cast<int>(j)) + c * w;
          const octet* q = ima_rouge(f, static_cast<int>(y + j)) + c * W + x;
          for (long i = 0; i < w; ++i) s += std::abs(p[i] - q[i]);
        }
      if (s < meilleur) meilleur = s, bx = x, by = y;
    }
  bloc_libere_force(f);
  const float r[3] = {static_cast<float>(bx), static_cast<float>(by), static_cast<float>(meilleur) / (3.0f * w * h)};
  return resultat_vecteur(bloc, limite, r);
}
