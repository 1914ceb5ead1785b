// Pass 1: source text to normalised text. Each stage copies the text from
// one half of the buffer to the other; the last one leaves it at the start.
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "lang/interne.h"

namespace {
struct Tampons {
  char* t[2];
  long lim;  // bytes of a half that a stage may fill, its NUL included
  int cur = 0;
};

Octets vers_autre(Tampons& t) {
  char* d = t.t[1 - t.cur];
  return Octets{d, d, d + t.lim - 1};
}

void met_marque(Octets& o, int n) {
  if (o.p + LONG_MARQUE > o.fin) {
    o.deborde = true;
    return;
  }
  o.p = marquer_ligne(o.p, o.debut, n);
}

// Stage 1: the source with a line mark for each line and no comments.
int copie_source(Compil& c, Octets& o) {
  const char* s = c.source;
  std::size_t n = c.source_lg;
  int ligne = 1;
  c.ligne = 1;
  met_marque(o, 1);
  // A line typed at the shell comes as "{" line "}". A directive runs to its
  // line's end, and the closing brace is no part of it: when the last line
  // holds a directive, a mark of the same line ends it ahead of the brace.
  const bool enveloppe = c.objet && c.objet->type == OBJ_LIGNE && n > 0 && s[n - 1] == '}';
  bool directive = false;
  for (std::size_t i = 0; i < n && !o.deborde;) {
    char ch = s[i];
    if (enveloppe && directive && i == n - 1) {
      met_marque(o, ligne);
      met(o, ch);
      ++i;
    } else if (ch == '\n') {
      c.ligne = ++ligne;
      met_marque(o, ligne);
      directive = false;
      ++i;
    } else if (ch == '\r') {
      ++i;
    } else if (ch == 1 || ch == MARQUE_NOM || ch == MARQUE_LIGNE) {
      met(o, ' ');  // these bytes mark the text; in a source they are blanks
      ++i;
    } else if (ch == '"') {
      met(o, ch);
      for (++i; i < n && s[i] != '"' && s[i] != '\n'; ++i) {
        if (s[i] == '\\' && i + 1 < n && s[i + 1] != '\n') met(o, s[i++]);
        char x = s[i];
        met(o, x == 1 || x == MARQUE_NOM || x == MARQUE_LIGNE ? ' ' : x);
      }
      if (i >= n || s[i] != '"') {
        message(0, M_CHAINE);
        return -1;
      }
      met(o, '"');
      ++i;
    } else if (ch == '\'' && debut_de_mot(s, s + i)) {
      met(o, ch);
      for (++i; i < n && s[i] != '\'' && s[i] != '\n'; ++i) {
        if (s[i] == '\\' && i + 1 < n && s[i + 1] != '\n') met(o, s[i++]);
        char x = s[i];
        met(o, x == 1 || x == MARQUE_NOM || x == MARQUE_LIGNE ? ' ' : x);
      }
      if (i < n && s[i] == '\'') {
        met(o, '\'');
        ++i;
      }
    } else if (ch == '/' && i + 1 < n && s[i + 1] == '*') {
      int debut = ligne;
      for (i += 2; i + 1 < n && !(s[i] == '*' && s[i + 1] == '/'); ++i)
        if (s[i] == '\n') {
          c.ligne = ++ligne;
          met_marque(o, ligne);
        }
      if (i + 1 >= n) {
        c.ligne = debut;
        message(0, M_COMMENTAIRE);
        return -1;
      }
      i += 2;
    } else {
      directive = directive || ch == '#';
      met(o, ch);
      ++i;
    }
  }
  termine(o);
  return 0;
}

// Where the function's name stands: behind line marks, blanks and "#" lines.
const char* entree(const char* p) {
  for (;;) {
    if (*p == MARQUE_LIGNE) {
      p = saute_marque(p);
    } else if (est_blanc(*p)) {
      ++p;
    } else if (*p == '#') {
      while (*p && *p != MARQUE_LIGNE) ++p;
    } else {
      return p;
    }
  }
}

// Stage 2, second half: the function's name becomes a name field.
int champ_nom(const char* src, Octets& o) {
  const char* p = entree(src);
  const char* f = p;
  while (!fin_nom_lang(static_cast<unsigned char>(*f)) && *f != MARQUE_NOM) ++f;
  met_n(o, src, p - src);
  if (f > p) {
    if (f - p >= LONG_CHAMP_NOM - 1) {
      std::printf("%.*s: ", static_cast<int>(f - p), p);
      message(0, M_LONG);
      return -1;
    }
    char champ[LONG_CHAMP_NOM];
    std::memset(champ, 1, sizeof champ);
    champ[0] = MARQUE_NOM;
    std::memcpy(champ + 1, p, f - p);
    met_n(o, champ, LONG_CHAMP_NOM);
  }
  while (*f) met(o, *f++);
  termine(o);
  return 0;
}

// Walks the pieces of a text before the canonical stage; the visitor sees
// each name with the text behind it.
template <class F>
int pour_chaque_nom(Compil& c, const char* p, F&& f) {
  while (*p) {
    if (*p == MARQUE_LIGNE) {
      if (int n = lire_marque(p)) c.ligne = n;
      p = saute_marque(p);
    } else if (*p == MARQUE_NOM) {
      p = saute_champ(p);
    } else if (*p == '"') {
      p = saute_chaine(p);
      if (!p) {
        message(0, M_CHAINE);
        return -1;
      }
    } else if (*p == '\'') {
      p = saute_vecteur(p);
    } else if (debut_nombre(p)) {
      p = fin_nombre(p);
    } else if (*p == '#') {
      p = f(p, p) < 0 ? nullptr : p + 1;
      if (!p) return -1;
    } else if (!fin_nom_lang(static_cast<unsigned char>(*p)) && *p != '@' && *p != '$') {
      const char* e = p;
      while (!fin_nom_lang(static_cast<unsigned char>(*e))) ++e;
      if (f(p, e) < 0) return -1;
      p = e;
    } else {
      if (f(p, p) < 0) return -1;
      ++p;
    }
  }
  return 0;
}

// Stage 3: every name followed by ":" is a label, but the cas and defaut
// forms and the value of a cas.
int etiquettes(Compil& c, const char* texte) {
  bool apres_cas = false;
  return pour_chaque_nom(c, texte, [&](const char* d, const char* e) {
    if (e == d) {  // not a name: only blanks keep the cas in view
      if (!est_blanc(*d)) apres_cas = false;
      return 0;
    }
    int lg = static_cast<int>(e - d);
    bool cas = nom_de_a(d, lg, A_CAS);
    if (*e == ':' && e[1] != ':' && !apres_cas && !cas && !nom_de_a(d, lg, A_DEFAUT)) {
      if (lg >= TAILLE_NOM) {
        message(0, M_LONG);
        return -1;
      }
      char nom[TAILLE_NOM];
      std::memcpy(nom, d, lg);
      nom[lg] = 0;
      if (!sym_cherche(c, SYM_ETIQUETTE, nom) && sym_ajoute(c, SYM_ETIQUETTE, nom, nullptr, 0) < 0)
        return -1;
    }
    apres_cas = cas;
    return 0;
  });
}

// Stage 4: "#define" lines; in a function they are its own, elsewhere global.
int defines(Compil& c, const char* texte) {
  if (!std::strchr(texte, '#')) return 0;
  return pour_chaque_nom(c, texte, [&](const char* d, const char*) {
    if (*d != '#') return 0;
    const char* q = sauter_blancs(d + 1);
    if (std::strncmp(q, "define", 6) != 0 || !fin_nom_lang(static_cast<unsigned char>(q[6]))) return 0;
    const char* p = d;
    return define_lit(c.fonction ? &c : nullptr, &p);
  });
}

// Stage 5: the alias table, lines "name=text".
const Objet* table_alias() {
  for (const Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == TYPE_ALIAS && o->env == 0 && o->donnees && o->donnees[0] > 4 &&
        o->donnees[1] == BLOC_CHAINE)
      return o;
  return nullptr;
}

int alias(Compil& c, const char* src, Octets& o) {
  const Objet* t = table_alias();
  if (!t) return 1;  // nothing to do
  std::vector<std::pair<std::string_view, std::string_view>> lignes;
  const char* a = bloc_texte(t->donnees);
  std::size_t max = static_cast<std::size_t>(t->donnees[0] - 4) * 4;
  std::string_view tout(a, strnlen(a, max));
  while (!tout.empty()) {
    std::size_t nl = tout.find('\n');
    std::string_view l = tout.substr(0, nl);
    tout = nl == std::string_view::npos ? std::string_view() : tout.substr(nl + 1);
    std::size_t eg = l.find('=');
    if (eg == std::string_view::npos || eg == 0) continue;
    std::string_view nom = l.substr(0, eg);
    while (!nom.empty() && est_blanc(nom.back())) nom.remove_suffix(1);
    while (!nom.empty() && est_blanc(nom.front())) nom.remove_prefix(1);
    lignes.emplace_back(nom, l.substr(eg + 1));
  }
  const char* copie = src;
  int r = pour_chaque_nom(c, src, [&](const char* d, const char* e) {
    if (e == d) return 0;
    for (auto& [nom, texte] : lignes)
      if (nom == std::string_view(d, e - d)) {
        met_n(o, copie, d - copie);
        met_n(o, texte.data(), static_cast<long>(texte.size()));
        copie = e;
        break;
      }
    return 0;
  });
  met_n(o, copie, static_cast<long>(std::strlen(copie)));
  termine(o);
  return r;
}

inline int fin_etape(Tampons& t, Octets& o, int r) {
  if (r < 0) return r;
  if (o.deborde) return DEBORDE;
  t.cur = 1 - t.cur;
  return 0;
}
}  // namespace

