// Mutated object files of every form fed to the readers: flipped bytes,
// length words overwritten with odd values, cut and grown files, words of
// the ASCII form swapped. Each load gives objects or a message with the
// table untouched, never a crash; the checked build is where this counts.
#include "image/image.h"
#include "tests/persist/outils.h"

namespace {
std::vector<char> mute(const std::vector<char>& base, std::mt19937& g, bool texte) {
  std::vector<char> v = base;
  auto hasard = [&](std::size_t n) { return n ? g() % n : 0; };
  switch (g() % (texte ? 6 : 5)) {
    case 0:
      for (int k = 1 + g() % 8; k > 0 && !v.empty(); --k) v[hasard(v.size())] ^= static_cast<char>(1 + g() % 255);
      break;
    case 1: {  // a word on a word boundary: lengths, tags, counts
      static const std::int32_t valeurs[] = {0, -1, 1, 3, 4, 6, 0x7fffffff, -0x7fffffff - 1, 10000001, -1039, -1055,
                                             -1013, -1007, 148, 86, 15};
      std::size_t pos = hasard(v.size() / 4) * 4;
      std::int32_t x = g() % 3 ? valeurs[g() % 16] : static_cast<std::int32_t>(g());
      for (int k = 0; k < 4 && pos + k < v.size(); ++k) v[pos + k] = static_cast<char>(x >> (8 * k));
      break;
    }
    case 2:
      v.resize(hasard(v.size() + 1));
      break;
    case 3:
      for (int k = g() % 200; k > 0; --k) v.push_back(static_cast<char>(g()));
      break;
    case 4: {  // a piece of the file repeated elsewhere
      std::size_t a = hasard(v.size()), n = hasard(std::min<std::size_t>(64, v.size() - a) + 1);
      std::vector<char> morceau(v.begin() + static_cast<long>(a), v.begin() + static_cast<long>(a + n));
      v.insert(v.begin() + static_cast<long>(hasard(v.size() + 1)), morceau.begin(), morceau.end());
      break;
    }
    default: {  // a structure word or a digit in the text
      static const char* mots[] = {"{", "}", "(", ")", "/*", "\"", "liste", "reel", "objets", "-7", "99999999", "1e40"};
      std::string m = mots[g() % 12];
      v.insert(v.begin() + static_cast<long>(hasard(v.size() + 1)), m.begin(), m.end());
    }
  }
  return v;
}

TEST(PersistFuzz, MutatedFilesGiveObjectsOrAMessage) {
  struct Essai : Monde {
    void TestBody() override {}
  } m;
  m.SetUp();
  std::mt19937 g(20260);
  for (int k = 1; k <= 2; ++k) objet_hasard(4, k, g);
  Objet* mem = objet_hasard(148, 1, g);
  memoire_hasard(mem, 3, g);
  struct Base {
    int type;
    OptionsFichier opt;
    std::vector<char> octets;
  };
  std::vector<Base> bases;
  for (int forme : {FORME_BINAIRE, FORME_ASCII})
    for (bool z : {false, true})
      for (int type : {4, 148}) {
        OptionsFichier o;
        o.forme = forme;
        o.compresse = z;
        o.court = type == 4 && !z;
        o.filtre = FILTRE_TOUT;
        ASSERT_GT(objets_ecrit(type, "base", {}, o), 0);
        std::string nom = "base." + extension_type(type, forme) + (z ? ".Z" : "");
        o.court = false;
        bases.push_back({type, o, octets_de(nom)});
      }
  // An image in the text form, plain and compressed.
  mot* ib = ima_alloue(23, 17);
  for (long k = 0; k < ib[6]; ++k) ima_octets(ib)[k] = static_cast<octet>(g());
  ASSERT_EQ(ima_installe(1, ib), 0);
  for (bool z : {false, true}) {
    OptionsFichier o;
    o.forme = FORME_ASCII;
    o.compresse = z;
    ASSERT_GT(objets_ecrit(B_IMA_TYPE, "base", {}, o), 0);
    bases.push_back({B_IMA_TYPE, o, octets_de(std::string("base.ascii.ima") + (z ? ".Z" : ""))});
  }
  std::vector<mot> image(ib, ib + ib[0]);
  auto avant = cliche({4, 148});
  int lus = 0, refuses = 0;
  std::string sortie = sortie_de([&] {
    for (int k = 0; k < 2400; ++k) {
      const Base& b = bases[static_cast<std::size_t>(k) % bases.size()];
      bool texte = b.opt.forme == FORME_ASCII && !b.opt.compresse;
      // A new name each time: ext4 flushes a file rewritten in place at its close.
      std::string racine = "m" + std::to_string(k);
      std::string nom = racine + "." + extension_type(b.type, b.opt.forme) + (b.opt.compresse ? ".Z" : "");
      ecrit_octets(nom, mute(b.octets, g, texte));
      OptionsFichier o = b.opt;
      o.remplace = false;
      o.decalage = 1000 + k;  // what loads lands beside the objects it is compared with
      int r = objets_lit(b.type, racine, o);
      if (r < 0) {
        ++refuses;
        auto apres = cliche({4, 148});
        apres.resize(std::min(apres.size(), avant.size()));
        ASSERT_EQ(apres, avant) << k;
        ASSERT_TRUE(ima_bloc(1) && std::equal(image.begin(), image.end(), ima_bloc(1))) << k;
      } else {
        ++lus;
        // What was read is deleted again: a broken structure shows here.
        for (Objet* p = piles.obj_base; p < piles.obj_haut; ++p)
          if (p->type && p->numero >= 1000) objet_supprime(p);
      }
    }
  });
  EXPECT_GT(refuses, 500);
  EXPECT_GT(lus, 50);
  m.TearDown();
}
}  // namespace
