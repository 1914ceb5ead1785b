// The brush from the language. `pinceau` (b156) opens the paint tool in
// the window. `bro(n)` (b120) fills brush n, makes it the current one and
// runs dabs, for scripts:
//   bro(n) rond | carre | seq | bitmap      the shape (seq: a line)
//          dessine | etat                   draw, or lisser
//          rayon(r) transp(t) ale(a) rotz(angle) coul(r, v, b)
//          taille(n)                        taille_max of a stroke
//          fonc("f")                        f() runs at each dab; fonc("") none
//          som(x1, y1, x2, y2, ...)         dabs there (pointer pixels, y down)
//          texte("mot") police(k)           the text written at each point instead,
//                                           in the brush's colour, font k of POLICES
//                                           (1 to 8; the stroke font scaled by rayon)
// Its value is the number of dabs run. `bro(0)` leaves no brush current.
// A phrase with a keyword it does not know goes on to the fog's and the
// attributes' readers.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>
#include <GL/glext.h>

#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "display/display.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

namespace outils {
void brosse_outil_enregistre();
}

namespace {
constexpr int B_BRO = 120, B_PINCEAU = 156;
constexpr int M_NUMERO = 131;  // env 1
constexpr int A_FONC = 6, A_TAILLE = 59, A_TEXTE = 1, B_POLICE = 157;
constexpr int B_COUL = 17, B_SEQ = 22, B_ROTZ = 37, B_ROND = 50, B_CARRE = 53, B_ALE = 59, B_RAYON = 68,
              B_DESSINE = 82, B_SOM = 86, B_TRANSP = 116, B_ETAT = 145, B_BITMAP = 147;
constexpr int MAX_POINTS = 4096;  // numbers of a som() read at once
constexpr int LONG_TEXTE = 255;

// The window system's fonts in the order of POLICES.
void* police_glut(int k) {
  switch (k) {
    case 1: return GLUT_BITMAP_9_BY_15;
    case 2: return GLUT_BITMAP_8_BY_13;
    case 3: return GLUT_BITMAP_TIMES_ROMAN_10;
    case 4: return GLUT_BITMAP_TIMES_ROMAN_24;
    case 5: return GLUT_BITMAP_HELVETICA_10;
    case 6: return GLUT_BITMAP_HELVETICA_12;
    case 7: return GLUT_BITMAP_HELVETICA_18;
  }
  return GLUT_STROKE_ROMAN;
}

// The text with its baseline's start at the pointer's (x, y), y down.
void ecrit(const Pinceau& p, const char* t, int police, int x, int y) {
  projection_2d();
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_LIGHTING);
  glDisable(GL_TEXTURE_2D);
  glColor3fv(p.coul);
  const auto* u = reinterpret_cast<const unsigned char*>(t);
  const float yb = static_cast<float>(fen.dimy - y);
  if (police < 8) {
    glWindowPos2i(x, fen.dimy - y);
    glutBitmapString(police_glut(police), u);
  } else {
    // The stroke font's capitals are about 120 units high: 2 r pixels.
    const float e = p.rayon / 60;
    glPushMatrix();
    glTranslatef(static_cast<float>(x), yb, 0);
    glScalef(e, e, 1);
    glutStrokeString(GLUT_STROKE_ROMAN, u);
    glPopMatrix();
  }
  glFlush();
}

int refuse(int env, int ord) {
  mot_imprime(env, ord);
  message(0, MES_VALEUR);
  return ECHEC;
}

bool connu(int env, int ord) {
  if (env == 0) return ord == A_FONC || ord == A_TAILLE || ord == A_TEXTE;
  switch (ord) {
    case B_POLICE:
    case B_COUL: case B_SEQ: case B_ROTZ: case B_ROND: case B_CARRE: case B_ALE: case B_RAYON:
    case B_DESSINE: case B_SOM: case B_TRANSP: case B_ETAT: case B_BITMAP:
      return true;
  }
  return false;
}

