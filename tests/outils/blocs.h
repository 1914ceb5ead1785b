// Values built straight in the arena, for tests that hand lists and
// attributes to the code the way the evaluator would.
#pragma once
#include <cstring>
#include <vector>

#include "core/bloc.h"

// A float vector as a Bloc of one column.
inline mot* vecteur(const std::vector<float>& x) {
  mot* b = bloc_alloue(4 + static_cast<mot>(x.size()));
  b[0] = 4 + static_cast<mot>(x.size()), b[1] = BLOC_REEL, b[2] = static_cast<mot>(x.size()), b[3] = 1;
  for (std::size_t i = 0; i < x.size(); ++i) ecrit_reel(b + 4 + i, x[i]);
  return b;
}
// A string, its last word padded with zeros.
inline mot* chaine(const char* s) {
  int n = static_cast<int>(std::strlen(s));
  mot w = 4 + (n + 4) / 4;
  mot* b = bloc_alloue(w);
  std::memset(b, 0, sizeof(mot) * w);
  b[0] = w, b[1] = BLOC_CHAINE, b[2] = n, b[3] = 1;
  std::memcpy(b + 4, s, n);
  return b;
}
// A list of blocks, by their words.
inline mot* blocs(const std::vector<mot*>& el) {
  mot n = static_cast<mot>(el.size());
  mot* b = bloc_alloue(4 + n);
  b[0] = 4 + n, b[1] = BLOC_BLOCS, b[2] = n, b[3] = 1;
  for (mot i = 0; i < n; ++i) b[4 + i] = ptr_vers_mot(el[i]);
  return b;
}
// A BLOC_LISTE of faces, as words outside the arena.
inline std::vector<mot> faces(const std::vector<std::vector<int>>& f) {
  std::vector<mot> b{0, BLOC_LISTE, static_cast<mot>(f.size()), 0};
  for (const auto& c : f) {
    b.insert(b.end(), {static_cast<mot>(4 + c.size()), BLOC_ENTIER, 1, static_cast<mot>(c.size())});
    b.insert(b.end(), c.begin(), c.end());
  }
  b[0] = static_cast<mot>(b.size());
  return b;
}
