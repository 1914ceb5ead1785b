// Private to the live scene: the working record of a volume, the hook
// table, the attached program lists and the state of the running loop.
//
// A `Vol_inter` borrows `attr`, `som`, `fac`, the limit pointers and the
// other attribute values from its object, taken again by
// vols_inter_suivent whenever the objects' attributes have moved since
// (table_objets.epoque), and all dropped when its volume is deleted; it owns `som_trav`, `som_orig` (the vertices as they were at
// the start, for "quitter sans valider"), `som_poi`, `fac_poi` and its
// drawing record `rt`. `som_poi` and `fac_poi` hold the addresses of the
// object's vertices as they were at the start. Records are chained from `liste_inter` to `fin_inter`; the chain
// and everything it owns go at the end of the interaction. `mat` is always
// the placement of `pos`, `angle` about `axe` and the Euler angles, about
// the centre of gravity `centre`.
#pragma once
#include <cstdint>
#include <vector>

#include "anim/anim.h"
#include "core/bloc.h"
#include "core/objet.h"
#include "display/display.h"

constexpr int MODE_INTER = 85;
constexpr int MAX_SUIV = 1000;
constexpr int NB_CLES = 100, LONG_CLE = 20;
constexpr int NB_LISTES = 7;  // liste_0 .. liste_5, liste_autre
constexpr int LISTE_AUTRE = 6;

// A working grid: see anim/grille.cpp for its invariants.
struct Grille_inter {
  int nx = 0, ny = 0, ferme = 0;
  int ns = 0, nf = 0;
  mot* som = nullptr;       // ns x 3 floats
  mot* fac_attr = nullptr;  // the face attribute as made; `fac` is its value
  const mot* fac = nullptr;
  mot* fac_poi = nullptr;   // faces as addresses into `som`
  mot* seg = nullptr;       // pairs of vertex numbers
  mot* voisin = nullptr;    // per vertex: a count c, then c - 1 faces
  mot* nfac = nullptr, *nsom = nullptr;  // 3 floats a face, a vertex
  // A grid sampled from a net: the basis weights of each sample column and
  // row, and the net as it was last sampled.
  mot* base_u = nullptr, *base_v = nullptr, *filet = nullptr;
};
struct Vol_inter;
// One vertex of another volume, taken where that volume stands.
struct Source_inter {
  Objet* objet = nullptr;
  int num = 0;
  Vol_inter* rec = nullptr;  // its record when it takes part
  int som = 0;               // from 0
};
// A surface of lines: vertex k of the grid is sources[k]; each pin then
// puts its vertex (from 0) at a vertex of another volume.
struct Epingle_inter {
  int som = 0;
  Source_inter src;
};
struct Nappe_inter {
  std::vector<Source_inter> sources;
  std::vector<Epingle_inter> epingles;
  Grille_inter* grille = nullptr;
};

