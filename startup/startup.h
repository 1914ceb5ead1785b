// Start-up and environment: keys, environment files, keyword tables, the
// console, the interruption menu and the one way of stopping on a fatal
// error.
#pragma once
#include <string>
#include <string_view>

#include "core/bloc.h"

// ---- keyword tables ------------------------------------------------------
// A keyword is (env, ordinal); its names, state and values come from the
// environment's keyword file.
struct MotCle {
  char* noms;  // NUL-terminated names end to end, closed by an empty one
  int env, ordinal;
  int e1, etat, e3, e4;
  int nv;
  mot* defaut;   // BLOC_REEL of nv rows of 1 column
  mot* courant;  // same shape; read and written in place
};

struct TableMots {
  int nb = 0;
  int place = 0;  // length of the two state arrays: nb, or more (zeros)
  MotCle* mots = nullptr;
  mot* etats_defaut = nullptr;
  mot* etats = nullptr;
  mot* index = nullptr;  // ordinals in the order of the primary names
};

constexpr int MAX_ENV = 8;

struct Vocabulaire {
  TableMots tables[MAX_ENV];
  int nb_env = 0;
  // Values of ordinal 9 of the last table built (b9 with two environments).
  mot* valeurs9_defaut = nullptr;
  mot* valeurs9_courant = nullptr;
};
extern Vocabulaire vocab;

// Loaders; both stop the program on an unreadable file.
int kom_charge(const char* chemin, int env);
int kom_analyse(std::string_view texte, int env);  // the loader's parser
int mes_charge(const char* chemin, int env);
int mes_analyse(std::string_view texte, int env);

MotCle* mot_entree(int env, int ord);
reel* mot_valeur(int env, int ord, int* n);
reel* mot_defaut(int env, int ord, int* n);
mot* mot_bloc_defaut(int env, int ord, int* n);
int mot_dim(int env, int ord);
const char* mot_nom(int env, int ord);
const char* mot_nom_long(int env, int ord);
void mot_imprime(int env, int ord);
MotCle* mot_cherche(const char* texte);
MotCle* mot_cherche_long(const char* texte);
// Length of the name at the cursor if it matches text there, else 0.
int mot_correspond(const char* nom, const char* texte);

void mots_reinit();                // states and values back to defaults
void mots_reinit_etats(bool actifs);  // only states whose default is > 0, or == 0
int mots_liste();                  // all keywords, paged; -1 if the user quit

// Reads a whole file; false if it cannot be opened.
bool lit_fichier(const char* chemin, std::string& texte);

// ---- lexical helpers shared by the file readers ----------------------
// Skips blanks, newlines and comments; counts lines. Null on an open comment
// (message 0:64 printed).
const char* saute_commentaires(const char* p, int* ligne);
bool fin_de_nom(unsigned char c);
const char* lit_nom(const char* p, char* dst, int taille);  // null if too long

// ---- start-up state --------------------------------------------------------
// A path given by a key holds at most 80 characters; its buffer has room
// for the "/" that start-up adds and the closing NUL.
constexpr std::size_t LONG_CHEMIN = 80;
struct Demarrage {
  char chemin_init[LONG_CHEMIN + 2] = "";
  std::string repertoire;  // directory of the vocabulary files (init file's first line)
  char chemin_env[LONG_CHEMIN + 2] = "";
  char chemin_uti[LONG_CHEMIN + 2] = "";
  char machine[81] = "";
  char machine2[81] = "";
  int code_machine = -1;
  std::string fonction_lancement, fonction_boucle;
  bool lancement_vu = false, boucle_vue = false;
  std::string cle_code;
  bool debug = false, graphique = false, sysinfo = false, sans_id = false;
  bool tables_lues = false;  // message printer left its fallback
  long buf = 100000, loc = 1000, eva = 100000, com = 100000, obj = 20000, emp = 10000;
  long esc = 27, mal = 0, compile = 200000;
  std::string version;
  std::string banniere;
  int thread_id = 0;
};
extern Demarrage dem;

