// Private to the display folder: the command `aff`, its option reader
// `aff_scene`, and the walk over volumes (`aff_vols`, `aff_tous`,
// `aff_vol_1`) that prepares each volume into a Vol_aff for an engine.
//
// An Aff_appel is what the options of one `aff` decided; the walk reads it
// and never writes it. The lists it points at live on the evaluation stack
// or in the caller's frame, for the duration of the command only.
#pragma once
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"
#include "display/moteurs.h"

// Modes of display.
constexpr int MODE_FIL = 0, MODE_POINTS = -9, MODE_NUMEROS = -10, MODE_TEST = -68;
// Methods of display.
constexpr int METHODE_DEFAUT = 0, METHODE_GL = 1, METHODE_BOITE = 2;
// The working volume of `aff` with a list of points.
constexpr int VOL_TEMPORAIRE = -12345;

// Keyword ordinals of list "b" that the display reads (the geometry's
// come with geom.h).
namespace aff_b {
constexpr int FOND = 1, ATTR = 2, VOL = 4, MARGE = 6, AFF = 8, OEIL = 9, VISE = 10, FOC = 11,
              ROUL = 12, PROJ = 13, FAC = 15, COUL = 17, PAS = 18, ECRAN = 19, PAVE = 21, SEQ = 22,
              ILLUM = 23, LUM = 24, ZBU = 25, SORTIE = 26, MOTIF = 27, IMA = 28, ARETE = 29,
              SOMMET = 32, COE = 42, HOMO = 43, ATTACHE = 44, NURBS = 45, SPE = 48, TRA = 49,
              ROND = 50, SEGMENT = 51, RIEN = 52, TEX = 54, AFFICHE = 60, NORMALE = 63, SUBST = 65,
              RAYON = 68, RAPIDE = 69, TRAIT = 76, BORNES = 77, NAPPE = 79, CHOC = 81, SOM = 86,
              AMB = 87, CIN = 88, ANIM = 93, CLEF = 94, AXE = 96, CONTROLE = 103, PIGMENTS = 104,
              GL = 108, VIT = 111, MASSE = 112, FORCE = 113, VUE = 114, TRANSP = 116, PARTIE = 119,
              BRO = 120, CHA = 122, AJUST = 124, NUAGE = 126, AMAS = 132, BOITE = 141, DYN = 150,
              ALP = 152, ANC = 153, DESSIN = 158;
// Keywords of the eye that the vocabulary adds at its end.
constexpr int PROCHE = 171, LOIN = 172, FUI = 173;
}  // namespace aff_b
namespace aff_a {
constexpr int FONC = 6, LISTE = 21, CENTRE = 42, OPT = 50, NUM = 57, GENERER = 68, TEM = 98,
              DEFORME = 101, TRI = 102, PREPARE = 106, MATRICE = 112;
}  // namespace aff_a

// Messages of env 1.
constexpr int M_OEIL_ILLEGAL = 110, M_SOMMET_NON_FINI = 111;

// The state integer of a b keyword (its enable flag): on when positive.
bool drapeau(int ord);

struct Aff_appel {
  int mode = MODE_FIL;
  int methode = METHODE_DEFAUT;
  int recursion = 0;
  float coul[3] = {1, 1, 1};  // 0..1
  bool coul_donnee = false;   // b17 stood in the phrase
  const int* faces = nullptr;  // an explicit list of faces (b15 with a value)
  int nb_faces = 0;
  const int* selection = nullptr;  // the selective list of volumes
  int nb_selection = 0;
  int extra = 0;  // a50 of the phrase
};

// What the displays have done, for the tests and the curious: volumes
// sent to each engine and the last decisions made.
struct Aff_bilan {
  long logiciel = 0, gl = 0, test = 0, boites = 0, sans_faces = 0, nuages = 0, hors_ecran = 0;
  int mode = 0, methode = 0, type = 0;
  bool rapide = false;
  int nlum = 0;
  int n_liste = -1;  // the caller's faces, -1 for none
};
extern Aff_bilan aff_bilan;

// The options of a phrase and the displays they ask for. A non-zero
// `vol_substitue` reads the first element (b8) as vol(vol_substitue).
// 0, or negative.
int aff_scene(mot* bloc, const mot* limite, int vol_substitue);
int aff_vols(const Aff_appel& a, const int* liste, int n);
int aff_tous(const Aff_appel& a, int genre);
int aff_vol_1(const Aff_appel& a, Objet* o, int recursion);

// Points placed as the software engine places the vertices it projects
// into (b13, b32): the point seen from the eye (x, y, z), the divisor w of
// the projection, and its place in the working image (column, row from the
// bottom, depth 0..1). `dimx` x `dimy` is the image.
constexpr int PROJ_PAS = 7;
void aff_projette(const float* som, int n, int d, int dimx, int dimy, float* sortie);

// The numbers of a value: a float or integer Bloc, or a scalar pair; nil
// gives none; false for any other value.
bool aff_nombres(const mot* v, std::vector<float>& x);
