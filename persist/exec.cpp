// The exec form: a program of the language that rebuilds the objects when
// it runs. Each object is made by its phrase alone, named, and given its
// attributes by assignments; vertices and faces go through `som` and `fac`,
// faces separated by 0, so that the geometry's own writers build them.
// Attributes whose tail is no vector of floats or faces (texts, other
// lists) are written as a comment: a program cannot give them back.
#include <cstdio>

#include "persist/interne.h"
#include "startup/startup.h"

namespace {
bool une_paire(const mot* a, int e, int o) { return a[3] == 1 && a[4] == e && a[5] == o; }

void nombre(std::string& d, float x) {
  char b[32];
  std::snprintf(b, sizeof b, "%.9g", static_cast<double>(x));
  d += b;
}

bool cle(std::string& d, const mot* a) {
  for (mot k = 0; k < a[3]; ++k) {
    if (a[5 + 2 * k] < 0) return false;
    const char* n = mot_nom(a[4 + 2 * k], a[5 + 2 * k]);
    if (!n) return false;
    d += ' ';
    d += n;
  }
  return true;
}
}  // namespace

int exec_ecrit(std::string& d, const Objet* o, const OptionsFichier& opt) {
  const char* type = mot_nom(1, o->type);
  if (!type) {
    objet_imprime(o);
    message(0, MES_SANS_TABLE);
    return -1;
  }
  char b[96];
  std::snprintf(b, sizeof b, "%s(%d)\n", type, o->numero);
  std::string tete = b;
  d += tete;
  tete.pop_back();
  if (o->nom && *o->nom) {
    const char* nommer = mot_nom(0, 58);
    const char* nom = mot_nom(0, A_NOM);
    if (nommer && nom) d += std::string(nommer) + " " + tete + " " + nom + "(\"" + o->nom + "\")\n";
  }
  for (const mot* a : attributs_gardes(o, opt, FORME_EXEC, false)) {
    if (a[0] < a[2] + 4) continue;
    const mot* t = a + a[2];
    std::string phrase = tete;
    if (!cle(phrase, a)) continue;
    if (t[1] == BLOC_REEL) {
      phrase += " =";
      for (mot k = 4; k < t[0]; ++k) {
        phrase += k > 4 ? ", " : " ";
        nombre(phrase, lit_reel(t + k));
      }
    } else if (t[1] == BLOC_LISTE && une_paire(a, 1, 15)) {
      phrase += " =";
      bool premier = true;
      for (mot p = 4; p < t[0]; p += t[p]) {
        const mot* f = t + p;
        if (f[1] != BLOC_ENTIER) continue;
        if (!premier) phrase += ", 0";
        for (mot k = 4; k < f[0]; ++k) {
          phrase += premier && k == 4 ? " " : ", ";
          phrase += std::to_string(f[k]);
        }
        premier = false;
      }
    } else {
      d += "/*" + phrase.substr(tete.size()) + ": not a vector */\n";
      continue;
    }
    d += phrase + "\n";
  }
  return 0;
}
