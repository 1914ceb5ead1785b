// `aff_scene`: the options of an `aff` phrase read in order, then the
// displays they ask for: a clear, the drawing orders, and the objects of
// the kind named (volumes, images; lights and trajectories have no symbol
// in this display).
//
// With method 1 and a window the frame is OpenGL's: back buffer, depth
// clear, lights, projection, and a swap at the end of every route.
#include <GL/freeglut.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "core/message.h"
#include "display/aff_interne.h"
#include "display/display.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "image/image.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
using namespace aff_b;

constexpr float COS_DIAGONALE = 0.57735f;  // 1 / sqrt(3)

const mot* valeur(mot* e) { return e[0] > 3 ? e + 3 : nullptr; }
const char* chaine(const mot* v) {
  return v && v[0] >= 5 && v[1] == BLOC_CHAINE ? reinterpret_cast<const char*>(v + 4) : nullptr;
}

// The colour levels: a value times the maximum level, truncated.
float niveau(float x) {
  int max = ecran.niveau_couleur > 0 ? ecran.niveau_couleur : 255;
  float l = std::isfinite(x) ? std::clamp(x, 0.f, 1.f) * static_cast<float>(max) : 0.f;
  return std::trunc(l) / static_cast<float>(max);
}

// The working image cleared with the background colour (b1, 0 to 1); the
// window too when there is one.
void efface_fond() {
  int n = 0;
  reel* c = mot_valeur(1, FOND, &n);
  float rgb[3] = {0, 0, 0};
  for (int k = 0; k < 3 && c && k < n; ++k) rgb[k] = std::isfinite(c[k]) ? std::clamp(c[k], 0.f, 1.f) : 0.f;
  if (mot* im = ima_ecran()) {
    int w = ima_l(im), h = ima_h(im);
    for (int y = 0; y < h; ++y)
      for (int k = 0; k < 3; ++k)
        std::memset(ima_rouge(im, y) + static_cast<long>(k) * w, static_cast<int>(rgb[k] * 255.f + 0.5f),
                    static_cast<std::size_t>(w));
  }
  if (fen.fenetre > 0) {
    glClearColor(rgb[0], rgb[1], rgb[2], 0.f);
    glClear(GL_COLOR_BUFFER_BIT);
  }
}

