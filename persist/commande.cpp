// The language's read and write of files: `lire` (a14) loads, replacing
// the objects of the type read, and `ecrire` (a33) saves. The verb's
// argument is the file's name, alone or followed by options; the type
// keyword says what, with numbers to choose objects to save:
//   ecrire("cube") vol(1, 2)           cube.vol, binary
//   ecrire("cube Z short") vol        cube.vol.Z, gzip, 16-bit geometry
//   ecrire("cube", 1) vol texte        cube.ascii.vol, geometry only
//   ecrire("cube") vol exec            cube.exec.vol, a program
//   lire("cube") vol num(100)          numbers of the file plus 100
//   lire("cube seul") vol              only the vertices of existing volumes
//   lire("scene") aff                  volumes, lights and views
//   lire("lib") fonc lier              functions, linked
//   ecrire("img") ima(2) texte         img.ascii.ima; ima exec: img.exec.ima
// Numbers among the options of a save choose what is left out: 1 geometry
// only, -1 no dynamic state, 2 everything. The state of a15 is the
// `demande` of the save (0: ask before overwriting).
#include <cstdio>
#include <string>
#include <vector>

#include "interp/interp.h"
#include "persist/interne.h"
#include "startup/startup.h"

namespace {
constexpr int A_LIRE_CMD = 14, A_ECRIRE_CMD = 33, A_DEMANDE_FICHIER = 15, A_LIER_CMD = 23;

struct Arguments {
  std::vector<std::string> textes;
  std::vector<float> nombres;
  bool bon = true;
};

void ajoute(const mot* v, Arguments& a) {
  if (v[0] == BLOC_REEL) return a.nombres.push_back(lit_reel(v + 1));
  if (v[0] == BLOC_ENTIER) return a.nombres.push_back(static_cast<float>(v[1]));
  if (v[0] < 4) return void(a.bon = false);
  switch (v[1]) {
    case BLOC_REEL:
      for (mot k = 4; k < v[0]; ++k) a.nombres.push_back(lit_reel(v + k));
      return;
    case BLOC_ENTIER:
      for (mot k = 4; k < v[0]; ++k) a.nombres.push_back(static_cast<float>(v[k]));
      return;
    case BLOC_CHAINE: {
      // Strings joined by "," arrive as one: words are split at blanks.
      std::string t = bloc_texte(const_cast<mot*>(v));
      std::size_t i = 0;
      while ((i = t.find_first_not_of(' ', i)) != std::string::npos) {
        std::size_t f = t.find(' ', i);
        a.textes.push_back(t.substr(i, f == std::string::npos ? std::string::npos : f - i));
        i = f;
      }
      return;
    }
    case BLOC_LISTE:
      for (const mot *c = v + 4, *fin = v + v[0]; c < fin && c[0] >= 4; c += c[0]) ajoute(c, a);
      return;
  }
  a.bon = false;
}

Arguments arguments(const mot* e) {
  Arguments a;
  if (e[0] > 3) ajoute(e + 3, a);
  return a;
}

int usage(const mot* e) {
  const char* n = mot_nom(e[1], e[2]);
  std::printf("%s: ", n ? n : "?");
  message(0, MES_VALEUR);
  return -1;
}

bool est_type(int ord) {
  switch (ord) {
    case 4: case 8: case 24: case 25: case 49: case 59: case 88: case 114: case 120: case 148: case 152:
    case 161:
      return true;
  }
  return false;
}
}  // namespace

int persist_commande(mot* bloc, mot* valeur, const mot* limite) {
  (void)valeur;
  mot* verbe = bloc + 4;
  bool ecrire = verbe[2] == A_ECRIRE_CMD;
  int type = 0;
  bool fonctions = false, lien = false;
  OptionsFichier opt;
  opt.demande = etat_ou(0, A_DEMANDE_FICHIER, 0);
  Arguments choix;
  mot* e = verbe;
  const mot* ima = nullptr;
  for (mot k = 1; k < bloc[2]; ++k) {
    e += e[0];
    if (e[1] == 1 && e[2] == B_IMA_TYPE) {
      if (!ima) ima = e;
    } else if (e[1] == 1 && est_type(e[2]) && !type) {
      type = e[2];
      choix = arguments(e);
    } else if (e[1] == 0 && e[2] == A_FONC) {
      fonctions = true;
      choix = arguments(e);
    } else if (e[1] == 0 && e[2] == FORME_ASCII) {
      opt.forme = FORME_ASCII;
    } else if (e[1] == 0 && e[2] == FORME_EXEC) {
      opt.forme = FORME_EXEC;
    } else if (e[1] == 0 && e[2] == A_LIER_CMD) {
      lien = true;
    } else if (e[1] == 0 && e[2] == A_NUM) {
      Arguments d = arguments(e);
      mot n;
      if (d.nombres.empty() || entier_de(d.nombres[0], &n, -NUMERO_MAX, NUMERO_MAX) < 0) return usage(e);
      opt.decalage = n;
    }
  }
  if (ima) {
    // Image files of every format are the images' own; the text forms of
    // image objects are these files'.
    if (opt.forme == FORME_BINAIRE || type || fonctions) return COMMANDE_SUITE;
    type = B_IMA_TYPE;
    choix = arguments(ima);
  }
  if (!type && !fonctions) return COMMANDE_SUITE;
  Arguments a = arguments(verbe);
  if (!a.bon || !choix.bon) return usage(verbe);
  // The name: the verb's first text, else the type's (lire vol("cube")).
  std::string nom;
  if (!a.textes.empty()) nom = a.textes[0];
  else if (!choix.textes.empty()) nom = choix.textes[0];
  if (nom.empty()) return usage(verbe);
  bool binaire_force = false;
  for (std::size_t k = a.textes.empty() ? 0 : 1; k < a.textes.size(); ++k) {
    const std::string& o = a.textes[k];
    if (o == "Z") opt.compresse = true;
    else if (o == "b") binaire_force = true;
    else if (o == "short") opt.court = true;
    else if (o == "seul") opt.seul = true;
    else return usage(verbe);
  }
  if (binaire_force) opt.forme = FORME_BINAIRE;
  for (float x : a.nombres) {
    mot f;
    if (!reel_entier(x, &f) || f < -1 || f > 2) return usage(verbe);
    opt.filtre = f;
  }
  float r;
  if (fonctions) {
    std::string noms;
    for (std::size_t k = a.textes.empty() ? 1 : 0; k < choix.textes.size(); ++k) noms += choix.textes[k] + " ";
    r = static_cast<float>(ecrire ? fonctions_ecrit(nom, noms, binaire_force, opt.demande)
                                  : fonctions_lit_fichier(nom, lien));
  } else if (ecrire) {
    std::vector<int> numeros;
    for (float x : choix.nombres) {
      mot n;
      if (entier_de(x, &n, -NUMERO_MAX, NUMERO_MAX) < 0) return -1;
      numeros.push_back(n);
    }
    r = static_cast<float>(objets_ecrit(type, nom, numeros, opt));
  } else {
    r = static_cast<float>(objets_lit(type, nom, opt));
  }
  if (r < 0) return -1;
  return resultat_scalaire(bloc, limite, r);
}

void persist_enregistre() {
  commande_enregistre(0, A_LIRE_CMD, persist_commande);
  commande_enregistre(0, A_ECRIRE_CMD, persist_commande);
}
