// Function files written and read: a .fon file is the texts of functions
// one after the other, as the function store reads them; a .sta file is
// the byte 1, then those texts as one string Bloc [L, BLOC_CHAINE, words
// of text, 0], read without a search for where each text ends in the file.
#include <cstdio>
#include <cstring>
#include <sstream>

#include "interp/interp.h"
#include "lang/lang.h"
#include "persist/interne.h"
#include "startup/startup.h"

namespace {
bool nomme(const char* nom, std::string_view noms) {
  if (noms.empty()) return true;
  std::istringstream s{std::string(noms)};
  std::string n;
  while (s >> n)
    if (n == nom) return true;
  return false;
}

// Reading functions ends as the function store's read does: link when
// asked (or when a23 is on), then "doc" when a function of that name exists.
void fin_lecture(bool avec_lien) {
  bool lie_a_la_lecture = etat_ou(0, A_LIEN, 0) != 0;
  if (avec_lien || lie_a_la_lecture) lier_tout();
  if (fonction_trouve("doc")) executer_texte("doc()");
}
}  // namespace

int fonctions_ecrit(std::string_view nom, std::string_view noms, bool bloc, int demande) {
  std::string texte;
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o) {
    if (o->type != TYPE_FONCTION || o->sous_type != 0) continue;
    if (!nomme(nom_fonction(o), noms)) continue;
    std::size_t lg = 0;
    const char* t = fonction_texte(o, &lg);
    if (!t) continue;
    texte.append(t, lg);
    if (texte.empty() || texte.back() != '\n') texte += '\n';
  }
  std::string chemin;
  int r = ouvre(bloc ? "sta" : "fon", nom, true, demande, &chemin);
  if (r < 1) return r;
  Flux f;
  if (!f.ouvre_ecriture(chemin, false)) return -1;
  if (bloc) {
    mot tete[4] = {long_chaine(texte.size()), BLOC_CHAINE, 0, 0};
    tete[2] = tete[0] - 4;
    std::vector<char> corps(sizeof(mot) * static_cast<std::size_t>(tete[0] - 4), 0);
    std::memcpy(corps.data(), texte.data(), texte.size());
    const char un = 1;
    if (!f.ecrit(&un, 1) || !f.ecrit(tete, sizeof tete) || !f.ecrit(corps.data(), corps.size())) return -1;
  } else if (!f.ecrit(texte.data(), texte.size())) {
    return -1;
  }
  if (!f.ferme()) return -1;
  return static_cast<int>(texte.size());
}

int fonctions_lit_fichier(std::string_view nom, bool avec_lien) {
  std::string chemin;
  int r = ouvre("sta", nom, false, 2, &chemin);
  if (r < 1) {
    // No .sta: the function store reads the .fon itself.
    std::string n(nom);
    return fonctions_lit(n.c_str(), avec_lien);
  }
  std::string texte;
  if (!lit_fichier(chemin.c_str(), texte)) {
    std::printf("%s: ", chemin.c_str());
    message(0, MES_FICHIER);
    return -1;
  }
  // The byte 1 and a string Bloc whose length is the rest of the file.
  const std::size_t tete = 1 + 4 * sizeof(mot);
  mot b[4] = {};
  if (texte.size() >= tete) std::memcpy(b, texte.data() + 1, sizeof b);
  if (texte.size() < tete || texte[0] != 1 || b[1] != BLOC_CHAINE || b[0] < 5 ||
      static_cast<std::size_t>(b[0]) * 4 != texte.size() - 1) {
    std::printf("%s: ", chemin.c_str());
    message(0, M_CORROMPU);
    return -1;
  }
  const char* t = texte.data() + tete;
  std::size_t n = strnlen(t, texte.size() - tete);
  int k = fonctions_analyse(t, n, chemin.c_str());
  if (k < 0) return -1;
  fin_lecture(avec_lien);
  return k;
}
