// Volumes and geometry: the vector and matrix routines, the attributes of a
// volume and the generators of its derived data, the transformations of its
// vertices, curves through points, and builders of simple shapes.
//
// A volume is an Objet of type b4 whose geometry lives in attributes (form A
// phrases in its BLOC_BLOCS list). Word 1 of an attribute is its validity:
// -1039 when written by the user, 1 when made by a generator, 0 when stale.
// Stale attributes keep their storage and slot; the next generator call
// refills them.
#pragma once
#include <cstdint>

#include "core/bloc.h"
#include "core/catalogue.h"
#include "core/message.h"
#include "core/objet.h"

// ---- keyword ordinals ------------------------------------------------------
// env 1 (B_VOL comes with the object table)
constexpr int B_PROJ = 13;
constexpr int B_GRILLE = 14;  // grid forms: b14, b20, b21, b117, b119, b133
constexpr int B_FAC = 15;
constexpr int B_COUL = 17;
constexpr int B_GRILLE20 = 20;
constexpr int B_GRILLE21 = 21;
constexpr int B_ILLUM = 23;
constexpr int B_SOMMET = 32;  // selects vertices, as opposed to b86 that holds them
constexpr int B_VOISIN = 46;
constexpr int B_SEGMENT = 51;
constexpr int B_AFFICHE = 60;  // (b60, b86): the displayed vertices
constexpr int B_NORMALE = 63;
constexpr int B_RAYON = 68;
constexpr int B_BORNES = 77;
constexpr int B_SURFACE = 79;
constexpr int B_POIDS = 81;  // (b81, b32): weights of the vertices
constexpr int B_SOM = 86;    // also the form "points only"
constexpr int B_AXE = 96;
constexpr int B_CONTROLE = 103;
constexpr int B_GRILLE117 = 117;
constexpr int B_GRILLE118 = 118;
constexpr int B_GRILLE119 = 119;
constexpr int B_NORMALE_PROPRE = 125;
constexpr int B_NUAGE = 132;
constexpr int B_GRILLE133 = 133;
constexpr int B_BOITE = 141;
constexpr int B_ATTR = 2;
constexpr int B_OEIL = 9, B_VISE = 10;  // attributes a transformation may move instead
constexpr int B_SEQ = 22;     // a line (two points) in a transformation
constexpr int B_SORTIE = 26;  // a list of points to repeat an operation along
constexpr int B_IMAGE = 28;
constexpr int B_JOINT = 33;   // an angle in radians
constexpr int B_COE = 42;     // a vector of parameters
constexpr int B_NB = 47;      // frame count of an animation
constexpr int B_ACC = 89, B_DEC = 90, B_ACD = 91;  // spacing laws
constexpr int B_GL = 108, B_VIT = 111, B_MASSE = 112, B_TRANSP = 116;
constexpr int B_BROSSE = 120;
constexpr int B_COURBE = 123, B_AJUST = 124;
constexpr int B_PROPAGE = 129;  // back to the origin of an animation
constexpr int B_MEM = 148, B_TABLEAU = 160;
// Shapes built in one phrase.
constexpr int B_CUBE = 166, B_SPHERE = 167, B_CYLINDRE = 168, B_CONE = 169, B_TORE = 170;
// env 0
constexpr int A_MATRICE_CMD = 38;  // a 4 x 4 matrix applied to vertices
constexpr int A_LIM = 41;
constexpr int A_CENTRE = 42;
constexpr int A_TOP = 46;
constexpr int A_MAX = 54;   // radius of influence
constexpr int A_TAILLE = 59;  // a list of vertices; a point in generer
constexpr int A_CHERCHE = 67;
constexpr int A_GENERER = 68;
constexpr int A_PULS = 95;  // the operation goes into the volume's matrix
constexpr int A_TEM = 98;
constexpr int A_ROTV = 100;  // a rotation given as a vector
constexpr int A_FONC_CHAMP = 101;
constexpr int A_FENETRE = 102;
constexpr int A_MATRICE = 112;

// Operations of the transformation group, by the ordinal of their keyword.
constexpr int B_DEP = 30, B_DEP2 = 31;
constexpr int B_ROTA = 34, B_ROTX = 35, B_ROTY = 36, B_ROTZ = 37;
constexpr int B_HOM = 38, B_HOMX = 39, B_HOMY = 40, B_HOMZ = 41, B_HOMO = 43;
constexpr int B_SECX = 56, B_SECY = 57, B_SECZ = 58, B_SEC = 59;
constexpr int B_SYMX = 70, B_SYMY = 71, B_SYMZ = 72, B_SYM = 73;
constexpr int B_TIRER = 103;
// bosse swells about the pivot; tord twists about the axis, more the
// farther along it; plie turns about the axis, fading over the radius;
// effile narrows (or widens) across the axis along it.
constexpr int B_BOSSE = 143, B_TORD = 163, B_PLIE = 164, B_EFFILE = 165;
// The 4 x 4 matrix of a38 applied to the vertices: told apart from b38 by
// its sign, since both lists share the number.
constexpr int OP_MATRICE = -38;

