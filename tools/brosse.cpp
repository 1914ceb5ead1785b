// The brush table and the dab. A dab reads the box under the pointer from
// the window, mixes it in memory with the brush's masks and draws it back at
// the same place; the box keeps its size at the window's edges and moves in.
// No allocation happens in a dab: the masks are made once for a radius.
//
// Invariants: the three arrays of a brush have w x h x 4 bytes each and are
// remade together; `pts` holds taille_max points.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "core/objet.h"
#include "display/display.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tools/tools.h"

namespace {
constexpr int M_ALLOUE = 28;   // env 0
constexpr int M_RAYON = 130;       // env 1

// Shapes the masks were last made for, per brush: a change remakes them.
struct Fait {
  float rayon = 0, angle = 0;
  int forme = 0;
};
Fait faits[NB_PINCEAUX];

// The undo image and its size.
unsigned char* defaire = nullptr;
int defaire_w = 0, defaire_h = 0;

std::uint32_t graine = 2463534242u;
float tire_brosse() {
  graine ^= graine << 13;
  graine ^= graine >> 17;
  graine ^= graine << 5;
  return static_cast<float>(graine >> 8) * (1.0f / 16777216.0f);
}

unsigned char* octets(mot w) { return static_cast<unsigned char*>(mot_vers_ptr(w)); }

void libere_masques(Pinceau& p) {
  for (mot* w : {&p.masque, &p.couleur, &p.fond}) {
    if (*w) tas::libere(mot_vers_ptr(*w));
    *w = 0;
  }
  p.w = p.h = 0;
}

// The pointer falls on the corner of pixels at the box's middle: a pixel
// (i, j) is in a round brush when its centre lies within the radius of it;
// a square turns by `angle` degrees about it.
void remplit_masque(Pinceau& p) {
  unsigned char* m = octets(p.masque);
  const float r = p.rayon, cx = static_cast<float>(p.w / 2), cy = static_cast<float>(p.h / 2);
  const float a = p.angle / 57.295776f, ca = std::cos(a), sa = std::sin(a);
  for (int j = 0; j < p.h; ++j)
    for (int i = 0; i < p.w; ++i) {
      float dx = static_cast<float>(i) + 0.5f - cx, dy = static_cast<float>(j) + 0.5f - cy;
      bool dedans;
      if (p.forme == FORME_CARRE) {
        float u = ca * dx + sa * dy, v = -sa * dx + ca * dy;
        dedans = std::fabs(u) <= r && std::fabs(v) <= r;
      } else {
        dedans = dx * dx + dy * dy <= r * r;
      }
      unsigned char* q = m + 4 * (static_cast<std::size_t>(j) * p.w + i);
      q[0] = q[1] = q[2] = q[3] = dedans ? 255 : 0;
    }
}

void gl_pixels() {
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelZoom(1, 1);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_LIGHTING);
  glDisable(GL_TEXTURE_2D);
  glDisable(GL_FOG);
  glDisable(GL_BLEND);
}

int lance_fonction(int k) {
  char ligne[LONG_FONC + 3];
  std::snprintf(ligne, sizeof ligne, "%s()", fonc_noms[k]);
  return executer_texte(ligne) < 0 ? -1 : 0;
}
}  // namespace

Pinceau pinceaux[NB_PINCEAUX];
char fonc_noms[NB_PINCEAUX][LONG_FONC + 1];
int pinceau_courant = 1;
int brosse_commande = 0;

namespace outils {
void brosse_init() {
  for (Pinceau& p : pinceaux) {
    p = Pinceau{};
    p.forme = FORME_ROND;
    p.mode = MODE_DRAW;
    p.rayon = 10;
    p.transp = 0;
    p.alea = 1;
    p.coul[0] = p.coul[1] = p.coul[2] = 1;
    p.taille_max = 1000;
  }
}
}  // namespace outils

Pinceau* pinceau_actif() {
  if (pinceau_courant < 1 || pinceau_courant > NB_PINCEAUX) {
    std::fputs("pinceau OFF\x07\n", stdout);
    std::fflush(stdout);
    return nullptr;
  }
  return &pinceaux[pinceau_courant - 1];
}

