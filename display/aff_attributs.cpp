// The walk over one volume's attribute list: each attribute, in the order
// of the list, says what the display of this volume needs. Attributes
// whose effects belong to tools not in this display (effects per face,
// labels, textures, pigments, followers...) are read and counted as kept,
// so that a scene naming them still displays.
#include "display/aff_attributs.h"

#include <cmath>

#include "display/aff_interne.h"

namespace {
using namespace aff_b;

// A valid value Bloc of the attribute: stale attributes (validity 0) and
// formulas (a phrase held as the value) that give nothing are skipped.
const mot* valeur_valide(const mot* a) {
  if (!a || a[1] == 0 || a[2] < 6 || a[2] >= a[0]) return nullptr;
  const mot* v = a + a[2];
  if (v[0] < 4 || v + v[0] > a + a[0]) return nullptr;
  if (v[1] == BLOC_PHRASE) return nullptr;
  return v;
}

float premier_reel(const mot* v, float defaut) {
  if (v[0] > 4 && v[1] == BLOC_REEL) return lit_reel(v + 4);
  if (v[0] > 4 && v[1] == BLOC_ENTIER) return static_cast<float>(v[4]);
  return defaut;
}

int entier(float x, int defaut) {
  return std::isfinite(x) && std::fabs(x) < 1e9f ? static_cast<int>(x) : defaut;
}

// The key of an attribute as (env, ordinal) pairs.
struct Cle {
  int n = 0;
  int e[4] = {}, o[4] = {};
  bool est(int e1, int o1) const { return n == 1 && e[0] == e1 && o[0] == o1; }
  bool est(int e1, int o1, int e2, int o2) const {
    return n == 2 && e[0] == e1 && o[0] == o1 && e[1] == e2 && o[1] == o2;
  }
  bool commence(int e1, int o1) const { return n >= 1 && e[0] == e1 && o[0] == o1; }
  bool second(int e2, int o2) const { return n >= 2 && e[1] == e2 && o[1] == o2; }
};

Cle cle_de(const mot* a) {
  Cle c;
  c.n = a[3] < 0 ? 0 : (a[3] > 4 ? 4 : a[3]);
  for (int k = 0; k < c.n; ++k) {
    c.e[k] = a[4 + 2 * k];
    c.o[k] = a[5 + 2 * k];
  }
  return c;
}

// Attributes of list "a".
void attribut_a(const Cle& c, const mot* v, int mode, Aff_attributs* at) {
  switch (c.o[0]) {
    case aff_a::FONC:
      // Statements per face or vertex, lists of effects: the fast path
      // cannot honour them.
      at->rapide = false;
      if (c.n > 1 && c.o[1] == PIGMENTS && (mode == 0 || !drapeau(PIGMENTS))) break;
      ++at->gardes;
      break;
    case aff_a::OPT:
      if (c.n == 1) at->precision = entier(premier_reel(v, 1), 1);
      break;
    case aff_a::TRI:
      if (c.n == 1) at->tri = premier_reel(v, 1) != 0;
      break;
    case aff_a::CENTRE: case aff_a::TEM: case aff_a::MATRICE:
      ++at->gardes;
      break;
  }
}
}  // namespace