// Laws of spacing (the kinematic laws).
constexpr int LOI_CIN = 60, LOI_ACC = 89, LOI_DEC = 90, LOI_ACD = 91, LOI_TABLE = 130;

// Message of env 0 for too many faces at a vertex (the others this folder
// prints are the core's: MES_USAGE, MES_NUL, MES_INDICE, MES_ABSENT...).
constexpr int MES_TROP = MES_ENTETE;
constexpr int MES_DOUBLE = 18;  // a work table was doubled
constexpr int MES_VAR = 84;     // var without a value

// A vector whose squared length is at most this is left as it is.
constexpr double SEUIL_NORME = 0.0001;

// ---- vectors and matrices ----------------------------------------------------
// Vectors are 3 floats; 4 x 4 matrices are 16 floats in column-major order,
// m[4 * colonne + ligne]. Sums are made in double and stored as float.
void normer(const float* in, float* out);
double dist2(const float* a, const float* b);
double module(const float* v);
double produit_scalaire(const float* a, const float* b);
void produit_vectoriel(const float* a, const float* b, float* out);
double angle(const float* a, const float* b);  // radians, 0..pi
void matrice_identite(float* m);
void matrice_produit(const float* a, const float* b, float* out);  // out = a b
void matrice_applique(const float* m, const float* in, float* out);
void matrice_translation(const float* t, float* m);
// Rotation by the angle of (c, s) about the line through `pivot` along
// `axe`, right-handed. An axis too short to normalise gives the identity.
void matrice_axe(const float* pivot, const float* axe, float c, float s, float* m);

// ---- the volume --------------------------------------------------------------
// Fields of the Objet that a volume uses: sous_type is its form, f1..f4 the
// grid's nx, ny, nz and the closed flag.
inline int vol_forme(const Objet* o) { return o->sous_type; }
inline int vol_nx(const Objet* o) { return static_cast<std::int16_t>(o->f1); }
inline int vol_ny(const Objet* o) { return static_cast<std::int16_t>(o->f2); }
inline int vol_nz(const Objet* o) { return static_cast<std::int16_t>(o->f3); }
inline int vol_ferme(const Objet* o) { return static_cast<std::int16_t>(o->f4); }
void vol_grille_fixe(Objet* o, int forme, int nx, int ny, int nz, int ferme);
bool forme_grille(int forme);
bool est_volume(const Objet* o);

// Attribute keys: n pairs (env, ordinal) laid end to end.
mot* vol_attribut(Objet* o, int n, const mot* paires);   // header, or null
mot* vol_valeur(Objet* o, int n, const mot* paires);     // value Bloc, or null
inline mot* valeur_de(mot* attribut) { return attribut ? attribut + attribut[2] : nullptr; }
inline bool attribut_valide(const mot* a) { return a && a[1] != 0; }
// Makes (or reuses in place, or replaces in the same slot) the attribute of
// that key with a value of `lg` words, ready to be filled; its validity word
// is 0 until the caller sets it. Null after a reported failure.
mot* attribut_prepare(Objet* o, int n, const mot* paires, mot lg);
int attribut_supprime(Objet* o, int n, const mot* paires);  // 1 removed, 0 absent

// Vertices: pointer to the floats of (b86), with the count and the floats per
// vertex. Null when absent (and then *nb = 0).
reel* vol_som(Objet* o, int* nb, int* d);
mot* vol_fac(Objet* o);  // the BLOC_LISTE value of (b15), or null
// Checks that a face list is well formed and names vertices 1..nb_som only.
// 0, or -1 after a numbered message.
int fac_verifie(const mot* fac, int nb_som);
// First contour of a face (a composite face gives its outer contour).
const mot* face_contour(const mot* face, int* k);
inline const mot* face_suivante(const mot* face) { return face + face[0]; }

// Appearance. The getters give the volume's values or the defaults.
const reel* vol_coul(Objet* o);   // 3 floats
const reel* vol_illum(Objet* o);  // type, diffuse, specular, shininess, transparency
// Colour of face or vertex i (from 1) from a (b17, b15) or (b17, b32) value;
// null when that record has no colour of its own.
const reel* coul_element(const mot* valeur, int i);
int vol_coul_ecrit(Objet* o, const float* rgb);
int vol_coul_element_ecrit(Objet* o, int selecteur, int i, const float* rgb);  // b15 or b32
int vol_illum_ecrit(Objet* o, const float* v, int n);

