// Private to the dynamics: the body step over the tree of records, the
// vertex step of a spring cloud, and the terms they add (springs, fields,
// force images, collisions). Every value is an attribute of the volume,
// looked up by its keyword path at each step, so that the language may
// change it between frames; an absent attribute leaves its term out.
//
// Scratch tables (neighbours, rest lengths, the visit order) are kept in
// one global record that grows to the largest volume seen and is reused:
// a step allocates nothing once the first step of that size has run.
#pragma once
#include <cstdint>
#include <vector>

#include "anim/interne.h"

namespace dyn {
// Keyword ordinals of list b (env 1) and list a (env 0) read here.
constexpr int B_DYN = 150, B_MAS = 112, B_VIT = 111, B_ACC = 89, B_FOR = 113, B_RESSORT = 151,
              B_SOMK = 32, B_ROTAK = 34, B_COE = 42, B_CHA = 122, B_CHOC = 81, B_COL = 153, B_ALE = 59,
              B_AXEK = 96, B_LEADK = 61, B_SUIVK = 62, B_ORTHO = 63, B_JOI = 33, B_PRE = 159, B_TIRE = 130,
              B_PTS = 86, B_VOLK = 4, B_COURBE = 26, B_BOITE = 31, B_IMA = 28, B_ROTXK = 35, B_ROTYK = 36,
              B_ROTZK = 37, B_RIGIDE = 60, B_NURBSK = 45, B_BORNES = 77, B_TRAIT = 76, B_SOU = 16, B_ORIGINE = 107;
constexpr int A_LIMK = 41, A_TEM = 98, A_INI = 143, A_FONCK = 101, A_PASK = 3;
// The hidden rest copy of the vertices.
constexpr int ORD_REPOS = -10004;
constexpr float DEG = 57.2957763671875f;
constexpr float MASSE_MIN = 0.0001f;

// Messages of list b.
constexpr int MES_MASSE = 136, MES_SOM_HORS = 137, MES_ARBRE = 138, MES_DYN_VOL = 139;

struct Vec {
  float x = 0, y = 0, z = 0;
};

struct Etat {
  std::uint64_t graine = 0x9e3779b97f4a7c15ull;
  // Scratch, grown only.
  std::vector<int> deb_voisin, voisin;      // CSR of neighbours in ring order
  std::vector<float> repos_long, repos_ang;  // per neighbour slot
  std::vector<int> ordre, libre;
  std::vector<const mot*> rec_mas, rec_for, rec_res, rec_tor, rec_ini, rec_tem, rec_alim, rec_vlim, rec_pts, rec_pvol;
  // Moving obstacles of the volume in its step: per obstacle [b1, b2, R,
  // box lo, box hi, first face, face count], per face [centre, normal,
  // velocity, radius].
  std::vector<float> obs, obs_fac;
  // The per-vertex field lists of the volume in its step: (cha, som) and
  // (cha, ima, som), read once a step; null outside a step.
  std::vector<const mot*> rec_cha, rec_ima;
  Objet* cha_de = nullptr;
  bool l_cha = false, l_ima = false;
  // (cha, som) given as one name: that field acts on every vertex.
  Objet* cha_nom = nullptr;
  // The point of the field function being called; its missing function
  // said once a step.
  float point[3] = {0, 0, 0};
  bool fonc_avertie = false;
  std::vector<float> zeros;
  std::vector<std::uint8_t> col_choisi;  // per vertex: selected for the colliders' force
  std::vector<float> tri;
  long pas_faits = 0;
  int profondeur = 0;
};
extern Etat etat;

// ---- attributes ------------------------------------------------------------
// The floats of the value at a path of n (env, ord) pairs, with at least
// `min` of them; null otherwise. `nb` gets their count.
reel* val(Objet* o, int n, const mot* cle, int min = 1, int* nb = nullptr);
reel* val1(Objet* o, int e1, int o1, int min = 1, int* nb = nullptr);
reel* val2(Objet* o, int e1, int o1, int e2, int o2, int min = 1, int* nb = nullptr);
reel* val3(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int min = 1, int* nb = nullptr);
// A float block at the path, made of `nv` zeros if it is absent or short.
reel* bloc_zero(Objet* o, int n, const mot* cle, int nv);
// A packed per-vertex list read into one pointer per vertex (null: no
// record); a record starts with its length in words, below 1 an empty
// record of that absolute length. Gives false for no list.
bool liste_som(Objet* o, int n, const mot* cle, int nb_som, std::vector<const mot*>& rec);
inline const reel* rec_val(const mot* r) { return r ? reels(r + 1) : nullptr; }
inline int rec_long(const mot* r) {
  if (!r) return 0;
  return static_cast<int>(lit_reel(r)) - 1;
}

// ---- vectors ---------------------------------------------------------------
inline float dot(const float* a, const float* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline float norme(const float* a) { return __builtin_sqrtf(dot(a, a)); }
// The unit vector; a vector shorter than 0.0001 is left as it is.
void unit(float* v);
void croix(const float* a, const float* b, float* r);
// The quick distance of the collisions: each difference truncated to an
// integer, |dx| + |dy| + |dz| times 0.57735.
float dist_rapide(const float* a, const float* b);
// Guarded power of the pull.
double puissance(double b, double e);

// ---- the steps -------------------------------------------------------------
int pas_dynamique();
void pas_corps(Vol_inter* r, int n, int N);
int pas_sommets(Objet* o, int n, int N, bool en_inter);
// Windows of a record: angle (bounce), rotx..rotz, box of pos. The number
// of values changed.
int fenetre_angle(Vol_inter* r);
int fenetres(Vol_inter* r);

// ---- terms -----------------------------------------------------------------
// Neighbours of every vertex in ring order, from the faces, with the rest
// lengths and angles from the rest copy `repos`.
void voisins(Objet* o, const float* repos, int nb, int d, bool angles);
// The spring term of p towards q: k (|q - p| - L0) unit(q - p) + c v.
void ressort(const float* p, const float* q, const float* v, float k, float c, float l0, float* F);
// Torsion of vertex i with its ring of neighbours, added to F.
void torsion(int i, const float* som, int d, const float* v, float k, float c, float* F);
// Fields at point p for vertex i (from 1) of volume o, added to F; a force
// image replaces F.
void champs(Objet* o, int i, const float* p, float* F);
void champ_un(Objet* f, Objet* o, const float* p, float* F);
float courbe(const reel* c, int nb, float d);
// The field's language function (a101) at p, added to F.
void champ_fonction(Objet* f, const float* p, float* F);
bool champs_globaux();  // any field object at all
Objet* champ_de(float x);  // the field object of that number, or null
Objet* champ_nomme(Objet* o);  // the field named by (cha, som), or null
// A force image: s, or a negative value with no image.
float image_force(Objet* o, const reel* ci, int nci, int i, float* F);
// Collision of p (velocity v) against the colliders of o; the contact count.
int collision(Objet* o, float* p, const float* v, float* F, bool force, float* marque);
// The rigid cloud's step (b60 on, the volume has a leader): the vertices
// are the rest copy turned as a whole about the anchor.
int pas_rigide(Objet* o, int N, float* som, int d, int nb, const reel* repos);
// Moving obstacles (cha, vol) of o, gathered for its step: false for none.
bool obstacles(Objet* o);
// Their push on a vertex at p with velocity v: v and F change.
void obstacle_force(const float* p, float* v, float* F);
// Springs of vertex p (rest position rp) to vertices of other volumes, from
// its record of groups [k, c, volume, vertex].
void ressorts_vol(Objet* o, const mot* rec, const float* p, const float* rp, const float* v, float* F);
// The vertices selected by (col, som) and the ranges of (col, b77), marked
// in etat.col_choisi; false when none is.
bool col_selection(Objet* o, int nb);
// The first collider pass: the selected vertices put back in front of the
// colliders, with no force.
void col_premiere(Objet* o, float* som, int d, const float* vit, int nb, float* choc);
// The windows of a running interaction, applied with no forces to r and its
// followers (every root without r); the number of values changed.
int limite_inter(Vol_inter* r);
// The pull and the re-rooting of a running interaction.
int tire(mot* bloc);
bool tire_forme(const mot* bloc);  // a phrase with the pull's arguments
// A pull phrase holding a transformation, view, parts or skeleton keyword:
// it is a program attached to the frame instead.
bool tire_attache(const mot* bloc);
int nb_records();
// The window's pixel (px, py), rows from the top, at the depth of the world
// point t under the current eye, back in the world; false when the eye
// gives no depth there.
bool pixel_monde(float px, float py, const float* t, float* out);
int origine(Vol_inter* r);
// The phrase `dyn pas(k) vol(n)`.
int dyn_commande(mot* bloc, mot* valeur, const mot* limite);
}  // namespace dyn
void dynamique_enregistre();  // the phrase `dyn pas(k) vol(n)`