int bro_commande(mot* bloc, mot* valeur, const mot* limite) {
  if (valeur) return COMMANDE_SUITE;
  mot* e = bloc + 4;
  for (mot k = 1, *c = e + e[0]; k < bloc[2]; ++k, c += c[0])
    if (!connu(c[1], c[2])) return COMMANDE_SUITE;
  float x[4];
  int n = bloc_nombres(e[0] > 3 ? e + 3 : nullptr, x, 1);
  if (n < 0) return refuse(1, B_BRO);
  if (n == 1) {
    if (!(x[0] >= 0 && x[0] <= NB_PINCEAUX && x[0] == static_cast<float>(static_cast<int>(x[0])))) {
      std::printf("%g: ", static_cast<double>(x[0]));
      message(1, M_NUMERO);
      return ECHEC;
    }
    pinceau_courant = static_cast<int>(x[0]);
  }
  if (bloc[2] == 1 && n == 1) return resultat_scalaire(bloc, limite, 0);
  Pinceau* p = pinceau_actif();
  if (!p) return ECHEC;
  // Checked first, set after: a refused phrase changes nothing.
  Pinceau q = *p;
  const mot* points = nullptr;
  int nb_points = 0;
  char fonc[LONG_FONC + 1] = "";
  bool avec_fonc = false;
  const char* texte = nullptr;
  int police = 1;
  for (mot k = 1, *c = e + e[0]; k < bloc[2]; ++k, c += c[0]) {
    const mot* v = c[0] > 3 ? c + 3 : nullptr;
    int env = c[1], ord = c[2];
    float y[3];
    if (env == 0 && ord == A_FONC) {
      const char* t = outils::chaine_de(v);
      if (!t || std::strlen(t) > static_cast<std::size_t>(LONG_FONC)) return refuse(env, ord);
      std::strcpy(fonc, t);
      avec_fonc = true;
      continue;
    }
    if (env == 0 && ord == A_TEXTE) {
      texte = outils::chaine_de(v);
      if (!texte || std::strlen(texte) > static_cast<std::size_t>(LONG_TEXTE)) return refuse(env, ord);
      continue;
    }
    if (env == 1 && ord == B_POLICE) {
      if (bloc_nombres(v, y, 1) != 1 || !(y[0] >= 1 && y[0] <= 8) || y[0] != static_cast<float>(static_cast<int>(y[0])))
        return refuse(env, ord);
      police = static_cast<int>(y[0]);
      continue;
    }
    if (env == 1 && ord == B_SOM) {
      if (!v || v[0] < 4 || (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER)) return refuse(env, ord);
      nb_points = v[0] - 4;
      if (nb_points % 2 || nb_points > MAX_POINTS) return refuse(env, ord);
      points = v;
      continue;
    }
    int m = bloc_nombres(v, y, 3);
    if (m < 0) return refuse(env, ord);
    if (env == 0) {  // taille
      if (m != 1 || !(y[0] >= 1 && y[0] <= 100000)) return refuse(env, ord);
      q.taille_max = static_cast<int>(y[0]);
      continue;
    }
    switch (ord) {
      case B_ROND: q.forme = FORME_ROND; break;
      case B_CARRE: q.forme = FORME_CARRE; break;
      case B_SEQ: q.forme = FORME_LIGNE; break;
      case B_BITMAP: q.forme = FORME_BITMAP; break;
      case B_DESSINE: q.mode = MODE_DRAW; break;
      case B_ETAT: q.mode = MODE_LISSER; break;
      case B_RAYON:
        if (m != 1) return refuse(env, ord);
        if (pinceau_rayon(q, y[0]) < 0) return ECHEC;
        break;
      case B_TRANSP:
      case B_ALE:
        if (m != 1 || !(y[0] >= 0 && y[0] <= 1)) return refuse(env, ord);
        (ord == B_TRANSP ? q.transp : q.alea) = y[0];
        break;
      case B_ROTZ:
        if (m != 1 || !(y[0] >= -100000 && y[0] <= 100000)) return refuse(env, ord);
        q.angle = y[0];
        break;
      case B_COUL:
        if (m != 3) return refuse(env, ord);
        for (int i = 0; i < 3; ++i) {
          if (!(y[i] >= 0 && y[i] <= 1)) return refuse(env, ord);
          q.coul[i] = y[i];
        }
        break;
    }
  }
  if (q.taille_max != p->taille_max && q.pts) {
    tas::libere(mot_vers_ptr(q.pts));
    q.pts = 0;
    q.nb_pts = 0;
  }
  *p = q;
  if (avec_fonc) {
    std::strcpy(fonc_noms[p - pinceaux], fonc);
    p->fonc = fonc[0] != 0;
  }
  int faites = 0;
  if (points) {
    if (fen.fenetre < 1) {
      message(1, 95);
      return ECHEC;
    }
    if (texte) {
      for (int i = 0; i + 1 < nb_points; i += 2) {
        float xy[2];
        for (int j = 0; j < 2; ++j)
          xy[j] = points[1] == BLOC_REEL ? lit_reel(points + 4 + i + j) : static_cast<float>(points[4 + i + j]);
        if (!(xy[0] > -1e6f && xy[0] < 1e6f && xy[1] > -1e6f && xy[1] < 1e6f)) return refuse(1, B_SOM);
        ecrit(*p, texte, police, static_cast<int>(xy[0]), static_cast<int>(xy[1]));
      }
      return resultat_scalaire(bloc, limite, static_cast<float>(nb_points / 2));
    }
    // A stroke: its points go through the capture, which ends at taille_max.
    if (!p->pts) {
      void* b = tas::alloue(static_cast<std::size_t>(p->taille_max) * 2 * sizeof(mot));
      if (!b) {
        std::printf("%d: ", pinceau_courant);
        message(0, 28);
        return ECHEC;
      }
      p->pts = ptr_vers_mot(b);
    }
    p->nb_pts = 0;
    float xy[2];
    for (int i = 0; i < nb_points; i += 2) {
      for (int j = 0; j < 2; ++j)
        xy[j] = points[1] == BLOC_REEL ? lit_reel(points + 4 + i + j) : static_cast<float>(points[4 + i + j]);
      if (!(xy[0] > -1e6f && xy[0] < 1e6f && xy[1] > -1e6f && xy[1] < 1e6f)) return refuse(1, B_SOM);
      if (p->nb_pts >= p->taille_max) break;
      mot* t = static_cast<mot*>(mot_vers_ptr(p->pts));
      t[2 * p->nb_pts] = static_cast<int>(xy[0]);
      t[2 * p->nb_pts + 1] = static_cast<int>(xy[1]);
      ++p->nb_pts;
    }
    faites = p->nb_pts;
    if (brosse_trait_fin(false) < 0) return ECHEC;
  }
  return resultat_scalaire(bloc, limite, static_cast<float>(faites));
}

int pinceau_commande(mot* bloc, mot* valeur, const mot* limite) {
  if (valeur || bloc[2] != 1) return COMMANDE_SUITE;
  if (brosse_entre() < 0) return ECHEC;
  return resultat_scalaire(bloc, limite, 0);
}
}  // namespace

void brosse_enregistre() {
  outils::brosse_outil_enregistre();
  commande_enregistre(1, B_BRO, bro_commande);
  commande_enregistre(1, B_PINCEAU, pinceau_commande);
}
