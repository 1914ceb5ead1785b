// The window: one GLUT window whose idle callback runs all the language,
// the keyboard buffer that lets a running tool receive typed commands, the
// mouse and its speed, the console read without blocking while the window
// lives, the GL helpers, and the window's pixels read back into the working
// image.
//
// `mode_interactif` routes the events: 0 is the shell, any other value the
// keyword ordinal of the tool that owns them (16, 74, 85, 127, 156, 161),
// negative the same tool paused. The keyboard buffer holds at most 128
// characters and a terminator; outside capture it holds the last key alone,
// within capture the mark ("<" or "!") at byte 0 and the line in progress.
#pragma once
#include <cstdint>
#include <vector>

#include "core/bloc.h"

struct Objet;

constexpr int CLAVIER_MAX = 128;
constexpr int NB_TOUCHES = 100;
constexpr int NB_MENUS = 11;

struct Fenetre {
  int fenetre = -1;            // GLUT identifier; -1 before the first opening
  int dimx = 0, dimy = 0;      // the displayed size
  int ima_x = 0, ima_y = 0;    // the size the images use
  int mode_interactif = 0;
  char clavier[CLAVIER_MAX + 2] = {};
  int clavier_i = 0;
  bool clavier_capture = false;
  bool echap = true;           // escape leaves a tool (the shell's escape is Escape)
  bool curseur = true;
  // Mouse: last position, last button (-1 none), press position.
  int souris_x = 0, souris_y = 0, souris_z = 0;
  int bouton = -1, appuye = 0;
  int clic_x = 0, clic_y = 0, clic_z = 0;
  // Positions of the speed: [0] the newest, [2] the oldest.
  int prec_x[3] = {}, prec_y[3] = {}, prec_z[3] = {};
  float vitesse[3] = {}, accel[3] = {};
  long frequence = 100;        // unit of the mouse clock, per second
  std::int64_t horloge_depart = 0;
  int menus[NB_MENUS] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  // The two root menus made at each opening: the "exec" list's and the
  // "menu" list's; -1 when none.
  int racines[2] = {-1, -1};
  long images = 0;             // idle steps run since the opening
  // Set by a tool that ends by itself: the end of the console's input
  // waits for it to give the events back before it ends the program.
  bool outil_fini_seul = false;
  bool glut_pret = false;
};
extern Fenetre fen;

// A tool that owns the events in its mode. Any member may be null: a null
// step does nothing, a null exit makes escape fall back to the shell.
struct Outil {
  int (*pas)() = nullptr;  // one frame; below 0 makes the tool leave its mode
  void (*sortie)() = nullptr;
  void (*souris)(int bouton, int etat, int x, int y) = nullptr;
  void (*mouvement)(int x, int y) = nullptr;
  void (*passif)(int x, int y) = nullptr;
  void (*affiche)() = nullptr;
  void (*projection)() = nullptr;  // after a reshape, for the 2D tools
};
void outil_enregistre(int mode, const Outil& o);
const Outil* outil(int mode);

// Called once by the program's entry: offers the window's road to the
// start-up.
void fenetre_enregistre();
// Opens the window (or destroys and opens it again) and, the first time,
// enters the event loop. Returns only when no window could be opened, or
// when the window was closed from outside: the console shell goes on.
void fenetre_ouvrir();
// Destroys the window and its menus and makes it again, inside the loop.
void fenetre_rouvrir();
// Full screen, when `demande` or the start-up setting (win=ful) asks for it;
// the real-time loop calls it at its start. True when it was asked.
bool plein_ecran(bool demande);
// What a chosen entry of a root menu runs (the menus' own folder sets it):
// the root's index (0 "exec", 1 "menu") and the entry's value.
extern void (*menu_choisi)(int racine, int valeur);
// A new GLUT menu whose choices go to menu_choisi with that root's index:
// the menus' folder makes the roots' submenus with it when it rebuilds them.
int menu_racine_cree(int racine);
// Run at the end of each opening of the window, the two roots made (the
// menus' folder builds the shell's menu there); null does nothing.
extern void (*apres_ouverture)();

// One turn of the idle callback; true when it found something to do.
bool pas_inactif();

