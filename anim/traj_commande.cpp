// `interaction tra ...` inside a running scene: with a sample count, each
// listed volume gets a node on the phrase's path (the node with the same
// path is reused, and left alone while it plays unless a46 restarts it);
// without one, the phrase reads the nodes back.
#include <cstdio>
#include <cstring>
#include <vector>

#include "anim/trajet.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
const mot* valeur(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

int compte(const mot* v) {
  if (!v) return 0;
  if (v[0] == BLOC_REEL || v[0] == BLOC_ENTIER) return 1;
  if (v[0] < 4 || (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER)) return v[0] >= 4 && v[1] == BLOC_NIL ? 0 : -1;
  return v[0] - 4;
}

std::vector<float> nombres(const mot* v) {
  int n = compte(v);
  std::vector<float> x(n > 0 ? static_cast<std::size_t>(n) : 0);
  if (n > 0) bloc_nombres(v, x.data(), n);
  return x;
}

int refuse(int env, int ord) {
  mot_imprime(env, ord);
  message(0, MES_VALEUR);
  return -1;
}

bool chemin_b(int o) {
  return o == B_ROUL_ || o == B_ROTA_ || o == B_ROTX_ || o == B_ROTY_ || o == B_ROTZ_ || o == B_POS_ || o == B_AXE_ ||
         o == B_FOR_;
}

bool meme_chemin(const Trajet* a, const Trajet& b) {
  return a->nb_cles == b.nb_cles && a->env1 == b.env1 && a->cle1 == b.cle1 && a->env2 == b.env2 &&
         a->cle2 == b.cle2 && a->env3 == b.env3 && a->cle3 == b.cle3;
}

struct Demande {
  Trajet modele;  // the path and the play options
  std::vector<float> cles;
  int cles_larg = 3;
  bool avec_cles = false;
  int n = -1;  // no count: a query
  int loi = 0;
  bool brut = false, relance = false, nb = false, indice = false, hist = false, ini = false, edition = false;
  std::vector<int> vols;
  bool tous = true;
};

int lit(mot* bloc, Demande* d) {
  Trajet& m = d->modele;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    const mot* v = valeur(e);
    const int env = e[1], o = e[2];
    if (env == 1 && o == B_VOL) {
      std::vector<float> x = nombres(v);
      if (compte(v) < 0) return refuse(1, B_VOL);
      if (!x.empty()) d->tous = false;
      for (float f : x) d->vols.push_back(static_cast<int>(f));
      continue;
    }
    if ((env == 1 && chemin_b(o)) || (env == 0 && o == A_SIN)) {
      // The first keyword is the path's first; later ones its third, then second.
      if (m.nb_cles == 0) m.env1 = env, m.cle1 = o;
      else if (m.nb_cles == 1) m.env3 = env, m.cle3 = o;
      else if (m.nb_cles == 2) m.env2 = env, m.cle2 = o;
      else return refuse(env, o);
      ++m.nb_cles;
      if (v && compte(v) != 0) {
        if (compte(v) < 0) return refuse(env, o);
        d->cles = nombres(v);
        d->cles_larg = v[0] >= 4 && v[2] > 1 && v[3] >= 3 ? v[3] : 3;
        d->avec_cles = true;
      }
      continue;
    }
    std::vector<float> x = nombres(v);
    if (env == 1) {
      switch (o) {
        case B_NB_ECH:
          if (x.empty()) break;  // the command's own keyword
          if (!(x[0] >= 0 && x[0] <= 1e6f)) return refuse(1, o);
          d->n = static_cast<int>(x[0]);
          break;
        case LOI_ACC:
        case LOI_DEC:
        case LOI_ACD:
          d->loi = o;
          break;
        case B_COEF_:
          if (x.size() > 0) m.gain = x[0];
          if (x.size() > 1) m.friction = x[1];
          if (x.size() > 2) m.lim = x[2];
          break;
        case B_BRUT: d->brut = true; break;
        case B_REL: m.relatif = 1; break;
        case B_BOUCLE: m.boucle = x.empty() ? 1 : static_cast<int>(x[0]); break;
        default: break;
      }
    } else if (env == 0) {
      if (o == A_RELANCE) d->relance = d->hist = true;
      else if (o == A_NB_) d->nb = true;
      else if (o == A_INDICE) d->indice = true;
      else if (o == A_INI_) d->ini = true;
      else if (o == A_EDITION) d->edition = true;
    }
  }
  return 0;
}