// Writes (b86) and (b15); a new face list deletes the tables that follow from
// it (neighbours, edges), new vertices mark the derived data stale.
int vol_som_ecrit(Objet* o, const float* v, int nb, int d);
int vol_fac_ecrit(Objet* o, const mot* fac);  // a BLOC_LISTE of faces
void vol_fac_change(Objet* o);
// After vertices were changed in place: what follows from them goes stale.
void vol_som_change(Objet* o);

// Marks the derived data of the volume (of all volumes when null) with the
// value: 0 makes it stale.
void invalider_vol(Objet* o, mot valeur);

// ---- generators ------------------------------------------------------------------
// Face and vertex normals: the attribute (b63, b15) or (b63, b32), or null.
// `sommets` null means (b86); otherwise it has the same count and stride.
// force != 0 rebuilds valid data; precision > 1 takes one grid vertex in p.
mot* gen_normale_fac(Objet* o, const reel* sommets, int force, int precision);
mot* gen_normale_som(Objet* o, const reel* sommets, int force);
// Floats per normal: 3, or 6 when the vocabulary's normale has 6 values (the
// face centre or the vertex follows the normal).
int pas_normale();
// Normal of one face's first contour into out[3], centre into centre[3].
void normale_face(const mot* face, const reel* som, int d, float* out, float* centre);

// Neighbours (b46, b15, b32): for each vertex a count c then c - 1 faces.
// force 0 reuses, 1 rebuilds, 2 searches the faces even for a grid.
mot* gen_voisin_fac_som(Objet* o, int force);
mot* gen_voisin_grille(int nx, int ny, int ferme);  // fresh value Bloc
// Edges (b51): e pairs of vertex numbers. ferme > 0 closes contours of 3 or
// more, < 0 adds every pair without merging.
mot* generer_segment_vol(Objet* o, int imprimer, int ferme, int force);
mot* generer_segment(int nx, int ny, int nz, int ferme);  // fresh value Bloc
int nb_segments_grille(int nx, int ny, int nz, int ferme);
// Faces of a grid, as a fresh attribute (b15) header included.
mot* gen_fac_ouvert(int nx, int ny, int nz);
mot* gen_fac_fermer(int n, int m);
mot* gen_fac_grille(int nx, int ny, int nz, int ferme);
// A coarser face list: a fresh attribute (b15).
mot* gen_fac_precision(int nx, int ny, int ferme, int precision, Objet* o, const mot* faces);
// Same shape as `faces`, each vertex number replaced by the word of the
// vertex's address (the vertices must live in the arena).
mot* ad_poi_facette(const mot* faces, reel* sommets, int d, int nb_som);
// Centre of gravity (a42), or of the displayed copy (a42, a46): 9 floats.
mot* gen_centre(Objet* o, int force);
mot* gen_centre_copie(Objet* o, int force);
void centre_sommets(const reel* som, int n, int d, float* c);
// Displayed vertices (b60, b86): (b86) through the matrix (a112).
mot* gen_som_affiche(Objet* o, int force);
// The derived data in the order every user relies on; prints the failing
// step's name and gives -1.
int vol_genere(Objet* o);

// ---- transformations ---------------------------------------------------------------
struct Transfo {
  int op = 0;                 // ordinal of the operation
  float pivot[3] = {0, 0, 0};
  bool pivot_donne = false;   // else the centre of gravity of each target
  float v[3] = {0, 0, 0};     // vector of dep, per-axis factors of hom
  float angle = 0;            // radians
  float f = 1;                // factor, or amplitude of a shake
  float axe[3] = {0, 0, 1};   // rota, tord
  float ligne[6] = {0, 0, 0, 0, 0, 0};  // hom about a line: two points
  bool ligne_donnee = false;
  float rayon = -1;           // radius of influence; negative: everywhere
  float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};  // OP_MATRICE
};
// Which vertices move: all when both lists are empty.
struct Selection {
  const int* sommets = nullptr;
  int nb_sommets = 0;
  const int* faces = nullptr;
  int nb_faces = 0;
};
// Step of an animation of nb steps: divides angle, vector and factors.
void transfo_pas(Transfo* t, int nb);
// The loop over vertices of a raw array; the pivot must be set. `poids`
// (one float per vertex, or null) weighs a translation. 0 or -1.
int transformer_sommets(reel* som, int n, int d, const Transfo* t, const int* liste, int nb,
                        const reel* poids);