// ---- keyboard ---------------------------------------------------------------
void clavier_touche(unsigned char c);  // a character from the window
void clavier_vide();
// The end of a frame: runs a finished "!" line, looks a finished "<" line
// or a single key up in the key table.
bool commande_clavier();  // true when a line or a binding ran
// The language's reading: a key, the text of a finished "<" line, or empty.
// Returns the byte count written into dst (at most taille - 1).
int clavier_lire(char* dst, int taille);
// Binds a key name (at most 24 characters) to a function name; -1 when the
// table is full.
int touche_lie(const char* nom, const char* fonction);
void touches_vide();

// ---- mouse ------------------------------------------------------------------
void souris_bouton(int bouton, int etat, int x, int y);
void souris_mouvement(int x, int y);
void souris_passif(int x, int y);
void souris_vitesse();
// Ticks since the stored start scaled by `rate` / 1000; a non-zero `reset`
// stores the ticks and gives 0.
long horloge(int reset, long rate);
std::int64_t ticks_ms();

// ---- the window's size and its GL helpers -------------------------------------
// The reshape callback; a zero or negative size is refused with a warning.
void Reshape_Func(int w, int h);
void gl_avant();   // draw and read the front buffer
void gl_arriere(); // draw and read the back buffer
void gl_echange();
void gl_profondeur(bool oui);
void gl_sans_lumiere();
void fond_ecran(float r, float g, float b);
void entree_outil_2d();  // a 2D tool takes the window
void projection_2d();    // the 2D projection over the viewport
// Reads the window's pixels into the working image (object 0) and its RGBA
// buffer. 0, or -1 without a window.
int fenetre_lit_image();
// Draws the working image 0 into the window; -1 when sizes differ or no window.
int fenetre_montre_image();
// Rebuilds the working image at a new size; -1 (message 0:28) leaves the
// old one.
int image_ecran_taille(int w, int h);

// ---- the console while the window lives ------------------------------------
// One turn of the console: at a terminal the line editor reads the bytes
// that wait, and a finished line runs as one call of the shell; otherwise a
// whole line, when one waits, runs the same way. True when a line ran.
bool console_pas();
void console_fin();  // gives the terminal back to the console's own mode

// The command aff and the eye's commands; registered at start-up, since
// they draw into the working image with or without a window.
void aff_enregistre();

// Language handlers; registered when the window opens.
void commandes_fenetre_enregistre();
void commandes_gl_enregistre();  // lights and fog