// Graphic state prepared before any window exists.
struct Ecran {
  int largeur = 0, hauteur = 0, video_l = 768, video_h = 576;
  bool plein = false;
  float cx = 1, cy = -1, hau = 0;
  int rvb = 8, zbu = 1, ale = 10000, gra = 1, lig = 0;
  int centre_x = 0, centre_y = 0;
  int clip_x0 = 0, clip_y0 = 0, clip_x1 = 0, clip_y1 = 0;
  long pixels = 0, octets_rvb = 0;
  int colonnes_balayage = 0;
  float* aleatoires = nullptr;
  int niveau_couleur = 255;
  int cte_affichage = 0;
  mot* defaut_fac = nullptr;  // the four protected default Blocs
  mot* defaut_som = nullptr;
  mot* defaut_normale_fac = nullptr;
  mot* defaut_normale_som = nullptr;
  unsigned char* lignes[3] = {};
  unsigned char* balayage = nullptr;
  unsigned char* table_balayage = nullptr;
  mot* reserve = nullptr;
  int menus[11] = {};
  int fenetre = -1;
  struct Objet* image_ecran = nullptr;
  unsigned char* rvba = nullptr;
};
extern Ecran ecran;

int demarrer(int argc, char** argv);  // the whole initialisation
[[noreturn]] void arret_fatal(const char* texte);

// ---- console ---------------------------------------------------------------
extern volatile int interrompu;  // set by the interrupt signal
void interruption_installe();
enum { MENU_CONTINUE = 0, MENU_REPRISE = 1 };
int menu_interruption();  // runs the menu after an interrupt
// Reads one line without its newline; -1 at end of input. Runs the menu on
// an interrupt; *reprise is set when the menu asks for the restart point.
int console_lit(char* buf, int taille, bool* reprise);
// Set when the interruption menu sends the run back to the restart point:
// every level returns at once, and the top-level loop clears it.
extern volatile int reprise_demandee;

// ---- the shell ---------------------------------------------------------------
// One call reads a line (or more when `boucle`), compiles and runs it. 1 after
// an escape or the keyword that leaves a pause, >= 0 after success, < 0
// after failure. `niveau` > 0 resets the stacks before each run; `prompt` is
// a message number, 0 for the standard prompt with the command-stack
// reminder; `pile` is where the line's values go.
int shell(int niveau, int prompt, mot* pile, int boucle);
// Compiles and runs a text at the current level, without prompt.
int execute_ligne(const char* texte);
// The history command: mode 1 runs recalled lines at once (exec n).
int histoire(int mode, mot* args);
// One turn of the window's idle routine: the launch text once, then the
// loop text, in rotation, or one line of the shell.
void shell_inactif();
// One turn of the console's top level, when no window runs: at the first
// turn every word of the launch text once, in order; then one line of the
// shell. The loop text is the window's and never cycles here.
void shell_console();
int pause_page(int c);

// ---- the window's road ---------------------------------------------------------
// The window's folder sits above this one, so it offers its entry here when
// it is linked in: the graphic road of the entry, which returns only when no
// window can be opened.
extern void (*entree_fenetre)();
// How a shell call made by the window's idle step reads: `non_bloquante`,
// set just before the call and taken back by it, makes it leave (result 0)
// when no whole line waits, rather than wait; `editeur` says that a line
// editor owns the terminal: it shows that call's prompt and queues whole
// lines, and the call reads only those. Calls made inside a running line
// wait as at the console.
struct LectureConsole {
  bool non_bloquante = false;
  bool editeur = false;
};
extern LectureConsole lecture_console;
// True when a whole line, or the end of the input, waits in the console's
// buffer; reads what is there without waiting.
bool console_ligne_prete();
// True when the input has ended and no line, whole or not, is left.
bool console_fin_seule();
// Queues a line collected by a line editor, as if it had been read.
void console_injecte(const char* ligne);
// The command stack's reminder that the standard prompt shows.
void invite_rappel();
// The launch text once, then the loop text at every call; false when
// neither ran, so that the caller gives its turn to the shell.
bool listes_inactif();
