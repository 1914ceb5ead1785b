// externe and statique: lists of names with their initial values. A value in
// brackets is compiled and run at once, which is why the compiler must be
// reentrant.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "lang/interne.h"

namespace {
constexpr long VECTEUR_MAX = 1L << 22;

const char* fin_crochets(const char* p) {
  int prof = 0;
  for (; *p; ++p) {
    if (*p == '"') {
      for (++p; *p && *p != '"';) ++p;
      if (!*p) return nullptr;
    } else if (*p == '(' || *p == '[' || *p == '{') {
      ++prof;
    } else if ((*p == ')' || *p == ']' || *p == '}') && --prof == 0) {
      return p + 1;
    }
  }
  return nullptr;
}

std::vector<mot> scalaire(float x) { return {5, BLOC_REEL, 1, 1, reel_mot(x)}; }

void erreur_valeur(const char* d, const char* f) {
  std::printf("%.*s: ", static_cast<int>(f - d > 60 ? 60 : f - d), d);
  message(0, M_VIRGULE);
}
}  // namespace

mot* valeur_calculee(Compil& c, const char* debut, const char* fin) {
  if (!lang.executer) {
    erreur_valeur(debut, fin);
    return nullptr;
  }
  // The group becomes the text of a line of its own: "{" group "}", with
  // the line marks of the normalised text as blanks.
  std::string t = "{";
  for (const char* p = debut; p < fin; ++p) {
    if (*p == MARQUE_LIGNE) {
      t += ' ';
      p = saute_marque(p) - 1;
    } else {
      t += *p == 1 ? '"' : *p;
    }
  }
  t += '}';
  mot* texte = bloc_alloue(long_chaine(t.size()));
  if (!texte) return nullptr;
  texte[1] = BLOC_CHAINE;
  texte[2] = 1;
  texte[3] = static_cast<mot>(t.size());
  std::memcpy(bloc_texte(texte), t.c_str(), t.size() + 1);
  Objet ligne{};
  ligne.type = OBJ_TRANSITOIRE;
  ligne.donnees = texte;
  mot* v = nullptr;
  int ligne_garde = c.ligne;
  if (compiler(&ligne) > 0 && lier(&ligne) == 0) {
    const mot* r = lang.executer(&ligne);
    if (r && r[0] == CEL_REEL) {
      mot b[5] = {5, BLOC_REEL, 1, 1, r[1]};
      v = bloc_alloue(5);
      if (v) std::memcpy(v, b, sizeof b);
    } else if (r && r[0] > 0) {
      v = bloc_alloue(r[0]);
      if (v) std::memcpy(v, r, sizeof(mot) * r[0]);
    } else if (r) {
      v = bloc_alloue(4);
      if (v) v[1] = BLOC_NIL, v[2] = 0, v[3] = 1;
    }
  }
  c.ligne = ligne_garde;
  bloc_libere_force(ligne.code);
  bloc_libere_force(texte);
  if (!v) {
    erreur_valeur(debut, fin);
  }
  return v;
}

int lire_declarations(Compil& c, const char** curseur, mot sorte, bool* seul) {
  const char* p = *curseur;
  *seul = true;
  for (;;) {
    p = sauter_blancs(p);
    char ch = *p;
    if (!ch || ch == ';' || ch == '}' || ch == MARQUE_LIGNE) break;
    if (ch == '+' || ch == '-') {
      const char* f = p + 1;
      while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
      std::printf("%.*s: ", static_cast<int>(f - p), p);
      message(0, M_SIGNE);
      return -1;
    }
    const char* d = p;
    while (!fin_nom_lang(static_cast<unsigned char>(*p))) ++p;
    long lg = p - d;
    if (lg == 0 || lg >= TAILLE_NOM || debut_nombre(d)) {
      erreur_valeur(d, lg ? p : d + 1);
      return -1;
    }
    *seul = false;
    char nom[TAILLE_NOM];
    std::memcpy(nom, d, lg);
    nom[lg] = 0;

    std::vector<mot> fixe;
    mot* calcule = nullptr;
    const mot* valeur = nullptr;
    p = sauter_blancs(p);
    if (*p == '=') {
      p = sauter_blancs(p + 1);
      const char* q = p;
      if (*q == '+' || *q == '-') ++q;
      if (debut_nombre(q)) {
        fixe = scalaire(std::strtof(p, nullptr));
        p = fin_nombre(q);
      } else if (*p == '(' || *p == '[') {
        const char* f = fin_crochets(p);
        if (!f) {
          message(0, M_GROUPE);
          return -1;
        }
        calcule = valeur_calculee(c, p, f);
        if (!calcule) return -1;
        p = f;
      } else {
        erreur_valeur(p, p + 1);
        return -1;
      }
    } else if (*p == '[') {
      // name[n]: a vector of n zeros.
      const char* f = fin_crochets(p);
      double n = std::strtod(p + 1, nullptr);
      if (!f || !(n >= 0 && n <= VECTEUR_MAX)) {
        erreur_valeur(p, f ? f : p + 1);
        return -1;
      }
      long k = static_cast<long>(n);
      fixe.assign(4 + k, 0);
      fixe[0] = static_cast<mot>(4 + k);
      fixe[1] = BLOC_REEL;
      fixe[2] = static_cast<mot>(k);
      fixe[3] = 1;
      p = f;
    }
    if (!fixe.empty()) valeur = fixe.data();
    if (calcule) valeur = calcule;
    int copies = sorte == SYM_STATIQUE ? 2 : 1;  // the second is the Objet's
    long e = sym_cherche(c, sorte, nom);
    long r = 0;
    if (!e) {
      r = sym_ajoute(c, sorte, nom, valeur, valeur ? copies : 0);
    } else if (valeur) {
      r = sym_remplace(c, e, valeur, copies);
    }
    bloc_libere_force(calcule);
    if (r < 0) return -1;

    p = sauter_blancs(p);
    if (*p != ',') break;
    ++p;
    while (est_blanc(*p) || *p == MARQUE_LIGNE) p = *p == MARQUE_LIGNE ? saute_marque(p) : p + 1;
  }
  *curseur = p;
  return 0;
}
