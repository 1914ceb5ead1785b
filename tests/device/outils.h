// Shared set-up of the device tests: the real vocabulary and messages,
// phrases of `periph` built as the engine builds them, Python peers run as
// second processes, and free loopback ports.
#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "device/device.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tests/outils/vocabulaire.h"

struct Clause {
  int env, ord;
  enum { RIEN, NOMBRES, TEXTE } genre = RIEN;
  std::vector<float> x;
  std::string s;
};
inline Clause cl(int env, int ord) { return {env, ord, Clause::RIEN, {}, {}}; }
inline Clause cl(int env, int ord, std::vector<float> x) { return {env, ord, Clause::NOMBRES, std::move(x), {}}; }
inline Clause cl(int env, int ord, std::string s) { return {env, ord, Clause::TEXTE, {}, std::move(s)}; }
inline Clause num(float n) { return cl(1, 128, std::vector<float>{n}); }

// A value block at p: floats, or a text; its length.
inline mot ecrit_valeur(mot* p, const Clause& c) {
  if (c.genre == Clause::TEXTE) {
    mot l = long_chaine(c.s.size());
    std::memset(p, 0, 4 * static_cast<std::size_t>(l));
    p[0] = l, p[1] = BLOC_CHAINE, p[2] = 1, p[3] = static_cast<mot>(c.s.size());
    std::memcpy(p + 4, c.s.data(), c.s.size());
    return l;
  }
  mot n = static_cast<mot>(c.x.size());
  p[0] = 4 + n, p[1] = BLOC_REEL, p[2] = n, p[3] = 1;
  for (mot i = 0; i < n; ++i) ecrit_reel(p + 4 + i, c.x[i]);
  return 4 + n;
}

struct Periphs : testing::Test {
  std::string sortie;
  mot* resultat = nullptr;

  void SetUp() override {
    vocabulaire_charge();
    if (!piles.eva_base) piles_alloue(100, 200000, 100, 1000);
    periph_enregistre();
  }
  void TearDown() override {
    sortie_de([] { periph_ferme_tout(); });
  }

  bool en_capture = false;  // inside sortie_de: lance leaves the output to it
  template <class F>
  std::string sortie_de(F f) {
    if (en_capture) {
      f();
      return "";
    }
    en_capture = true;
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    f();
    std::fflush(stdout);
    en_capture = false;
    return testing::internal::GetCapturedStdout();
  }

  mot* phrase(const std::vector<Clause>& cs) {
    mot* b = piles.eva_base;
    mot* p = b + 4;
    for (const Clause& c : cs) {
      p[1] = c.env, p[2] = c.ord;
      p[0] = 3 + (c.genre == Clause::RIEN ? 0 : ecrit_valeur(p + 3, c));
      p += p[0];
    }
    b[0] = static_cast<mot>(p - b), b[1] = BLOC_PHRASE, b[2] = static_cast<mot>(cs.size()), b[3] = 0;
    return b;
  }

  // Runs the phrase through the command dispatch; its return code. The
  // console output goes to `sortie`, the value to `resultat`.
  int lance(const std::vector<Clause>& cs, const Clause* valeur = nullptr, const mot* limite = nullptr) {
    mot* b = phrase(cs);
    mot* v = nullptr;
    if (valeur) {
      v = b + b[0] + 16;
      ecrit_valeur(v, *valeur);
    }
    int r = 0;
    sortie = sortie_de([&] { r = commande(b, limite ? limite : piles.eva_limite, v); });
    resultat = b;
    return r;
  }
  int ecrit(const std::vector<Clause>& cs, const std::string& t) {
    Clause c = cl(0, 0, t);
    return lance(cs, &c);
  }
  std::string texte() const {
    return resultat[0] >= 4 && resultat[1] == BLOC_CHAINE ? std::string(bloc_texte(resultat)) : std::string("<pas un texte>");
  }
  std::vector<float> nombres() const {
    if (resultat[0] < 4 || resultat[1] != BLOC_REEL) return {};
    return std::vector<float>(reels(resultat + 4), reels(resultat + 4) + resultat[0] - 4);
  }
  bool nil() const { return resultat[0] == 4 && resultat[1] == BLOC_NIL; }
};

// A port on loopback that nothing listens to now, different for every
// test process.
inline int port_libre(int k = 0) {
  static std::mt19937 g(static_cast<unsigned>(getpid()) * 2654435761u ^
                        static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count()));
  (void)k;
  return 20000 + static_cast<int>(g() % 30000);
}

// A Python program run beside the test; its output when it ends. A peer
// that waits for a connection which never comes must not hold the suite:
// it is ended after two minutes.
struct Python {
  FILE* f = nullptr;
  std::string fichier, lu;
  Python(const std::string& code, const std::string& args = "") {
    char modele[] = "/tmp/orvane-pyXXXXXX";
    int fd = mkstemp(modele);
    fichier = modele;
    (void)!write(fd, code.data(), code.size());
    close(fd);
    f = popen(("timeout 120 /usr/bin/python3 " + fichier + " " + args + " 2>&1").c_str(), "r");
  }
  // Reads the peer's lines up to `ligne` (its word that it listens): a
  // loaded machine starts Python late. What is read stays in fin()'s text.
  bool attend(const std::string& ligne) {
    char buf[512];
    while (f && std::fgets(buf, sizeof buf, f)) {
      lu += buf;
      if (ligne + "\n" == buf) return true;
    }
    return false;
  }
  std::string fin() {
    std::string out = lu;
    lu.clear();
    if (!f) return out;
    char buf[4096];
    std::size_t n;
    while ((n = fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
    pclose(f);
    f = nullptr;
    return out;
  }
  ~Python() {
    fin();
    unlink(fichier.c_str());
  }
};

inline void dort(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }
