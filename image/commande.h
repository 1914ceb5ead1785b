// Private to the image commands: the reading of a phrase.
#pragma once
#include <string>
#include <vector>

#include "image/interne.h"

// Ordinals the image commands read in a phrase.
constexpr int B_COUL_IMA = 17;     // fill colour: creates or paints an image
constexpr int B_DIM = 66;          // destination size
constexpr int B_VOL_IMA = 4;       // projection on a volume
constexpr int A_LIRE_IMA = 14, A_ECRIRE_IMA = 33;
constexpr int A_PIXEL_LIT = 41;    // colour read (lim)
constexpr int A_PIXEL_ECRIT = 42;  // colour write (centre)
constexpr int A_PLANCHE = 90;      // contact sheet
constexpr int A_CHERCHE_IMA = 99;  // a search of the image in a file

// The value of an element: its numbers, and a name when one stands in it.
struct Args {
  bool present = false;
  std::vector<float> x;
  std::string nom;
};
// False for a value that is neither numbers nor a name and numbers.
bool lit_args(const mot* e, Args* a);
bool lit_valeur(const mot* v, Args* a);  // the same on a value (null: none)
// The keyword of element e and message 0:81; -1.
int arg_mauvais(const mot* e);

// One side of a copy: an image number (0 the window) and a rectangle.
struct Cote {
  int numero = 0;
  bool rect = false;  // a rectangle was given
  Rect r;
};
// From the argument of an `ima` element: nothing, n, (w, h), (x1, y1, x2,
// y2) or (x1, y1, x2, y2, n). -1 after message 1:123 for other counts.
int lit_cote(const mot* e, Cote* c);

// The contact sheet and the range read, in sequence.cpp.
int ima_planche(const Args& a, int cible, int cw, int ch);
int ima_lit_suite(const Args& a, int premier);
// The image's colours onto the vertices of the volumes listed, in
// projection.cpp.
int ima_projette(int image, Args& vols);
// Where image `image` fits best in the file's picture: x y and the mean
// difference as value, in cherche.cpp.
int ima_cherche(mot* bloc, const mot* limite, int image, const std::string& fichier);
