// Access to the keyword tables by (env, ordinal) and by name.
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "startup/startup.h"

namespace {
MotCle* entree_verifiee(int env, int ord) {
  MotCle* m = mot_entree(env, ord);
  if (!m) {
    std::printf("%d %d: ", env, ord);
    message(0, 60);
  }
  return m;
}

inline const char* nom_suivant(const char* n) { return n + std::strlen(n) + 1; }

// Characters after which a name is finished in a text.
constexpr bool borne(unsigned char c) {
  switch (c) {
    case 0: case '\t': case '\n': case ' ': case '!': case '%': case '&': case '(': case ')':
    case '*': case '+': case ',': case '-': case '/': case ';': case '<': case '=': case '>':
    case '[': case ']': case '^': case '{': case '|': case '}':
      return true;
  }
  return false;
}
}  // namespace

MotCle* mot_entree(int env, int ord) {
  if (env < 0 || env >= vocab.nb_env || ord < 0 || ord >= vocab.tables[env].nb) return nullptr;
  return &vocab.tables[env].mots[ord];
}

reel* mot_valeur(int env, int ord, int* n) {
  MotCle* m = entree_verifiee(env, ord);
  if (!m) return nullptr;
  *n = m->nv;
  return reels(m->courant + 4);
}

reel* mot_defaut(int env, int ord, int* n) {
  MotCle* m = entree_verifiee(env, ord);
  if (!m) return nullptr;
  *n = m->nv;
  return reels(m->defaut + 4);
}

mot* mot_bloc_defaut(int env, int ord, int* n) {
  MotCle* m = entree_verifiee(env, ord);
  if (!m) return nullptr;
  *n = m->nv;
  return m->defaut;
}

int mot_dim(int env, int ord) {
  MotCle* m = entree_verifiee(env, ord);
  return m ? m->nv : 0;
}

const char* mot_nom(int env, int ord) {
  MotCle* m = entree_verifiee(env, ord);
  return m ? m->noms : nullptr;
}

const char* mot_nom_long(int env, int ord) {
  MotCle* m = entree_verifiee(env, ord);
  if (!m) return nullptr;
  const char* dernier = m->noms;
  for (const char* n = m->noms; *n; n = nom_suivant(n)) dernier = n;
  return dernier;
}

void mot_imprime(int env, int ord) {
  if (env < 0 || ord < 0) return;
  if (const char* n = mot_nom(env, ord)) std::printf("%s ", n);
}

int mot_correspond(const char* nom, const char* texte) {
  int k = 0;
  while (nom[k] && nom[k] == texte[k]) ++k;
  if (nom[k] || !borne(static_cast<unsigned char>(texte[k]))) return 0;
  return k;
}

MotCle* mot_cherche(const char* texte) {
  for (int e = 0; e < vocab.nb_env; ++e) {
    TableMots& t = vocab.tables[e];
    for (int i = 0; i < t.nb; ++i) {
      // The primary name always counts (NIL, PI); aliases stop at the first
      // capitalised word.
      const char* n = t.mots[i].noms;
      if (!*n) continue;
      if (mot_correspond(n, texte)) return &t.mots[i];
      for (n = nom_suivant(n); *n && !(*n >= 'A' && *n <= 'Z'); n = nom_suivant(n))
        if (mot_correspond(n, texte)) return &t.mots[i];
    }
  }
  return nullptr;
}

MotCle* mot_cherche_long(const char* texte) {
  for (int e = 0; e < vocab.nb_env; ++e) {
    TableMots& t = vocab.tables[e];
    for (int i = 0; i < t.nb; ++i) {
      const char* n = t.mots[i].noms;
      if (!*n) continue;
      for (n = nom_suivant(n); *n; n = nom_suivant(n))
        if (mot_correspond(n, texte)) return &t.mots[i];
    }
  }
  return nullptr;
}

void mots_reinit() {
  for (int e = 0; e < vocab.nb_env; ++e) {
    TableMots& t = vocab.tables[e];
    std::memcpy(t.etats, t.etats_defaut, sizeof(mot) * (t.place > t.nb ? t.place : t.nb));
    for (int i = 0; i < t.nb; ++i)
      std::memcpy(t.mots[i].courant, t.mots[i].defaut, sizeof(mot) * (t.mots[i].nv + 4));
  }
}

void mots_reinit_etats(bool actifs) {
  for (int e = 0; e < vocab.nb_env; ++e) {
    TableMots& t = vocab.tables[e];
    for (int i = 0; i < t.nb; ++i)
      if ((t.etats_defaut[i] > 0) == actifs) t.etats[i] = t.etats_defaut[i];
  }
}

int mots_liste() {
  int n;
  reel* page = mot_valeur(0, 36, &n);
  int largeur = page && n > 0 && page[0] > 0 ? entier_sature(page[0]) : 80;
  int longueur = page && n > 1 && page[1] > 0 ? entier_sature(page[1]) : 24;
  int lignes = 0;
  auto nouvelle_ligne = [&]() {
    std::putchar('\n');
    if (++lignes >= longueur) {
      lignes = 0;
      if (pause_page('q') == 0) return false;
    }
    return true;
  };
  for (int e = 0; e < vocab.nb_env; ++e) {
    message(0, 1);
    TableMots& t = vocab.tables[e];
    int col = 0;
    for (int i = 0; i < t.nb; ++i) {
      const char* n = t.mots[i].noms;
      if (!*n || *n == '?') continue;
      std::string item(n);
      std::string alias;
      for (const char* a = nom_suivant(n); *a && !(*a >= 'A' && *a <= 'Z'); a = nom_suivant(a)) {
        if (!alias.empty()) alias += ' ';
        alias += a;
      }
      if (!alias.empty()) item += "(" + alias + ")";
      int lg = static_cast<int>(item.size()) + 1;
      if (col > 0 && col + lg > largeur) {
        if (!nouvelle_ligne()) return -1;
        col = 0;
      }
      std::printf("%s ", item.c_str());
      col += lg;
    }
    if (col > 0 && !nouvelle_ligne()) return -1;
  }
  std::fflush(stdout);
  return 0;
}
