// Anchors: of a figure's candidate volumes (its feet), the vertex lowest on
// the screen (largest y, the world's y pointing down) supports the figure
// each frame; while the same vertex supports, the root moves so that the
// vertex stays where it was pinned, and so the figure walks.
#include <cstdio>
#include <cstring>
#include <vector>

#include "anim/trajet.h"
#include "interp/interp.h"
#include "lang/lang.h"
#include "startup/startup.h"

Ancre* liste_anc = nullptr;

namespace {
constexpr int B_TRACE_ANC = 55, A_LIM_ = 41, A_FONC_ANC = 6;

// The world position of every vertex of r, its largest y beating `haut`.
bool plus_bas(const Vol_inter* r, float* haut, int* som, float* w) {
  bool gagne = false;
  float p[3];
  for (int s = 1; s <= r->nb_som; ++s) {
    if (!som_monde(r, s, p)) break;
    if (p[1] > *haut) {
      *haut = p[1], *som = s, gagne = true;
      std::memcpy(w, p, sizeof p);
    }
  }
  return gagne;
}

void deplace_racine(Ancre* a, const float* d) {
  Vol_inter* racine = a->vols[0];
  for (int x = 0; x < 3; ++x) racine->pos[x] += d[x];
  vol_inter_matrice(racine);
  arbre_evalue();
}

const mot* valeur(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }
}  // namespace

void ancre_verifie(Ancre* a) {
  if (a->nb <= 0) return;
  // 1-3. The candidates and the winning vertex.
  float haut = -1000000.f, w[3] = {0, 0, 0};
  int som = 0;
  Vol_inter* gagnant = nullptr;
  for (int k = a->avec_racine ? 0 : 1; k < a->nb; ++k)
    if (a->vols[k] && plus_bas(a->vols[k], &haut, &som, w)) gagnant = a->vols[k];
  a->haut = haut;
  if (!gagnant) return;
  const bool change = gagnant != a->vol || som != a->som;
  if (a->vol && a->actif) {
    if (!change) {
      // 5. The same support: the figure moves so that it stays pinned.
      if (a->trace) std::printf("meme anc num=%d s=%d\n", gagnant->num, som);
      float d[3] = {a->pos[0] - w[0], a->pos[1] - w[1], a->pos[2] - w[2]};
      deplace_racine(a, d);
      a->haut += d[1];
      std::memcpy(w, a->pos, sizeof w);
    } else if (a->trace) {
      // 6. A new support: pinned where it touches now.
      std::printf("reanc num=%d s=%d\n", gagnant->num, som);
    }
  }
  // 8. A change of support volume runs the function, told the volume and
  // the vertex that now support.
  if (gagnant != a->vol && a->fonc) {
    const float args[2] = {static_cast<float>(gagnant->num), static_cast<float>(som)};
    inter_lance_args(a->fonc, args, 2);
  }
  // 9.
  a->num = gagnant->num;
  a->som = som;
  a->vol = gagnant;
  std::memcpy(a->pos, w, sizeof w);
  a->actif = 1;
  if (a->trace)
    std::printf("REANC %d,%d: %f %f %f\n", a->num, a->som, static_cast<double>(a->pos[0]),
                static_cast<double>(a->pos[1]), static_cast<double>(a->pos[2]));
  // 10. The pinned point kept in its box.
  if (a->borne) {
    float d[3] = {0, 0, 0};
    for (int x = 0; x < 3; ++x) {
      if (a->pos[x] < a->lim[x]) d[x] = a->lim[x] - a->pos[x], a->pos[x] = a->lim[x];
      else if (a->pos[x] > a->lim[3 + x]) d[x] = a->lim[3 + x] - a->pos[x], a->pos[x] = a->lim[3 + x];
    }
    if (d[0] != 0 || d[1] != 0 || d[2] != 0) deplace_racine(a, d);
  }
}

void ancres_libere() {
  taches_libere();
  while (liste_anc) {
    Ancre* s = liste_anc->suivant;
    delete[] liste_anc->vols;
    delete liste_anc;
    liste_anc = s;
  }
}

int anc_commande(mot* bloc, const mot* e, const mot* limite) {
  (void)limite;
  auto* a = new Ancre;
  std::vector<Vol_inter*> l;
  float x[6];
  if (bloc_nombres(valeur(e), x, 1) == 1) a->avec_racine = x[0] != 0;
  const mot* c = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, c += c[0]) {
    const mot* v = valeur(c);
    if (c[1] == 1 && c[2] == B_VOL) {
      float y[1000];
      int n = bloc_nombres(v, y, 1000);
      for (int k = 0; k < n; ++k) {
        Vol_inter* r = vol_inter_de(static_cast<int>(y[k]));
        if (r) l.push_back(r);
        else std::printf("%d ", static_cast<int>(y[k])), message(0, MES_ABSENT);
      }
    } else if (c[1] == 1 && c[2] == B_TRACE_ANC) {
      a->trace = bloc_nombres(v, x, 1) == 1 ? x[0] != 0 : 1;
    } else if (c[1] == 0 && c[2] == A_LIM_) {
      if (bloc_nombres(v, x, 6) == 6) a->borne = 1, std::memcpy(a->lim, x, sizeof a->lim);
    } else if (c[1] == 0 && c[2] == A_FONC_ANC) {
      const char* nom = v && v[0] >= 5 && v[1] == BLOC_CHAINE ? reinterpret_cast<const char*>(v + 4) : nullptr;
      Objet* f = nom ? fonction_trouve(nom) : nullptr;
      if (!f && nom) f = fonction_cherche(nom);  // read from its file
      if (!f) {
        delete a;
        mot_imprime(0, A_FONC_ANC);
        if (nom) std::printf("%s: ", nom);
        message(0, MES_ABSENT);
        return -1;
      }
      a->fonc = f;
    }
  }
  a->nb = static_cast<int>(l.size());
  a->vols = new Vol_inter*[l.empty() ? 1 : l.size()];
  for (std::size_t k = 0; k < l.size(); ++k) a->vols[k] = l[k];
  Ancre** p = &liste_anc;
  while (*p) p = &(*p)->suivant;
  *p = a;
  bloc[0] = 0;
  return 0;
}
