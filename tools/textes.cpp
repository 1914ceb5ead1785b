// The text slots that label a scene, and the overlay panel that offers the
// "exec" entries on screen.
//
// Invariants: a slot's word `texte` is 0 when free, else the arena offset
// of a string Bloc the slot owns; slots are filled from the first, so the
// first slot free means no labels. Drawing allocates nothing.
#include <GL/freeglut.h>

#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "display/display.h"
#include "display/gl_plan.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

Texte textes[NB_TEXTES];

namespace {
constexpr float BLANC[3] = {1, 1, 1};
// The panel: a column at the window's left, one row per "exec" entry.
constexpr int PANNEAU_HAUTEUR = 20, PANNEAU_LARGEUR = 200, PANNEAU_MAX = 40;
int clic_vu = -1;  // the press already answered, so a click runs once

void chaine_bitmap(const char* t) {
  for (; *t; ++t) glutBitmapCharacter(GLUT_BITMAP_HELVETICA_12, static_cast<unsigned char>(*t));
}
}  // namespace

int texte_ajoute(std::string_view t, float x, float y, float z) {
  for (Texte& s : textes) {
    if (s.texte) continue;
    mot* b = bloc_alloue(long_chaine(t.size()));
    if (!b) return -1;
    b[1] = BLOC_CHAINE, b[2] = 1, b[3] = static_cast<mot>(t.empty() ? 1 : t.size());
    std::memcpy(bloc_texte(b), t.data(), t.size());
    bloc_texte(b)[t.size()] = 0;
    s = Texte{ptr_vers_mot(b), x, y, z, {BLANC[0], BLANC[1], BLANC[2]}, 0};
    return static_cast<int>(&s - textes);
  }
  message(0, outils::M_TAILLE);
  return -1;
}

void textes_vide() {
  for (Texte& s : textes) {
    if (s.texte) bloc_libere(bloc_pointe(s.texte));
    s = Texte{};
  }
}

int dessine_textes() {
  if (!textes[0].texte) return 0;
  Gl_sans sans{GL_LIGHTING, GL_TEXTURE_2D};
  int n = 0;
  for (const Texte& s : textes) {
    if (!s.texte) continue;
    glColor3fv(s.coul);
    glRasterPos3f(s.x, s.y, s.z);
    chaine_bitmap(bloc_texte(bloc_pointe(s.texte)));
    ++n;
  }
  return n;
}

// Every "exec" entry as a row of the panel; a click on a row runs its line,
// once per press.
void affiche_menu() {
  const char* lignes[PANNEAU_MAX];
  int n = 0;
  while (n < PANNEAU_MAX && (lignes[n] = outils::chaine_entree(false, n + 1))) ++n;
  if (n == 0) return;
  int choisie = -1;
  {
    Gl_sans sans{GL_DEPTH_TEST, GL_LIGHTING, GL_FOG, GL_CULL_FACE};
    Gl_plan plan(0, fen.dimx, fen.dimy, 0);
    for (int k = 0; k < n; ++k) {
      int y0 = k * PANNEAU_HAUTEUR;
      bool dans = fen.souris_x >= 0 && fen.souris_x < PANNEAU_LARGEUR && fen.souris_y >= y0 &&
                  fen.souris_y < y0 + PANNEAU_HAUTEUR;
      if (dans) glColor3f(0.6f, 0.1f, 0.1f);
      else glColor3f(0.15f, 0.15f, 0.15f);
      glRectf(0, static_cast<float>(y0), PANNEAU_LARGEUR, static_cast<float>(y0 + PANNEAU_HAUTEUR - 1));
      glColor3f(1, 1, 1);
      glRasterPos2f(6, static_cast<float>(y0 + 14));
      chaine_bitmap(lignes[k]);
      if (fen.appuye && fen.clic_x >= 0 && fen.clic_x < PANNEAU_LARGEUR && fen.clic_y >= y0 &&
          fen.clic_y < y0 + PANNEAU_HAUTEUR)
        choisie = k + 1;
    }
  }
  if (!fen.appuye) clic_vu = -1;
  // A press is one choice: the same press seen again runs nothing.
  int cle = fen.clic_y * 100000 + fen.clic_x;
  if (choisie > 0 && cle != clic_vu) {
    clic_vu = cle;
    menu_choix(0, choisie);
  }
}
