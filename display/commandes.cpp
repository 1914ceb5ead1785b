// The language's side of the window: the background, a pixel read back,
// the cursor, the window's size and re-opening, the mouse and its tool,
// and the keyboard buffer with its key table. Registered with the command
// dispatch when the window opens, so that without a window the language is
// what it was.
#include <GL/freeglut.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "core/objet.h"
#include "display/display.h"
#include "display/interne.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int A_CLE = 56;
constexpr int B_CURSEUR = 3, B_SOU = 16, B_FOND_ECRAN = 101, B_PIXEL = 102, B_FEN = 134;
constexpr int M_TYPE = 81, M_INDICE = 66;
constexpr int M_SANS_FENETRE = 95;  // env 1

mot* premier(mot* bloc) { return bloc + 4; }
// The value given to the first element, or the assigned one; null if none.
const mot* valeur_de(mot* bloc, const mot* valeur) {
  mot* e = premier(bloc);
  const mot* v = e[0] > 3 ? e + 3 : valeur;
  if (v && v[0] >= 4 && v[1] == BLOC_NIL) return nullptr;
  return v;
}

const char* chaine(const mot* v) {
  return v && v[0] >= 5 && v[1] == BLOC_CHAINE ? reinterpret_cast<const char*>(v + 4) : nullptr;
}

int refuse(int ord) {
  mot_imprime(1, ord);
  message(0, M_TYPE);
  return ECHEC;
}

int sans_fenetre() {
  message(1, M_SANS_FENETRE);
  return ECHEC;
}

int rend_reels(mot* bloc, const mot* limite, const float* x, int n) {
  reel* r = resultat_reels(bloc, limite, n);
  if (!r) return PILE_PLEINE;
  std::memcpy(r, x, sizeof(float) * n);
  return 0;
}

int rien(mot* bloc) {
  bloc[0] = 0;
  return 0;
}

// fond_ecran(r, g, b): the window cleared with that colour, components from
// 0 to 1.
int cmd_fond(mot* bloc, mot* valeur, const mot*) {
  float c[3] = {0, 0, 0};
  int n = bloc_nombres(valeur_de(bloc, valeur), c, 3);
  if (n < 0) return refuse(B_FOND_ECRAN);
  if (fen.fenetre < 1) return sans_fenetre();
  fond_ecran(c[0], c[1], c[2]);
  return rien(bloc);
}

// pixel_fenetre(x, y): red, green, blue (0 to 255) of the window at x, y
// from the left, bottom.
int cmd_pixel(mot* bloc, mot* valeur, const mot* limite) {
  float p[2] = {0, 0};
  int n = bloc_nombres(valeur_de(bloc, valeur), p, 2);
  if (n < 0) return refuse(B_PIXEL);
  if (fen.fenetre < 1) return sans_fenetre();
  mot x = 0, y = 0;
  if (!reel_entier(p[0], &x) || !reel_entier(p[1], &y) || x < 0 || y < 0 || x >= fen.dimx ||
      y >= fen.dimy) {
    message(0, M_INDICE);
    return ECHEC;
  }
  unsigned char rgba[4] = {};
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
  float r[3] = {static_cast<float>(rgba[0]), static_cast<float>(rgba[1]), static_cast<float>(rgba[2])};
  return rend_reels(bloc, limite, r, 3);
}

// curseur(v): the pointer shown (v not 0) or hidden.
int cmd_curseur(mot* bloc, mot* valeur, const mot*) {
  float v = 1;
  if (bloc_nombres(valeur_de(bloc, valeur), &v, 1) < 0) return refuse(B_CURSEUR);
  fen.curseur = v != 0;
  if (fen.fenetre > 0) glutSetCursor(fen.curseur ? GLUT_CURSOR_INHERIT : GLUT_CURSOR_NONE);
  return rien(bloc);
}

