// The paint tool, mode 156: its menu of 20 entries with the lines they
// print, the pointer's events (dabs, strokes, sliders, the two colour
// pickers), and its entry and exit. A slider or a picker is drawn over the
// picture, which is kept aside while it shows and drawn back after.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>
#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "display/display.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace outils {
void brosse_init();
}

namespace {
constexpr int MODE = 156;
constexpr int M_INVITE = 48, M_ALLOUE = 28;  // env 0
constexpr int M_SANS_FENETRE = 95;               // env 1
constexpr int C_RVB = 17, C_TSV = 155, C_RAYON = 68, C_TRANSP = 116, C_ALEA = 59, C_ANGLE = 37, C_NUMERO = 57;

// The picture under a slider or a picker.
unsigned char* dessous = nullptr;
int dessous_w = 0, dessous_h = 0;
bool dessous_pris = false;
bool appuye = false;
float tsv[3] = {0, 0, 1};

void dit(const char* t) {
  std::fputs(t, stdout);
  std::fflush(stdout);
}

void pixels_gl() {
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_LIGHTING);
  glDisable(GL_TEXTURE_2D);
}

bool garde_dessous() {
  const int W = fen.dimx, H = fen.dimy;
  if (W != dessous_w || H != dessous_h || !dessous) {
    auto* n = static_cast<unsigned char*>(tas::alloue(static_cast<std::size_t>(W) * H * 4));
    if (!n) {
      std::printf("%d: ", MODE);
      message(0, M_ALLOUE);
      return false;
    }
    if (dessous) tas::libere(dessous);
    dessous = n, dessous_w = W, dessous_h = H;
  }
  pixels_gl();
  glReadPixels(0, 0, W, H, GL_RGBA, GL_UNSIGNED_BYTE, dessous);
  dessous_pris = true;
  return true;
}

void rend_dessous() {
  if (!dessous_pris) return;
  pixels_gl();
  glWindowPos2i(0, 0);
  glDrawPixels(dessous_w, dessous_h, GL_RGBA, GL_UNSIGNED_BYTE, dessous);
  glFlush();
  dessous_pris = false;
}

void texte(float x, float y, const char* t) {
  glRasterPos2f(x, y);
  glutBitmapString(GLUT_BITMAP_8_BY_13, reinterpret_cast<const unsigned char*>(t));
}

// A slider's range and its value's place in the brush.
struct Glissiere {
  int commande;
  const char* titre;
  float bas, haut;
};
constexpr Glissiere glissieres[] = {{C_RAYON, "rayon", 1, 200},   {C_TRANSP, "transp", 0, 1},
                                    {C_ALEA, "alea", 0, 1},       {C_ANGLE, "angle", 0, 360},
                                    {C_NUMERO, "numero", 0, NB_PINCEAUX}};
const Glissiere* glissiere(int c) {
  for (const Glissiere& g : glissieres)
    if (g.commande == c) return &g;
  return nullptr;
}

float* champ(Pinceau& p, int c) {
  switch (c) {
    case C_RAYON: return &p.rayon;
    case C_TRANSP: return &p.transp;
    case C_ALEA: return &p.alea;
    case C_ANGLE: return &p.angle;
  }
  return nullptr;
}

// The slider: a bar along the window's bottom, filled up to the value,
// with its title and its value.
void dessine_glissiere(const Glissiere& g) {
  const float W = static_cast<float>(fen.dimx);
  float v;
  char t[64];
  if (g.commande == C_NUMERO) {
    v = static_cast<float>(pinceau_courant);
    if (pinceau_courant) std::snprintf(t, sizeof t, "%s %d", g.titre, pinceau_courant);
    else std::snprintf(t, sizeof t, "%s OFF", g.titre);
  } else {
    v = *champ(pinceaux[pinceau_courant - 1], g.commande);
    std::snprintf(t, sizeof t, "%s %f", g.titre, static_cast<double>(v));
  }
  float p = std::clamp((v - g.bas) / (g.haut - g.bas), 0.0f, 1.0f);
  projection_2d();
  pixels_gl();
  glColor3f(0.2f, 0.2f, 0.2f);
  glRectf(0, 0, W, 30);
  glColor3f(0.9f, 0.6f, 0.1f);
  glRectf(0, 0, p * W, 30);
  glColor3f(1, 1, 1);
  texte(8, 10, t);
  glFlush();
}