int place(Vol_inter* r, Demande& d) {
  Trajet* t = nullptr;
  Trajet** fin = reinterpret_cast<Trajet**>(&r->trajets);
  for (Trajet* x = static_cast<Trajet*>(r->trajets); x; x = x->suivant) {
    if (meme_chemin(x, d.modele)) t = x;
    fin = &x->suivant;
  }
  if (t && t->indice < t->nb && !d.relance) return 0;  // it plays on
  if (!t) {
    t = new Trajet;
    *fin = t;
  }
  Trajet* suivant = t->suivant;
  bloc_libere(t->cles);
  t->cles = nullptr;
  mot* val = t->val;
  *t = d.modele;
  t->val = val;
  t->suivant = suivant;
  t->nb = d.n;
  const int nk = static_cast<int>(d.cles.size());
  t->cles = bloc_alloue(4 + nk);
  if (!t->cles) return -1;
  const int larg = d.cles_larg > 3 ? d.cles_larg : 3;
  t->cles[1] = BLOC_REEL, t->cles[2] = nk / larg, t->cles[3] = larg;
  if (nk > 0) std::memcpy(t->cles + 4, d.cles.data(), sizeof(float) * static_cast<std::size_t>(nk));
  return trajet_echantillonne(t, r, d.loi, nullptr, d.brut);
}
// `edi`: one line per node: the volume, the path, the keys given, the
// samples and the one to play, the coefficients and the play modes.
int edite(mot* bloc, const std::vector<Vol_inter*>& l) {
  for (Vol_inter* r : l)
    for (Trajet* t = static_cast<Trajet*>(r->trajets); t; t = t->suivant) {
      std::printf("vol %d:", r->num);
      const int env[3] = {t->env1, t->env3, t->env2}, cle[3] = {t->cle1, t->cle3, t->cle2};
      for (int k = 0; k < t->nb_cles && k < 3; ++k) {
        const char* n = mot_nom(env[k], cle[k]);
        std::printf(" %s", n ? n : "?");
      }
      std::printf(" cles %d ech %d/%d coe %g %g %g boucle %d rel %d\n", t->nb_in, t->indice, t->nb,
                  static_cast<double>(t->gain), static_cast<double>(t->friction), static_cast<double>(t->lim),
                  t->boucle, t->relatif);
    }
  bloc[0] = 0;
  return 0;
}
}  // namespace

int trajet_commande(mot* bloc, const mot* e, const mot* limite) {
  (void)e;
  Demande d;
  if (lit(bloc, &d) < 0) return -1;
  std::vector<Vol_inter*> l;
  if (d.tous) {
    for (Vol_inter* r = inter.liste_inter; r; r = r->suivant) l.push_back(r);
  } else {
    for (int num : d.vols) {
      Vol_inter* r = vol_inter_de(num);
      if (!r) {
        std::printf("%d ", num);
        message(0, MES_ABSENT);
        continue;
      }
      l.push_back(r);
    }
  }
  if (d.n >= 0) {
    if (d.modele.nb_cles == 0) return refuse(1, B_TRA_);
    for (Vol_inter* r : l)
      if (place(r, d) < 0) return -1;
    bloc[0] = 0;
    return 0;
  }
  // A query: for each volume, its nodes one after the other.
  if (d.edition) return edite(bloc, l);
  std::vector<float> res;
  for (Vol_inter* r : l) {
    if (d.hist) {
      res.insert(res.end(), r->hist, r->hist + 12);
      continue;
    }
    for (Trajet* t = static_cast<Trajet*>(r->trajets); t; t = t->suivant) {
      if (d.nb) res.push_back(static_cast<float>(t->nb));
      else if (d.ini) res.push_back(static_cast<float>(t->nb_in));
      else if (d.indice) res.push_back(static_cast<float>(t->indice));
      else res.insert(res.end(), reels(t->val + 4), reels(t->val + 4) + 3L * t->nb);
    }
  }
  return resultat_vecteur(bloc, limite, res);
}
