// Linked code built by hand for the engine's tests, in the bracketed item
// form that the compiler produces, and an environment loaded from the real
// vocabulary files.
#pragma once
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tests/outils/vocabulaire.h"

namespace essai {

inline void environnement() {
  tas::init();
  interp = Interp{};
  debug = Debug{};
  cadre = Cadre{};
  vocabulaire_charge();
  mots_reinit();
  ASSERT_EQ(piles_alloue(1000, 100000, 2000, 10000), 0);
  bloc_nil = bloc_alloue(4);
  bloc_nil[1] = BLOC_NIL;
  bloc_nil[2] = 0;
  bloc_nil[3] = 1;
  dem.esc = 27;
}

inline Objet* globale(const char* nom) {
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == OBJ_GLOBAL && o->nom && std::strcmp(o->nom, nom) == 0) return o;
  return objet_cree(0, OBJ_GLOBAL, 0, nullptr, nom, 0);
}

// Floats of a variable's value.
inline std::vector<float> reels_de(const char* nom) {
  Objet* o = globale(nom);
  std::vector<float> v;
  if (!o->donnees || o->donnees[1] != BLOC_REEL) return v;
  for (mot k = 4; k < o->donnees[0]; ++k) v.push_back(lit_reel(o->donnees + k));
  return v;
}

inline std::string texte_de_variable(const char* nom) {
  Objet* o = globale(nom);
  if (!o->donnees || o->donnees[1] != BLOC_CHAINE) return "?";
  return bloc_texte(o->donnees);
}

// A function object: found by name through the first word of its text.
inline Objet* fonction_nommee(const char* nom) {
  if (Objet* f = fonction_trouve(nom)) return f;
  std::string texte = std::string(nom) + "(){}";
  std::vector<mot> b(long_chaine(texte.size()), 0);
  b[0] = static_cast<mot>(b.size());
  b[1] = BLOC_CHAINE;
  b[2] = 1;
  b[3] = 1;
  std::memcpy(b.data() + 4, texte.c_str(), texte.size() + 1);
  return objet_cree(0, A_FONC, 0, b.data(), nullptr, 0);
}

struct Code {
  std::vector<mot> m{0, IT_CODE, 0, 0};
  std::vector<mot> symboles;

  int ici() const { return static_cast<int>(m.size()); }
  Code& paire(mot a, mot b) {
    m.push_back(a);
    m.push_back(b);
    return *this;
  }
  Code& bloc(std::vector<mot> b) {
    b[0] = static_cast<mot>(b.size());
    m.insert(m.end(), b.begin(), b.end());
    return *this;
  }
  Code& chaine(const std::string& s) {
    std::vector<mot> b(long_chaine(s.size()), 0);
    b[1] = BLOC_CHAINE;
    b[2] = 1;
    b[3] = static_cast<mot>(s.size());
    std::memcpy(b.data() + 4, s.c_str(), s.size() + 1);
    return bloc(b);
  }
  Code& symbole(mot kind, mot index, const char* nom) {
    mot n = static_cast<mot>(std::strlen(nom) / 4 + 2);
    std::vector<mot> s(5 + n, 0);
    s[0] = 5 + n;
    s[1] = kind;
    s[2] = index;
    s[4] = n;
    std::memcpy(s.data() + 5, nom, std::strlen(nom) + 1);
    symboles.insert(symboles.end(), s.begin(), s.end());
    return *this;
  }

  // Tokens separated by blanks: brackets and operators, numbers, "strings"
  // (no blank inside), #n a frame slot, @#n its @ form, @name a global's @
  // form, kw:name a keyword, f:name/argc a call of a function object,
  // n:name/argc a call by name, NIL, PI, RC, {{ and }} the body marks, NOP,
  // and any other word a global variable.
  Code& t(const char* texte) {
    const char* p = texte;
    while (*p) {
      while (*p == ' ') ++p;
      if (!*p) break;
      const char* f = p;
      if (*p == '"') {
        ++f;
        while (*f && *f != '"') ++f;
        chaine(std::string(p + 1, f));
        p = *f ? f + 1 : f;
        continue;
      }
      while (*f && *f != ' ') ++f;
      jeton(std::string(p, f));
      p = f;
    }
    return *this;
  }