int pinceau_rayon(Pinceau& p, float r) {
  if (!(r >= 1 && r <= RAYON_MAX)) {
    std::printf("%g: ", static_cast<double>(r));
    message(1, M_RAYON);
    return -1;
  }
  p.rayon = r;
  return 0;
}

int pinceau_masques(Pinceau& p) {
  int k = static_cast<int>(&p - pinceaux);
  Fait& f = faits[k];
  if (p.masque && f.rayon == p.rayon && f.forme == p.forme && f.angle == p.angle) return 0;
  // Even, and wide enough for every pixel whose centre is within the radius
  // of the pointer, which falls on the box's middle corner of pixels.
  // A turned square reaches r (|cos| + |sin|) from its centre.
  float a = p.angle / 57.295776f;
  float etendue = p.forme == FORME_CARRE ? p.rayon * (std::fabs(std::cos(a)) + std::fabs(std::sin(a))) : p.rayon;
  int cote = 2 * static_cast<int>(std::ceil(etendue - 1e-4f));
  if (cote != p.w || !p.masque) {
    libere_masques(p);
    std::size_t n = static_cast<std::size_t>(cote) * cote * 4;
    void* a = tas::alloue(n);
    void* b = tas::alloue(n);
    void* c = tas::alloue(n);
    if (!a || !b || !c) {
      for (void* q : {a, b, c})
        if (q) tas::libere(q);
      std::printf("%d: ", k + 1);
      message(0, M_ALLOUE);
      return -1;
    }
    p.masque = ptr_vers_mot(a), p.couleur = ptr_vers_mot(b), p.fond = ptr_vers_mot(c);
    p.w = p.h = cote;
  }
  remplit_masque(p);
  f.rayon = p.rayon, f.forme = p.forme, f.angle = p.angle;
  return 0;
}

void touche_boite(Pinceau& p, unsigned char* boite, int w, int h) {
  const unsigned char* m = octets(p.masque);
  if (!m) return;
  w = std::min(w, p.w), h = std::min(h, p.h);
  if (p.mode == MODE_LISSER) {
    unsigned char* t = octets(p.couleur);
    std::memcpy(t, boite, static_cast<std::size_t>(w) * h * 4);
    for (int j = 0; j < h; ++j)
      for (int i = 0; i < w; ++i) {
        if (!m[4 * (static_cast<std::size_t>(j) * p.w + i) + 3]) continue;
        int s[3] = {0, 0, 0}, n = 0;
        for (int b = std::max(0, j - 1); b <= std::min(h - 1, j + 1); ++b)
          for (int a = std::max(0, i - 1); a <= std::min(w - 1, i + 1); ++a, ++n) {
            const unsigned char* q = t + 4 * (static_cast<std::size_t>(b) * w + a);
            s[0] += q[0], s[1] += q[1], s[2] += q[2];
          }
        unsigned char* d = boite + 4 * (static_cast<std::size_t>(j) * w + i);
        for (int c = 0; c < 3; ++c) d[c] = static_cast<unsigned char>((s[c] + n / 2) / n);
      }
    return;
  }
  const float k0 = 1 - std::clamp(p.transp, 0.0f, 1.0f), a = std::clamp(p.alea, 0.0f, 1.0f);
  float c[3];
  for (int i = 0; i < 3; ++i) c[i] = 255 * std::clamp(p.coul[i], 0.0f, 1.0f);
  for (int j = 0; j < h; ++j)
    for (int i = 0; i < w; ++i) {
      unsigned mm = m[4 * (static_cast<std::size_t>(j) * p.w + i) + 3];
      if (!mm) continue;
      float k = k0 * static_cast<float>(mm) * (1.0f / 255);
      if (a < 1) k *= a + (1 - a) * tire_brosse();
      unsigned char* d = boite + 4 * (static_cast<std::size_t>(j) * w + i);
      for (int q = 0; q < 3; ++q) {
        float v = static_cast<float>(d[q]);
        d[q] = static_cast<unsigned char>(v + k * (c[q] - v) + 0.5f);
      }
    }
}

