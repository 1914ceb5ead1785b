// Shared set-up of the object file tests: the real vocabulary and
// messages, an object table, a scratch directory that is the current one
// during the test, random objects of every type, and a snapshot of the
// table to compare attribute by attribute.
#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "display/oeil.h"
#include "persist/persist.h"
#include "startup/startup.h"
#include "tests/outils/blocs.h"
#include "tests/outils/vocabulaire.h"
#include "tests/outils/sortie.h"

struct Monde : testing::Test {
  std::filesystem::path dossier, avant;
  void SetUp() override {
    vocabulaire_charge();
    if (!piles.obj_base) {
      ASSERT_EQ(piles_alloue(100, 100000, 3000, 1000), 0);
    }
    objets_vide();
    char modele[] = "/tmp/orvane-persist-XXXXXX";
    dossier = mkdtemp(modele);
    avant = std::filesystem::current_path();
    std::filesystem::current_path(dossier);
    dem.chemin_uti[0] = dem.chemin_env[0] = 0;
    dem.debug = false;
  }
  void TearDown() override {
    std::filesystem::current_path(avant);
    std::filesystem::remove_all(dossier);
    objets_vide();
  }
};

inline std::vector<char> octets_de(const std::string& chemin) {
  std::ifstream f(chemin, std::ios::binary);
  return std::vector<char>((std::istreambuf_iterator<char>(f)), {});
}
inline void ecrit_octets(const std::string& chemin, const std::vector<char>& v) {
  std::ofstream f(chemin, std::ios::binary | std::ios::trunc);
  f.write(v.data(), static_cast<std::streamsize>(v.size()));
}

// ---- random objects -------------------------------------------------------------
// Floats worth a file: large, tiny, negative zero, infinities, odd bits.
inline float reel_hasard(std::mt19937& g) {
  static const float odd[] = {0.f, -0.f, 1e-40f, -3.4e38f, 3.4e38f, INFINITY, -INFINITY, 1.75f, -32768.f, 0.1f};
  if (g() % 4 == 0) return odd[g() % 10];
  float x;
  do {
    std::uint32_t b = static_cast<std::uint32_t>(g());
    std::memcpy(&x, &b, sizeof x);
  } while (std::isnan(x));
  return x;
}

// An attribute [L, validity, H, n, pairs, tail] with the tail given.
inline mot* attribut_de(Objet* o, std::vector<mot> paires, const std::vector<mot>& queue, mot validite = BLOC_PHRASE) {
  mot h = static_cast<mot>(4 + paires.size());
  mot* a = attribut_nouveau(o, h + static_cast<mot>(queue.size()));
  a[1] = validite;
  a[2] = h;
  a[3] = static_cast<mot>(paires.size() / 2);
  std::memcpy(a + 4, paires.data(), sizeof(mot) * paires.size());
  if (!queue.empty()) std::memcpy(a + h, queue.data(), sizeof(mot) * queue.size());
  return a;
}

inline std::vector<mot> queue_reels(const std::vector<float>& v, mot nl, mot nc) {
  std::vector<mot> q{static_cast<mot>(4 + v.size()), BLOC_REEL, nl, nc};
  for (float x : v) q.push_back(reel_mot(x));
  return q;
}

inline std::vector<mot> queue_texte(const std::string& s) {
  std::vector<mot> q(static_cast<std::size_t>(long_chaine(s.size())), 0);
  q[0] = static_cast<mot>(q.size());
  q[1] = BLOC_CHAINE;
  q[2] = q[3] = 1;
  std::memcpy(q.data() + 4, s.data(), s.size());
  return q;
}

