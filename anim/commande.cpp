// The phrase `interaction`: at the start, its keywords are read once into
// the arguments of a start; while an interaction runs, the first keyword
// that is an option of a running interaction acts on the working records
// instead, and a phrase with none is a request to start again.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "anim/dyn.h"
#include "anim/interne.h"
#include "anim/trajet.h"
#include "display/moteurs.h"
#include "interp/interp.h"
#include "geom/geom.h"
#include "lang/lang.h"
#include "startup/startup.h"

namespace {
constexpr int MES_SANS_SCENE = 141;  // env 1
constexpr int A_PAS_ = 3, A_FONC_ = 6, A_NOM_IMG = 15, A_BROU = 47, A_OPT = 50, A_ETAPE = 51, A_CLE = 56, A_FIN = 61,
              A_EXEC = 69, A_NOM_ = 82, A_PULS = 95, A_TEM = 98, A_ALI = 107;
constexpr int B_SOU = 16, B_PAS = 18, B_ECRAN = 19, B_SEQ_ = 22, B_LUM_ = 24, B_ZBU = 25, B_COE_ = 42,
              B_NB_ = 47, B_TRACE = 55, B_MENU = 74, B_INTER = 85, B_GLIDE = 103, B_CADENCE = 106,
              B_BRO = 120, B_ANIM = 93, B_NURBS_ = 45, B_ATT_MENU = 144, B_ETAT = 145, B_MEM_ = 148, B_RES_ = 161, B_PICK = 60, B_NORMALE_ = 63, B_IMA_ = 28, B_TIRE_ = 130;

const mot* valeur(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

int nb_nombres(const mot* v) {
  if (!v) return 0;
  if (v[0] == BLOC_REEL || v[0] == BLOC_ENTIER) return 1;
  if (v[0] < 4 || (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER)) return -1;
  return v[0] - 4;
}

const char* chaine(const mot* v) {
  return v && v[0] >= 5 && v[1] == BLOC_CHAINE ? reinterpret_cast<const char*>(v + 4) : nullptr;
}

int refuse(int env, int ord) {
  mot_imprime(env, ord);
  message(0, MES_VALEUR);
  return -1;
}

Objet* fonction(const char* nom) {
  Objet* f = fonction_trouve(nom);
  return f ? f : fonction_cherche(nom);
}

int inconnue(const char* nom) {
  mot_imprime(0, A_FONC_);
  std::printf("%s: ", nom);
  message(0, MES_ABSENT);
  return -1;
}

// The volumes of a `vol` clause of the phrase, or none.
std::vector<int> vols_de(mot* bloc) {
  std::vector<int> l;
  mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (e[1] != 1 || e[2] != B_VOL) continue;
    const mot* v = valeur(e);
    int n = nb_nombres(v);
    std::vector<float> x(n > 0 ? n : 0);
    if (n > 0) bloc_nombres(v, x.data(), n);
    for (float f : x) l.push_back(static_cast<int>(f));
    if (n <= 0)
      for (Vol_inter* r = inter.liste_inter; r; r = r->suivant) l.push_back(r->num);
  }
  return l;
}

int rien(mot* bloc) {
  bloc[0] = 0;
  return 0;
}

// ima(n) makes image n the background, ima(n, m, k) fades it into image m
// over k frames, ima or ima(0) leaves the plain cleared colour.
int fond_lit(const mot* v) {
  float x[3] = {0, 0, 0};
  int n = bloc_nombres(v, x, 3);
  if (n < 0 || n == 2) return refuse(1, B_IMA_);
  for (int k = 0; k < n; ++k)
    if (!(x[k] >= 0 && x[k] < 1e9f)) return refuse(1, B_IMA_);
  return inter_fond(static_cast<int>(x[0]), static_cast<int>(x[1]), static_cast<int>(x[2]));
}

int option_fond(mot* bloc, const mot* v) { return fond_lit(v) < 0 ? -1 : rien(bloc); }

// anim followed by a phrase: that phrase runs at every frame (liste_4);
// with nurbs, it waits in the spare list. The phrase is the keywords
// behind the option, copied now, with the first listed volume as target.
int option_liste(mot* bloc, const mot* e, int liste) {
  const mot* suite = e + e[0];
  const mot* fin = bloc + bloc[0];
  int n = 0;
  for (const mot* c = suite; c < fin && c[0] >= 3; c += c[0]) ++n;
  if (n == 0) return refuse(1, e[2]);
  std::vector<mot> p{static_cast<mot>(4 + (fin - suite)), BLOC_PHRASE, n, 0};
  p.insert(p.end(), suite, fin);
  std::vector<int> l = vols_de(bloc);
  Vol_inter* cible = l.empty() ? nullptr : vol_inter_de(l[0]);
  if (inter_liste_ajoute(liste, cible, p.data()) < 0) return -1;
  return rien(bloc);
}

// pas(n): n > 0 arms the single-step latch with that period, n < 0 lets
// one more frame through, 0 runs freely again.
int option_pas(mot* bloc, const mot* v, int env) {
  float x = 0;
  if (bloc_nombres(v, &x, 1) < 1) return refuse(env, env ? B_PAS : A_PAS_);
  if (x > 0) inter.pas_demande = x < 1e6f ? static_cast<int>(x) : 1000000, inter.pas_bloque = 0;
  else if (x < 0) inter.pas_bloque = 0;
  else inter.pas_demande = inter.pas_bloque = 0;
  return rien(bloc);
}

// 1 when the keyword is no option of a running interaction.
int option(mot* bloc, const mot* e, const mot* limite) {
  const mot* v = valeur(e);
  float x[4] = {0, 0, 0, 0};
  if (e[1] == 0) {
    switch (e[2]) {
      case A_CLE: {
        if (!v) {
          char t[CLAVIER_MAX + 2];
          int n = clavier_lire(t, sizeof t);
          return resultat_chaine(bloc, limite, t, static_cast<std::size_t>(n));
        }
        const char* s = chaine(v);
        if (!s) return refuse(0, A_CLE);
        std::string f, nom;
        const char* p = s + std::strspn(s, " \t,");
        std::size_t lf = std::strcspn(p, " \t,");
        f.assign(p, lf);
        p += lf;
        p += std::strspn(p, " \t,");
        nom.assign(p, std::strcspn(p, " \t,"));
        if (f.empty() || nom.empty()) return refuse(0, A_CLE);
        if (inter_cle_lie(f.c_str(), nom.c_str()) < 0) return -1;
        return rien(bloc);
      }
      case A_PAS_:
        // With the shape's keyword: a stub kept for each listed record.
        for (const mot* c = bloc + 4, *fin = bloc + bloc[0]; c < fin && c[0] >= 3; c += c[0])
          if (c[1] == 1 && c[2] == B_NORMALE_) return rien(bloc);
        // `pas` is spelt as the interpreter's step keyword too: in this
        // phrase it is the frame's.
        return option_pas(bloc, v, 0);
      case A_PULS: {
        // The puls phrase from this keyword on, moved in place to the
        // front of the block: its handler reads it as its own.
        if (!outils_inter.puls) return 1;
        mot* debut_p = const_cast<mot*>(e);
        mot n = 0;
        for (const mot* c = e, *fin = bloc + bloc[0]; c < fin && c[0] >= 3; c += c[0]) ++n;
        mot longueur = static_cast<mot>(bloc + bloc[0] - debut_p);
        std::memmove(bloc + 4, debut_p, sizeof(mot) * static_cast<std::size_t>(longueur));
        bloc[0] = 4 + longueur, bloc[2] = n;
        return outils_inter.puls(bloc, nullptr, limite);
      }
      case A_ETAPE:
        inter.etape = bloc_nombres(v, x, 1) > 0 ? static_cast<int>(x[0]) : 6;
        return rien(bloc);
    }
    return inter_option_vol(bloc, e, limite);
  }
  switch (e[2]) {
    case B_PAS:
      return option_pas(bloc, v, 1);
    case B_CADENCE: {
      int n = bloc_nombres(v, x, 1);
      if (n < 0) return refuse(1, B_CADENCE);
      if (n > 0 && x[0] >= 0 && x[0] < 100000) inter.cadence = static_cast<int>(x[0]);
      inter.t0 = ticks_ms();
      inter.cpt_cadence = 0;
      return rien(bloc);
    }
    case B_LUM_:
      lum_gl();
      return rien(bloc);
    case B_IMA_:
      return option_fond(bloc, v);
    case B_ETAT: {
      float et = 1;
      if (bloc_nombres(v, x, 1) > 0) et = x[0];
      for (int num : vols_de(bloc))
        if (Vol_inter* r = vol_inter_de(num)) r->etat = static_cast<int>(et);
      return rien(bloc);
    }
    case B_PICK: {
      int c = inter_pick(fen.souris_x, fen.souris_y, false);
      int i = 0;
      for (Vol_inter* r = inter.liste_inter; r; r = r->suivant)
        if (++i == c) {
          float res[2] = {static_cast<float>(r->num), static_cast<float>(r->courant)};
          reel* out = resultat_reels(bloc, limite, 2);
          if (!out) return PILE_PLEINE;
          out[0] = res[0], out[1] = res[1];
          return 0;
        }
      resultat_nil(bloc);
      return 0;
    }
    case B_GLIDE: {
      int n = bloc_nombres(v, x, 2);
      if (n < 1) return refuse(1, B_GLIDE);
      if (inter_glide(static_cast<int>(x[0]), n > 1 ? static_cast<int>(x[1]) : 25) < 0) return -1;
      return rien(bloc);
    }
    case B_SOU: {
      // A number: what the mouse drags, as the menu entries set it.
      if (bloc_nombres(v, x, 1) < 1) return 1;
      inter.cmd_souris = static_cast<int>(x[0]);
      return rien(bloc);
    }
    case B_TIRE_:
      // A pull holding a transformation is a program of the frame, as `anim`.
      if (!dyn::tire_attache(bloc)) break;
      return option_liste(bloc, e, 4);
    case B_ANIM:
    case B_NURBS_:
      return option_liste(bloc, e, e[2] == B_ANIM ? 4 : LISTE_AUTRE);
    case B_TRA_: return trajet_commande(bloc, e, limite);
    case B_LEAD_: return lead_commande(bloc, e, limite);
    case B_SUIV_: return suiv_commande(bloc, e, limite);
    case B_ORIGINE: return origine_commande(bloc, e, limite);
    case B_ANC_: return anc_commande(bloc, e, limite);
  }
  return inter_option_vol(bloc, e, limite);
}

}  // namespace

