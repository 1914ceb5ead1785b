// Help on keywords, and the two statements that carry raw text: aide and
// err, whose rest of line is read as a name.
#include <cstdio>
#include <cstring>
#include <string>

#include "interp/interne.h"

namespace {
// The lines of the help indexes whose first field is the name.
bool cherche_index(const char* nom) {
  bool trouve = false;
  std::size_t lg = std::strlen(nom);
  for (const char* fichier : {"indexa.h", "indexb.h"}) {
    for (const std::string& rep : {dem.repertoire, std::string(dem.chemin_env)}) {
      std::FILE* f = std::fopen((rep + fichier).c_str(), "r");
      if (!f) continue;
      char ligne[512];
      while (std::fgets(ligne, sizeof ligne, f))
        if (std::strncmp(ligne, nom, lg) == 0 && ligne[lg] == '\t') {
          std::fputs(ligne + lg + 1, stdout);
          trouve = true;
        }
      std::fclose(f);
      break;
    }
  }
  return trouve;
}

void aide_generale() {
  std::fputs("\nCliquer sur help.htm\n\n", stdout);
  mots_liste();
}

void aide_nom(const char* nom) {
  if (cherche_index(nom)) return;
  std::printf("%s: ", nom);
  message(0, M_INTROUVABLE);
}

// The name at the start of a raw text, blanks skipped.
std::string nom_brut(const char* t) {
  while (*t == ' ' || *t == '\t') ++t;
  const char* f = t;
  while (*f && *f != ' ' && *f != '\t' && *f != ';' && *f != '\n') ++f;
  return std::string(t, f);
}
}  // namespace

void aide_mot(MotCle* m) {
  if (!m) {
    aide_generale();
    return;
  }
  if (cherche_index(m->noms)) return;
  for (const char* n = m->noms; *n; n += std::strlen(n) + 1) std::printf("%s ", n);
  std::putchar('\n');
}

int evaluer_brut(mot* v, const mot* limite) {
  std::string nom = nom_brut(reinterpret_cast<const char*>(v + 4));
  if (v + 4 > limite) return PILE_PLEINE;
  if (v[1] == IT_AIDE) {
    if (nom.empty()) aide_generale();
    else aide_nom(nom.c_str());
    ecrit_nil(v);
    return 0;
  }
  // err name: the state of a keyword of list "a", the values of one of "b".
  MotCle* m = nom.empty() ? nullptr : mot_cherche(nom.c_str());
  if (!m) {
    ecrit_nil(v);
    return 0;
  }
  if (m->env == 0) {
    ecrit_scalaire(v, static_cast<float>(etat_a(m->ordinal)));
    return 0;
  }
  if (m->nv < 1) {
    ecrit_nil(v);
    return 0;
  }
  if (v + 4 + m->nv > limite) return PILE_PLEINE;
  std::memcpy(v + 4, m->courant + 4, static_cast<std::size_t>(m->nv) * sizeof(mot));
  v[0] = 4 + m->nv;
  v[1] = BLOC_REEL;
  v[2] = m->nv;
  v[3] = 1;
  return 0;
}