// An object of the type with vertices, faces, colours, a two-pair key, a
// text, integers and a stale attribute, all random.
inline Objet* objet_hasard(int type, int numero, std::mt19937& g, bool nomme = true) {
  std::string nom = nomme ? "o" + std::to_string(g() % 100000) : "";
  Objet* o = objet_cree(1, type, static_cast<int>(g() % 300), nullptr, nom.empty() ? nullptr : nom.c_str(), numero);
  o->f1 = static_cast<std::uint16_t>(g());
  o->f2 = static_cast<std::uint16_t>(g());
  o->f3 = static_cast<std::uint16_t>(g());
  o->f4 = static_cast<std::uint16_t>(g());
  int ns = 1 + static_cast<int>(g() % 40);
  std::vector<float> som;
  for (int k = 0; k < 3 * ns; ++k) som.push_back(reel_hasard(g));
  attribut_de(o, {1, 86}, queue_reels(som, ns, 3));
  std::vector<std::vector<int>> fac;
  for (int k = 0, nf = 1 + static_cast<int>(g() % 20); k < nf; ++k) {
    std::vector<int> c;
    for (int j = 0, nc = 3 + static_cast<int>(g() % 5); j < nc; ++j) c.push_back(1 + static_cast<int>(g() % ns));
    fac.push_back(c);
  }
  attribut_de(o, {1, 15}, faces(fac));
  attribut_de(o, {1, 17}, queue_reels({reel_hasard(g), 0.5f, 1.f}, 3, 1), 1);
  attribut_de(o, {1, 17, 1, 15}, queue_reels({reel_hasard(g), reel_hasard(g)}, 1, 2));
  attribut_de(o, {0, 101}, queue_texte("f() { $ \"x\" }\n\ttab \\ " + std::to_string(g())));
  attribut_de(o, {1, 42}, {7, BLOC_ENTIER, 1, 3, static_cast<mot>(g()), -7, 2147483647}, 0);
  return o;
}

// ---- snapshot ------------------------------------------------------------------------
struct Image {
  int type, numero, sous_type, f1, f2, f3, f4;
  std::string nom;
  std::vector<std::vector<mot>> attributs;
  bool operator==(const Image&) const = default;
};

inline void mots_de(const mot* a, std::vector<mot>& d, int prof = 0) {
  std::size_t debut = d.size();
  d.insert(d.end(), a, a + a[0]);
  // A memory attribute's sub-objects are compared by what they hold: their
  // pointers differ by nature.
  if (prof < 4 && a[3] == 1 && a[4] == 1 && a[5] == 148 && a[a[2] + 1] == BLOC_BLOCS) {
    const mot* t = a + a[2];
    for (mot k = 4; k < t[0]; ++k) d[debut + a[2] + k] = 0;
    for (mot k = 4; k < t[0]; ++k) {
      const mot* s = bloc_pointe(t[k]);
      d.push_back(-77);
      for (mot j = 4; j < s[0]; ++j) mots_de(bloc_pointe(s[j]), d, prof + 1);
    }
  }
}

// A memory attribute of k sub-objects, each a head and two attributes.
inline void memoire_hasard(Objet* o, int k, std::mt19937& g) {
  std::vector<mot> q{4 + k, BLOC_BLOCS, k, 1};
  for (int i = 0; i < k; ++i) {
    Objet s{};
    mot* tete = bloc_alloue(12);
    tete[1] = BLOC_ENTIER, tete[2] = 8, tete[3] = 1;
    mot v[8] = {-3, i + 1, 2, 1, 2, 3, 148, 5};
    std::memcpy(tete + 4, v, sizeof v);
    liste_ajoute(&s, tete);
    attribut_de(&s, {1, 86}, queue_reels({reel_hasard(g), reel_hasard(g), reel_hasard(g)}, 1, 3));
    attribut_de(&s, {1, 17}, queue_reels({0.25f}, 1, 1));
    q.push_back(ptr_vers_mot(s.donnees));
  }
  attribut_de(o, {1, 148}, q);
}

inline std::vector<Image> cliche(std::initializer_list<int> types) {
  std::vector<Image> v;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o) {
    bool pris = false;
    for (int t : types) pris |= o->type == t;
    if (!pris) continue;
    Image im{o->type, o->numero, o->sous_type, o->f1, o->f2, o->f3, o->f4, o->nom ? o->nom : "", {}};
    if (o->donnees)
      for (mot k = 4; k < o->donnees[0]; ++k) {
        std::vector<mot> a;
        mots_de(bloc_pointe(o->donnees[k]), a);
        im.attributs.push_back(a);
      }
    v.push_back(im);
  }
  return v;
}