// One vertex, out may be in.
void transformer_point(const Transfo* t, const reel* in, reel* out);
// On a volume: (b86), or the displayed copy (b60, b86) when `affiches`;
// normals and centres are marked stale after the change.
int transformer_vol(Objet* o, const Transfo* t, const Selection* sel, bool affiches);
// Composes the operation into a 4 x 4 matrix (m = T m). 1 when the operation
// has no matrix (shakes, radius-dependent ones), 0 when done.
int transformer_matrice(const Transfo* t, float* m);
// Turns t into the rotation about the line of a control grid's bounds.
int tirer_prepare(Objet* grille, Transfo* t);
// Random value in 0..1 from the table of start-up, walked in order.
float alea_suivant();

// ---- curves -----------------------------------------------------------------------
struct ParamCourbe {
  int s = 0;      // points added between two control points
  float t = 1;    // tension
  int f = 0;      // smoothing flag (no effect)
};
int courbe_nb(int n, int s);  // -1 when too many for a Bloc
// Writes courbe_nb(n, s) rows of pas_s floats into sortie; -1 on failure.
int courbe_points(const ParamCourbe* p, int n, int pas_e, int pas_s, const reel* points,
                  const mot* tensions, reel* sortie);
// The curve as an attribute (b86) whose tail has courbe_nb rows of pas_s
// columns; into dest when it is given and long enough (word 0), else fresh.
mot* courbe(mot* dest, const ParamCourbe* p, int n, int pas_e, int pas_s, const reel* points,
            const mot* tensions);

double loi_valeur(double v, int loi, const mot* table, int n, int i, int d);
int redresser_joint(reel* a, reel* b, reel* c, const int* liste, int nb_liste, int i, int n,
                    int pas, reel* points, float angle_max, int mode, int limite);
int reduire_ligne(const reel* points, int n, float seuil, mot* sortie, const mot* limite);
int repartir_ligne(reel* points, int n, int pas, const int* indices, int nb_indices,
                   const ParamCourbe* p, bool ferme);
// Lines are BLOC_REEL of 3 floats a point. The mode follows from which
// arguments are given: options (joint correction), seuil (thinning), ligne
// (resampling to nombre points) or nombre alone (even spreading).
struct Ajust {
  const mot* nombre = nullptr;
  const ParamCourbe* params = nullptr;
  const mot* seuil = nullptr;
  mot* ligne = nullptr;
  const mot* options = nullptr;  // angle, mode
  int loi = 0;
  const mot* table = nullptr;
  bool ferme = false;
};
int ajust_1(mot* dest, mot* travail, const mot* limite, const Ajust* a);

// ---- shapes ---------------------------------------------------------------------
// Each fills (b86) and (b15) of a volume and sets its form.
int vol_grille(Objet* o, int nx, int ny, int nz, int ferme, float dx, float dy, float dz);
int vol_cube(Objet* o, float cote);
int vol_sphere(Objet* o, int meridiens, int paralleles, float rayon);
int vol_cylindre(Objet* o, int n, float r_bas, float r_haut, float hauteur, bool bouchons);
int vol_tore(Objet* o, int n, int m, float r_grand, float r_petit);

// ---- handlers of the command dispatch ---------------------------------------------
// Each takes the phrase on the evaluation stack, the assigned value (null for
// a read) and the stack limit; it writes its value over the phrase, or sets
// word 0 to 0; it gives < 0 on failure (-12: stack full), 0 when done, and
// POUR_ATTRIBUT for a phrase it leaves to the attribute routine.
//
// The transformations: vol(1) rotx(30), dep(1,2,3) vol(1,2), vol(1) homo(2)...
int transformer(mot* bloc, mot* valeur, const mot* limite);
// generer vol(1) normale fac: derived data on demand.
int generer(mot* bloc, mot* valeur, const mot* limite);
// vol(1) som, vol(1) som = 0,0,0, 1,0,0 ..., vol(1) som(2) = x,y,z (b86); seq (b22).
int sommets_commande(mot* bloc, mot* valeur, const mot* limite);
// vol(1) fac, vol(1) fac = 1,2,3, 0, 1,3,4 ..., vol(1) fac(2) = 1,2,3.
int faces_commande(mot* bloc, mot* valeur, const mot* limite);
// vol(1) grille(nx, ny), cube(2), sphere(1, 16, 8), cylindre, cone, tore.
int forme_commande(mot* bloc, mot* valeur, const mot* limite);
// vol(1) courbe(4, 1): a smooth curve through the vertices; courbe(4) som(...) a value.
int courbe_commande(mot* bloc, mot* valeur, const mot* limite);
// vol(1) ajust(20): resampling, thinning, joints, even spreading of a line.
int ajust_commande(mot* bloc, mot* valeur, const mot* limite);

// ---- state ---------------------------------------------------------------------
struct Geom {
  int pas_normale = 0;  // 0: from the vocabulary
  long alea = 0;        // next entry of the random table
  int dernier = 0;      // number of the last volume transformed, for a phrase
  bool dernier_vu = false;  // that names none
};
extern Geom geom;