// ---- the OpenGL frame of the real-time loop -----------------------------------
// The runtime form of a volume: made once by vol_rt_cree when a loop starts,
// read by aff_rt at every frame, freed by vol_rt_libere. The loop places it
// through pivot, rot, echelle and rotation, chains it with lead and suiv,
// and may rewrite `som` in place; after such a rewrite it calls
// vol_rt_som_change so that the normals and the GL buffers follow.
//
// Invariants: `som` holds ns x dim floats and is the record's own; every
// face and edge names vertices 1..ns (checked when the record is made);
// face colours, vertex colours and texture coordinates are copied at build.
// The GL buffers are made by the first frame that draws the record, with
// the window's context current, and go with the record.
struct Vol_rt_gl;  // the drawing data, private to the engine
struct Vol_rt {
  int numero = 0;
  int type = 0;       // form of the volume (b86 points, b79, b132 cloud...)
  int affiche = 1;    // -1 never drawn (points), 0 matrix effects only
  int ns = 0, ns_affiche = 0, dim = 3;
  float* som = nullptr;  // ns x dim floats
  int ne = 0, nf = 0;
  bool a_coul = true;    // false: white
  float coul[3] = {1, 1, 1};
  bool a_illum = true;   // false: 1, 1, 0, 0, 0
  float illum[5] = {1, 1, 0, 0, 0};
  int tex = -1;          // GL texture name, negative for none
  int tex_ima = 0;       // the image its (b54) names, 0 for none
  float pivot[3] = {0, 0, 0};
  float rot[3] = {0, 0, 0};  // Euler angles in degrees, in the order `ordre`
  int ordre = 312;           // digits 1 x, 2 y, 3 z read left to right
  float echelle[3] = {1, 1, 1};
  float rotation[4] = {0, 0, 0, 1};  // degrees, then the axis
  bool garde_matrice = false;        // read the model matrix back after placing
  float matrice[16] = {};
  bool porte = false;          // carried by a skeleton: drawn by its carrier
  float ancre[3] = {0, 0, 0};  // the anchor added to its place
  Vol_rt* lead = nullptr;      // the carrier of this one, at its vertex lead_som (from 1)
  int lead_som = 0;
  int suiv_nb = 0;
  Vol_rt** suiv = nullptr;     // drawn after this one, under its matrix
  Vol_rt* instance = nullptr;  // a cloud's volume drawn at each vertex
  float instance_pas = 0;      // degrees the instance turns on from vertex to vertex
  Vol_rt_gl* gl = nullptr;
};
// Null after a numbered message (no vertices, bad faces, no memory).
Vol_rt* vol_rt_cree(Objet* o);
// The same from vertices, faces and edges made elsewhere (a working grid);
// colours, lighting and textures still come from the object.
Vol_rt* vol_rt_cree_de(Objet* o, const reel* s, int ns, int d, const mot* fac, const mot* aretes);
void vol_rt_libere(Vol_rt* r);
void vol_rt_tous_libere();
void vol_rt_som_change(Vol_rt* r);
// Adds a follower; -1 (message 0:28) without memory.
int vol_rt_suiveur(Vol_rt* chef, Vol_rt* suiv);
// A NURBS surface of nu x nv control points (the vertices, cubic in both
// directions, clamped uniform knots); -1 with a message when the counts do
// not match the vertices.
int vol_rt_nurbs(Vol_rt* r, int nu, int nv);
// The surface's sampling: u and v samples per unit of each parameter, or
// when they are not both positive, `pas` the largest length in pixels of a
// sampled edge; none positive keeps GLU's own. -1 with a message for a
// value that is not finite or not a record with a surface. Each value is
// bounded to 0..256.
int vol_rt_nurbs_pas(Vol_rt* r, float u, float v, float pas);
// A surface of lines (type b79) follows other records: its vertices are the
// sources' vertices in turn, through each source's placing of the frame
// (a source drawn earlier in the frame gives this frame's, a later one the
// last frame's), and a pin sets vertex `som` (from 1) to the point p fixed
// in the frame of `autre`. -1 with a message for a record of another type,
// a vertex out of range or no memory.
int vol_rt_source(Vol_rt* nappe, Vol_rt* source);
int vol_rt_epingle(Vol_rt* nappe, int som, Vol_rt* autre, const float* p);
// The records aff_rt(null) draws in that order; an empty span goes back to
// all records in their order of making.
void vol_rt_selection(const Vol_rt* const* liste, int n);
// Draws one record, or with null every record. 0, or -1.
int aff_rt(Vol_rt* r);

// ---- lights and fog ----------------------------------------------------------------
// Prints the state of every GL light (the reading of `lum` alone).
void lum_voir();
struct Brouillard {
  bool actif = false;
  int loi = 0;  // 0 linear, 1 exponential, 2 exponential squared
  float coul[4] = {0, 0, 0, 1};
  float densite = 1, debut = 0, fin = 1000;
};
extern Brouillard brouillard_etat;
void brouillard_applique();  // the state into GL

// ---- noise and pigments -------------------------------------------------------------
// The lattice noise's tables, built once by Initialize_Noise on the first
// use of a pigment (seed 0: the same at every run).
constexpr int BRUIT_HASH = 4096, BRUIT_RTABLE = 267, BRUIT_SINUS = 1000;
struct Bruit {
  bool pret = false;
  std::uint16_t hash[BRUIT_HASH];   // a permutation of 0..4095
  double rtable[BRUIT_RTABLE];      // -1..1
  double sinus[BRUIT_SINUS];        // sin(i / 1000 turn)
  double vecteurs[10][3];           // unit vectors from the noise
};
extern Bruit bruit;
void InitTextureTable();
void InitRTable();  // builds `hash` first
void Initialize_Noise();
void Free_Noise_Tables();
// Three components of noise, each about -1..1, continuous in the point.
// Any double is accepted: a non-finite coordinate counts as 0.
void noise_vec(double* out, double x, double y, double z);
void turbulence_vec(double* out, double x, double y, double z, double omega, double lambda, int octaves);

