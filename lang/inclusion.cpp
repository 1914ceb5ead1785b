// One run of the include expansion: "#include name" inserts a file,
// "#include name(" the body of a function; "#define" stays for a later
// stage; any other directive is refused.
#include <cstdio>
#include <string>

#include "lang/interne.h"

namespace {
// Inserts a text without its comments, a line mark of line 0 for each of its
// newlines (its lines are not the function's).
int insere(Octets& o, std::string& texte) {
  int lignes = 0;
  if (nettoyer_texte(texte.data(), &lignes) < 0) return -1;
  for (const char* p = texte.c_str(); *p; ++p) {
    char ch = *p;
    if (ch == '\n') {
      if (o.p + LONG_MARQUE > o.fin) {
        o.deborde = true;
        return 0;
      }
      o.p = marquer_ligne(o.p, o.debut, 0);
    } else if (ch == '\r') {
    } else {
      met(o, ch == 1 || ch == MARQUE_NOM || ch == MARQUE_LIGNE ? ' ' : ch);
    }
  }
  return 0;
}

// The part of a function's text inside its first "{" and the matching "}".
bool corps(const char* t, std::size_t n, std::string& dst) {
  std::string s(t, n);
  int lignes;
  if (nettoyer_texte(s.data(), &lignes) < 0) return false;
  const char* p = s.c_str();
  while (*p && *p != '{') {
    if (*p != '"') {
      ++p;
    } else if (!(p = saute_chaine(p))) {
      return false;
    }
  }
  if (!*p) return false;
  const char* d = ++p;
  for (int prof = 1; *p; ++p) {
    if (*p == '"') {
      const char* f = saute_chaine(p);
      if (!f) break;
      p = f - 1;
    } else if (*p == '{') {
      ++prof;
    } else if (*p == '}' && --prof == 0) {
      dst.assign(d, p);
      return true;
    }
  }
  return false;
}

int inclut(const char** curseur, Octets& o) {
  const char* p = sauter_blancs(*curseur);
  bool entre = *p == '"' || *p == '<';
  if (entre) ++p;
  const char* d = p;
  // Without quotes the name also ends at a blank or a closing brace.
  while (*p && *p != '"' && *p != '>' && *p != MARQUE_LIGNE && *p != '(' &&
         (entre || (!est_blanc(*p) && *p != '}')))
    ++p;
  const char* f = p;
  while (f > d && est_blanc(f[-1])) --f;
  std::string nom(d, f);
  std::string texte;
  if (*p == '(') {
    Objet* fo = fonction_trouve(nom.c_str());
    std::size_t n = 0;
    const char* t = fo ? fonction_texte(fo, &n) : nullptr;
    if (!t || !corps(t, n, texte)) {
      std::printf("%s: ", nom.c_str());
      message(0, M_INCONNU);
      return -1;
    }
  } else if (!lire_fichier_recherche(nom.c_str(), nullptr, texte)) {
    erreur_fichier(nom.c_str());
    return -1;
  }
  if (insere(o, texte) < 0) return -1;
  // The rest of the line goes with the directive, but for the closing braces
  // of what encloses it: a shell line is "{" line "}".
  for (; *p && *p != MARQUE_LIGNE; ++p)
    if (*p == '}') met(o, '}');
  *curseur = p;
  return 0;
}
}  // namespace

int etape_inclusion(Compil& c, const char* src, Octets& o, int* inclus) {
  const char* p = src;
  while (*p && !o.deborde) {
    char ch = *p;
    if (ch == MARQUE_LIGNE) {
      if (int n = lire_marque(p)) c.ligne = n;
      const char* f = saute_marque(p);
      met_n(o, p, f - p);
      p = f;
    } else if (ch == MARQUE_NOM) {
      const char* f = saute_champ(p);
      met_n(o, p, f - p);
      p = f;
    } else if (ch == '"') {
      const char* f = saute_chaine(p);
      if (!f) {
        message(0, M_CHAINE);
        return -1;
      }
      met_n(o, p, f - p);
      p = f;
    } else if (ch == '\'') {
      const char* f = saute_vecteur(p);
      met_n(o, p, f - p);
      p = f;
    } else if (ch == '#') {
      char mot_dir[TAILLE_NOM];
      const char* q = p + 1;
      if (lire_nom(mot_dir, &q, TAILLE_NOM) < 0) return -1;
      if (std::strcmp(mot_dir, "define") == 0) {
        met(o, '#');
        ++p;
      } else if (std::strcmp(mot_dir, "include") == 0) {
        ++*inclus;
        if (inclut(&q, o) < 0) return -1;
        p = q;
      } else {
        std::printf("%s: ", mot_dir);
        message(0, M_DIRECTIVE);
        return -1;
      }
    } else if (!fin_nom_lang(static_cast<unsigned char>(ch))) {
      const char* f = p;
      while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
      met_n(o, p, f - p);
      p = f;
    } else {
      met(o, ch);
      ++p;
    }
  }
  termine(o);
  return 0;
}
