// Private to the live scene: kinematic laws (`cin`), trajectories (`tra`)
// played back one sample a frame, the tree of leaders and followers, and
// the anchors that pin a walking figure's support.
//
// A `Trajet` node belongs to the record whose `trajets` chain holds it; it
// owns `cles` (a copy of the keys) and `val` (nb rows of 3 floats), both
// Blocs. 0 <= indice <= nb always. The path is (env1, cle1), then
// (env3, cle3), then (env2, cle2), as many as nb_cles says.
//
// An `Ancre` owns its array `vols`; `vol`, when set, is one of them. The
// chain `liste_anc` lives as long as the interaction: it goes at its end.
//
// A record's `taches` are the tasks the tree runs for it each frame:
// word 0 the flags (TACHE_SOM, TACHE_BARY), words 1 and 2 the volume and
// the vertex (from 1) the record is carried by under TACHE_SOM, word 3 the
// number of its barycentric points (entries of `liste_bary` whose `dest`
// is the record). Words 4 to 10 are 0; word 11 is not a task: the mouse
// keeps the selected record's `rotz` there.
#pragma once
#include "anim/interne.h"

constexpr int B_TRA_ = 49, B_CIN_ = 88, B_LEAD_ = 61, B_SUIV_ = 62, B_ORIGINE = 107, B_ANC_ = 153;
constexpr int B_ROTA_ = 34, B_ROTX_ = 35, B_ROTY_ = 36, B_ROTZ_ = 37, B_POS_ = 38, B_AXE_ = 96,
              B_FOR_ = 113, B_ROUL_ = 12, B_CLEF = 94, B_NB_ECH = 85, B_BRUT = 97, B_REL = 98,
              B_BOUCLE = 106, B_COEF_ = 42, B_IMA_ = 28, B_ETAGE = 45, B_SOM_ = 32;
constexpr int A_SIN = 27, A_RELANCE = 46, A_INI_ = 24, A_NB_ = 58, A_EDITION = 36, A_INDICE = 43, A_TRACE_ = 46;
constexpr float DEG_ = 57.295776f;

struct Trajet {
  int nb_cles = 0;
  int env1 = 0, cle1 = 0, env2 = 0, cle2 = 0, env3 = 0, cle3 = 0;
  int nb_in = 0;
  int nb = 0;
  int indice = 0;
  mot* cles = nullptr;
  mot* val = nullptr;
  float gain = 0, friction = 0, lim = 0;
  int reserve = 0;
  int boucle = 0;
  int relatif = 0;
  Trajet* suivant = nullptr;
};

// ---- laws --------------------------------------------------------------------
// The law of a `cin` object: 60, 89, 90, 91 or 130 (a law of no known kind
// is the curve law, 60). Its table is its `clef` attribute, rows (x, y).
int cin_loi(Objet* loi);
const mot* cin_table(Objet* loi);
// Where image i of n (start offset d) falls between 0 and v.
double cin_valeur(Objet* loi, double v, int i, int n, int d);
// Off-line animation: the value of a key block (rows of k floats; the time
// is the last column when k >= 4, else the row number) for image i of n,
// in `sortie` (3 floats), times `echelle`. With `increment`, the change
// from image i - 1 to image i. 0, or -1 when there are no keys.
// The phrase `cin(l) tra(t) ima(i, n)`, registered for `cin`.
void cin_enregistre();
int anim_valeur(const mot* cles, Objet* loi, int i, int n, float echelle, bool increment, float* sortie);

// ---- trajectories --------------------------------------------------------------
// Samples the keys of a node into nb rows of 3 floats, by its path, with the
// record's present values as the first key unless `brut`. 0 or -1.
int trajet_echantillonne(Trajet* t, Vol_inter* r, int loi, const mot* table, bool brut);
// One frame of playback of one node on its record (frame step 9).
void trajet_joue(Trajet* t, Vol_inter* r);
void trajets_libere(Vol_inter* r);
// Frame step 9: every node of every record, in chain order.
void trajets_pas();
// `interaction tra ...`: nodes made, restarted or queried.
int trajet_commande(mot* bloc, const mot* e, const mot* limite);

// ---- leaders and followers ---------------------------------------------------
// Sets r's leader (null clears it) with its anchor vertices; r joins the
// leader's followers unless it is there already. -1 after a message.
int arbre_lie(Vol_inter* r, Vol_inter* lead, int som_lead, int som_suiv);
// The top of r's leader chain (r itself when it has none); a cycle stops at
// the record met twice.
Vol_inter* arbre_racine(Vol_inter* r);
// The matrices of the tree (frame step 13): a record without a leader is
// placed as it stands, a follower hangs at its leader's anchor vertex.
void arbre_evalue();
// Re-roots the figure at r; the angles of the former chain are reversed.
int arbre_origine(Vol_inter* r);
// The world position of vertex s (from 1) of r through its matrix.
bool som_monde(const Vol_inter* r, int s, float* w);
int lead_commande(mot* bloc, const mot* e, const mot* limite);
int suiv_commande(mot* bloc, const mot* e, const mot* limite);
int origine_commande(mot* bloc, const mot* e, const mot* limite);
// The order of the Euler turns, digits 1 = x, 2 = y, 3 = z read from the
// left; `ordre_rot_inv` places a record, `ordre_rot` undoes it. Each is the
// other read backwards.
extern int ordre_rot, ordre_rot_inv;
// 123 <= n <= 321 sets both; otherwise "n: " and message 0:66, -1.
int arbre_ordre(int n);
// The turns of `ordre` applied to m (a string of digits that is not one of
// the six orders turns nothing); `signe` -1 turns back.
void tourne_euler(float* m, int ordre, const Vol_inter* r, float signe);
// The table of the tree: every record, or those of `vols`.
void arbre_liste(Vol_inter* const* vols, int n);

// ---- per-frame tasks -------------------------------------------------------------
constexpr int TACHE_SOM = 1, TACHE_BARY = 2;
// A barycentric point: vertex `som` of `dest` becomes w0 a + w1 b + w2 c,
// a, b, c the vertices `tri` of `source` through the source's matrix.
struct Bary {
  Vol_inter* dest = nullptr;
  int som = 0;
  Vol_inter* source = nullptr;
  int tri[3] = {0, 0, 0};
  float poids[3] = {0, 0, 0};
};
// Record r carried by vertex s of volume num (num 0 drops it). -1 after a message.
int tache_som(Vol_inter* r, int num, int s);
// Adds a barycentric point of r. -1 after a message.
int tache_bary(Vol_inter* r, int som, Vol_inter* source, const int* tri, const float* poids);
// Where a record carried by a vertex hangs: that vertex in the world. False
// when it has no such task or its carrier is gone.
bool tache_point(const Vol_inter* r, float* w);
// Frame step 13 after the matrices: the barycentric points.
void taches_pas();
void taches_libere();

// ---- anchors -------------------------------------------------------------------
struct Ancre {
  int actif = 0;
  int nb = 0;
  Vol_inter** vols = nullptr;
  int som = 0;
  Vol_inter* vol = nullptr;
  float pos[3] = {0, 0, 0};
  int trace = 0;
  int num = 0;
  int borne = 0;
  float lim[6] = {0, 0, 0, 0, 0, 0};
  Objet* fonc = nullptr;
  int avec_racine = 0;
  float haut = 0;
  Ancre* suivant = nullptr;
};
extern Ancre* liste_anc;
// The anchor check of one record (frame step 15).
void ancre_verifie(Ancre* a);
void ancres_libere();
int anc_commande(mot* bloc, const mot* e, const mot* limite);