// fen alone: width, height, mode, idle steps run. fen(w, h) asks the window
// for that size; fen(0) opens it again; fen("ful") takes the whole screen.
int cmd_fen(mot* bloc, mot* valeur, const mot* limite) {
  float p[2] = {0, 0};
  const mot* v = valeur_de(bloc, valeur);
  if (const char* t = chaine(v)) {
    if (std::strncmp(t, "ful", 3) != 0) return refuse(B_FEN);
    if (fen.fenetre < 1) return sans_fenetre();
    plein_ecran(true);
    return rien(bloc);
  }
  int n = bloc_nombres(v, p, 2);
  if (n < 0) return refuse(B_FEN);
  if (n == 0) {
    float r[4] = {static_cast<float>(fen.dimx), static_cast<float>(fen.dimy),
                  static_cast<float>(fen.mode_interactif), static_cast<float>(fen.images)};
    return rend_reels(bloc, limite, r, 4);
  }
  if (n == 1 && p[0] == 0) {
    fenetre_rouvrir();
    return rien(bloc);
  }
  if (fen.fenetre < 1) return sans_fenetre();
  // Sizes past the screen are the window system's to refuse; past int32
  // they are out of any range.
  mot w = 0, h = fen.dimy;
  if (entier_de(p[0], &w) < 0 || (n > 1 && entier_de(p[1], &h) < 0)) return ECHEC;
  // The window system refuses an empty window: such a size goes straight
  // to the reshape, which warns and keeps the old one.
  if (w < 1 || h < 1) Reshape_Func(w, h);
  else glutReshapeWindow(w, h);
  return rien(bloc);
}

// sou alone: x, y, z, button, pressed, speed x y z, acceleration x y z.
// sou(1) gives the events to the mouse tool, sou("f") too with f run at
// each of its frames; sou(0) gives them back to the shell.
int cmd_sou(mot* bloc, mot* valeur, const mot* limite) {
  const mot* v = valeur_de(bloc, valeur);
  if (const char* f = chaine(v)) {
    if (fen.fenetre < 1) return sans_fenetre();
    outil_souris_entre(f);
    return rien(bloc);
  }
  float p = 0;
  int n = bloc_nombres(v, &p, 1);
  if (n < 0) return refuse(B_SOU);
  if (n == 0) {
    float r[11] = {static_cast<float>(fen.souris_x), static_cast<float>(fen.souris_y),
                   static_cast<float>(fen.souris_z), static_cast<float>(fen.bouton),
                   static_cast<float>(fen.appuye), fen.vitesse[0], fen.vitesse[1], fen.vitesse[2],
                   fen.accel[0], fen.accel[1], fen.accel[2]};
    return rend_reels(bloc, limite, r, 11);
  }
  if (p == 0) {
    if (fen.mode_interactif == 16 || fen.mode_interactif == -16) outil_souris_sort();
    return rien(bloc);
  }
  if (fen.fenetre < 1) return sans_fenetre();
  outil_souris_entre("");
  return rien(bloc);
}

// cle alone: the key typed last, or the line typed after "<". cle("f nom")
// binds the name to the function f (two strings side by side would make
// one, so the pair is one text, function first). Numbers go to the
// built-in.
int cmd_cle(mot* bloc, mot* valeur, const mot* limite) {
  if (bloc[2] != 1) return COMMANDE_SUITE;
  const mot* v = valeur_de(bloc, valeur);
  if (!v) {
    char t[CLAVIER_MAX + 2];
    int n = clavier_lire(t, sizeof t);
    return resultat_chaine(bloc, limite, t, static_cast<std::size_t>(n));
  }
  const char* texte = chaine(v);
  if (!texte) return COMMANDE_SUITE;
  std::string f, nom;
  const char* p = texte + std::strspn(texte, " \t");
  std::size_t lf = std::strcspn(p, " \t");
  f.assign(p, lf);
  p += lf;
  p += std::strspn(p, " \t");
  nom.assign(p, std::strcspn(p, " \t"));
  if (f.empty() || nom.empty() || nom.size() > 24 || f.size() > 60) {
    mot_imprime(0, A_CLE);
    message(0, M_TYPE);
    return ECHEC;
  }
  if (touche_lie(nom.c_str(), f.c_str()) < 0) {
    message(0, MES_DEBORDEMENT);
    return ECHEC;
  }
  return rien(bloc);
}
}  // namespace

void commandes_fenetre_enregistre() {
  commande_enregistre(1, B_FOND_ECRAN, cmd_fond);
  commande_enregistre(1, B_PIXEL, cmd_pixel);
  commande_enregistre(1, B_CURSEUR, cmd_curseur);
  commande_enregistre(1, B_FEN, cmd_fen);
  commande_enregistre(1, B_SOU, cmd_sou);
  commande_enregistre(0, A_CLE, cmd_cle);
  outil_souris_enregistre();
  commandes_gl_enregistre();
}
