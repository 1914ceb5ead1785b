// Shared set-up of the core tests: fresh pools, small keyword and message
// tables built from text, and builders of Blocs and sentences.
#pragma once
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/message.h"
#include "core/objet.h"
#include "startup/startup.h"
#include "tests/outils/sortie.h"

namespace outils {
// Every message n reads "[n]", every keyword ordinal i of env e is named
// "a<i>" or "b<i>" with a long name "A<i>" or "B<i>", state 1 and one value.
inline void environnement(long obj = 100, long emp = 200) {
  ASSERT_TRUE(tas::init());
  ASSERT_EQ(piles_alloue(20, 2000, obj, emp), 0);
  objet_courant = nullptr;
  cadre = Cadre{};
  vocab = Vocabulaire{};
  messages = Messages{};
  for (int e = 0; e < 2; ++e) {
    std::string kom = "tables de test\n";
    for (int i = 0; i < 170; ++i) {
      char c = e ? 'b' : 'a';
      kom += "|" + std::to_string(i) + ": " + c + std::to_string(i) + " " +
             static_cast<char>(c - 32) + std::to_string(i) + "\n0 1 0 0 0\n";
    }
    ASSERT_EQ(kom_analyse(kom, e), 0);
  }
  std::string mes;
  // A text runs to the newline before the next "|": the last has none.
  for (int n = 0; n < 110; ++n) mes += "|" + std::to_string(n) + ":[" + std::to_string(n) + "]\n";
  mes.pop_back();
  ASSERT_EQ(mes_analyse(mes, 0), 0);
  ASSERT_EQ(mes_analyse("|0:<1:0>\n", 1), 0);
  messages.charges = true;
  messages_utilisateur_vide();
}

inline std::vector<mot> reels_(std::initializer_list<float> v) {
  std::vector<mot> b{static_cast<mot>(4 + v.size()), BLOC_REEL, static_cast<mot>(v.size()), 1};
  for (float x : v) b.push_back(reel_mot(x));
  return b;
}

inline std::vector<mot> chaine_(const std::string& s) {
  std::vector<mot> b(long_chaine(s.size()), 0);
  b[0] = static_cast<mot>(b.size());
  b[1] = BLOC_CHAINE;
  b[2] = 1;
  b[3] = 1;
  std::memcpy(b.data() + 4, s.c_str(), s.size() + 1);
  return b;
}

inline std::vector<mot> liste_(std::initializer_list<std::vector<mot>> enfants) {
  std::vector<mot> b{4, BLOC_LISTE, static_cast<mot>(enfants.size()), 0};
  for (const auto& e : enfants) b.insert(b.end(), e.begin(), e.end());
  b[0] = static_cast<mot>(b.size());
  return b;
}

// A sentence: clauses [length, env, ordinal, value...].
struct Phrase {
  std::vector<mot> m{4, BLOC_PHRASE, 0, 0};
  Phrase& clause(int env, int ord, const std::vector<mot>& v = {}) {
    m.push_back(static_cast<mot>(3 + v.size()));
    m.push_back(env);
    m.push_back(ord);
    m.insert(m.end(), v.begin(), v.end());
    ++m[2];
    m[0] = static_cast<mot>(m.size());
    return *this;
  }
  mot* operator*() { return m.data(); }
};

// Objects currently in the table, free entries skipped.
inline int nb_objets() {
  int n = 0;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o) n += o->type != 0;
  return n;
}
}  // namespace outils