int interaction_fonctions(const mot* bloc, Objet* fonc[6], Objet** fonc_fin) {
  int libre = 1;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (e[1] != 0 || (e[2] != A_FONC_ && e[2] != A_FIN)) continue;
    const mot* v = valeur(e);
    if (e[2] == A_FIN) {
      const char* nom = chaine(v);
      if (!nom) return refuse(0, A_FIN);
      if (!(*fonc_fin = fonction(nom))) return inconnue(nom);
      continue;
    }
    // "fonction", or (n, "fonction") for slot n; unnumbered ones take the
    // free slots from fonc_1 on.
    int n = -1;
    float x = 0;
    const char* nom = chaine(v);
    if (!nom && v && v[0] >= 4 && v[1] == BLOC_LISTE) {
      for (const mot *c = v + 4, *fin = v + v[0]; c < fin && c[0] >= 4; c += c[0]) {
        if (const char* s = chaine(c)) nom = s;
        else if (bloc_nombres(c, &x, 1) == 1) n = static_cast<int>(x);
      }
    }
    if (!nom) return refuse(0, A_FONC_);
    Objet* f = fonction(nom);
    if (!f) return inconnue(nom);
    if (n < 0) {
      while (libre < 6 && fonc[libre]) ++libre;
      n = libre < 6 ? libre : 5;
    }
    if (n > 5) return refuse(0, A_FONC_);
    fonc[n] = f;
  }
  return 0;
}

