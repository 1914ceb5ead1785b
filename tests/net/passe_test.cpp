// The passes of the networks on hand-computed cases: a forward pass and one
// back-propagation step of a 2-2-1 perceptron, the clip of the weights, the
// map's winner, tie and neighbour rows, and larger random networks against a
// plain double-precision reference.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "net/net.h"

namespace {
// Network 1-2 inputs, 3-4 hidden, 5 output (0-based 0..4 below).
Reseau deux_deux_un() {
  Reseau r;
  const int t[] = {2, 2, 1};
  res_prepare(&r, t);
  *res_poids(&r, 2, 0) = 0.5f;
  *res_poids(&r, 2, 1) = -0.4f;
  *res_poids(&r, 3, 0) = 0.3f;
  *res_poids(&r, 3, 1) = 0.8f;
  *res_poids(&r, 4, 2) = 1.2f;
  *res_poids(&r, 4, 3) = -0.7f;
  return r;
}

Motifs motifs(int largeur, std::vector<float> x) {
  Motifs m;
  m.largeur = largeur;
  m.nb = static_cast<int>(x.size()) / largeur;
  m.x = std::move(x);
  return m;
}
}  // namespace

TEST(Perceptron, UnPassageAvantEtUnPasDeRetropropagation) {
  Reseau r = deux_deux_un();
  const float x[] = {1.f, 0.5f};
  res_avant(&r, x);
  EXPECT_NEAR(r.sortie[2], 0.574442516811659, 1e-6);
  EXPECT_NEAR(r.sortie[3], 0.6681877721681662, 1e-6);
  EXPECT_NEAR(r.sortie[4], 0.5551742953583818, 1e-6);
  EXPECT_NEAR(r.net[4], 1.2 * 0.574442516811659 - 0.7 * 0.6681877721681662, 1e-6);
  // One pattern, wanted 1, rate 0.5: each weight moves by its delta, the
  // hidden errors taken through the weights before they moved.
  EXPECT_EQ(res_passe_perceptron(&r, motifs(2, {1.f, 0.5f}), motifs(1, {1.f}), 0.5f, 0.1f), 1);
  EXPECT_NEAR(*res_poids(&r, 2, 0), 0.5161125826921464, 1e-6);
  EXPECT_NEAR(*res_poids(&r, 2, 1), -0.3919437086539268, 1e-6);
  EXPECT_NEAR(*res_poids(&r, 3, 0), 0.2914755168747767, 1e-6);
  EXPECT_NEAR(*res_poids(&r, 3, 1), 0.7957377584373884, 1e-6);
  EXPECT_NEAR(*res_poids(&r, 4, 2), 1.2315519119599474, 1e-6);
  EXPECT_NEAR(*res_poids(&r, 4, 3), -0.6632990227165311, 1e-6);
  // A good pattern changes nothing; a tolerance of 0.5 makes this one good.
  Reseau b = deux_deux_un();
  EXPECT_EQ(res_passe_perceptron(&b, motifs(2, {1.f, 0.5f}), motifs(1, {1.f}), 0.5f, 0.5f), 0);
  EXPECT_FLOAT_EQ(*res_poids(&b, 4, 2), 1.2f);
}

TEST(Perceptron, SeuilBorneEtDerivee) {
  // Threshold neurons have outputs 0 or 1, so out (1 - out) is 0 and
  // nothing learns, as the rule says; the weights stay.
  Reseau r = deux_deux_un();
  for (auto& c : r.code) c = 0;
  for (auto& p : r.param) p = 0.f;
  const float x[] = {1.f, 0.5f};
  res_avant(&r, x);
  EXPECT_EQ(r.sortie[2], 1.f);  // 0.3 >= 0
  EXPECT_EQ(r.sortie[3], 1.f);
  EXPECT_EQ(r.sortie[4], 1.f);  // 0.5 >= 0
  EXPECT_EQ(res_passe_perceptron(&r, motifs(2, {1.f, 0.5f}), motifs(1, {0.f}), 0.5f, 0.1f), 1);
  EXPECT_FLOAT_EQ(*res_poids(&r, 4, 2), 1.2f);
  // The clip keeps every weight that moves inside [-c, c].
  Reseau c = deux_deux_un();
  c.borne = 0.6f;
  res_passe_perceptron(&c, motifs(2, {1.f, 0.5f}), motifs(1, {1.f}), 100.f, 0.1f);
  for (float w : c.w) EXPECT_LE(std::fabs(w), 0.6f);
  EXPECT_FLOAT_EQ(*res_poids(&c, 4, 2), 0.6f);
}

