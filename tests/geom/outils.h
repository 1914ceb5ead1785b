// Shared set-up of the geometry tests: an object table, a message table
// whose text n reads "Mn", and small builders of volumes.
#pragma once
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "geom/geom.h"
#include "startup/startup.h"
#include "tests/outils/blocs.h"
#include "tests/outils/sortie.h"

// The message table loaded here is the geometry tests' own: it is dropped
// when the test ends, so that other tests see the state they expect.
struct Nettoyage : testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override { messages = Messages{}; }
};

inline void monde() {
  static bool inscrit = (testing::UnitTest::GetInstance()->listeners().Append(new Nettoyage), true);
  (void)inscrit;
  if (!piles.obj_base) {
    ASSERT_EQ(piles_alloue(100, 10000, 200, 1000), 0);
  }
  memoire.mal = nullptr;  // a debug table left by another test would report here
  // Each test starts with an empty object table.
  objets_vide();
  vocab = Vocabulaire{};
  std::string t;
  for (int n = 0; n <= 110; ++n) t += "|" + std::to_string(n) + ":M" + std::to_string(n) + "\\n\n";
  mes_analyse(t, 0);
  messages.charges = true;
  geom = Geom{};
}

inline Objet* volume(int numero = 1) { return objet_cree(1, B_VOL, 0, nullptr, nullptr, numero); }

inline Objet* volume_de(const std::vector<float>& som, const std::vector<std::vector<int>>& f, int numero = 1) {
  Objet* o = volume(numero);
  EXPECT_EQ(vol_som_ecrit(o, som.data(), static_cast<int>(som.size() / 3), 3), 0);
  if (!f.empty()) {
    auto b = faces(f);
    EXPECT_EQ(vol_fac_ecrit(o, b.data()), 0);
  }
  return o;
}

inline std::vector<float> floats(const mot* valeur) {
  const reel* p = reels(valeur + 4);
  return std::vector<float>(p, p + (valeur[0] - 4));
}

inline std::vector<int> entiers(const mot* valeur) {
  return std::vector<int>(valeur + 4, valeur + valeur[0]);
}

// a[k] near b[k] for each k of b; the index of a miss in its message.
inline void proche(const float* a, std::initializer_list<float> b, float eps = 1e-5f) {
  int k = 0;
  for (float x : b) {
    EXPECT_NEAR(a[k], x, eps) << "indice " << k;
    ++k;
  }
}
inline void proche(const std::vector<float>& a, const std::vector<float>& b, float eps = 1e-5f) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t k = 0; k < a.size(); ++k) EXPECT_NEAR(a[k], b[k], eps) << "indice " << k;
}
