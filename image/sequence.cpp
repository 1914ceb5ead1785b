// Images and files by name from the language, and series of numbered files:
//   lire("photo.png") ima(1)        the file into image 1 (its size, w h, as value)
//   lire("photo.png") ima           into the working image, which takes its size
//   ecrire("photo.bmp") ima(1)      image 1 to the file; ima or ima(0): the window
//   ecrire("vue.png", 7) ima        the frame file vue0007.png
//   lire("vue.png", 1, 20) ima(10)  vue0001.png... into images 10, 11, ... up to
//                                   the first missing file; the count as value
//   lire("damier.bmp") tex(3)       the file as the texture of image 3
// A number in a name is written by the "4D" rule: four digits, zero padded.
#include <sys/stat.h>

#include <cmath>
#include <string>

#include "core/message.h"
#include "image/commande.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
std::string nom_de_numero(const std::string& nom, long k) {
  NomFichier n = nom_coupe(nom);
  char chiffres[64];
  nom_numero(chiffres, "4D", k);
  std::string s(n.nom);
  s += chiffres;
  s += '.';
  s += n.ext;
  return s;
}

bool existe(const std::string& chemin) {
  struct stat s;
  return stat(chemin.c_str(), &s) == 0 && S_ISREG(s.st_mode);
}

// The range (start, end, step) of a series: end by default start +
// 1000000, step 0 taken as 1.
void bornes(const Args& a, long* debut, long* fin, long* pas) {
  *debut = ima_entier(a.x[0]);
  *fin = a.x.size() > 1 ? ima_entier(a.x[1]) : *debut + 1000000;
  *pas = a.x.size() > 2 ? ima_entier(a.x[2]) : 1;
  if (*pas == 0) *pas = 1;
}

bool dans(long k, long fin, long pas) { return pas > 0 ? k <= fin : k >= fin; }

int installe_lu(int n, mot* b) {
  if (n == 0) {
    if (ima_installe(0, b) < 0) return -1;
    if (ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
    return 0;
  }
  b[2] = n;
  return ima_installe(n, b);
}
}  // namespace

int ima_lit_suite(const Args& a, int premier) {
  long debut, fin, pas;
  bornes(a, &debut, &fin, &pas);
  int n = 0;
  for (long k = debut; dans(k, fin, pas); k += pas) {
    std::string c = nom_de_numero(a.nom, k);
    if (!existe(c)) break;
    mot* b = ima_lit_fichier(c);
    if (!b || installe_lu(premier + n, b) < 0) return -1;
    ++n;
  }
  return n;
}

int ima_planche(const Args& a, int cible, int cw, int ch) {
  if (a.x.empty()) return -1;
  std::string racine = a.nom;
  if (racine.find('.') == std::string::npos) racine += ".raw";
  long debut, fin, pas;
  bornes(a, &debut, &fin, &pas);
  std::vector<long> numeros;
  for (long k = debut; dans(k, fin, pas) && existe(nom_de_numero(racine, k)); k += pas) numeros.push_back(k);
  if (numeros.empty()) {
    std::string c = nom_de_numero(racine, debut);
    ima_erreur_fichier(c.c_str(), 0, MES_FICHIER);
    return -1;
  }
  std::printf("gare %s\n", std::string(nom_coupe(racine).nom).c_str());
  mot* b = ima_lit_fichier(nom_de_numero(racine, numeros[0]));
  if (!b) return -1;
  if (cw <= 0 || ch <= 0) cw = ima_l(b), ch = ima_h(b);
  long k = static_cast<long>(std::ceil(std::sqrt(static_cast<double>(numeros.size()))));
  mot* feuille = ima_alloue(k * cw, k * ch);
  if (!feuille) {
    bloc_libere_force(b);
    return -1;
  }
  // Cells fill row by row from the top left, in number order.
  for (std::size_t i = 0; i < numeros.size(); ++i) {
    if (!b) b = ima_lit_fichier(nom_de_numero(racine, numeros[i]));
    if (!b) {
      bloc_libere_force(feuille);
      return -1;
    }
    int col = static_cast<int>(i % k), lig = static_cast<int>(k - 1 - static_cast<long>(i) / k);
    Rect rd{col * cw, lig * ch, col * cw + cw - 1, lig * ch + ch - 1};
    int r = ima_copie(b, Rect{0, 0, ima_l(b) - 1, ima_h(b) - 1}, feuille, rd);
    bloc_libere_force(b);
    b = nullptr;
    if (r < 0) {
      bloc_libere_force(feuille);
      return -1;
    }
  }
  return installe_lu(cible, feuille);
}

namespace {
// lire("damier.bmp") tex(3): the file becomes the texture of image 3; 1
// when the phrase is not of this form.
int lire_texture(mot* bloc) {
  constexpr int B_TEX = 54;
  mot* verbe = bloc + 4;
  const mot* tex = nullptr;
  mot* e = verbe;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0])
    if (e[1] == 1 && e[2] == B_TEX && !tex) tex = e;
  if (!tex || verbe[2] != A_LIRE_IMA || !ima_fenetre.lire_texture) return 1;
  Args a;
  if (!lit_args(verbe, &a) || a.nom.empty() || !a.x.empty()) return arg_mauvais(verbe);
  Cote c;
  if (lit_cote(tex, &c) < 0) return -1;
  NomFichier n = nom_coupe(a.nom);
  if (ima_fenetre.lire_texture(std::string(n.nom).c_str(), std::string(n.ext).c_str(), c.numero) < 0) return -1;
  bloc[0] = 0;
  return 0;
}
}  // namespace

int ima_lire_ecrire(mot* bloc, mot*, const mot* limite) {
  mot* verbe = bloc + 4;
  const mot* ima = nullptr;
  mot* e = verbe;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0])
    if (e[1] == 1 && e[2] == BLOC_IMAGE && !ima) ima = e;
  if (!ima) return lire_texture(bloc);
  Args a;
  if (!lit_args(verbe, &a) || a.nom.empty()) return arg_mauvais(verbe);
  Cote c;
  if (lit_cote(ima, &c) < 0) return -1;
  if (verbe[2] == A_LIRE_IMA) {
    if (!a.x.empty()) {
      int n = ima_lit_suite(a, c.numero != 0 ? c.numero : 1);
      if (n < 0) return -1;
      return resultat_scalaire(bloc, limite, static_cast<float>(n));
    }
    mot* b = ima_lit_fichier(a.nom);
    if (!b) return -1;
    float taille[2] = {static_cast<float>(ima_l(b)), static_cast<float>(ima_h(b))};
    if (installe_lu(c.numero, b) < 0) return -1;
    return resultat_vecteur(bloc, limite, taille);
  }
  if (c.numero == 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
  mot* b = ima_bloc(c.numero);
  if (!b) {
    std::printf("%d: ", c.numero);
    message(0, MES_IMA_ABSENT);
    return -1;
  }
  std::string nom = a.x.empty() ? a.nom : nom_de_numero(a.nom, ima_entier(a.x[0]));
  if (ima_ecrit_fichier(b, nom) < 0) return -1;
  bloc[0] = 0;
  return 0;
}
