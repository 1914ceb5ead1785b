// Shared by the tests of the scene's records: attributes read and written
// by their keys, a volume's vertices, and a fixture whose working records
// are freed at the end of each test.
#pragma once
#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "../geom/outils.h"
#include "anim/dyn.h"

inline void ecrit(Objet* o, std::initializer_list<int> cle, std::vector<float> v) {
  std::vector<mot> k(cle);
  ASSERT_NE(attribut_ecrit(o, static_cast<int>(k.size() / 2), k.data(), v.data(), static_cast<int>(v.size()), 1), nullptr);
}
inline std::vector<float> lit(Objet* o, std::initializer_list<int> cle) {
  std::vector<mot> k(cle);
  int nb = 0;
  const reel* r = dyn::val(o, static_cast<int>(k.size() / 2), k.data(), 1, &nb);
  return r ? std::vector<float>(r, r + nb) : std::vector<float>{};
}
inline std::vector<float> sommets(Objet* o) {
  int nb = 0, d = 3;
  const reel* s = vol_som(o, &nb, &d);
  return std::vector<float>(s, s + 3 * nb);
}

// The records a test makes stand in the scene's list, which starts empty.
struct Enregistrements : testing::Test {
  std::vector<Vol_inter*> recs;
  void SetUp() override {
    tas::init();
    monde();
    inter.liste_inter = inter.fin_inter = nullptr;
  }
  void TearDown() override {
    for (Vol_inter* v : recs) delete v;
    recs.clear();
    inter.liste_inter = inter.fin_inter = nullptr;
  }
};
