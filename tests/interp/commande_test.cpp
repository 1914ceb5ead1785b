// The command dispatch and its attribute fallback, on phrases built as the
// engine builds them, with the real vocabulary.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "startup/startup.h"

#include "interp/interp.h"
#include "tests/outils/vocabulaire.h"

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

TEST_F(Commande, WriteThenReadReplacesAndMissingIsNil) {
  lance({el(1, 4, {1})});  // vol(1)
  ASSERT_NE(objet_trouve(4, 0, 1, nullptr), nullptr);
  lance({el(1, 4, {1}), el(1, 17, {1, 0, 0})});
  EXPECT_EQ(lance({el(1, 4, {1}), el(1, 17)}), (std::vector<float>{1, 0, 0}));
  lance({el(1, 4, {1}), el(1, 17, {0, 1})});  // shorter: filled with zeros
  EXPECT_EQ(lance({el(1, 4, {1}), el(1, 17)}), (std::vector<float>{0, 1, 0}));
  Objet* v = objet_trouve(4, 0, 1, nullptr);
  EXPECT_EQ(v->donnees[2], 1);  // one entry, replaced
  mot* b = phrase({el(1, 4, {1}), el(1, 23)});
  commande(b, piles.eva_limite, nullptr);
  EXPECT_EQ(b[1], BLOC_NIL);
}

TEST_F(Commande, ReadOverTwoObjectsAndAssignmentForm) {
  lance({el(1, 24, {1})});
  lance({el(1, 24, {2})});
  lance({el(1, 24, {1}), el(1, 11, {5})});
  mot valeur[5] = {5, BLOC_REEL, 1, 1, reel_mot(7)};
  lance({el(1, 24, {2}), el(1, 11)}, valeur);  // lum(2) foc = 7
  EXPECT_EQ(lance({el(1, 24, {1, 2}), el(1, 11)}), (std::vector<float>{5, 7}));
}

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

TEST_F(Commande, ConfigurationValueAndBadEnvs) {
  // amb declares three values: a shorter value is filled, the size kept.
  EXPECT_EQ(lance({el(1, 87, {0.5f})}), (std::vector<float>{0.5f, 0, 0}));
  EXPECT_EQ(lance({el(1, 87)}), (std::vector<float>{0.5f, 0, 0}));
  // Whatever env and ordinal, the dispatch stays in its tables.
  mot* b = phrase({el(7, 4)});
  EXPECT_EQ(commande(b, piles.eva_limite, nullptr), 7);
  b = phrase({el(1, 100000)});
  testing::internal::CaptureStdout();
  EXPECT_EQ(commande(b, piles.eva_limite, nullptr), -1);  // a bad pair, reported
  EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("1 100000: ", 0), 0u);
  b = phrase({el(0, -5)});
  EXPECT_EQ(commande(b, piles.eva_limite, nullptr), 0);
}

TEST_F(Commande, NamingAndDeleting) {
  lance({el(1, 4, {1})});
  lance({el(1, 4, {2})});
  mot* b = phrase({el(0, 58), el(1, 4, {1})});
  // nommer vol(1) num(5)
  mot* e = b + 4 + b[4] + b[4 + b[4]];
  e[0] = 3 + 5, e[1] = 0, e[2] = 57, e[3] = 5, e[4] = BLOC_REEL, e[5] = 1, e[6] = 1, e[7] = reel_mot(5);
  b[0] += 8;
  b[2] = 3;
  commande(b, piles.eva_limite, nullptr);
  EXPECT_NE(objet_trouve(4, 0, 5, nullptr), nullptr);
  lance({el(0, 79), el(1, 4, {5})});
  EXPECT_EQ(objet_trouve(4, 0, 5, nullptr), nullptr);
  EXPECT_NE(objet_trouve(4, 0, 2, nullptr), nullptr);
  lance({el(0, 79), el(1, 4)});
  EXPECT_EQ(objet_trouve(4, 0, 2, nullptr), nullptr);
}

TEST_F(Commande, NotYetImplementedSaysSo) {
  lance({el(1, 8, {1})});  // aff(1)
  EXPECT_NE(sortie.find("non implemente"), std::string::npos);
}