int touche(int x, int y) {
  Pinceau* p = pinceau_actif();
  if (!p || fen.fenetre < 1) return -1;
  if (pinceau_masques(*p) < 0) return -1;
  const int W = fen.dimx, H = fen.dimy;
  const int w = std::min(p->w, W), h = std::min(p->h, H);
  // Moved in, never shrunk, at the edges.
  int bx = std::clamp(x - p->w / 2, 0, std::max(0, W - w));
  int by = std::clamp(H - y - p->h / 2, 0, std::max(0, H - h));
  unsigned char* f = octets(p->fond);
  gl_pixels();
  glReadPixels(bx, by, w, h, GL_RGBA, GL_UNSIGNED_BYTE, f);
  touche_boite(*p, f, w, h);
  glWindowPos2i(bx, by);
  glDrawPixels(w, h, GL_RGBA, GL_UNSIGNED_BYTE, f);
  glFlush();
  if (p->fonc && lance_fonction(static_cast<int>(p - pinceaux)) < 0) return -1;
  return 0;
}

int brosse_trait_fin(bool dire) {
  Pinceau* p = pinceau_courant >= 1 && pinceau_courant <= NB_PINCEAUX ? &pinceaux[pinceau_courant - 1] : nullptr;
  if (!p || !p->pts) return 0;
  if (dire) {
    std::fputs("fin saisie\n", stdout);
    std::fflush(stdout);
  }
  const mot* q = static_cast<const mot*>(mot_vers_ptr(p->pts));
  int n = p->nb_pts, r = 0;
  p->nb_pts = 0;
  brosse_commande = 0;
  for (int k = 0; k < n && r == 0; ++k) {
    int x = q[2 * k], y = q[2 * k + 1];
    if (p->forme == FORME_LIGNE && k > 0) {
      // A line: dabs every half radius along each segment.
      int x0 = q[2 * k - 2], y0 = q[2 * k - 1];
      float d = std::hypot(static_cast<float>(x - x0), static_cast<float>(y - y0));
      int pas = std::max(1, static_cast<int>(d / std::max(1.0f, 0.5f * p->rayon)));
      for (int s = 1; s < pas && r == 0; ++s)
        r = touche(x0 + (x - x0) * s / pas, y0 + (y - y0) * s / pas);
    }
    if (r == 0) r = touche(x, y);
  }
  return r;
}

int brosse_trait_point(int x, int y) {
  Pinceau* p = pinceau_courant >= 1 && pinceau_courant <= NB_PINCEAUX ? &pinceaux[pinceau_courant - 1] : nullptr;
  if (!p || !p->pts) return -1;
  mot* q = static_cast<mot*>(mot_vers_ptr(p->pts));
  if (p->nb_pts < p->taille_max) {
    q[2 * p->nb_pts] = x;
    q[2 * p->nb_pts + 1] = y;
    ++p->nb_pts;
  }
  return p->nb_pts >= p->taille_max ? brosse_trait_fin() : 0;
}

int brosse_sauve() {
  if (fen.fenetre < 1) return -1;
  const int W = fen.dimx, H = fen.dimy;
  if (W != defaire_w || H != defaire_h || !defaire) {
    auto* n = static_cast<unsigned char*>(tas::alloue(static_cast<std::size_t>(W) * H * 4));
    if (!n) {
      std::printf("%d: ", 0);
      message(0, M_ALLOUE);
      return -1;
    }
    if (defaire) tas::libere(defaire);
    defaire = n, defaire_w = W, defaire_h = H;
  }
  gl_pixels();
  glReadPixels(0, 0, W, H, GL_RGBA, GL_UNSIGNED_BYTE, defaire);
  return 0;
}

int brosse_restitue() {
  if (fen.fenetre < 1 || !defaire) return -1;
  gl_pixels();
  glWindowPos2i(0, 0);
  glDrawPixels(defaire_w, defaire_h, GL_RGBA, GL_UNSIGNED_BYTE, defaire);
  glFlush();
  return 0;
}
