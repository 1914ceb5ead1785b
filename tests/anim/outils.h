// Shared by the tests of the scene's records: attributes read and written
// by their keys, a volume's vertices, and a fixture whose working records
// (made as the scene makes them, chained in its list) are freed at the end
// of each test.
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
  // The object's record, after the others in the scene's list.
  Vol_inter* record(Objet* o) {
    auto* v = new Vol_inter;
    v->objet = o, v->num = o->numero, v->attr = o->donnees;
    int d = 3;
    v->som = vol_som(o, &v->nb_som, &d);
    v->stride = d;
    if (!recs.empty()) recs.back()->suivant = v;
    else inter.liste_inter = v;
    inter.fin_inter = v;
    recs.push_back(v);
    vol_inter_matrice(v);
    return v;
  }
  // The follower hangs by its vertex `som_suiv` at the leader's `som_lead`.
  static void lie(Vol_inter* lead, Vol_inter* suiv, int som_lead, int som_suiv) {
    lead->suiv[lead->nb_suiv++] = suiv;
    suiv->lead = lead, suiv->lead_num = lead->num;
    suiv->som_lead = som_lead, suiv->som_suiv = som_suiv;
  }
  void TearDown() override {
    for (Vol_inter* v : recs) delete v;
    recs.clear();
    inter.liste_inter = inter.fin_inter = nullptr;
  }
};