int aff_lit_attributs(Objet* src, int numero, int mode, Aff_attributs* at) {
  const mot* liste = src->donnees;
  if (!liste || liste[0] < 4 || liste[1] != BLOC_BLOCS) return 0;
  mot nb = liste[2] < liste[0] - 4 ? liste[2] : liste[0] - 4;
  bool eclaire = mode != 0;
  for (mot i = 0; i < nb; ++i) {
    const mot* a = bloc_pointe(liste[4 + i]);
    const mot* v = valeur_valide(a);
    if (!v) continue;
    Cle c = cle_de(a);
    if (c.n == 0) continue;
    if (c.e[0] == 0) {
      attribut_a(c, v, mode, at);
      continue;
    }
    if (c.e[0] != 1) continue;
    switch (c.o[0]) {
      case SOM:
        if (c.n == 1) at->som = v;
        break;
      case AFFICHE:
        if (c.est(1, AFFICHE, 1, SOM)) at->som_aff = v;
        break;
      case FAC:
        if (c.n == 1) at->fac = v;
        break;
      case SEGMENT:
        if (c.n == 1) at->aretes = v;
        break;
      case PROJ:
        if (c.est(1, PROJ, 1, SOMMET)) at->proj = v;
        break;
      case COUL:
        if (c.n == 1) {
          at->coul = v;
        } else if (c.est(1, COUL, 1, FAC)) {
          at->c_fac = v;
          at->besoin_n_fac = true;
          at->rapide = false;
        } else if (c.est(1, COUL, 1, SOMMET)) {
          at->c_som = v;
          if (mode > 0) at->besoin_n_som = true;
          at->rapide = false;
        }
        break;
      case ILLUM:
        if (!eclaire || !drapeau(ILLUM)) break;
        if (c.n == 1) {
          at->illum = v;
        } else {
          at->transp_variable = true;
          at->rapide = false;
        }
        break;
      case LUM:
        if (c.n == 1) at->lum = v;
        else ++at->gardes;
        break;
      case ZBU:
        if (c.n == 1) at->zbu = entier(premier_reel(v, -1), -1);
        break;
      case MARGE:
        if (c.n == 1) {
          at->marge = premier_reel(v, 0);
          at->marge_donnee = true;
        }
        break;
      case PAS:
        if (c.n == 1 && v[1] == BLOC_REEL && v[0] >= 6) {
          at->decalage[0] = lit_reel(v + 4);
          at->decalage[1] = lit_reel(v + 5);
          at->decale = true;
        }
        break;
      case VOL: case CLEF:
        // Other objects stand for a numbered volume.
        if (c.n == 1 && numero != 0) at->remplace = v;
        break;
      case NORMALE:
        if (c.n == 1) {
          if (a[2] > 0) at->precision = entier(premier_reel(v, 1), 1);
        } else if (a[1] > 0 && c.est(1, NORMALE, 1, FAC)) {
          at->n_fac = v;
        } else if (a[1] > 0 && c.est(1, NORMALE, 1, SOMMET)) {
          at->n_som = v;
        }
        break;
      case RAPIDE:
        if (premier_reel(v, 1) < 1) at->rapide = false;
        break;
      case MOTIF:
        if (!drapeau(MOTIF)) break;
        if (c.est(1, MOTIF, 1, SOMMET)) at->nuage = true;
        at->rapide = false;
        ++at->gardes;
        break;
      case NAPPE:
        if (c.est(1, NAPPE, 1, MOTIF)) at->image = true;
        break;
      case HOMO:
        // A rewrite of the vertices by a matrix before display.
        if (c.n > 1) at->rapide = false;
        ++at->gardes;
        break;
      case SEQ: case ARETE: case ATTACHE: case NURBS: case TEX: case PIGMENTS: case BRO: case CHA:
        // Per-face programmes, edges, attachments, textures, pigments,
        // brushes and fields: effects of their own tools, each behind its
        // enable flag.
        if (drapeau(c.o[0])) at->rapide = false;
        ++at->gardes;
        break;
      case GL:
        if (c.n == 1) at->methode = entier(premier_reel(v, 0), 0);
        break;
      case VUE:
        if (c.n == 1) at->vues = v;
        break;
      case BOITE:
        if (c.n == 1) at->boite = v;
        break;
      case SORTIE: case COE: case SPE: case ROND: case AMB: case ANIM: case AXE: case VIT:
      case MASSE: case FORCE: case TRANSP: case AJUST: case NUAGE: case AMAS: case DYN:
        // Parameters of effects, labels, clouds, dynamics and the real-time
        // path: kept for them.
        if (c.o[0] == SPE || c.o[0] == AMAS) at->rapide = at->rapide && c.n == 1;
        ++at->gardes;
        break;
    }
  }
  return 0;
}
