// Thousands of mutated image files fed to the readers: flipped bytes,
// header fields overwritten with odd values, cut and grown files. Each
// read gives an image or a message, never a crash; what the sanitizer
// build sees here is the point of this test.
#include <gtest/gtest.h>

#include "tests/image/outils.h"

namespace {

std::vector<char> mute(const std::vector<char>& base, std::mt19937& g) {
  std::vector<char> v = base;
  auto hasard = [&](std::size_t n) { return n ? g() % n : 0; };
  switch (g() % 5) {
    case 0:  // a few bytes flipped anywhere
      for (int k = 1 + g() % 8; k > 0 && !v.empty(); --k) v[hasard(v.size())] ^= static_cast<char>(1 + g() % 255);
      break;
    case 1: {  // a header word overwritten with an odd value
      static const std::int32_t valeurs[] = {0, -1, 1, 0x7fffffff, -0x7fffffff - 1, 65536, 9999, 24, 8, 32};
      std::size_t pos = hasard(std::min<std::size_t>(v.size(), 64));
      std::int32_t x = g() % 3 ? valeurs[g() % 10] : static_cast<std::int32_t>(g());
      for (int k = 0; k < 4 && pos + k < v.size(); ++k) v[pos + k] = static_cast<char>(x >> (8 * k));
      break;
    }
    case 2:  // cut
      v.resize(hasard(v.size() + 1));
      break;
    case 3:  // grown with noise
      for (int k = g() % 200; k > 0; --k) v.push_back(static_cast<char>(g()));
      break;
    default:  // ASCII digits in the first bytes (the raw header)
      for (int k = 0; k < 8 && k < static_cast<int>(v.size()); ++k)
        if (g() % 2) v[k] = static_cast<char>('0' + g() % 10);
  }
  return v;
}

TEST(ImageFuzz, MutatedFilesGiveAnImageOrAMessage) {
  monde_ima();
  std::mt19937 g(4242);
  Dossier dir;
  mot* b = ima_hasard(19, 11, g);
  int lus = 0, refuses = 0;
  std::string sortie = sortie_de([&] {
    for (const char* ext : {"raw", "bmp", "png", "jpg", "ima"}) {
      std::string nom = dir / (std::string("base.") + ext);
      ASSERT_EQ(ima_ecrit_fichier(b, nom), 0);
      const std::vector<char> base = octets_de(nom);
      for (int k = 0; k < 3000; ++k) {
        // A new name each time: a file truncated and rewritten in place is
        // flushed to disk at each close on ext4, and that would take seconds.
        std::string cible = dir / ("m" + std::to_string(k) + "." + ext);
        ecrit(cible, mute(base, g));
        mot* l = ima_lit_fichier(cible);
        std::filesystem::remove(cible);
        if (l) {
          ++lus;
          ASSERT_TRUE(ima_valide(l));
          bloc_libere_force(l);
        } else {
          ++refuses;
        }
      }
    }
  });
  EXPECT_EQ(lus + refuses, 15000);
  EXPECT_GT(refuses, 2000);
  EXPECT_GT(lus, 2000);
  bloc_libere_force(b);
}
}  // namespace