namespace {
// The start: every keyword read once.
int debut(mot* bloc) {
  ArgsInter a;
  std::vector<int> vols;
  bool avec_vols = false;
  std::string nom_images;
  inter.nb_mem = 0;
  if (interaction_fonctions(bloc, a.fonc, &a.fonc_fin) < 0) return -1;
  mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    const mot* v = valeur(e);
    float x[4] = {0, 0, 0, 0};
    const int ord = e[2];
    if (e[1] == 0) {
      switch (ord) {
        case A_FONC_:
        case A_FIN:
          break;  // read before the loop
        case A_NOM_IMG: {
          const char* nom = chaine(v);
          if (!nom || std::strlen(nom) > 100) return refuse(0, A_NOM_IMG);
          nom_images = nom;
          break;
        }
        case A_TEM: {
          int n = bloc_nombres(v, x, 3);
          if (n < 0) return refuse(0, A_TEM);
          if (n == 0) x[0] = 1;
          for (int k = 0; k < (n > 0 ? n : 1); ++k)
            if (!(x[k] >= 0 && x[k] < 2e9f)) return refuse(0, A_TEM);
          a.nb_images = static_cast<int>(x[0]);
          if (n > 1) a.nb_premieres = static_cast<int>(x[1]);
          if (n > 2) a.echap_permis = x[2] != 0;
          break;
        }
        case A_BROU:
          if (bloc_nombres(v, x, 1) > 0) brouillard_etat.loi = static_cast<int>(x[0]) & 3;
          break;
        case A_EXEC: {
          const char* t = chaine(v);
          if (!t) return refuse(0, A_EXEC);
          if (outils_inter.exec_ajoute && outils_inter.exec_ajoute(t) < 0) return -1;
          break;
        }
        case A_NOM_: {
          const char* t = chaine(v);
          if (!t) return refuse(0, A_NOM_);
          if (outils_inter.menu_ajoute && outils_inter.menu_ajoute(t) < 0) return -1;
          break;
        }
        case A_ALI:
          a.lissage = bloc_nombres(v, x, 1) > 0 && x[0] != 0 ? 1 : 0;
          break;
        default:
          break;  // a50
      }
      continue;
    }
    switch (ord) {
      case B_VOL: {
        int n = nb_nombres(v);
        if (n < 0) return refuse(1, B_VOL);
        avec_vols = n > 0 || avec_vols;
        std::vector<float> y(n > 0 ? n : 0);
        if (n > 0) bloc_nombres(v, y.data(), n);
        for (float f : y) vols.push_back(static_cast<int>(f));
        break;
      }
      case B_SOU:
      case B_SEQ_: {
        if (!v || v[0] < 4 || v[1] != BLOC_REEL || (v[0] - 4) % 3 != 0) {
          std::printf("interaction souris\x07\n");
          return -1;
        }
        break;
      }
      case B_CADENCE: {
        if (bloc_nombres(v, x, 1) < 1 || !(x[0] >= 0 && x[0] < 100000)) return refuse(1, B_CADENCE);
        a.cadence = static_cast<int>(x[0]);
        break;
      }
      case B_NB_: {
        if (nb_nombres(v) < 2) {
          mot_imprime(1, B_INTER);
          mot_imprime(1, B_NB_);
          std::printf("(nb,1)\x07\n");
          return -1;
        }
        break;
      }
      case B_TRACE:
        if (bloc_nombres(v, x, 1) > 0 && x[0] >= 0 && x[0] <= 1000) a.nb_traces = static_cast<int>(x[0]);
        break;
      case B_BRO: {
        if (bloc_nombres(v, x, 3) == 3) {
          brouillard_etat.actif = true;
          brouillard_etat.coul[0] = x[0], brouillard_etat.coul[1] = x[1], brouillard_etat.coul[2] = x[2];
          brouillard_etat.coul[3] = 1;
        }
        break;
      }
      case B_ZBU:
        if (bloc_nombres(v, x, 2) == 2) brouillard_etat.debut = x[0], brouillard_etat.fin = x[1];
        break;
      case B_COE_:
        if (bloc_nombres(v, x, 1) == 1) brouillard_etat.densite = x[0];
        break;
      case B_ATT_MENU:
        if (bloc_nombres(v, x, 1) == 1) a.attache_menu = x[0] != 0;
        break;
      case B_ECRAN:
        plein_ecran(true);
        break;
      case B_MENU:
        if (const char* nom = chaine(v); nom && outils_inter.lit_menus && outils_inter.lit_menus(nom) < 0)
          return -1;
        break;
      case B_MEM_: {
        float y[64];
        int n = bloc_nombres(v, y, 64);
        for (int k = 0; k < n && inter.nb_mem < 64; ++k) inter.mem_vols[inter.nb_mem++] = static_cast<int>(y[k]);
        break;
      }
      case B_RES_:
        break;  // the network's screen is its own folder's
      default:
        break;
    }
  }
  // The scripted mouse: nb_images follows its length.
  inter.sequence_souris = nullptr;
  inter.seq_n = inter.seq_i = 0;
  if (avec_vols) a.vols = vols.data(), a.nb_vols = static_cast<int>(vols.size());
  if (!nom_images.empty()) a.nom_images = nom_images.c_str();
  if (interaction_debut(a) < 0) return -1;
  e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    const mot* v = valeur(e);
    if (e[1] == 1 && (e[2] == B_SEQ_ || e[2] == B_SOU) && v) {
      // A private copy: the phrase's value goes with the line.
      static std::vector<mot> copie;
      copie.assign(v, v + v[0]);
      inter.sequence_souris = copie.data();
      inter.seq_n = (v[0] - 4) / 3;
      inter.nb_images = inter.seq_n;
      fen.outil_fini_seul = inter.nb_images > 0;
    }
    if (e[1] == 1 && e[2] == B_IMA_ && fond_lit(v) < 0) {
      interaction_fin();
      return -1;
    }
  }
  return rien(bloc);
}
}  // namespace

