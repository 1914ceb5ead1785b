// The user's message tables: named text files of messages, each between an
// opening and a closing ";", fields separated by "|".
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "core/message.h"

namespace {
struct TableUtilisateur {
  std::string nom;
  std::string texte;                // the file, comments blanked
  std::vector<std::size_t> debuts;  // first character of each message
};
std::vector<TableUtilisateur> tables;  // in order of first loading

// "/*...*/" become blanks, newlines kept; false on an open comment.
bool blanchit_commentaires(std::string& t) {
  for (std::size_t p = t.find("/*"); p != std::string::npos; p = t.find("/*", p)) {
    std::size_t f = t.find("*/", p + 2);
    if (f == std::string::npos) return false;
    for (std::size_t k = p; k < f + 2; ++k)
      if (t[k] != '\n') t[k] = ' ';
    p = f + 2;
  }
  return true;
}

TableUtilisateur* table_nommee(const char* nom) {
  for (TableUtilisateur& t : tables)
    if (t.nom == nom) return &t;
  return nullptr;
}

// Field k of the text at p, which ends at ";" or at the end; a k past the
// last field gives the first.
std::string_view champ(std::string_view message, int k) {
  std::size_t d = 0;
  for (int j = 0; j < k; ++j) {
    std::size_t b = message.find('|', d);
    if (b == std::string_view::npos) {
      d = 0;
      break;
    }
    d = b + 1;
  }
  std::size_t f = message.find('|', d);
  return message.substr(d, f == std::string_view::npos ? std::string_view::npos : f - d);
}

int charge_fichier(const char* nom) {
  std::ifstream f(nom, std::ios::binary);
  if (!f) {
    erreur_fichier(nom);
    return -1;
  }
  std::string texte((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
  if (!blanchit_commentaires(texte)) {
    std::printf("%s: ", nom);
    message(0, MES_COMMENTAIRE);
    return -1;
  }
  return message_utilisateur_charge(nom, texte);
}

// The (name, number [, field]) form: the text replaces the phrase.
int cherche_texte(mot* phrase, const mot* limite, mot* liste) {
  mot tag, nc;
  mot* e[3] = {};
  mot n = liste[2] < 3 ? liste[2] : 3;
  for (mot i = 0; i < n; ++i) e[i] = bloc_element(liste, i + 1, &tag, &nc);
  if (tables.empty()) {
    message(0, MES_SANS_TABLE);
    return -1;
  }
  const char* nom = e[0] && e[0][0] > 4 && e[0][1] == BLOC_CHAINE ? bloc_texte(e[0]) : "";
  if (!table_nommee(nom)) {
    std::printf("%s: ", nom);
    message(0, MES_ABSENT);
    return -1;
  }
  if (!e[1] || e[1][0] < 5 || e[1][1] != BLOC_REEL) return -1;
  // A field number past the last gives the first, and a negative one 0:
  // clamping keeps that sense for any float.
  int k = TEXTE_ENTIER;
  if (e[2] && e[2][0] > 4 && e[2][1] == BLOC_REEL) k = entier_sature(lit_reel(e[2] + 4));
  // In the language `"nom", 0, 1` merges the two numbers into one vector.
  else if (e[1][0] > 5) k = entier_sature(lit_reel(e[1] + 5));
  mot num;
  if (entier_de(lit_reel(e[1] + 4), &num) < 0) return -1;
  std::string texte;
  int r = message_utilisateur(nom, num, k, texte);
  if (r < 0) return r;
  mot lg = long_chaine(texte.size());
  if (phrase + lg > limite) return -12;
  phrase[0] = lg;
  phrase[1] = BLOC_CHAINE;
  phrase[2] = 1;
  phrase[3] = 1;
  std::memcpy(bloc_texte(phrase), texte.c_str(), texte.size() + 1);
  return 0;
}
}  // namespace

int message_utilisateur_charge(const char* nom, std::string_view texte) {
  std::vector<std::size_t> debuts;
  for (std::size_t p = texte.find(';'); p != std::string_view::npos;) {
    std::size_t f = texte.find(';', p + 1);
    if (f == std::string_view::npos) {
      std::printf("%s: ", nom);
      message(0, MES_NON_TERMINE);
      return -1;
    }
    debuts.push_back(p + 1);
    p = texte.find(';', f + 1);
  }
  TableUtilisateur* t = table_nommee(nom);
  if (!t) {
    tables.emplace_back();
    t = &tables.back();
    t->nom = nom;
  }
  t->texte = texte;
  t->debuts = std::move(debuts);
  return 0;
}

void messages_utilisateur_vide() { tables.clear(); }

int message_utilisateur(const char* nom, int n, int k, std::string& dst) {
  if (tables.empty()) {
    message(0, MES_SANS_TABLE);
    return -1;
  }
  TableUtilisateur* t = table_nommee(nom);
  if (!t) {
    std::printf("%s: ", nom);
    message(0, MES_ABSENT);
    return -1;
  }
  int nb = static_cast<int>(t->debuts.size());
  if (n < 0 || n >= nb) {
    std::printf("%d %d\x07\n", n, nb);
    std::fflush(stdout);
    return -1;
  }
  std::string_view m(t->texte);
  m = m.substr(t->debuts[n]);
  m = m.substr(0, m.find(';'));
  if (k != TEXTE_ENTIER) m = champ(m, k < 0 ? 0 : k);
  dst.assign(m);
  return 0;
}

int messages_utilisateur(mot* phrase, const mot* limite) {
  if (phrase[2] < 1 || phrase[4] < 4) return 0;  // no value: nothing to do
  mot* v = phrase + 4 + 3;
  switch (v[1]) {
    case BLOC_REEL: {
      mot nb = v[0] - 4;
      if (nb < 1) return 0;
      mot env, num = 0;
      if (entier_de(lit_reel(v + 4), &env) < 0 || (nb > 1 && entier_de(lit_reel(v + 5), &num) < 0)) return -1;
      return message(env, num);
    }
    case BLOC_CHAINE:
      return charge_fichier(bloc_texte(v));
    case BLOC_LISTE:
      return cherche_texte(phrase, limite, v);
  }
  message(0, MES_PAS_VARIABLE);
  return -1;
}