int passe1(Compil& c) {
  Tampons t{{reinterpret_cast<char*>(c.A), reinterpret_cast<char*>(c.B)}, (c.moitie - MARGE) * 4};
  Octets o = vers_autre(t);
  if (int r = fin_etape(t, o, copie_source(c, o)); r < 0) return r;

  // Includes, until a run expands nothing: an included text may include.
  if (std::strchr(t.t[t.cur], '#')) {
    for (int tour = 0;; ++tour) {
      if (tour > 64) {  // an include of itself would never end
        message(0, M_LONG);
        return -1;
      }
      int inclus = 0;
      o = vers_autre(t);
      if (int r = fin_etape(t, o, etape_inclusion(c, t.t[t.cur], o, &inclus)); r < 0) return r;
      if (!inclus) break;
    }
  }
  if (c.fonction) {
    o = vers_autre(t);
    if (int r = fin_etape(t, o, champ_nom(t.t[t.cur], o)); r < 0) return r;
  }
  if (etiquettes(c, t.t[t.cur]) < 0 || defines(c, t.t[t.cur]) < 0) return -1;
  o = vers_autre(t);
  int r = alias(c, t.t[t.cur], o);
  if (r < 0) return r;
  if (r == 0 && (r = fin_etape(t, o, 0)) < 0) return r;

  o = vers_autre(t);
  if (int r2 = fin_etape(t, o, etape_canonique(c, t.t[t.cur], o)); r2 < 0) return r2;
  // The macros bring the text back to the start of the buffer.
  if (t.cur == 0) {
    o = vers_autre(t);
    met_n(o, t.t[0], static_cast<long>(std::strlen(t.t[0])));
    termine(o);
    if (int r2 = fin_etape(t, o, 0); r2 < 0) return r2;
  }
  o = vers_autre(t);
  if (int r2 = fin_etape(t, o, etape_macros(c, t.t[t.cur], o)); r2 < 0) return r2;

  if (lang.liste_passes) {
    std::fputs("PASSE 1\n-------\n", stdout);
    lister_texte(t.t[0]);
    std::putchar('\n');
  }
  return 0;
}