int interaction_commande(mot* bloc, mot* valeur_aff, const mot* limite) {
  (void)valeur_aff;
  // With `res` the phrase runs a network's screen: the network's own.
  {
    const mot* e = bloc + 4;
    for (int i = 0; i < bloc[2]; ++i, e += e[0])
      if (e[1] == 1 && e[2] == B_RES_) return COMMANDE_SUITE;
  }
  if (fen.fenetre < 1) {
    message(1, 95);
    return -1;
  }
  if (!inter.en_cours) {
    // The options that talk to the working records have none to talk to:
    // they do not start a scene.
    const mot* e = bloc + 4;
    for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
      if (e[1] != 1 || e[2] == B_INTER) continue;
      if (e[2] == B_TRA_ || e[2] == B_LEAD_ || e[2] == B_SUIV_ || e[2] == B_ORIGINE || e[2] == B_ANC_) {
        mot_imprime(1, e[2]);
        message(1, MES_SANS_SCENE);
        return -1;
      }
      break;
    }
  }
  if (inter.en_cours) {
    mot* e = bloc + 4;
    for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
      if (e[1] == 1 && e[2] == B_INTER) {
        if (bloc[2] != 1) continue;
        // `interaction(n)` alone: the order of the Euler turns.
        float n = 0;
        if (bloc_nombres(valeur(e), &n, 1) == 1 && arbre_ordre(static_cast<int>(n)) < 0) return -1;
        return rien(bloc);
      }
      int r = option(bloc, e, limite);
      if (r <= 0) return r;
    }
  }
  return debut(bloc);
}