// The pickers: three columns over the window's upper half, each a third.
void dessine_selecteur(bool rvb) {
  const float W = static_cast<float>(fen.dimx), H = static_cast<float>(fen.dimy), haut = H / 2;
  const Pinceau& p = pinceaux[pinceau_courant - 1];
  const float* v = rvb ? p.coul : tsv;
  static constexpr const char* titres[2][3] = {{"teinte", "saturation", "valeur"}, {"rouge", "vert", "bleu"}};
  projection_2d();
  pixels_gl();
  for (int k = 0; k < 3; ++k) {
    float x0 = W * static_cast<float>(k) / 3, x1 = W * static_cast<float>(k + 1) / 3;
    glColor3f(0.15f, 0.15f, 0.15f);
    glRectf(x0, haut, x1, H);
    glColor3f(rvb && k == 0 ? 1 : 0.5f, rvb && k == 1 ? 1 : 0.5f, rvb && k == 2 ? 1 : 0.5f);
    glRectf(x0 + 4, haut, x1 - 4, haut + v[k] * (H - haut));
    glColor3f(1, 1, 1);
    texte(x0 + 6, H - 16, titres[rvb][k]);
  }
  glColor3fv(p.coul);
  glRectf(0, haut - 20, W, haut);
  glFlush();
}

void tsv_vers_rvb(const float* h, float* c) {
  float t = h[0] - std::floor(h[0]), s = h[1], v = h[2];
  float f = t * 6;
  int i = static_cast<int>(f) % 6;
  f -= std::floor(f);
  float p = v * (1 - s), q = v * (1 - s * f), u = v * (1 - s * (1 - f));
  const float tab[6][3] = {{v, u, p}, {q, v, p}, {p, v, u}, {p, q, v}, {u, p, v}, {v, p, q}};
  for (int k = 0; k < 3; ++k) c[k] = tab[i][k];
}

// The pointer at (x, y), y down, while a slider or picker shows.
void regle(int x, int y) {
  // The brush may have gone (bro(0) typed meanwhile): only the number's
  // slider still has something to set.
  if (brosse_commande != C_NUMERO && (pinceau_courant < 1 || pinceau_courant > NB_PINCEAUX)) {
    rend_dessous();
    brosse_commande = 0;
    return;
  }
  const int W = std::max(1, fen.dimx), H = std::max(1, fen.dimy);
  if (brosse_commande == C_RVB || brosse_commande == C_TSV) {
    float top = static_cast<float>(H) / 2, yg = static_cast<float>(H - y);
    if (x < 0 || x > W || yg < top || yg > static_cast<float>(H)) return;
    float v = (yg - top) / (static_cast<float>(H) - top);
    float p = static_cast<float>(x) / static_cast<float>(W);
    int k = p < 1.0f / 3 ? 0 : p < 2.0f / 3 ? 1 : 2;
    Pinceau& b = pinceaux[pinceau_courant - 1];
    if (brosse_commande == C_RVB) {
      b.coul[k] = v;
    } else {
      tsv[k] = v;
      tsv_vers_rvb(tsv, b.coul);
    }
    rend_dessous();
    garde_dessous();
    dessine_selecteur(brosse_commande == C_RVB);
    return;
  }
  const Glissiere* g = glissiere(brosse_commande);
  if (!g) return;
  float p = std::clamp(static_cast<float>(x) / static_cast<float>(W), 0.0f, 1.0f);
  float v = g->bas + p * (g->haut - g->bas);
  if (g->commande == C_NUMERO) {
    pinceau_courant = static_cast<int>(std::lround(v));
  } else {
    Pinceau& b = pinceaux[pinceau_courant - 1];
    if (g->commande == C_RAYON) pinceau_rayon(b, std::max(1.0f, v));
    else *champ(b, g->commande) = v;
  }
  rend_dessous();
  garde_dessous();
  dessine_glissiere(*g);
}

void montre(int c) {
  rend_dessous();
  brosse_commande = c;
  if (!garde_dessous()) {
    brosse_commande = 0;
    return;
  }
  if (c == C_RVB || c == C_TSV) dessine_selecteur(c == C_RVB);
  else dessine_glissiere(*glissiere(c));
}

// A stroke starts: its buffer of taille_max points.
void trait(Pinceau& p, int forme, const char* dire) {
  dit(dire);
  p.forme = forme;
  if (p.pts) tas::libere(mot_vers_ptr(p.pts));
  p.pts = 0;
  p.nb_pts = 0;
  void* q = tas::alloue(static_cast<std::size_t>(std::max(1, p.taille_max)) * 2 * sizeof(mot));
  if (!q) {
    std::printf("%d: ", pinceau_courant);
    message(0, M_ALLOUE);
    return;
  }
  p.pts = ptr_vers_mot(q);
  brosse_commande = forme;
}

