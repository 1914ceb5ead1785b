// Networks that learn, driven from the language through the real program:
// XOR by a 2-3-1 perceptron, the 8 x 8 digits by a 64-16-10 perceptron
// (the data set that scikit-learn ships, exported by the test), colours by
// a 10 x 10 map whose neighbouring neurons must end closer than random ones.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "net/net.h"

namespace {
// Runs the program on the given lines; its standard output.
std::string orvane(const std::string& lignes, const std::string& nom) {
  std::string fichier = testing::TempDir() + nom + ".in";
  std::ofstream(fichier) << lignes;
  std::string cmd = std::string("cd ") + ORVANE_SOURCE + " && " + ORVANE_BIN + " gra=0 ini=env/initb.h < " + fichier;
  std::string sortie;
  if (FILE* p = popen(cmd.c_str(), "r")) {
    char buf[65536];
    std::size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0) sortie.append(buf, n);
    pclose(p);
  }
  if (!getenv("ORVANE_GARDE")) std::remove(fichier.c_str());
  return sortie;
}

// The floats of the first prompt line after each line holding "MARQUE".
std::vector<std::vector<float>> valeurs(const std::string& sortie) {
  std::vector<std::vector<float>> v;
  std::istringstream in(sortie);
  std::string l;
  bool apres = false;
  while (std::getline(in, l)) {
    if (l.find("MARQUE") != std::string::npos) {
      apres = true;
      continue;
    }
    if (!apres || l.rfind("> ", 0) != 0) continue;
    apres = false;
    std::istringstream s(l.substr(2));
    std::vector<float> x;
    float f;
    while (s >> f) x.push_back(f);
    v.push_back(x);
  }
  return v;
}

std::string liste(const std::vector<float>& x, std::size_t de, std::size_t n) {
  std::ostringstream s;
  s.precision(5);
  for (std::size_t k = 0; k < n; ++k) s << (k ? "," : "") << x[de + k];
  return s.str();
}

// Lines that build variable `nom` from x, 50 values a line (a line holds some 800 characters).
std::string variable(const std::string& nom, const std::vector<float>& x) {
  std::string t = nom + " = NIL\n";
  for (std::size_t k = 0; k < x.size(); k += 50)
    t += nom + " = " + (k ? nom + ", " : "") + liste(x, k, std::min<std::size_t>(50, x.size() - k)) + "\n";
  return t;
}
}  // namespace

TEST(Apprentissage, UnDeuxTroisUnApprendXor) {
  // Several seeds: each must reach the tolerance on all four patterns.
  for (int graine : {3, 7, 1234567}) {
    std::string t = "res(1)\nres(1) fac = 1,2, 0, 3,4,5, 0, 6\nres(1) motif = 0,0, 0,1, 1,0, 1,1\n"
                    "res(1) sortie = 0, 1, 1, 0\n";
    t += "$ \"MARQUE\"\n$ res(1) nb(30000, 0) coe(2) cont(0.08) ale(" + std::to_string(graine) + ")\n";
    for (const char* x : {"0,0", "0,1", "1,0", "1,1"}) t += std::string("$ \"MARQUE\"\n$ res(1) motif(") + x + ")\n";
    auto v = valeurs(orvane(t, "xor"));
    ASSERT_EQ(v.size(), 5u) << graine;
    ASSERT_EQ(v[0].size(), 3u);
    EXPECT_EQ(v[0][2], 1.f) << "graine " << graine << " passes " << v[0][0];
    const float voulu[] = {0, 1, 1, 0};
    for (int k = 0; k < 4; ++k) {
      ASSERT_EQ(v[k + 1].size(), 1u);
      EXPECT_LT(std::fabs(v[k + 1][0] - voulu[k]), 0.1f) << "graine " << graine << " motif " << k;
    }
  }
}

TEST(Apprentissage, ChiffresHuitSurHuit) {
  // The digits exported by scikit-learn: label then 64 values per line.
  std::string fichier = testing::TempDir() + "chiffres.txt";
  std::string cmd = "/usr/bin/python3 -c \"from sklearn.datasets import load_digits\nd = load_digits()\n"
                    "f = open('" + fichier + "', 'w')\n"
                    "for x, y in zip(d.data, d.target): f.write(str(y) + ' ' + ' '.join(str(int(v)) for v in x) + '\\n')\"";
  ASSERT_EQ(std::system(cmd.c_str()), 0) << "python3-sklearn";
  std::ifstream in(fichier);
  std::vector<int> y;
  std::vector<float> x;
  int c;
  while (in >> c) {
    y.push_back(c);
    for (int k = 0; k < 64; ++k) {
      float v;
      in >> v;
      x.push_back(v);
    }
  }
  std::remove(fichier.c_str());
  ASSERT_EQ(y.size(), 1797u);
  const std::size_t nb_app = 1300;
  std::vector<float> xa(x.begin(), x.begin() + nb_app * 64), sa(nb_app * 10, 0.f);
  for (std::size_t k = 0; k < nb_app; ++k) sa[k * 10 + y[k]] = 1.f;
  std::string t = variable("m", xa) + variable("s", sa);
  t += "res(3)\nres(3) fac = 1,2";
  for (int k = 3; k <= 64; ++k) t += "," + std::to_string(k);
  t += ", 0";
  for (int k = 65; k <= 80; ++k) t += "," + std::to_string(k);
  t += ", 0";
  for (int k = 81; k <= 90; ++k) t += "," + std::to_string(k);
  t += "\nres(3) motif = m / 16\nres(3) sortie = s\n";
  t += "$ \"MARQUE\"\n$ res(3) nb(40, 0) coe(0.5, 0.1) cont(0.2) ale(11) mas(-0.3, 0.3, 0.01)\n";
  for (std::size_t k = nb_app; k < y.size(); ++k) {
    std::vector<float> d(x.begin() + k * 64, x.begin() + (k + 1) * 64);
    for (float& v : d) v /= 16;
    t += "$ \"MARQUE\"\n$ res(3) neu motif(" + liste(d, 0, 64) + ")\n";
  }
  auto v = valeurs(orvane(t, "chiffres"));
  ASSERT_EQ(v.size(), 1 + y.size() - nb_app);
  int bons = 0;
  for (std::size_t k = nb_app; k < y.size(); ++k) {
    const auto& r = v[1 + k - nb_app];
    ASSERT_EQ(r.size(), 2u);
    bons += static_cast<int>(r[0]) - 81 == y[k];
  }
  const double precision = static_cast<double>(bons) / static_cast<double>(y.size() - nb_app);
  std::printf("chiffres: %d / %zu, %.3f\n", bons, y.size() - nb_app, precision);
  EXPECT_GE(precision, 0.90);
}

TEST(Apprentissage, CarteDeCouleursOrdonnee) {
  std::mt19937 g(2718);
  std::uniform_real_distribution<float> u(0.f, 1.f);
  std::vector<float> c(3 * 400);
  for (float& v : c) v = u(g);
  std::string t = variable("c", c) + "res(2) tex\nres(2) fac = 1,2,3, 0";
  for (int k = 4; k <= 103; ++k) t += "," + std::to_string(k);
  t += "\nres(2) motif = c\n$ \"MARQUE\"\n$ res(2) nb(40, 0) coe(0.5, 0.02) cont(0.001) ale(5) mas(0, 1)\n";
  t += "$ \"MARQUE\"\n$ res(2) poids\n";
  auto v = valeurs(orvane(t, "carte"));
  ASSERT_EQ(v.size(), 2u);
  ASSERT_EQ(v[0].size(), 3u);
  EXPECT_EQ(v[0][0], 40.f);
  ASSERT_EQ(v[1].size(), 103u * 103u);
  // The colour of grid cell (x, y): the weights from the 3 inputs.
  auto coul = [&](int k, int i) { return v[1][static_cast<std::size_t>(3 + k) * 103 + i]; };
  auto dist = [&](int a, int b) {
    double d = 0;
    for (int i = 0; i < 3; ++i) d += (coul(a, i) - coul(b, i)) * (coul(a, i) - coul(b, i));
    return std::sqrt(d);
  };
  double voisins = 0, hasard = 0;
  int nv = 0, nh = 0;
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 10; ++x) {
      if (x + 1 < 10) voisins += dist(y * 10 + x, y * 10 + x + 1), ++nv;
      if (y + 1 < 10) voisins += dist(y * 10 + x, (y + 1) * 10 + x), ++nv;
    }
  std::uniform_int_distribution<int> k(0, 99);
  for (int n = 0; n < 2000; ++n) {
    int a = k(g), b = k(g);
    if (a != b) hasard += dist(a, b), ++nh;
  }
  voisins /= nv;
  hasard /= nh;
  std::printf("carte: voisins %.3f, hasard %.3f\n", voisins, hasard);
  EXPECT_LT(voisins, 0.5 * hasard);
  // The colours were learnt: every neuron's weights lie in the cube.
  for (int a = 0; a < 100; ++a)
    for (int i = 0; i < 3; ++i) {
      EXPECT_GE(coul(a, i), -0.01f);
      EXPECT_LE(coul(a, i), 1.01f);
    }
}
