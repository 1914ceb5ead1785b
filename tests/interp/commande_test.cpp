// The command dispatch and its attribute fallback, on phrases built as the
// engine builds them, with the real vocabulary: rows selected by value and
// pairs no source text can make. Plain writes and reads, naming and
// deleting run at the console in the transcripts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "startup/startup.h"

#include "interp/interp.h"
#include "tests/outils/vocabulaire.h"
#include "tests/outils/sortie.h"

namespace {
struct Element {
  int env, ord;
  std::vector<float> v;
  bool avec = true;
};

Element el(int env, int ord, std::vector<float> v) { return {env, ord, std::move(v), true}; }
Element el(int env, int ord) { return {env, ord, {}, false}; }

struct Commande : testing::Test {
  void SetUp() override {
    vocabulaire_charge();
    ASSERT_EQ(piles_alloue(100, 100000, 100, 1000), 0);
  }

  mot* phrase(std::vector<Element> es) {
    mot* b = piles.eva_base;
    mot* p = b + 4;
    for (auto& e : es) {
      mot n = static_cast<mot>(e.v.size());
      p[0] = e.avec ? 3 + 4 + n : 3;
      p[1] = e.env;
      p[2] = e.ord;
      if (e.avec) {
        p[3] = 4 + n, p[4] = BLOC_REEL, p[5] = n, p[6] = 1;
        for (mot i = 0; i < n; ++i) ecrit_reel(p + 7 + i, e.v[i]);
      }
      p += p[0];
    }
    b[0] = static_cast<mot>(p - b), b[1] = BLOC_PHRASE, b[2] = static_cast<mot>(es.size()), b[3] = 0;
    return b;
  }

  std::vector<float> lance(std::vector<Element> es, mot* valeur = nullptr) {
    mot* b = phrase(std::move(es));
    testing::internal::CaptureStdout();
    int r = commande(b, piles.eva_limite, valeur);
    sortie = testing::internal::GetCapturedStdout();
    EXPECT_GE(r, 0) << sortie;
    if (b[0] <= 0 || b[1] != BLOC_REEL) return {};
    return std::vector<float>(reels(b + 4), reels(b + 4) + b[0] - 4);
  }
  std::string sortie;
};
}  // namespace

TEST_F(Commande, SelectedRowsWrittenAndRead) {
  lance({el(1, 4, {1})});
  mot* som = piles.eva_base + 50000;  // three vertices, written with =
  som[0] = 13, som[1] = BLOC_REEL, som[2] = 9, som[3] = 1;
  for (int i = 0; i < 9; ++i) ecrit_reel(som + 4 + i, static_cast<float>(i));
  lance({el(1, 4, {1}), el(1, 86)}, som);
  lance({el(1, 4, {1}), el(1, 32, {3}), el(1, 17, {1, 1, 1})});
  lance({el(1, 4, {1}), el(1, 32, {1}), el(1, 17, {2, 2, 2})});
  EXPECT_EQ(lance({el(1, 4, {1}), el(1, 32, {3}), el(1, 17)}), (std::vector<float>{1, 1, 1}));
  // A vertex never coloured has no colour, not black.
  EXPECT_EQ(lance({el(1, 4, {1}), el(1, 32, {1, 2}), el(1, 17)}), (std::vector<float>{2, 2, 2}));
  EXPECT_EQ(lance({el(1, 4, {1}), el(1, 32, {9}), el(1, 17)}), std::vector<float>{});  // out of range
  // The same key without the selection is another attribute.
  mot* b = phrase({el(1, 4, {1}), el(1, 17)});
  commande(b, piles.eva_limite, nullptr);
  EXPECT_EQ(b[1], BLOC_NIL);
}

TEST_F(Commande, BadEnvsAndOrdinals) {
  // Whatever env and ordinal, the dispatch stays in its tables.
  mot* b = phrase({el(7, 4)});
  EXPECT_EQ(commande(b, piles.eva_limite, nullptr), 7);
  b = phrase({el(1, 100000)});
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(commande(b, piles.eva_limite, nullptr), -1); }).rfind("1 100000: ", 0), 0u);
  b = phrase({el(0, -5)});
  EXPECT_EQ(commande(b, piles.eva_limite, nullptr), 0);
}
