// The .ima file: the native form, an object file of one image object. The
// head is the object file's eight words (f4, number, 1, f1, f2, f3, type
// 28, subtype), then the image block as the words it is in memory, in the
// machine's byte order.
#include <cstring>

#include "core/message.h"
#include "image/fichier.h"

namespace {
constexpr int TETE_OBJET = 8;
}

mot* ima_lit_ima(const char* chemin) {
  std::vector<octet> f;
  if (!lit_tout(chemin, &f)) return nullptr;
  std::size_t n = f.size();
  if (n < 4 * (TETE_OBJET + IMA_ENTETE) || n % 4 != 0) return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  mot tete[TETE_OBJET + IMA_ENTETE];
  std::memcpy(tete, f.data(), sizeof tete);
  const mot* ib = tete + TETE_OBJET;
  long mots = static_cast<long>(n / 4) - TETE_OBJET;
  if (tete[6] != BLOC_IMAGE || tete[2] < 1 || ib[1] != BLOC_IMAGE || ib[0] != mots)
    return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  long w = ib[4], h = ib[5];
  if (!ima_taille_ok(w, h)) {
    std::printf("%s: %ld x %ld: ", chemin, w, h);
    message(1, MES_IMA_TAILLE);
    return nullptr;
  }
  if (ib[6] != w * 3 * h || (mots - IMA_ENTETE) * 4 < ib[6]) return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  mot* b = bloc_alloue(static_cast<mot>(mots));
  if (!b) return nullptr;
  std::memcpy(b, f.data() + 4 * TETE_OBJET, 4 * mots);
  return b;
}

int ima_ecrit_ima(const mot* b, const char* chemin, int numero) {
  std::vector<octet> f(4 * (TETE_OBJET + static_cast<std::size_t>(b[0])));
  mot tete[TETE_OBJET] = {0, numero, 1, 0, 0, 0, BLOC_IMAGE, 0};
  std::memcpy(f.data(), tete, sizeof tete);
  std::memcpy(f.data() + sizeof tete, b, 4 * static_cast<std::size_t>(b[0]));
  return ecrit_tout(chemin, f.data(), f.size());
}