void evenement(int x, int y) {
  if (fen.mode_interactif != MODE) return;
  if (brosse_commande == 0) {
    touche(x, y);
  } else if (brosse_commande == FORME_LIGNE || brosse_commande == FORME_BITMAP) {
    brosse_trait_point(x, y);
  } else {
    regle(x, y);
  }
}

void souris(int bouton, int etat, int x, int y) {
  if (bouton != GLUT_LEFT_BUTTON) return;
  appuye = etat == 0;
  if (appuye) {
    evenement(x, y);
    return;
  }
  // The release ends a stroke, a slider or a picker.
  if (brosse_commande == FORME_LIGNE || brosse_commande == FORME_BITMAP) {
    brosse_trait_fin();
  } else if (brosse_commande != 0) {
    rend_dessous();
    brosse_commande = 0;
  }
}

void mouvement(int x, int y) {
  if (appuye) evenement(x, y);
}

int pas() { return 0; }

void sortie() {
  rend_dessous();
  brosse_commande = 0;
  appuye = false;
  entre_mode(0);
}

constexpr EntreeMode entrees[] = {
    {"interp", 1},     {"clavier", 2}, {"help", 3},          {"sauver image", 4}, {"restituer image", 5},
    {"ecr", 6},        {"RVB", 7},     {"TSV", 8},           {"numero pinceau", 9}, {"reset", 10},
    {"rond", 11},      {"carre", 12},  {"rayon", 13},        {"ligne", 14},       {"bitmap", 15},
    {"draw", 16},      {"lisse", 17},  {"transparence", 18}, {"aleatoire", 19},   {"rot", 20}};
}  // namespace

void brosse_menu(int n) {
  // Entries that change the brush need one.
  if (((n >= 7 && n <= 8) || n >= 11) && !pinceau_actif()) return;
  Pinceau* p = pinceau_courant >= 1 && pinceau_courant <= NB_PINCEAUX ? &pinceaux[pinceau_courant - 1] : nullptr;
  switch (n) {
    case 1: {
      dit("interpreteur\n");
      message(0, M_INVITE);
      std::fflush(stdout);
      char l[1024];
      bool reprise = false;
      if (console_lit(l, sizeof l, &reprise) >= 0) executer_texte(l);
      std::fflush(stdout);
      break;
    }
    case 2:
      dit("clavier\n");
      sortie();
      fen.mode_interactif = 0;
      break;
    case 3: outils::lance_ligne("aide pinceau"); break;
    case 4:
      dit("sauver image\n");
      brosse_sauve();
      break;
    case 5:
      dit("restituer image\n");
      brosse_restitue();
      break;
    case 6: {
      dit("ecr\n");
      dessous_pris = false;
      if (fen.fenetre > 0) {
        glClear(GL_COLOR_BUFFER_BIT);
        glFlush();
      }
      break;
    }
    case 7: dit("RVB\n"); montre(C_RVB); break;
    case 8: dit("TSV\n"); montre(C_TSV); break;
    case 9: dit("numero\n"); montre(C_NUMERO); break;
    case 10:
      dit("reset\n");
      rend_dessous();
      brosse_commande = 0;
      pinceau_courant = 1;
      pinceaux[0].mode = MODE_DRAW;
      brosse_restitue();
      break;
    case 11:
      dit("rond");
      p->forme = FORME_ROND;
      pinceau_masques(*p);
      break;
    case 12: dit("carre\n"); p->forme = FORME_CARRE; break;
    case 13: montre(C_RAYON); break;
    case 14: trait(*p, FORME_LIGNE, "ligne\n"); break;
    case 15: trait(*p, FORME_BITMAP, "bitmap\n"); break;
    case 16: dit("draw\n"); p->mode = MODE_DRAW; break;
    case 17: dit("lisser\n"); p->mode = MODE_LISSER; break;
    case 18: montre(C_TRANSP); break;
    case 19: montre(C_ALEA); break;
    case 20: montre(C_ANGLE); break;
    default: break;
  }
}

int brosse_entre() {
  if (fen.fenetre < 1) {
    message(1, M_SANS_FENETRE);
    return -1;
  }
  brosse_commande = 0;
  dessous_pris = false;
  appuye = false;
  entree_outil_2d();
  entre_mode(MODE);
  fen.mode_interactif = MODE;
  return 0;
}

namespace outils {
void brosse_outil_enregistre() {
  brosse_init();
  Outil o;
  o.pas = pas;
  o.sortie = sortie;
  o.souris = souris;
  o.mouvement = mouvement;
  o.projection = entree_outil_2d;
  outil_enregistre(MODE, o);
  menu_mode_def(MODE, entrees, brosse_menu);
}
}  // namespace outils
