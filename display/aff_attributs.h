// Private to `aff_vol_1`: what the walk over one volume's attribute list
// found. Pointers point into the volume's attribute blocks (value Blocs,
// header included) and are valid until the volume changes; none is owned.
#pragma once
#include "core/bloc.h"
#include "core/objet.h"

struct Aff_attributs {
  const mot* som = nullptr;      // (b86)
  const mot* som_aff = nullptr;  // (b60, b86): replaces the stored vertices
  const mot* fac = nullptr;      // (b15)
  const mot* aretes = nullptr;   // (b51)
  const mot* proj = nullptr;     // (b13, b32) as the user gave it
  const mot* coul = nullptr;     // (b17)
  const mot* c_fac = nullptr, *c_som = nullptr;  // (b17, b15), (b17, b32)
  const mot* illum = nullptr;    // (b23)
  const mot* lum = nullptr;      // (b24): the volume's own lights
  const mot* n_fac = nullptr, *n_som = nullptr;  // stored normals, when valid
  const mot* remplace = nullptr; // (b4) or (b94): other objects stand for it
  const mot* vues = nullptr;     // (b114)
  const mot* boite = nullptr;    // (b141)
  float marge = 0;               // (b6)
  bool marge_donnee = false;
  float decalage[2] = {0, 0};    // (b18): screen offsets
  bool decale = false;
  int precision = 1;             // a50, or (b63)'s first float
  int zbu = -1;                  // (b25)
  int methode = -1;              // (b108)
  bool tri = true;               // a102
  bool rapide = true;            // cleared by per-face attributes and effects
  bool besoin_n_fac = false, besoin_n_som = false;
  bool transp_variable = false;  // (b23, b15) or (b23, b32)
  bool nuage = false;            // (b27, b32): placed at vertices
  bool image = false;            // (b79, b27): shown by the image display
  int gardes = 0;                // attributes read and kept for later effects
};

// Walks the attribute list of `src` (the volume, or the one that stands
// for its attributes) for a display in `mode` of volume number `numero`.
// 0, or negative when an attribute abandons the display.
int aff_lit_attributs(Objet* src, int numero, int mode, Aff_attributs* at);