TEST(Perceptron, GrandsReseauxAleatoiresContreUneReference) {
  // Odd sizes (not multiples of the eight sums), large random weights and
  // inputs, several patterns: the pass agrees with a plain double version.
  std::mt19937 g(12345);
  std::uniform_real_distribution<float> u(-3.f, 3.f);
  const int t[] = {37, 13, 5};
  Reseau r;
  res_prepare(&r, t);
  for (float& w : r.w) w = u(g) * 0.3f;
  std::vector<double> w(r.w.begin(), r.w.end());
  Motifs x = motifs(37, std::vector<float>(37 * 7)), y = motifs(5, std::vector<float>(5 * 7));
  for (float& v : x.x) v = u(g) * 100.f;
  for (float& v : y.x) v = (u(g) + 3.f) / 6.f;
  const float taux = 0.37f;
  res_passe_perceptron(&r, x, y, taux, 0.f);
  // Reference.
  for (int p = 0; p < 7; ++p) {
    std::vector<double> h(13), o(5), eh(13, 0.0);
    for (int j = 0; j < 13; ++j) {
      double s = 0;
      for (int i = 0; i < 37; ++i) s += w[j * 37 + i] * x.x[p * 37 + i];
      h[j] = 1 / (1 + std::exp(-s));
    }
    for (int j = 0; j < 5; ++j) {
      double s = 0;
      for (int i = 0; i < 13; ++i) s += w[481 + j * 13 + i] * h[i];
      o[j] = 1 / (1 + std::exp(-s));
    }
    for (int j = 0; j < 5; ++j) {
      double d = o[j] * (1 - o[j]) * (y.x[p * 5 + j] - o[j]);
      for (int i = 0; i < 13; ++i) {
        eh[i] += d * w[481 + j * 13 + i];
        w[481 + j * 13 + i] = std::clamp(w[481 + j * 13 + i] + taux * d * h[i], -100.0, 100.0);
      }
    }
    for (int j = 0; j < 13; ++j) {
      double d = h[j] * (1 - h[j]) * eh[j];
      for (int i = 0; i < 37; ++i)
        w[j * 37 + i] = std::clamp(w[j * 37 + i] + taux * d * x.x[p * 37 + i], -100.0, 100.0);
    }
  }
  for (std::size_t k = 0; k < w.size(); ++k) EXPECT_NEAR(r.w[k], w[k], 2e-3 + 1e-3 * std::fabs(w[k])) << k;
}

TEST(Carte, VainqueurVoisinsEtEgalite) {
  // 2 inputs, a 3 x 3 grid; neuron weights (w(j,0), w(j,1)) = (j, j).
  const int t[] = {2, 9};
  Reseau r;
  res_prepare(&r, t, RES_CARTE);
  for (int j = 0; j < 9; ++j) r.w[2 * j] = r.w[2 * j + 1] = static_cast<float>(j);
  // Grid neighbours of the middle (4): itself, up 1, left 3, right 5, down 7.
  const int attendu[] = {4, 1, 3, 5, 7, 0, 2, 6, 8};
  for (int q = 0; q < RES_VOISINS; ++q) EXPECT_EQ(r.voisins[4 * RES_VOISINS + q], attendu[q]);
  // A corner has empty entries.
  EXPECT_EQ(r.voisins[0 * RES_VOISINS + 1], -1);
  float g;
  // Pattern (4.2, 3.9): S(4) = 0.3 is the smallest. v = 3: neurons 4, 1, 3.
  int n = res_passe_carte(&r, motifs(2, {4.2f, 3.9f}), 0.5f, 0.01f, 3, &g);
  EXPECT_NEAR(r.w[8], 4.1f, 1e-6);
  EXPECT_NEAR(r.w[9], 3.95f, 1e-6);
  EXPECT_NEAR(r.w[2], 2.6f, 1e-6);  // neuron 1: 1 + 0.5 (4.2 - 1)
  EXPECT_NEAR(r.w[6], 3.6f, 1e-6);  // neuron 3
  EXPECT_FLOAT_EQ(r.w[10], 5.f);    // neuron 5, fourth, untouched
  // Gaps: terms above the running largest, from the first neuron on:
  // 4.2 (raises), 3.9, then 3.2 .. below; so one count, largest 4.2.
  EXPECT_EQ(n, 1);
  EXPECT_NEAR(g, 4.2f, 1e-6);
  // A tie goes to the first neuron: (0.5, 0.5) is as far from 0 as from 1.
  Reseau e;
  res_prepare(&e, t, RES_CARTE);
  for (int j = 0; j < 9; ++j) e.w[2 * j] = e.w[2 * j + 1] = static_cast<float>(j);
  res_passe_carte(&e, motifs(2, {0.5f, 0.5f}), 1.f, 0.01f, 1, &g);
  EXPECT_FLOAT_EQ(e.w[0], 0.5f);
  EXPECT_FLOAT_EQ(e.w[2], 1.f);
  // Differences not above the tolerance are left.
  res_passe_carte(&e, motifs(2, {0.6f, 0.5f}), 1.f, 0.2f, 1, &g);
  EXPECT_FLOAT_EQ(e.w[0], 0.5f);
}

TEST(Carte, RangeeNulleSansVainqueurEtVoisinageUn) {
  const int t[] = {3, 4};
  Reseau r;
  res_prepare(&r, t, RES_CARTE);
  for (std::size_t k = 0; k < r.w.size(); ++k) r.w[k] = static_cast<float>(k) * 0.1f;
  const std::vector<float> avant = r.w;
  // A row of all zeros updates nothing, not even its winner.
  std::fill(r.voisins.begin(), r.voisins.end(), -1);
  float g;
  res_passe_carte(&r, motifs(3, {5.f, -2.f, 7.f, 0.f, 0.f, 0.f}), 0.5f, 0.f, 9, &g);
  EXPECT_EQ(r.w, avant);
  // A neighbourhood of 1 moves the winner alone, since it comes first.
  res_voisins_grille(&r);
  res_passe_carte(&r, motifs(3, {0.f, 0.f, 0.f}), 1.f, 0.f, 1, &g);
  EXPECT_EQ(r.w[0], 0.f);
  EXPECT_EQ(r.w[1], 0.f);
  for (std::size_t k = 3; k < r.w.size(); ++k) EXPECT_EQ(r.w[k], avant[k]);
  // No winner: every sum at or past 1000000; the pass stops with 1.
  testing::internal::CaptureStdout();
  int n = res_passe_carte(&r, motifs(3, {1e7f, 0.f, 0.f, 1.f, 1.f, 1.f}), 1.f, 0.f, 1, &g);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(n, 1);
  EXPECT_EQ(r.w[0], 0.f);
}
