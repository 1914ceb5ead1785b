// The graphic state that needs no window: screen size, mapping, random
// table, colour levels, the protected default Blocs, buffers and the screen
// image.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/message.h"
#include "core/objet.h"
#include "startup/interne.h"
#include "startup/startup.h"

Ecran ecran;

namespace {
[[noreturn]] void echec_allocation() { arret_fatal("ERREUR ALLOCATION\n\x07"); }

template <class T>
T* alloue(long n) {
  T* p = n > 0 ? static_cast<T*>(tas::alloue(static_cast<std::size_t>(n) * sizeof(T))) : nullptr;
  if (!p) echec_allocation();
  return p;
}

// A protected form A phrase: its pairs, then a value Bloc; word 0 negated so
// that no release of a list pointing to it can take it.
mot* defaut_protege(std::initializer_list<mot> paires, const mot* queue) {
  mot h = 4 + static_cast<mot>(paires.size());
  mot n = h + queue[0];
  mot* b = bloc_alloue(-n);
  if (!b) echec_allocation();
  b[1] = BLOC_PHRASE;
  b[2] = h;
  b[3] = static_cast<mot>(paires.size() / 2);
  mot k = 4;
  for (mot w : paires) b[k++] = w;
  std::memcpy(b + h, queue, sizeof(mot) * queue[0]);
  return b;
}

void fixe_defaut(int env, int ord, std::initializer_list<float> v, int etat) {
  MotCle* m = mot_entree(env, ord);
  if (!m) return;
  int k = 0;
  for (float x : v)
    if (k < m->nv) ecrit_reel(m->defaut + 4 + k++, x);
  if (etat >= 0) vocab.tables[env].etats_defaut[ord] = etat;
}

void protege_defauts() {
  // Faces: one BLOC_LISTE holding one BLOC_ENTIER 1 2 3 4.
  const mot fac[4 + 8] = {12, BLOC_LISTE, 1, 0, 8, BLOC_ENTIER, 4, 1, 1, 2, 3, 4};
  mot zero43[4 + 12] = {16, BLOC_REEL, 4, 3};
  const mot tete[4 + 3] = {7, BLOC_REEL, 1, 3, 0, 0, 0};
  ecran.defaut_fac = defaut_protege({1, 15}, fac);
  ecran.defaut_som = defaut_protege({1, 86}, zero43);
  ecran.defaut_normale_fac = defaut_protege({1, 63, 1, 15}, tete);
  ecran.defaut_normale_som = defaut_protege({1, 63, 1, 32}, zero43);
}
}  // namespace

void init_graphique(int argc, char** argv, bool aide) {
  if (aide) {
    aide_graphique();
    std::fputs("*************************************************\n", stdout);
    arret_fatal(nullptr);
  }
  ecran = Ecran{};
  if (vocab.nb_env > 1) cles_envb(texte_env(1));
  cles_graphiques_ligne_commande(argc, argv);
  if (ecran.largeur == 0) ecran.largeur = ecran.video_l;
  if (ecran.hauteur == 0) ecran.hauteur = ecran.video_h;
  if (ecran.hauteur & 1) ++ecran.hauteur;
  if (ecran.hau > 1) {
    std::printf("HAUTE DEFINITION: (%d,%d)", ecran.largeur, ecran.hauteur);
    ecran.largeur = entier_sature(static_cast<float>(ecran.largeur * ecran.hau));
    ecran.hauteur = entier_sature(static_cast<float>(ecran.hauteur * ecran.hau));
    std::printf(" -> (%d,%d)\n", ecran.largeur, ecran.hauteur);
  } else if (ecran.hau == 0) {
    std::printf("Resolution %d * %d\n", ecran.largeur, ecran.hauteur);
  }
  dem.graphique = ecran.gra != 0;
  ecran.centre_x = ecran.largeur / 2;
  ecran.centre_y = ecran.hauteur / 2;
  ecran.clip_x1 = ecran.largeur - 1;
  ecran.clip_y1 = ecran.hauteur - 1;
  ecran.pixels = static_cast<long>(ecran.largeur) * ecran.hauteur;
  ecran.octets_rvb = 3 * ecran.pixels;
  ecran.colonnes_balayage = ecran.largeur / 40;

  ecran.aleatoires = ecran.ale > 0 ? static_cast<float*>(tas::alloue(sizeof(float) * ecran.ale)) : nullptr;
  if (!ecran.aleatoires) {
    std::printf("Dim_alea = %d: ", ecran.ale);
    arret_fatal(nullptr);
  }
  hasard_table_prevue(ecran.aleatoires, ecran.ale);

  long niveaux = 1L << ecran.rvb;
  std::printf("%ld ", niveaux * niveaux * niveaux);
  message(1, 1);
  ecran.niveau_couleur = static_cast<int>(niveaux - 1);

  protege_defauts();

  // Values the frame reads every time: their defaults are set here so that
  // the reset of all keywords that follows keeps them.
  fixe_defaut(1, 146, {dem.graphique ? 1.f : 0.f}, dem.graphique ? 1 : 0);
  fixe_defaut(1, 18, {10.f, 32000.f}, -1);
  fixe_defaut(1, 25, {static_cast<float>(ecran.zbu)}, -1);
  ecran.cte_affichage = 557;
  for (auto& l : ecran.lignes) l = alloue<unsigned char>(ecran.niveau_couleur * 4L + 12);

  message(1, dem.graphique ? 89 : 95);
  long lig = ecran.lig > 0 ? ecran.lig : 10000;
  ecran.balayage = static_cast<unsigned char*>(tas::alloue(lig * 4));
  ecran.table_balayage = static_cast<unsigned char*>(tas::alloue((ecran.largeur / 40) * 24L + 1));
  if (!ecran.balayage || !ecran.table_balayage) message(0, 28);

  ecran.reserve = bloc_alloue(1000 * 192);
  if (!ecran.reserve) echec_allocation();
  for (int& m : ecran.menus) m = -1;
  ecran.fenetre = -1;

  // The window's own image: number 0 of type b28.
  long octets = ecran.octets_rvb;
  mot* ima = bloc_alloue(static_cast<mot>(octets / 4 + 8));
  ecran.rvba = alloue<unsigned char>(ecran.pixels * 4);
  if (!ima) echec_allocation();
  ima[1] = BLOC_IMAGE;
  ima[2] = ima[3] = 0;
  ima[4] = ecran.largeur;
  ima[5] = ecran.hauteur;
  ima[6] = static_cast<mot>(octets);
  ecran.image_ecran = objet_cree(1, 28, 0, nullptr, nullptr, 0);
  if (!ecran.image_ecran) echec_allocation();
  ecran.image_ecran->donnees = ima;
  dem.version.replace(0, dem.version.find('\n'), std::string("Executable: ") + argv[0]);
}
