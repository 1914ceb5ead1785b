// The table of textures: images of the object table made into OpenGL
// textures with their mipmaps, once per image, and textures read from
// files into the entry of an image.
//
// Invariants: at most TEX_MAX records; an image appears in at most one
// record; `nom_gl` is a live GL texture name and `rgb` holds exactly
// largeur x hauteur x 3 interleaved bytes, row 0 first (the image's bottom
// row, as GL's first row). A record is replaced only when its new pixels
// exist: a failed read leaves the old texture in use. With no GL context
// (no window) a record keeps its pixels with `nom_gl` 0, and gets its name
// from the first textures_creer that runs with one.
#include <GL/gl.h>
#include <GL/glu.h>
#include <GL/glx.h>

#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "display/display.h"
#include "image/image.h"

namespace {
constexpr int B_TEX = 54;

struct Texture {
  int image = 0;
  GLuint liste = 0;
  int largeur = 0, hauteur = 0;
  std::vector<std::uint8_t> rgb;
  GLuint nom_gl = 0;
};

struct Textures {
  std::vector<Texture> t;
  std::vector<std::uint8_t> travail;  // the file reader's w x h x 4 buffer
  long faits = 0;                     // GL names made since the start
};
Textures tex;

Texture* cherche(int image) {
  for (Texture& x : tex.t)
    if (x.image == image) return &x;
  return nullptr;
}

// The pixels into GL: a new name, its mipmaps, and the list that turns
// texturing on.
void envoie(Texture& x) {
  if (!glXGetCurrentContext()) return;
  glGenTextures(1, &x.nom_gl);
  ++tex.faits;
  glBindTexture(GL_TEXTURE_2D, x.nom_gl);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  gluBuild2DMipmaps(GL_TEXTURE_2D, 3, x.largeur, x.hauteur, GL_RGB, GL_UNSIGNED_BYTE, x.rgb.data());
  if (!x.liste) {
    x.liste = glGenLists(1);
    glNewList(x.liste, GL_COMPILE);
    glEnable(GL_TEXTURE_2D);
    glEndList();
  }
}

void oublie(Texture& x) {
  if (x.nom_gl) glDeleteTextures(1, &x.nom_gl);
  if (x.liste) glDeleteLists(x.liste, 1);
  x.nom_gl = 0, x.liste = 0;
}
}  // namespace

int textures_creer(int image) {
  if (etat_ou(1, B_TEX, 0) <= 0) return 0;
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o) {
    if (o->env != 1 || o->type != BLOC_IMAGE || !o->donnees || !ima_valide(o->donnees)) continue;
    if (image && o->numero != image) continue;
    if (Texture* x = cherche(o->numero)) {
      if (!x->nom_gl) {
        envoie(*x);
        if (x->nom_gl) vol_rt_texture(o->numero, static_cast<int>(x->nom_gl));
      }
      continue;
    }
    if (static_cast<int>(tex.t.size()) >= TEX_MAX) return 0;
    const mot* b = o->donnees;
    int w = ima_l(b), h = ima_h(b);
    try {
      Texture x;
      x.image = o->numero, x.largeur = w, x.hauteur = h;
      // The planes of each row interleaved once, into a buffer of 4 bytes a
      // pixel as GL likes, of which the first 3 are used.
      x.rgb.assign(static_cast<std::size_t>(w) * h * 4, 0);
      std::uint8_t* q = x.rgb.data();
      for (int y = 0; y < h; ++y) {
        const octet* r = ima_rouge(b, y);
        for (int i = 0; i < w; ++i) *q++ = r[i], *q++ = r[w + i], *q++ = r[2 * w + i];
      }
      x.rgb.resize(static_cast<std::size_t>(w) * h * 3);
      envoie(x);
      tex.t.push_back(std::move(x));
    } catch (const std::bad_alloc&) {
      std::printf("%d: ", w * h * 4);
      message(0, MES_ALLOCATION);
      return -1;
    }
    if (tex.t.back().nom_gl) vol_rt_texture(o->numero, static_cast<int>(tex.t.back().nom_gl));
  }
  return 0;
}

int charger_texture(const char* nom, const char* extension, int selecteur) {
  std::string chemin = std::string(nom) + "." + extension;
  std::string_view e = extension;
  mot* b = nullptr;
  if (e == "raw") b = ima_lit_raw(chemin.c_str());
  else if (e == "bmp") b = ima_lit_bmp(chemin.c_str());
  else if (e == "jpg") b = ima_lit_jpg(chemin.c_str());
  else if (e == "png") b = ima_lit_png(chemin.c_str());
  else {
    message(0, MES_INTERNE);
    std::printf("%s\n", extension);
    return -1;
  }
  if (!b) return -1;
  if (selecteur && !ima_objet(selecteur)) {
    bloc_libere(b);
    std::printf("%d: ", selecteur);
    message(0, MES_ABSENT);
    return -1;
  }
  int w = ima_l(b), h = ima_h(b);
  try {
    std::size_t n = static_cast<std::size_t>(w) * h;
    if (tex.travail.size() < n * 4) tex.travail.resize(n * 4);
    std::uint8_t* q = tex.travail.data();
    for (int y = 0; y < h; ++y) {
      const octet* r = ima_rouge(b, y);
      for (int i = 0; i < w; ++i) *q++ = r[i], *q++ = r[w + i], *q++ = r[2 * w + i], *q++ = 255;
    }
    bloc_libere(b);
    b = nullptr;
    if (!selecteur) return 0;
    // The new pixels first: the old texture stays until they exist.
    std::vector<std::uint8_t> rgb(n * 3);
    for (std::size_t i = 0; i < n; ++i) std::memcpy(&rgb[3 * i], &tex.travail[4 * i], 3);
    Texture* x = cherche(selecteur);
    if (!x) {
      if (static_cast<int>(tex.t.size()) >= TEX_MAX) {
        message(0, MES_TABLE_PLEINE);
        return -1;
      }
      tex.t.emplace_back();
      x = &tex.t.back();
      x->image = selecteur;
    }
    x->rgb.swap(rgb);
    x->largeur = w, x->hauteur = h;
    if (x->nom_gl) glDeleteTextures(1, &x->nom_gl);
    x->nom_gl = 0;
    envoie(*x);
    if (x->nom_gl) vol_rt_texture(selecteur, static_cast<int>(x->nom_gl));
    return 0;
  } catch (const std::bad_alloc&) {
    if (b) bloc_libere(b);
    std::printf("%d: ", w * h * 4);
    message(0, MES_ALLOCATION);
    return -1;
  }
}

int texture_nom(int image) {
  const Texture* x = cherche(image);
  return x && x->nom_gl ? static_cast<int>(x->nom_gl) : -1;
}

const std::uint8_t* texture_pixels(int image, int* w, int* h) {
  const Texture* x = cherche(image);
  if (!x || x->rgb.empty()) return nullptr;
  *w = x->largeur, *h = x->hauteur;
  return x->rgb.data();
}

int textures_nb() { return static_cast<int>(tex.t.size()); }
long textures_noms_faits() { return tex.faits; }

void textures_libere() {
  for (Texture& x : tex.t) {
    vol_rt_texture(x.image, -1);
    oublie(x);
  }
  tex.t.clear();
  tex.travail.clear();
  tex.travail.shrink_to_fit();
}

void textures_enregistre() { ima_fenetre.lire_texture = charger_texture; }
