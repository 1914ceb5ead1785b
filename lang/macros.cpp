// "#define name text": textual macros on whole names, without parameters.
// A function's macros are entries of its symbol run; the others go to the
// global table, kept for the session in the same entry format.
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "lang/interne.h"

namespace {
struct Hachage {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};

struct MacrosGlobales {
  std::vector<mot> bloc;  // word 0 kept for the length, entries from word 1
  long haut = 1;
  std::unordered_map<std::string, long, Hachage, std::equal_to<>> index;
};
MacrosGlobales globales;

constexpr int PASSES_MAX = 32;
constexpr std::size_t TEXTE_MAX = 1 << 16;

const char* texte_entree(const mot* e, int* n) {
  const mot* v = e + 4 + e[4];
  *n = v[3];
  return reinterpret_cast<const char*>(v + 4);
}

// The value block of a macro: a string.
std::vector<mot> bloc_chaine(const std::string& t) {
  std::vector<mot> b(long_chaine(t.size()), 0);
  b[0] = static_cast<mot>(b.size());
  b[1] = BLOC_CHAINE;
  b[2] = 1;
  b[3] = static_cast<mot>(t.size());
  std::memcpy(b.data() + 4, t.data(), t.size());
  return b;
}

int range_globale(const std::string& nom, const std::string& texte) {
  std::vector<mot> v = bloc_chaine(texte);
  mot n_nom = static_cast<mot>(nom.size() / 4 + 2);
  long taille = 4 + n_nom + static_cast<long>(v.size());
  if (globales.bloc.empty()) globales.bloc.assign(dem.compile > 64 ? dem.compile : 64, 0);
  if (globales.haut + taille + 1 > static_cast<long>(globales.bloc.size())) {
    long n = static_cast<long>(globales.bloc.size());
    while (n < globales.haut + taille + 1) n *= 2;
    if (n > TAILLE_MAX_SYMBOLES) {
      message(0, M_SYMBOLES);
      return -1;
    }
    globales.bloc.resize(n, 0);
    if (niveau_trace() > 0) {
      message(0, M_TAILLE);
      std::printf(": %ld\n", n);
    }
  }
  auto ancien = globales.index.find(nom);
  if (ancien != globales.index.end()) globales.bloc[ancien->second + 1] = 0;  // replaced
  mot* e = globales.bloc.data() + globales.haut;
  e[0] = static_cast<mot>(taille);
  e[1] = SYM_MACRO;
  e[2] = -static_cast<mot>(globales.index.size());
  e[3] = 0;
  e[4] = n_nom;
  std::memset(e + 5, 0, sizeof(mot) * (n_nom - 1));
  std::memcpy(e + 5, nom.data(), nom.size());
  std::memcpy(e + 4 + n_nom, v.data(), sizeof(mot) * v.size());
  globales.index[nom] = globales.haut;
  globales.haut += taille;
  globales.bloc[globales.haut] = 0;
  globales.bloc[0] = static_cast<mot>(globales.haut + 1);
  return 0;
}

// A string of a macro's text is kept with its escapes resolved, as the
// canonical stage leaves the strings of the function.
void resout_chaines(std::string_view t, std::string& d) {
  for (std::size_t i = 0; i < t.size(); ++i) {
    char ch = t[i];
    d.push_back(ch);
    if (ch != '"') continue;
    for (++i; i < t.size() && t[i] != '"'; ++i) {
      if (t[i] != '\\' || i + 1 >= t.size()) {
        d.push_back(t[i]);
        continue;
      }
      char e = t[++i];
      switch (e) {
        case '"': d.push_back(1); break;
        case 'n': d.push_back('\n'); break;
        case 't': d.push_back('\t'); break;
        case 'b': d.push_back('\b'); break;
        default: d.push_back(e);
      }
    }
    if (i < t.size()) d.push_back('"');
  }
}

// One pass of replacement over a text; the number of names replaced.
template <class Sortie>
int remplace(Compil* c, const char* p, Sortie&& sortie) {
  int n = 0;
  const char* copie = p;
  while (*p) {
    const char* f;
    if (*p == MARQUE_LIGNE) {
      f = saute_marque(p);
    } else if (*p == MARQUE_NOM) {
      f = saute_champ(p);
    } else if (*p == '"') {
      f = saute_chaine_norm(p);
    } else if (*p == '\'') {
      f = saute_vecteur(p);
    } else if (debut_nombre(p)) {
      f = fin_nombre(p);
    } else if (!fin_nom_lang(static_cast<unsigned char>(*p))) {
      f = p;
      while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
      int lg = 0;
      const char* t = nullptr;
      if (c) {
        t = macro_texte(*c, p, static_cast<int>(f - p), &lg);
      } else {
        auto i = globales.index.find(std::string_view(p, f - p));
        if (i != globales.index.end()) t = texte_entree(globales.bloc.data() + i->second, &lg);
      }
      if (t) {
        sortie(copie, p - copie);
        sortie(t, lg);
        copie = f;
        ++n;
      }
    } else {
      f = p + 1;
    }
    p = f;
  }
  sortie(copie, p - copie);
  return n;
}
}  // namespace