struct Vol_inter {
  Objet* objet = nullptr;
  int num = 0;
  mot* attr = nullptr;
  int type = 0;
  int nx = 0, ny = 0, fermer = 0, precision = 1;
  int rendu = 1;
  int actif = 0;
  int courant = 1;
  int nb_som = 0, stride = 3, nb_som_gen = 0;
  mot* som_trav = nullptr;   // working copy (a Bloc)
  mot* som_orig = nullptr;   // second copy: the vertices at the start
  mot* som_poi = nullptr;    // 3 x nb_som words of vertex pointers
  reel* som = nullptr;       // the live vertices, in the object
  int nb_seg = 0;
  mot* seg = nullptr;
  int nb_fac = 0;
  mot* fac = nullptr;
  mot* fac_poi = nullptr;
  mot* voisin = nullptr;
  mot* normale_som = nullptr, *normale_fac = nullptr;
  mot* coe = nullptr, *tex_som = nullptr;
  int sub_nurbs = 0, nu = 0, nv = 0;
  float tol_nurbs = 0;
  int lien = 0;
  Vol_inter* lien_vol = nullptr;
  float pos[3] = {0, 0, 0};
  float angle = 0;
  float axe[3] = {0, 1, 0};
  float rotx = 0, roty = 0, rotz = 0;
  const reel* lim_dep = nullptr, *lim_rayon = nullptr, *lim_anc = nullptr;
  float hist[12] = {};
  float mat[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  float centre[3] = {0, 0, 0};
  float axe_vue[3] = {0, 1, 0};
  int lead_num = 0;
  Vol_inter* lead = nullptr;
  int som_lead = 0, som_suiv = 0;
  float vit_anc[3] = {0, 0, 0};
  int nb_suiv = 0;
  Vol_inter* suiv[MAX_SUIV] = {};
  float bras = 0;
  reel* force_frame = nullptr;  // (b113, b130), zeroed each frame
  const reel* lim_rota = nullptr, *lim_rotx = nullptr, *lim_roty = nullptr, *lim_rotz = nullptr;
  const mot* mappe = nullptr;
  void* trajets = nullptr;
  mot taches[12] = {};
  int etat = 0;
  Vol_rt* rt = nullptr;
  Vol_inter* suivant = nullptr;
  reel* trace = nullptr;  // (1, 28): nb_traces matrices, the latest first
  int mat_arbre = 0;      // `mat` was made by the tree, from the leader's
  Nappe_inter* nappe = nullptr;  // type b79: the grid its lines make
  Grille_inter* fine = nullptr;  // a smooth surface sampled finer than its net
};

// A node of an attached program list: the target record and a private
// copy of a keyword phrase.
struct Noeud_inter {
  mot entete = 0;
  Vol_inter* cible = nullptr;
  mot* phrase = nullptr;
  Noeud_inter* suivant = nullptr;
};

struct Cle_fonc {
  char nom[LONG_CLE + 1] = "";
  Objet* fonc = nullptr;
};

struct Inter {
  bool en_cours = false;
  Vol_inter* liste_inter = nullptr;
  Vol_inter* fin_inter = nullptr;
  // fonc_debut, fonc_1 .. fonc_5; fonc_fin.
  Objet* fonc[6] = {};
  Objet* fonc_fin = nullptr;
  Noeud_inter* listes[NB_LISTES] = {};
  int cadence = 25;
  long cpt_cadence = 0;
  std::int64_t t0 = 0;
  bool en_attente = false;  // the pacing spin gave the events a turn
  long nb_images = 0, nb_premieres = 0;
  long num_image = 0;
  int pas_bloque = 0, pas_demande = 0;
  char nom_images[128] = "";
  const mot* sequence_souris = nullptr;
  long seq_n = 0, seq_i = 0;
  int cmd_souris = 0, cmd_rayon = 0, souris_active = 0;
  int projection = 13;
  int echap_permis = 1;
  bool echap_avant = true;
  int efface_fond = 1;
  int attache_menu = 1;
  int nb_traces = 0;
  int affiche_menu = 0, rendu_fin = 0, num_fond = 0;
  int tache_eye = 0;
  int etape = 6;  // a51
  Cle_fonc cle_fonc[NB_CLES];
  mot* pick = nullptr;  // 1000 words
  int pick_x = 0, pick_y = 0;  // pointer at the designer selection
  // Eye glide.
  int glide_n = 0, glide_k = 0;
  float glide_oeil[3] = {}, glide_vise[3] = {}, glide_d_oeil[3] = {}, glide_d_vise[3] = {};
  float vue[3] = {0, 0, 1};
  float dist_oeil = 1000;
  const int* mem = nullptr;
  int nb_mem = 0;
  int mem_vols[64] = {};
  bool quitter_sans_valider = false;
  std::uint32_t epoque = 0;  // table_objets.epoque the records' pointers were taken at
};
extern Inter inter;

// ---- records ------------------------------------------------------------------
// Builds the record of a volume; null after "<step> interaction_creer_1(n)".
Vol_inter* interaction_creer_1(Objet* o, int option);
void vol_inter_libere(Vol_inter* v);
int interaction_anc();
Vol_inter* vol_inter_de(int num);  // the record of a volume number, or null
// `mat` from pos, angle, axe and the Euler angles.
void vol_inter_matrice(Vol_inter* v);
// The live vertices through `mat` written into the object (valider), or
// the start's vertices written back (restore).
void vol_inter_valide(Vol_inter* v);
void vol_inter_restaure(Vol_inter* v);

// ---- working grids ------------------------------------------------------------
// Null after the failing step's name. Faces, edges, neighbours and normals
// of an nx by ny grid, its vertices zero.
Grille_inter* grille_inter_cree(int nx, int ny, int ferme);
void grille_inter_libere(Grille_inter* g);
void grille_inter_normales(Grille_inter* g);
// Type b79: the rows of (b79) and the pins of (b79, b30) into v->nappe; 0
// also when the volume has no rows; -1 after a message.
int nappe_cree(Vol_inter* v);
void nappe_libere(Nappe_inter* n);
void nappes_resout();  // the sources' records, once all are made
void nappe_suit(Vol_inter* v);  // the grid from where its sources stand
void nappes_pas();              // every surface of lines, each frame
// The samples of a smooth surface (nu + 1 by nv + 1) into v->fine; made
// again by grille_fine_suit when the net has moved since.
int grille_fine_cree(Vol_inter* v);
void grille_fine_suit(Vol_inter* v);

// ---- running language --------------------------------------------------------
// Runs a function at the top level of the stacks; 0 with none, below 0
// when it failed.
int inter_lance(Objet* f);
// The same with n numbers (at most 8) as its arguments.
int inter_lance_args(Objet* f, const float* args, int n);
int inter_liste(int i);  // runs liste_i
void inter_listes_libere();
int inter_ligne(const char* texte);  // a typed line

// ---- keys and mouse ----------------------------------------------------------
int inter_cles();  // frame step 24
int inter_cle_lie(const char* fonction, const char* nom);
void inter_souris(int bouton, int etat, int x, int y);
void inter_mouvement(int x, int y);
void inter_glide_pas();
int inter_glide(int num, int n);

// The borrowed pointers of a record taken again from its object; a record
// whose volume was deleted loses them all, its drawing and its object.
void vol_inter_pointeurs(Vol_inter* v);
// Every record's, once the objects' attributes have moved since they were
// last taken: after anything that may run the language, and before the
// frame's steps and the mouse use them. One comparison when nothing moved.
void vols_inter_suivent();
// The addresses of the record's vertices and of its faces' vertices
// (som_poi, fac_poi), made again; -1 when a block could not be had.
int vol_inter_adresses(Vol_inter* v);
// The keywords that read or write a record's value of the same name, the
// kept ones and the panels; 1 when the keyword is none of them.
int inter_option_vol(mot* bloc, const mot* e, const mot* limite);

// The command's handler.
int interaction_commande(mot* bloc, mot* valeur, const mot* limite);
int inter_liste_ajoute(int i, Vol_inter* cible, const mot* phrase);
// Frame step 16: image `num` (0: none) becomes the background; with
// `suivant` and n > 0 it fades into that image over n frames. 0, or -1
// after "n: " and message 0:9 for an image that does not exist.
int inter_fond(int num, int suivant, int n);
void inter_fond_dessine();

// The pick under (x, y): the chosen record's place in the chain from 1, or
// 0; with `selectionne` it becomes the only `actif` one.
int inter_pick(int x, int y, bool selectionne);
