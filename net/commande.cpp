// The `res` command: the phrase read into options, then training, recall
// or search over the networks it names.
//   res(1) nb(500, 0) coe(0.8, 0.1)      train network 1 from pass 1
//   res(1) motif(0, 1)                   its answer to (0, 1)
//   res(1) motif(0, 1) neu               the winning output neuron and value
//   res(1, 2) cherche sortie(1, 0)       the pattern whose output is nearest
// A phrase with none of these (creation, attribute reads and writes) goes on.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "interp/interp.h"
#include "net/interne.h"
#include "startup/startup.h"

namespace {
inline mot* arg(mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

long compte(const mot* a) {
  if (!a) return 0;
  if (a[0] < 0) return 1;
  if (a[1] == BLOC_CHAINE) return 1;
  return a[1] == BLOC_REEL || a[1] == BLOC_ENTIER ? a[0] - 4 : a[2];
}

int mauvais(int env, int ord) {
  const char* m = mot_nom(env, ord);
  std::printf("%s: ", m ? m : "?");
  message(0, MES_VALEUR);
  return -1;
}

// An integer option: the float truncated, refused when it is no number or
// too large.
bool entier(float x, int* n) {
  mot k;
  if (!reel_entier(x, &k, -1000000000, 1000000000)) return false;
  *n = k;
  return true;
}

struct Lu {
  OptionsRes opt;
  mot* ids = nullptr;
  bool premier_res = false;
  bool apprendre = false;
};

// Elements before `saute` belong to another command (interaction).
int lit(mot* bloc, Lu* l, int saute = 0) {
  OptionsRes& o = l->opt;
  mot* e = bloc + 4;
  std::vector<float> x;
  for (mot k = 0; k < saute && k < bloc[2]; ++k) e += e[0];
  for (mot k = saute; k < bloc[2]; ++k, e += e[0]) {
    const int env = e[1], ord = e[2];
    // After `interaction` (saute > 0) the hook functions are the screen's.
    if (saute > 0 && env == 0 && (ord == RA_FONC || ord == RA_FIN)) continue;
    mot* a = arg(e);
    const bool v = res_reels(a, &x);
    if (a && !v && !(env == 1 && ord == B_RES) && !(env == 0 && (ord == RA_FONC_AVANT || ord == RA_LIRE)))
      return mauvais(env, ord);
    if (env == 1) {
      switch (ord) {
        case B_RES:
          if (k == saute) l->premier_res = true;
          l->ids = a;
          break;
        case RB_SORTIE: o.sortie = x; break;
        case RB_MOTIF:
          if (a) {
            o.rappel = true;
            o.entree = x;
          }
          break;
        case RB_COE:
          l->apprendre = true;
          if (x.size() >= 1) o.r0 = o.r1 = x[0];
          if (x.size() >= 2) o.r1 = x[1];
          if (!std::isfinite(o.r0) || !std::isfinite(o.r1)) return mauvais(env, ord);
          break;
        case RB_NB:
          l->apprendre = true;
          if (x.size() >= 1) {
            if (!entier(x[0], &o.passes) || o.passes < 1) return mauvais(env, ord);
            o.depart = o.passes;
          }
          if (x.size() >= 2 && !entier(x[1], &o.depart)) return mauvais(env, ord);
          break;
        case RB_ALE:
          l->apprendre = true;
          o.tirage_donne = true;
          o.tirage.mode = -1;
          if (x.size() >= 1 && !entier(x[0], &o.tirage.mode)) return mauvais(env, ord);
          if (o.tirage.mode >= 0) {
            // A seed of the language's generator, then the uniform law.
            hasard_graine(static_cast<unsigned>(o.tirage.mode));
            o.tirage.mode = -2;
          }
          break;
        case RB_MAS:
          l->apprendre = true;
          o.tirage_donne = true;
          if (x.size() == 1) o.tirage.a = -std::fabs(x[0]), o.tirage.b = std::fabs(x[0]);
          if (x.size() >= 2) o.tirage.a = x[0], o.tirage.b = x[1];
          if (x.size() >= 3) o.tirage.d = x[2];
          if (!std::isfinite(o.tirage.a) || !std::isfinite(o.tirage.b) || !std::isfinite(o.tirage.d))
            return mauvais(env, ord);
          break;
        case RB_NEU: o.gagnant = true; break;
        default: return 1;  // not a phrase of the command
      }
    } else if (env == 0) {
      switch (ord) {
        case RA_PAS: o.ini = true; l->apprendre = true; break;
        case RA_LIRE: l->apprendre = true; break;
        case RA_COURBE: {
          l->apprendre = true;
          o.avec_courbe = true;
          o.courbe = x;
          // The abscissas must rise strictly: otherwise the curve is no
          // function of the pass.
          bool ok = x.size() >= 3;
          for (std::size_t i = 0; i + 2 < x.size() && ok; i += 3) {
            ok = std::isfinite(x[i]) && std::isfinite(x[i + 1]);
            if (i >= 3 && !(x[i] > x[i - 3])) ok = false;
          }
          if (!ok) {
            message(1, MES_RES_COURBE);
            return -1;
          }
          o.courbe.resize(x.size() / 3 * 3);
          break;
        }
        case RA_EDI: o.bavard = true; break;
        case RA_MAX:
          if (!x.empty()) o.borne = std::fabs(x[0]);
          if (!(o.borne == o.borne)) return mauvais(env, ord);
          break;
        case RA_CHERCHE: o.cherche = true; break;
        case RA_PIC:
          o.chaine = true;
          for (float f : x) {
            int n;
            if (!entier(f, &n)) return mauvais(env, ord);
            o.ordre_chaine.push_back(n);
          }
          break;
        case RA_CONT:
          if (!x.empty()) o.tolerance = x[0];
          if (!(o.tolerance == o.tolerance)) return mauvais(env, ord);
          break;
        case RA_PLANCHE: o.fenetres = x; break;
        default: return 1;
      }
    } else {
      return 1;
    }
  }
  return 0;
}

std::vector<Objet*> objets(mot* ids) {
  if (!ids) return res_tous();
  std::vector<Objet*> v;
  for (long i = 1, n = compte(ids); i <= n; ++i)
    if (Objet* o = objet_trouve_arg(1, B_RES, ids, static_cast<int>(i))) v.push_back(o);
  return v;
}

// res(1) motif = ...: the lists of a network keep every value they are
// given, where a plain attribute would be cut to the keyword's width.
int ecrit_liste(mot* bloc, mot* valeur, const mot* limite) {
  mot* e = bloc + 4;
  if (bloc[2] != 2 || e[1] != 1 || e[2] != B_RES) return COMMANDE_SUITE;
  mot* ids = arg(e);
  e += e[0];
  if (e[1] != 1 || arg(e) ||
      (e[2] != RB_FAC && e[2] != RB_SORTIE && e[2] != RB_MOTIF && e[2] != RB_VOISIN))
    return COMMANDE_SUITE;
  const mot l = valeur[0] > 0 ? valeur[0] : 2;
  const mot cle[2] = {1, e[2]};
  for (Objet* o : objets(ids)) {
    const mot h = 6;
    mot* a = bloc_alloue(h + (valeur[0] > 0 ? l : 5));
    if (!a) {
      message(0, MES_ALLOCATION);
      return -1;
    }
    phrase_paires(a, 1, cle);
    if (valeur[0] > 0) {
      std::copy(valeur, valeur + l, a + h);
      a[0] = h + l;
    } else {
      // A scalar becomes a vector of one value.
      a[h] = 5;
      a[h + 1] = valeur[0];
      a[h + 2] = 1;
      a[h + 3] = 1;
      a[h + 4] = valeur[1];
      a[0] = h + 5;
    }
    int pos;
    mot* ancien = attribut_trouve_pos(o, &pos, 1, cle);
    if (ancien) {
      o->donnees[pos] = ptr_vers_mot(a);
      bloc_supprime(ancien);
      attributs_bougent();
    } else if (liste_ajoute(o, a) < 0) {
      bloc_libere(a);
      message(0, MES_ALLOCATION);
      return -1;
    }
  }
  if (bloc + l >= limite) return PILE_PLEINE;
  std::memmove(bloc, valeur, sizeof(mot) * l);
  return 0;
}

// res(5) tex: a new map (sub-type 54) of that number, replacing the
// network it had.
int cree_carte(mot* bloc) {
  mot* e = bloc + 4;
  mot* ids = arg(e);
  mot* f = e + e[0];
  if (bloc[2] != 2 || e[1] != 1 || e[2] != B_RES || f[1] != 1 || f[2] != RES_CARTE || arg(f))
    return COMMANDE_SUITE;
  std::vector<float> x;
  int n = 0;
  if (ids && (!res_reels(ids, &x) || x.size() != 1 || !entier(x[0], &n))) return mauvais(1, B_RES);
  if (!ids) n = numero_max(1, B_RES) + 1;
  if (Objet* o = objet_trouve(B_RES, 0, n, nullptr)) objet_supprime(o);
  if (!objet_cree(1, B_RES, RES_CARTE, nullptr, nullptr, n)) return -1;
  bloc[0] = 0;
  return 0;
}
}  // namespace

int res_phrase(mot* bloc, int saute, OptionsRes* o, std::vector<Objet*>* nets) {
  Lu l;
  int r = lit(bloc, &l, saute);
  if (r != 0) return r;
  if (!l.premier_res) return 1;
  *o = l.opt;
  *nets = objets(l.ids);
  return 0;
}

int res_commande(mot* bloc, mot* valeur, const mot* limite) {
  if (valeur) return ecrit_liste(bloc, valeur, limite);
  if (bloc[2] < 2) return COMMANDE_SUITE;
  if (int c = cree_carte(bloc); c != COMMANDE_SUITE) return c;
  Lu l;
  int r = lit(bloc, &l);
  if (r > 0) return COMMANDE_SUITE;
  if (r < 0) return -1;
  if (!l.premier_res) return COMMANDE_SUITE;
  OptionsRes& o = l.opt;
  std::vector<float> y;
  if (o.cherche) {
    if (res_cherche(objets(l.ids), o.sortie, &y) < 0) return -1;
    return resultat_vecteur(bloc, limite, y);
  }
  if (o.rappel) {
    std::vector<Objet*> nets = objets(l.ids);
    if (o.chaine && !o.ordre_chaine.empty()) {
      nets.clear();
      for (int n : o.ordre_chaine)
        if (Objet* x = objet_trouve(B_RES, 0, n, nullptr)) nets.push_back(x);
    }
    if (res_rappel_liste(nets, o, &y) < 0) return -1;
    return resultat_vecteur(bloc, limite, y);
  }
  if (!l.apprendre && !o.bavard) return COMMANDE_SUITE;
  for (Objet* x : objets(l.ids)) {
    float t[3];
    if (res_apprend(x, o, t) < 0) return -1;
    y.insert(y.end(), t, t + 3);
  }
  return resultat_vecteur(bloc, limite, y);
}