const char* macro_texte(Compil& c, const char* nom, int lg, int* n) {
  if (!globales.index.empty()) {
    auto i = globales.index.find(std::string_view(nom, lg));
    if (i != globales.index.end()) return texte_entree(globales.bloc.data() + i->second, n);
  }
  if (!c.nb_macros) return nullptr;
  const mot* s = c.espace->sym.data();
  for (long i = 1; i < c.sym_haut; i += s[i]) {
    const mot* e = s + i;
    const char* en = sym_nom(e);
    if (e[1] == SYM_MACRO && std::strncmp(en, nom, lg) == 0 && en[lg] == 0) return texte_entree(e, n);
  }
  return nullptr;
}

int define_lit(Compil* c, const char** curseur) {
  const char* p = sauter_blancs(*curseur + 1);
  p += 6;  // "define", which the caller has read
  p = sauter_blancs(p);
  const char* d = p;
  while (!fin_nom_lang(static_cast<unsigned char>(*p))) ++p;
  std::string nom(d, p);
  p = sauter_blancs(p);
  const char* t = p;
  while (*p && *p != MARQUE_LIGNE && *p != '\n') ++p;
  *curseur = p;
  const char* f = p;
  while (f > t && (est_blanc(f[-1]) || f[-1] == '\r')) --f;
  if (nom.empty() || f == t || debut_nombre(nom.c_str()) || nom.size() >= TAILLE_NOM) {
    message(0, M_DEFINE);
    return -1;
  }
  std::string texte;
  resout_chaines(std::string_view(t, f - t), texte);
  // The text is expanded against the macros known so far, until nothing
  // changes: a macro only refers to earlier ones.
  for (int passe = 0;; ++passe) {
    std::string suite;
    int n = remplace(c, texte.c_str(), [&](const char* s, long lg) { suite.append(s, lg); });
    if (n == 0 || suite == texte) break;
    if (passe >= PASSES_MAX || suite.size() > TEXTE_MAX) {
      std::printf("%s: ", nom.c_str());
      message(0, M_DEFINE);
      return -1;
    }
    texte.swap(suite);
  }
  if (!c) return range_globale(nom, texte);
  std::vector<mot> v = bloc_chaine(texte);
  // A second definition of the name replaces the first.
  if (long e = sym_cherche(*c, SYM_MACRO, nom.c_str())) sym_entree(*c, e)[1] = 0;
  return sym_ajoute(*c, SYM_MACRO, nom.c_str(), v.data(), 1) < 0 ? -1 : 0;
}

int etape_macros(Compil& c, const char* src, Octets& o) {
  if (globales.index.empty() && !c.nb_macros) {
    met_n(o, src, static_cast<long>(std::strlen(src)));
  } else {
    remplace(&c, src, [&](const char* s, long lg) { met_n(o, s, lg); });
  }
  termine(o);
  return 0;
}

void macros_globales_vide() {
  globales.index.clear();
  globales.haut = 1;
  if (!globales.bloc.empty()) globales.bloc[1] = 0;
}

int macro_globale(const char* ligne) {
  const char* p = sauter_blancs(ligne);
  if (*p != '#') return -1;
  const char* q = sauter_blancs(p + 1);
  if (std::strncmp(q, "define", 6) != 0) return -1;
  return define_lit(nullptr, &p);
}