// ---- pigments ------------------------------------------------------------------------
// A pigment colours the points of a face in the software renderer from the
// lattice noise. Fields in record order: those after `phase` are filled,
// in this order, by the values of a list element past the fifth.
// A colour map: up to 8 stops of position (increasing, 0..1) and colour.
struct Carte_coul {
  int n = 0;
  float pos[8] = {};
  float rgb[8][3] = {};
};
// Entry i (0..90) of the maps, or null.
const Carte_coul* carte_coul(int i);
struct Pigment {
  int type = 0;     // 1..19 once post-processed; -1 the colour form (c = 10)
  int flags = 0;    // bit 3: post-processed
  int octaves = 6;
  double omega = 0.5, lambda = 2.0, frequence = 1.0, phase = 0;
  double turbulence[3] = {0, 0, 0};
  double champs[4] = {0, 0, 0, 0};  // further parameters, by type
  double rapports[3] = {0.5, 0.5, 0.5};
  const Carte_coul* carte = nullptr;
  float coul[3] = {0, 0, 0};  // the colour of the c = 10 form
  char nom[32] = {};          // a string element after it names it
  const mot* ima = nullptr;   // the image of the texture form (type -2)
  const std::uint8_t* rgb = nullptr;  // or, before it, the table's pixels
  int rgb_l = 0, rgb_h = 0;
};
constexpr int PIGMENT_FAIT = 8;       // bit 3 of flags
constexpr int PIGMENTS_MAX = 100;     // active for one face
constexpr int PIGMENT_TYPES = 19;
constexpr int CARTES_NB = 91;         // entries 0..90; -1 is the type's own
Pigment* Create_Pigment();            // a fresh record from the pool
float* Create_Colour();               // 8 zeroed words
void Post_Pigment(Pigment* p);
// The colour (0..1) of the point p (object space) under one pigment.
void pigment_couleur(const Pigment& g, const float* p, float* rgb);
// The colour of a list of pigments: each in turn laid over the result by
// its first ratio (the first alone gives it whole).
void pigments_couleur(const Pigment* g, int n, const float* p, float* rgb);
// Reads a list of pigments (the value of (b104) or one face's element of
// (b104, b15)) into `out`: float vectors are pigments, a string names the
// one before it, other values are passed over. The count read, or -1 after
// a message (an entry out of range: message 1:14; more than PIGMENTS_MAX).
int pigments_lit(const mot* valeur, Pigment* out, int max);
// The records made by Create_Pigment since the last release.
void pigments_libere();
// The display of a volume's pigments: the (b104) list and each face's list
// of (b104, b15), read when flag [104] is on; reused from one volume to the
// next. 0, or -1 after a message.
struct Pig_liste {
  const Pigment* p = nullptr;
  int n = 0;
};

// ---- textures --------------------------------------------------------------------------
constexpr int TEX_MAX = 10000;
// Images of kind b28 into GL textures (all images when `image` is 0), with
// flag [54] on; an image already made is left alone. 0, or -1 (no memory).
int textures_creer(int image);
// Reads name.extension ("raw", "bmp", "jpg" or "png", in these cases only)
// and, with a non-zero `selecteur`, makes it the texture of that image,
// replacing the old one only once the new pixels exist. 0, or -1 after a
// message.
int charger_texture(const char* nom, const char* extension, int selecteur);
int texture_nom(int image);  // the GL name of an image's texture, or -1
// The pixels of an image's entry in the table (3 bytes a pixel, row 0
// first), which a file read may have replaced; null when it has none.
const std::uint8_t* texture_pixels(int image, int* w, int* h);
int textures_nb();
long textures_noms_faits();  // GL names made since the start
void textures_libere();
// `lire("damier.bmp") tex(3)` of the language reaches charger_texture.
void textures_enregistre();
// Every runtime record whose (b54) names `image` takes the GL name `nom`.
void vol_rt_texture(int image, int nom);
// Texture coordinates of the volume's faces, 2 floats a corner in the face
// walk: by grid position (gen_), by each face's own plane (det_, mode 1).
int gen_mappe_som_vol(Objet* o, int nx, int ny, std::vector<float>& out);
int det_mappe_som_vol(Objet* o, int mode, std::vector<float>& out);
// The volume's (b54): its image number and its corners' coordinates, the
// ones the attribute gives (2 floats a vertex after the image) or else the
// two rules above. 0, 1 with no texture list, -1 when no coordinates can be made.
int vol_mappe(Objet* o, std::vector<float>& out, int* image);
// The volume's texture lists, (b54) and the per-face (b54, b15) or
// (b15, b54): `ima` gets per face the image it shows (0: none), and stays
// empty when no face has one; `toutes`, when given, every image the lists
// name. 0, or -1 after a message: "%s: " or "%d: " and message 0:9 for an
// image that does not exist, "%d: " and message 0:105 for a list longer
// than TEX_FACE_MAX.
constexpr int TEX_FACE_MAX = 100;
int vol_textures(Objet* o, int nf, std::vector<int>& ima, std::vector<int>* toutes = nullptr);
