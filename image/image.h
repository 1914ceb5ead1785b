// Images: the image block, image objects and the working image 0 that
// stands for the window, row access shared by images and the window, copy
// and rescale of rectangles, and the image files (.raw, .bmp, .png, .jpg,
// .ima).
//
// The image block (tag 28) is a Bloc of words:
//   0 length in words      1 tag 28      2 number of the file's image, or 0
//   3 0      4 width w      5 height h      6 byte count w x 3 x h
//   from word 7: the pixels, planar per row: row y holds w red bytes, then w
//   green, then w blue, then row y + 1. Row 0 is the window's bottom row.
// A block made here has (w x 3 x (h + 1)) / 4 + 8 words, so a spare row
// stays behind the pixels. w and h are at least 1, and w x h at most
// IMA_PIXELS_MAX.
//
// An image object is an Objet of type b28 (BLOC_IMAGE, env 1) whose `donnees` is the
// block. Object 0 is the working image: the window's picture when a window
// exists, an ordinary image of the window's size otherwise, so that
// headless scripts draw into it, copy it and save it.
#pragma once
#include <cstdint>
#include <string_view>

#include "core/bloc.h"
#include "core/objet.h"

constexpr long IMA_PIXELS_MAX = 1L << 27;  // 134 M pixels, 400 MB of bytes
constexpr int IMA_ENTETE = 7;              // first word of the pixels

using octet = std::uint8_t;

// ---- the block ---------------------------------------------------------
inline int ima_l(const mot* b) { return b[4]; }
inline int ima_h(const mot* b) { return b[5]; }
inline octet* ima_octets(mot* b) { return reinterpret_cast<octet*>(b + IMA_ENTETE); }
inline const octet* ima_octets(const mot* b) { return reinterpret_cast<const octet*>(b + IMA_ENTETE); }
// The red plane of row y; green is w bytes further, blue 2 w.
inline octet* ima_rouge(mot* b, int y) { return ima_octets(b) + 3L * b[4] * y; }
inline const octet* ima_rouge(const mot* b, int y) { return ima_octets(b) + 3L * b[4] * y; }
// True for a w x h this system holds.
bool ima_taille_ok(long w, long h);
// A new zeroed block of w x h, or null after a message (size refused: 1:122;
// no memory: 0:28).
mot* ima_alloue(long w, long h);
// True when b is a whole image block (tag, sizes and length agree).
bool ima_valide(const mot* b);

// ---- image objects -------------------------------------------------------
// Image n (0 is the working image), or null; nothing is printed.
Objet* ima_objet(int n);
mot* ima_bloc(int n);
// Makes `b` the block of image n, creating the object if need be and
// releasing the block it held. -1 (message 0:15) when the table is full;
// the block is then released.
int ima_installe(int n, mot* b);

// ---- the working image 0 (the window) --------------------------------------
// Its block; made at the window's size on first use if start-up made none.
mot* ima_ecran();
// Rebuilt at w x h (a new window size): the old pixels are dropped. 0, or -1
// after a message, the old block kept.
int ima_ecran_retaille(int w, int h);
// The window's side, registered by the display when a window exists: before
// the working image is read, `avant_lecture` fills it from the frame; after
// it was written or replaced, `apres_ecriture` shows it. A file read into
// the working image replaces its block with one of the file's size: the
// display then finds ima_ecran() of another size than the window and
// resizes the window to it. Null hooks: nothing to do.
struct ImaFenetre {
  void (*avant_lecture)() = nullptr;
  void (*apres_ecriture)() = nullptr;
  // `lire("damier.bmp") tex(3)`: the file as the texture of image 3, given
  // to the display's table of textures (name, extension, image): 0 or -1.
  int (*lire_texture)(const char*, const char*, int) = nullptr;
};
extern ImaFenetre ima_fenetre;

// ---- row access ------------------------------------------------------------
// n pixels from (x, y) of the image block, or of the working image when
// `image` is null, into (from) three byte arrays. Out of bounds clips:
// pixels outside are left alone in the arrays on a read and not written on
// a write. The count of pixels moved.
int lire_ligne(int x, int y, int n, octet* r, octet* g, octet* b, const mot* image);
int ecrire_ligne(int x, int y, int n, const octet* r, const octet* g, const octet* b, mot* image);

// ---- copy and rescale --------------------------------------------------------
// A rectangle of pixels, corners included: x1 <= x2, y1 <= y2.
struct Rect {
  int x1 = 0, y1 = 0, x2 = -1, y2 = -1;
  int l() const { return x2 - x1 + 1; }
  int h() const { return y2 - y1 + 1; }
};
// The source rectangle of `src` onto the destination rectangle of `dst`,
// both already clipped: same size copies; reduction by cell means;
// enlargement by the crossed bilinear weights; mixed cases by nearest
// sampling. When src == dst the source goes through a temporary first.
// 0, or -1 after message 0:28.
int ima_copie(const mot* src, Rect rs, mot* dst, Rect rd);
// Clips r to the w x h image after putting its corners in order; false when
// nothing is left.
bool rect_coupe(Rect* r, int w, int h);

// ---- files -------------------------------------------------------------------
// The name split at the last point; with no point the extension is "ima".
struct NomFichier {
  std::string_view nom, ext;
};
NomFichier nom_coupe(std::string_view chemin);
// Reads the file into a new block (the format by the extension); null after
// the message (0:36 no file, 1:120 unknown format, 1:121 bad contents,
// 1:122 size refused, 0:28 or 0:2 no memory).
mot* ima_lit_fichier(std::string_view chemin);
// Writes the block to the file, format by the extension. 0, or -1 after the
// message (0:36, 0:37, 1:120). `.raw` and `.ima` are written under the name
// with their extension as given.
int ima_ecrit_fichier(const mot* b, std::string_view chemin);
// The formats one by one, on a full path.
mot* ima_lit_raw(const char* chemin);
mot* ima_lit_bmp(const char* chemin);
mot* ima_lit_png(const char* chemin);
mot* ima_lit_jpg(const char* chemin);
mot* ima_lit_ima(const char* chemin);
int ima_ecrit_raw(const mot* b, const char* chemin);
int ima_ecrit_bmp(const mot* b, const char* chemin);
int ima_ecrit_png(const mot* b, const char* chemin);
int ima_ecrit_jpg(const mot* b, const char* chemin, int qualite = 90);
int ima_ecrit_ima(const mot* b, const char* chemin, int numero = 0);
// Frame numbers in a name: the format is a width and a letter ("4D"): B or b
// binary, O or o octal, X or x upper-case hexadecimal, any other decimal;
// zero padded to the width, the low digits kept when longer, "-" first for
// a negative number. The length written into `dst` (at most 63 chars).
int nom_numero(char* dst, std::string_view format, long n);

// ---- the commands ---------------------------------------------------------------
// Handlers for the command dispatch: `ima` (b28), and `lire` and `ecrire`
// of images (a14, a33; a phrase with no `ima` answers 1, not handled).
int ima_commande(mot* bloc, mot* valeur, const mot* limite);
int ima_lire_ecrire(mot* bloc, mot* valeur, const mot* limite);