// Image n onto the working image from its corner, clipped.
void montre_image(int n) {
  mot* src = ima_bloc(n);
  mot* dst = ima_ecran();
  if (!src || !dst || src == dst) return;
  Rect r{0, 0, ima_l(src) - 1, ima_h(src) - 1};
  if (!rect_coupe(&r, ima_l(dst), ima_h(dst))) return;
  if (ima_copie(src, r, dst, r) < 0) return;
  if (ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
}

// Views made again: every view deleted, view 1 holding the eye moved to
// the default distance along the diagonal, and the eye set there.
int vues_refaites(const mot* v) {
  std::vector<float> x;
  if (v && !aff_nombres(v, x)) {
    mot_imprime(1, ECRAN);
    message(0, MES_VALEUR);
    return ECHEC;
  }
  float p[3] = {0, 0, -1000};
  int n = 0;
  if (reel* d = mot_defaut(1, OEIL, &n); d && n >= 3) std::copy(d, d + 3, p);
  if (x.size() >= 3) std::copy(x.begin(), x.begin() + 3, p);
  else if (x.size() == 1) p[0] = p[1] = p[2] = x[0];
  for (float& c : p) {
    c *= COS_DIAGONALE;
    if (!std::isfinite(c)) {
      mot_imprime(1, ECRAN);
      message(1, M_OEIL_ILLEGAL);
      return ECHEC;
    }
  }
  objet_supprime_type(1, B_VUE);
  Objet* vue = objet_cree(1, B_VUE, 0, nullptr, nullptr, 1);
  if (!vue) return ECHEC;
  Oeil o = oeil_courant;
  const float dx = p[0] - o.vise[0], dy = p[1] - o.vise[1], dz = p[2] - o.vise[2];
  if (dx * dx + dy * dy + dz * dz > 1e-12f) std::copy(p, p + 3, oeil_courant.oeil);
  const Oeil& e = oeil_courant;
  float kind = static_cast<float>(e.projection);
  if (!attribut_ecrit_1(vue, 1, OEIL, e.oeil, 3, 1) || !attribut_ecrit_1(vue, 1, VISE, e.vise, 3, 1) ||
      !attribut_ecrit_1(vue, 1, FOC, &e.foc, 1, 1) || !attribut_ecrit_1(vue, 1, ROUL, &e.roul, 1, 1) ||
      !attribut_ecrit_1(vue, 1, PROJ, &kind, 1, 1))
    return ECHEC;
  return 0;
}

// Runs the function named by a6.
int lance_fonction(const char* nom) {
  std::string t = nom;
  if (t.find('(') == std::string::npos) t += "()";
  return executer_texte(t.c_str());
}

// The numbers of a list of objects; a name is looked up among the kind.
int numeros(const mot* v, int genre, std::vector<int>& out) {
  out.clear();
  if (const char* nom = chaine(v)) {
    if (Objet* o = objet_trouve(genre, 0, 0, nom)) out.push_back(o->numero);
    return 0;
  }
  std::vector<float> x;
  if (!aff_nombres(v, x)) return -1;
  for (float f : x) {
    mot n;
    // A number that names no object has no effect.
    if (reel_entier(f, &n)) out.push_back(n);
  }
  return 0;
}

// A marker or a line at 3D points, in the working image.
void point_image(mot* im, int x, int y, const float* c) {
  if (x < 0 || y < 0 || x >= ima_l(im) || y >= ima_h(im)) return;
  octet* r = ima_rouge(im, y);
  int w = ima_l(im);
  for (int k = 0; k < 3; ++k) r[k * w + x] = static_cast<octet>(c[k] * 255.f + 0.5f);
}

void ligne_image(mot* im, float x0, float y0, float x1, float y1, const float* c) {
  float dx = x1 - x0, dy = y1 - y0;
  float n = std::max(std::fabs(dx), std::fabs(dy));
  if (!std::isfinite(n)) return;
  // Segments longer than the image are walked only where they may be seen.
  n = std::min(n, 4.f * static_cast<float>(ima_l(im) + ima_h(im)));
  int pas = static_cast<int>(n) + 1;
  for (int i = 0; i <= pas; ++i) {
    float t = static_cast<float>(i) / static_cast<float>(pas);
    float x = x0 + t * dx, y = y0 + t * dy;
    if (x > -1 && y > -1 && x < 65536 && y < 65536) point_image(im, static_cast<int>(x), static_cast<int>(y), c);
  }
}

int ordre_dessin(int ord, const mot* v, const float* coul) {
  std::vector<float> x;
  if (!v || !aff_nombres(v, x)) return 0;
  mot* im = ima_ecran();
  if (!im) return 0;
  float p[2 * PROJ_PAS];
  if (ord == ROND && x.size() >= 4) {
    aff_projette(x.data(), 1, 3, ima_l(im), ima_h(im), p);
    float l = x[3], h = x.size() >= 5 ? x[4] : x[3];
    float x0 = p[4] - l / 2, x1 = p[4] + l / 2, y0 = p[5] - h / 2, y1 = p[5] + h / 2;
    ligne_image(im, x0, y0, x1, y0, coul);
    ligne_image(im, x1, y0, x1, y1, coul);
    ligne_image(im, x1, y1, x0, y1, coul);
    ligne_image(im, x0, y1, x0, y0, coul);
  } else if (ord == SEGMENT && x.size() >= 6) {
    aff_projette(x.data(), 2, 3, ima_l(im), ima_h(im), p);
    ligne_image(im, p[4], p[5], p[PROJ_PAS + 4], p[PROJ_PAS + 5], coul);
  } else {
    return 0;
  }
  if (ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
  return 0;
}
}  // namespace

int aff_scene(mot* bloc, const mot* limite, int vol_substitue) {
  (void)limite;
  mot* e = bloc + 4;
  // One element with a value: that value printed.
  if (bloc[2] == 1 && e[0] > 3 && !vol_substitue) {
    afficher(e + 3, nullptr, 0);
    return 0;
  }
  Aff_appel a;
  int nv = 0;
  if (reel* c = mot_defaut(1, COUL, &nv))
    for (int k = 0; k < 3 && k < nv; ++k) a.coul[k] = niveau(c[k]);
  int genre = 0;
  const mot* ids = nullptr;
  int ids_substitues = 0;
  bool effacer = false;
  std::vector<int> faces;
  bool faces_donnees = false;
  const mot* dessin = nullptr;
  int ordre = 0;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0]) {
    const mot* v = valeur(e);
    if (e[1] == 0) {
      switch (e[2]) {
        case aff_a::FONC:
          if (const char* nom = chaine(v)) {
            int r = lance_fonction(nom);
            if (a.methode == METHODE_GL && fen.fenetre > 0) glutSwapBuffers();
            return r < 0 ? r : 0;
          }
          break;
        case aff_a::OPT:
          if (v) {
            std::vector<float> x;
            mot n;
            if (aff_nombres(v, x) && !x.empty() && reel_entier(x[0], &n)) a.extra = n;
          }
          break;
        case aff_a::NUM: a.mode = MODE_NUMEROS; break;
        case aff_a::GENERER: a.mode = MODE_TEST; break;
      }
      continue;
    }
    if (e[1] != 1) continue;
    switch (e[2]) {
      case FOND:
        // fond(r, g, b): that colour from now on.
        if (v) {
          std::vector<float> x;
          int n = 0;
          reel* c = mot_valeur(1, FOND, &n);
          if (!aff_nombres(v, x)) {
            mot_imprime(1, FOND);
            message(0, MES_VALEUR);
            return ECHEC;
          }
          for (int j = 0; c && j < n && j < static_cast<int>(x.size()); ++j) c[j] = x[j];
        }
        effacer = true;
        break;
      case VOL: case LUM: case IMA: case TRA: case CIN: case ALP:
        genre = e[2];
        if (v) ids = v;
        break;
      case AFF:
        if (k == 0 && vol_substitue) {
          genre = VOL;
          ids_substitues = vol_substitue;
        } else {
          a.mode = etat_ou(1, ILLUM, 0);
        }
        break;
      case FAC:
        if (v) {
          std::vector<float> x;
          if (!aff_nombres(v, x)) {
            mot_imprime(1, FAC);
            message(0, MES_VALEUR);
            return ECHEC;
          }
          for (float f : x) {
            mot n;
            if (reel_entier(f, &n) && n >= 1) faces.push_back(n);
          }
          faces_donnees = true;
        }
        break;
      case COUL:
        if (v) {
          std::vector<float> x;
          if (aff_nombres(v, x)) {
            for (std::size_t j = 0; j < 3 && j < x.size(); ++j) a.coul[j] = niveau(x[j]);
            a.coul_donnee = true;
          }
        }
        break;
      case ECRAN: {
        int r = vues_refaites(v);
        if (a.methode == METHODE_GL && fen.fenetre > 0) glutSwapBuffers();
        return r;
      }
      case ILLUM:
        if (v) {
          std::vector<float> x;
          if (aff_nombres(v, x) && !x.empty() && std::isfinite(x[0]) && std::fabs(x[0]) < 1e6f)
            a.mode = static_cast<int>(x[0]);
        }
        break;
      case SOMMET: case TRAIT: case BORNES: case CHOC: a.mode = MODE_POINTS; break;
      case ROND: case SEGMENT: case RIEN:
        ordre = e[2];
        dessin = v;
        break;
      case GL: a.methode = METHODE_GL; break;
      case BOITE: case AXE: a.methode = METHODE_BOITE; break;
      case NAPPE: case BRO: case DESSIN:
        // Surfaces of lines, brushes and drawings have displays of their own.
        return 0;
    }
  }
  if (faces_donnees) {
    a.faces = faces.data();
    a.nb_faces = static_cast<int>(faces.size());
  }
  bool gl = a.methode == METHODE_GL && fen.fenetre > 0;
  if (gl) {
    glDrawBuffer(GL_BACK);
    if (drapeau(ZBU)) glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (a.mode != 0) lum_gl();
    projection_set(1);
  }
  if (effacer) efface_fond();
  if (ordre) ordre_dessin(ordre, dessin, a.coul);
  int r = 0;
  std::vector<int> liste;
  if (ids_substitues) liste.push_back(ids_substitues);
  else if (ids && numeros(ids, genre ? genre : VOL, liste) < 0) {
    mot_imprime(1, genre ? genre : VOL);
    message(0, MES_VALEUR);
    r = ECHEC;
  }
  if (r == 0) switch (genre) {
      case IMA:
        for (int n : liste) montre_image(n);
        break;
      case LUM: case TRA: case CIN: case ALP:
        // Lights, trajectories and alpha objects have no symbol here.
        break;
      default:
        if (a.mode > 0 && drapeau(ZBU) && !gl && init_zbuf(1) < 0) {
          r = ECHEC;
          break;
        }
        r = ids || ids_substitues ? aff_vols(a, liste.data(), static_cast<int>(liste.size())) : aff_tous(a, VOL);
    }
  if (gl) glutSwapBuffers();
  return r;
}
