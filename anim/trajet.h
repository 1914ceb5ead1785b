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
