// Phrases built as the engine builds them (clauses [length, env, ordinal,
// value] behind a BLOC_PHRASE header, on the evaluation stack) and run
// through the command dispatch, for the tests of command handlers.
#pragma once
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/bloc.h"
#include "interp/interp.h"

// One clause: no value, floats, or a string.
struct El {
  int env, ord;
  std::vector<float> v;
  std::string s;
  bool avec = false, chaine = false;
};
inline El el(int env, int ord) { return {env, ord, {}, {}, false, false}; }
inline El el(int env, int ord, std::vector<float> v) { return {env, ord, std::move(v), {}, true, false}; }
inline El texte(int env, int ord, const char* s) { return {env, ord, {}, s, true, true}; }
inline El vol(std::vector<float> n) { return el(1, B_VOL, std::move(n)); }

inline std::vector<mot> reels_(const std::vector<float>& x) {
  std::vector<mot> b{static_cast<mot>(4 + x.size()), BLOC_REEL, static_cast<mot>(x.size()), 1};
  for (float f : x) b.push_back(reel_mot(f));
  return b;
}

struct Lanceur {
  std::string sortie;
  int r = 0;

  mot* phrase(const std::vector<El>& es) {
    mot* b = piles.eva_base;
    mot* p = b + 4;
    for (const auto& e : es) {
      p[1] = e.env, p[2] = e.ord;
      mot* v = p + 3;
      if (!e.avec) {
        p[0] = 3;
      } else if (e.chaine) {
        mot l = long_chaine(e.s.size());
        std::memset(v, 0, sizeof(mot) * l);
        v[0] = l, v[1] = BLOC_CHAINE, v[2] = 1, v[3] = 1;
        std::memcpy(v + 4, e.s.c_str(), e.s.size() + 1);
        p[0] = 3 + l;
      } else {
        auto w = reels_(e.v);
        std::copy(w.begin(), w.end(), v);
        p[0] = static_cast<mot>(3 + w.size());
      }
      p += p[0];
    }
    b[0] = static_cast<mot>(p - b), b[1] = BLOC_PHRASE, b[2] = static_cast<mot>(es.size()), b[3] = 0;
    return b;
  }

  // Runs the phrase (with the value assigned to it, if any): its value as
  // floats, empty for nil or none; the return code in `r`, the console
  // output in `sortie`.
  std::vector<float> lance(const std::vector<El>& es, const std::vector<float>* affecte = nullptr) {
    mot* b = phrase(es);
    std::vector<mot> v = affecte ? reels_(*affecte) : std::vector<mot>{};
    testing::internal::CaptureStdout();
    r = commande(b, piles.eva_limite, affecte ? v.data() : nullptr);
    sortie = testing::internal::GetCapturedStdout();
    if (b[0] <= 4 || b[1] != BLOC_REEL) return {};
    return std::vector<float>(reels(b + 4), reels(b + 4) + b[0] - 4);
  }
};
