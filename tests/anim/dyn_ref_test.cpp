// orvane's vertex step, through `dyn pas(k) vol(n)` at the console, set
// against a numpy reference of the same equations (tests/anim/dyn_ref.py)
// at steps 1, 10 and 100: a hanging chain pinned at its top and a cloth
// grid pinned at two corners falling under a field object made at the
// console.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {
std::string lance(const std::string& cmd) {
  std::string out;
  FILE* f = popen(cmd.c_str(), "r");
  if (!f) return out;
  char buf[65536];
  std::size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
  pclose(f);
  return out;
}

std::string fichier(const std::string& nom, const std::string& texte) {
  std::string chemin = "/tmp/orvane_dynref_" + std::to_string(getpid()) + "_" + nom;
  std::ofstream(chemin) << texte;
  return chemin;
}

// Lines of the output with at least 3 numbers, as float vectors.
std::vector<std::vector<float>> lignes(const std::string& sortie) {
  std::vector<std::vector<float>> r;
  std::istringstream in(sortie);
  std::string l;
  while (std::getline(in, l)) {
    if (l.rfind("> ", 0) == 0) l = l.substr(2);
    std::istringstream m(l);
    std::vector<float> v;
    float x;
    while (m >> x) v.push_back(x);
    if (v.size() >= 3 && m.eof()) r.push_back(v);
  }
  return r;
}

std::string python() {
  return access("/usr/bin/python3", X_OK) == 0 ? "/usr/bin/python3" : "python3";
}

std::string liste(const std::vector<float>& v) {
  std::string s;
  for (std::size_t i = 0; i < v.size(); ++i) s += (i ? "," : "") + std::to_string(v[i]);
  return s;
}

// Runs the scene of volume 1 in orvane and in the reference; compares.
// The uniform force is the volume's own, or a field object's (no points:
// its coe vector acts on every vertex alike).
void compare(const std::string& creation, const std::vector<int>& fixes, float m, const std::vector<float>& force,
             const std::vector<float>& res, bool champ = false) {
  // First the vertices and faces orvane made.
  std::string base = creation + "\n$ vol(1) som\n$ vol(1) fac\n";
  auto l0 = lignes(lance("cd " ORVANE_SOURCE " && " ORVANE_BIN " gra=0 ID ini=env/initb.h < " + fichier("a.in", base) +
                         " 2>/dev/null"));
  ASSERT_EQ(l0.size(), 2u);
  const std::vector<float>& som = l0[0];
  const int nb = static_cast<int>(som.size() / 3);
  std::vector<std::vector<int>> fac(1);
  for (float x : l0[1]) {
    if (x == 0) fac.emplace_back();
    else fac.back().push_back(static_cast<int>(x));
  }
  // Masses: pinned vertices get an empty record.
  std::string mas = "vol(1) mas sommet = ", masj = "[";
  for (int i = 1; i <= nb; ++i) {
    bool fixe = std::find(fixes.begin(), fixes.end(), i) != fixes.end();
    mas += std::string(i > 1 ? ", " : "") + (fixe ? "1" : "2," + std::to_string(m));
    masj += std::string(i > 1 ? "," : "") + (fixe ? "null" : std::to_string(m));
  }
  masj += "]";
  const std::string f = champ ? "cha(1) num(1)\ncha(1) coe = " + liste(force) : "vol(1) for = " + liste(force);
  std::string script = creation + "\n" + mas + "\n" + f + "\nvol(1) ressort = " + liste(res) +
                       "\ndyn pas(1) vol(1)\n$ vol(1) som\ndyn pas(9) vol(1)\n$ vol(1) som\ndyn pas(90) vol(1)\n$ vol(1) som\n";
  auto lo = lignes(lance("cd " ORVANE_SOURCE " && " ORVANE_BIN " gra=0 ID ini=env/initb.h < " + fichier("b.in", script) +
                         " 2>/dev/null"));
  std::string json = "{\"som\": [" + liste(som) + "], \"fac\": [";
  for (std::size_t f = 0; f < fac.size(); ++f) {
    json += f ? ", [" : "[";
    for (std::size_t k = 0; k < fac[f].size(); ++k) json += (k ? "," : "") + std::to_string(fac[f][k]);
    json += "]";
  }
  json += "], \"mas\": null, \"mas_som\": " + masj + ", \"for\": [" + liste(force) + "], \"ressort\": [" + liste(res) +
          "], \"torsion\": null, \"pas\": [1, 10, 100]}";
  auto lp = lignes(lance(python() + " " ORVANE_SOURCE "/tests/anim/dyn_ref.py < " + fichier("c.json", json)));
  ASSERT_EQ(lo.size(), 3u);
  ASSERT_EQ(lp.size(), 3u);
  const float tol[3] = {1e-5f, 1e-4f, 2e-3f};
  int bouge = 0;
  for (int t = 0; t < 3; ++t) {
    ASSERT_EQ(lo[t].size(), som.size());
    ASSERT_EQ(lp[t].size(), som.size());
    for (std::size_t k = 0; k < som.size(); ++k) {
      EXPECT_NEAR(lo[t][k], lp[t][k], tol[t] * (1 + std::fabs(lp[t][k]))) << "step " << (t == 0 ? 1 : t == 1 ? 10 : 100)
                                                                          << " coordinate " << k;
      bouge += lo[t][k] != som[k];
    }
  }
  EXPECT_GT(bouge, 0);
  // Pinned vertices stay.
  for (int i : fixes)
    for (int x = 0; x < 3; ++x) EXPECT_EQ(lo[2][3 * (i - 1) + x], som[3 * (i - 1) + x]);
}

TEST(DynReference, ChaineSuspendue) {
  std::string c = "vol(1)\nvol(1) som = ";
  for (int i = 0; i < 8; ++i) c += std::string(i ? ", " : "") + "0," + std::to_string(-1.5 * i) + ",0";
  c += "\nvol(1) fac = ";
  for (int i = 1; i < 8; ++i) c += std::string(i > 1 ? ", 0, " : "") + std::to_string(i) + "," + std::to_string(i + 1);
  compare(c, {1}, 1.3f, {0.01f, -0.05f, 0}, {0.2f, -0.3f});
}

TEST(DynReference, DrapEpingleADeuxCoins) {
  compare("vol(1)\nvol(1) grille(5,5)", {31, 36}, 0.8f, {0, -0.03f, 0.011f}, {0.3f, -0.25f}, true);
}
}  // namespace
