// The menu file of `interaction menu(nom)`: a text of lines, each begun by
// a keyword letter, whose fields a small tokenizer reads (at most 80
// characters a field, 127 a line). The file's "m" entries make one menu of
// the "menu" submenu, whose entries run their functions; its other lines
// feed the `exec` chain, the buttons and the labels.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/message.h"
#include "lang/lang.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace {
constexpr std::size_t LONG_CHAMP = 80, MAX_CHAMPS = 8;
constexpr int MAX_ENTREES = 100;

// Fields of a line after its letter: blanks separate, double quotes hold
// blanks. A field past 80 characters is cut there.
int champs(std::string_view l, std::string (&c)[MAX_CHAMPS]) {
  int n = 0;
  std::size_t i = 1;
  while (n < static_cast<int>(MAX_CHAMPS)) {
    while (i < l.size() && (l[i] == ' ' || l[i] == '\t')) ++i;
    if (i >= l.size()) break;
    std::string& f = c[n++];
    f.clear();
    if (l[i] == '"') {
      std::size_t j = l.find('"', i + 1);
      if (j == std::string_view::npos) j = l.size();
      f.assign(l.substr(i + 1, j - i - 1));
      i = j + 1;
    } else {
      std::size_t j = l.find_first_of(" \t", i);
      if (j == std::string_view::npos) j = l.size();
      f.assign(l.substr(i, j - i));
      i = j;
    }
    if (f.size() > LONG_CHAMP) f.resize(LONG_CHAMP);
  }
  return n;
}

// The rest of a line after its letter, blanks trimmed.
std::string_view reste(std::string_view l) {
  std::size_t i = l.find_first_not_of(" \t", 1);
  if (i == std::string_view::npos) return {};
  std::size_t j = l.find_last_not_of(" \t");
  return l.substr(i, j - i + 1);
}

// What follows the first word, blanks skipped.
std::string_view saute_mot(std::string_view r) {
  std::size_t i = r.find_first_of(" \t");
  if (i == std::string_view::npos) return {};
  std::size_t j = r.find_first_not_of(" \t", i);
  return j == std::string_view::npos ? std::string_view{} : r.substr(j);
}

bool nombre(const std::string& s, float* x) {
  char* fin = nullptr;
  *x = std::strtof(s.c_str(), &fin);
  return fin != s.c_str() && *fin == 0;
}

void signale(const char* format, std::string_view l) {
  std::printf(format, std::string(l).c_str());
  std::fflush(stdout);
}
}  // namespace

int lit_menus(const char* nom) {
  std::string texte, chemin;
  if (!nom || !nom[0] ||
      (!lire_fichier_recherche(nom, nullptr, texte, &chemin) && !lire_fichier_recherche(nom, "men", texte, &chemin))) {
    std::printf("%s: ", nom ? nom : "");
    message(0, outils::M_INTROUVABLE);
    return -1;
  }
  std::string titre = nom;
  std::vector<std::string> etiquettes, lignes;
  int promis = -1;
  bool trop = false;
  std::string c[MAX_CHAMPS];
  std::string_view t = texte;
  while (!t.empty()) {
    std::size_t fin = t.find('\n');
    std::string_view l = t.substr(0, fin);
    t = fin == std::string_view::npos ? std::string_view{} : t.substr(fin + 1);
    if (!l.empty() && l.back() == '\r') l.remove_suffix(1);
    std::size_t d = l.find_first_not_of(" \t");
    if (d == std::string_view::npos) continue;
    l = l.substr(d);
    if (l[0] == '#') continue;
    if (l.size() > static_cast<std::size_t>(outils::LONG_LIGNE)) {
      message(0, outils::M_TAILLE);
      continue;
    }
    int n = champs(l, c);
    switch (l[0]) {
      case 'n': {
        float x;
        if (n < 1 || !nombre(c[0], &x)) signale("PAS ASSEZ DE TEXTE: %s\a\n", l);
        else promis = static_cast<int>(x);
        break;
      }
      case 't':
        if (n < 1) signale("PAS ASSEZ DE TEXTE: %s\a\n", l);
        else titre.assign(reste(l));
        break;
      case 'm': {
        if (n < 1) {
          signale("PAS ASSEZ DE TEXTE: %s\a\n", l);
          break;
        }
        if (n < 2) {
          signale("PAS ASSEZ DE FONCTIONS: %s\a\n", l);
          break;
        }
        if (c[1].size() > LONG_NOM_PULS) {
          signale("NOMS DE FONCTIONS TROP LONGS: %s\a\n", c[1]);
          break;
        }
        if (static_cast<int>(lignes.size()) >= MAX_ENTREES ||
            (promis >= 0 && static_cast<int>(lignes.size()) >= promis)) {
          if (!trop) std::printf("TROP DE MENUS\a\n");
          trop = true;
          break;
        }
        // A function no file holds stops the reading: the scene would run
        // entries that fail.
        if (!fonction_cherche(c[1].c_str())) {
          std::printf("%s: ", c[1].c_str());
          message(0, outils::M_INTROUVABLE);
          return -1;
        }
        etiquettes.push_back(c[0]);
        lignes.push_back(c[1] + "()");
        break;
      }
      case 'e':
        if (n < 1) signale("PAS ASSEZ DE TEXTE: %s\a\n", l);
        else exec_ajoute(reste(l));
        break;
      case 'p':
      case 'l': {
        int nn = l[0] == 'p' ? 2 : 3;
        float x[3] = {0, 0, 0};
        bool bon = n > nn;
        for (int k = 0; bon && k < nn; ++k) bon = nombre(c[k], &x[k]);
        if (!bon) {
          signale("PAS ASSEZ DE TEXTE: %s\a\n", l);
          break;
        }
        // The text is what follows the numbers, blanks kept.
        std::string_view r = reste(l);
        for (int k = 0; k < nn; ++k) r = saute_mot(r);
        if (r.size() >= 2 && r.front() == '"' && r.back() == '"') r = r.substr(1, r.size() - 2);
        if (l[0] == 'p') puls_cree(r, x[0], x[1], 0);
        else texte_ajoute(r, x[0], x[1], x[2]);
        break;
      }
      default:
        signale("%s: ", l.substr(0, 1));
        message(0, outils::M_INTROUVABLE);
    }
  }
  if (promis > static_cast<int>(lignes.size())) signale("PAS ASSEZ DE FONCTIONS: %s\a\n", nom);
  std::fflush(stdout);
  if (!lignes.empty()) {
    std::vector<std::string_view> e(etiquettes.begin(), etiquettes.end()), g(lignes.begin(), lignes.end());
    if (menu_fonction_ajoute(titre, e, g) < 0) return 0;
  }
  outils::reconstruit();
  return 0;
}
