// Private to the images: message numbers, the shared row buffers and the
// small readers of a phrase's arguments.
#pragma once
#include <cstdio>
#include <string>
#include <vector>

#include "image/image.h"

// Messages of env 1 printed by the images.
constexpr int MES_IMA_FORMAT = 120;    // unknown image format (extension)
constexpr int MES_IMA_FICHIER = 121;   // truncated or corrupt image file
constexpr int MES_IMA_TAILLE = 122;    // image size refused
constexpr int MES_IMA_RECT = 123;      // rectangle refused
constexpr int MES_IMA_BMP = 124;       // BMP depth or compression not read
constexpr int MES_IMA_PIXEL = 125;     // pixel outside the image
// Messages of env 0.
constexpr int MES_IMA_ABSENT = 9;
constexpr int MES_IMA_VALEUR = 81;

// The three rows through which pixels move: grown once to the widest row
// seen, never in a loop.
struct Lignes {
  std::vector<octet> r, g, b;
  bool taille(long n);  // false after message 0:28
};
extern Lignes lignes_ima;

// A block whose pixels are left unset, for a reader that fills them all.
mot* ima_alloue_nu(long w, long h);
// A file reader's failure: the path, then the message; null.
mot* ima_erreur_fichier(const char* chemin, int env, int n);
// Float to a pixel coordinate or size: truncated, and held within +-2^30 so
// that no conversion overflows.
int ima_entier(float x);