  void jeton(const std::string& j) {
    static const std::pair<const char*, mot> ops[] = {
        {"==", OP_EGAL}, {"!=", OP_DIFFERENT}, {"<=", OP_INF_EGAL}, {">=", OP_SUP_EGAL},
        {"&&", OP_ET}, {"||", OP_OU}, {"~", OP_TILDE}, {"^=", OP_PUISSANCE_EGAL},
        {"<<", OP_GAUCHE}, {">>", OP_DROITE}, {"-=", OP_MOINS_EGAL}, {"*=", OP_FOIS_EGAL},
        {"/=", OP_DIVISE_EGAL}, {"%=", OP_MODULO_EGAL}, {"<<=", OP_GAUCHE_EGAL},
        {">>=", OP_DROITE_EGAL}, {"&=", OP_ET_BITS_EGAL}, {"|=", OP_OU_BITS_EGAL},
        {",=", OP_VIRGULE_EGAL}, {"+=", OP_PLUS_EGAL}, {"++", OP_INCR}, {"--", OP_DECR},
        {"{{", OP_DEBUT}, {"}}", OP_FIN}, {"NOP", OP_NOP}};
    for (auto& [s, c] : ops)
      if (j == s) {
        paire(IT_OP, c);
        return;
      }
    if (j.size() == 1 && std::strchr("()[]{};+-*/%<>!&|^,=", j[0])) {
      paire(IT_OP, j[0]);
      return;
    }
    if ((j[0] >= '0' && j[0] <= '9') || (j.size() > 1 && (j[0] == '-' || j[0] == '.'))) {
      paire(IT_REEL, reel_mot(std::stof(j)));
      return;
    }
    if (j == "NIL") paire(IT_NIL, 0);
    else if (j == "PI") paire(IT_PI, 0);
    else if (j == "RC") paire(IT_RC, 0);
    else if (j[0] == '#') paire(IT_LOCAL, std::stoi(j.substr(1)));
    else if (j.rfind("@#", 0) == 0) paire(IT_REF_LOCAL, std::stoi(j.substr(2)));
    else if (j[0] == '@') paire(IT_REF_GLOBAL, ptr_vers_mot(globale(j.substr(1).c_str())));
    else if (j.rfind("kw:", 0) == 0) {
      MotCle* k = mot_cherche(j.substr(3).c_str());
      EXPECT_NE(k, nullptr) << j;
      paire(IT_MOT, ptr_vers_mot(k));
    } else if (j.rfind("f:", 0) == 0 || j.rfind("n:", 0) == 0) {
      std::size_t b = j.find('/');
      std::string nom = j.substr(2, b - 2);
      mot argc = std::stoi(j.substr(b + 1));
      if (j[0] == 'f') {
        Objet* f = fonction_nommee(nom.c_str());
        bloc({4, BLOC_OBJET, ptr_vers_mot(f), argc});
      } else {
        char* n = static_cast<char*>(tas::alloue(nom.size() + 1));
        std::strcpy(n, nom.c_str());
        bloc({4, BLOC_NOM, ptr_vers_mot(n), argc});
      }
    } else {
      paire(IT_GLOBAL, ptr_vers_mot(globale(j.c_str())));
    }
  }

  // The finished block, in the arena: L, the items, 0, then the symbols.
  mot* fin(mot slots = 0, mot formels = 0, mot dernier = IT_FIN) {
    std::vector<mot> c = m;
    if (dernier == IT_FIN) {
      c.push_back(IT_FIN);
      c.push_back(0);
    } else {
      // A function ends with retour, so that falling off the end gives nil.
      c.push_back(IT_OP);
      c.push_back('(');
      c.push_back(IT_MOT);
      c.push_back(ptr_vers_mot(mot_entree(0, A_RETOUR)));
      c.push_back(IT_OP);
      c.push_back(')');
      c.push_back(IT_OP);
      c.push_back(';');
    }
    c.push_back(0);
    c[0] = static_cast<mot>(c.size());
    c[2] = slots;
    c[3] = formels;
    c.push_back(static_cast<mot>(symboles.size() + 2));
    c.insert(c.end(), symboles.begin(), symboles.end());
    c.push_back(0);
    mot* b = static_cast<mot*>(tas::alloue(c.size() * sizeof(mot)));
    std::memcpy(b, c.data(), c.size() * sizeof(mot));
    return b;
  }
};

// A function object named nom with the given code.
inline Objet* fonction(const char* nom, Code& c, mot slots, mot formels) {
  Objet* f = fonction_nommee(nom);
  f->code = c.fin(slots, formels, A_RETOUR);
  return f;
}

// Runs a block at the base of the stack as a top-level line; the output.
inline std::string lance(mot* code, int* r = nullptr) {
  testing::internal::CaptureStdout();
  piles_reset();
  interp.fonction = nullptr;
  cadre = Cadre{};
  int x = executer(code, piles.eva_base);
  if (r) *r = x;
  return testing::internal::GetCapturedStdout();
}

inline std::string lance(const char* items, int* r = nullptr) {
  Code c;
  c.t(items);
  return lance(c.fin(), r);
}
}  // namespace essai
