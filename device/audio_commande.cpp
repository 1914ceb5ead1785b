// The command `audio`: its clauses set the capture's fields at once, and
// then one action runs: opening (ini), closing (fin), playing a sound file
// (bip), fading one out (bosse), or a read of a fresh window that gives the
// three measures, the signal (var), the spectrum (fenetre), the filtered
// window (max), the peaks (pic), smoothed on demand (cadence), or the pitch
// (tem).
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "device/device.h"
#include "device/periph_interne.h"
#include "geom/geom.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int A_VAR = 21, A_INI = 24, A_EDI = 36, A_BIP = 52, A_MAX = 54, A_MIN = 55, A_FIN = 61,
              A_PIC = 81, A_PLANCHE = 90, A_TEM = 98, A_FENETRE = 102;
constexpr int B_NURBS = 45, B_CADENCE = 106, B_TIRE = 130, B_AUDIO = 136, B_BOSSE = 143;
// The action of b143 among those of list "a".
constexpr int ACTION_BOSSE = 1000 + B_BOSSE;
constexpr int MAX_FENETRES_HAUTEUR = 1000;

// A phrase's elements: [length, env, ordinal, value...] after its header.
mot* premier_element(mot* bloc) { return bloc + 4; }
mot* element_suivant(mot* e) { return e + e[0]; }
const mot* argument(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

// The bytes of one period, and the results built before they are copied
// to the stack: sized once, so that a read allocates nothing.
std::uint8_t octets[AUDIO_MAX];
float travail[AUDIO_MAX];
// The peaks as a line of points (index, value, 0), and the count wanted,
// in the form of the fitting routine's arguments.
mot ligne[4 + 3 * AUDIO_MAX];
mot nombre_voulu[5];

int refuse(int env, int ord) {
  mot_imprime(env, ord);
  message(0, MES_VALEUR);
  return ECHEC;
}

int rend(mot* bloc, const mot* limite, const float* x, int n) {
  reel* r = resultat_reels(bloc, limite, n);
  if (!r) {
    std::printf("DEBORDEMENT\n");
    return PILE_PLEINE;
  }
  if (n > 0) std::memcpy(r, x, sizeof(float) * static_cast<std::size_t>(n));
  return 0;
}

// One fresh window, analysed.
int fenetre() {
  if (audio_prend(octets) < 0) return ECHEC;
  audio_analyse(octets, audio.taille_fenetre);
  return 0;
}

struct Clauses {
  int action = 0;  // the ordinal of list "a" that acts, or 0 for the measures
  float p[3] = {};
  int n = 0;       // numbers given to the action
  bool liste = false;  // var was asked: the peaks come as their list
  const char* nom = nullptr;  // the sound file of bip and bosse
  float fraction = 0.5f;      // where the fade of bosse begins
  // The smoothing of the peaks: asked by cadence, with its count of points,
  // the curve of nurbs (points between two, tension, flag) and the law of
  // spacing of tire.
  bool lisse = false;
  float voulus = 0;
  int nb_voulus = 0;
  float courbe[3] = {};
  int nb_courbe = 0;
  float loi = 0;
};

// A file name, alone or followed by a number: ("son.wav") or ("son.wav", 0.3).
int nom_et_nombre(const mot* v, const char** nom, float* x) {
  if (!v || v[0] < 4) return -1;
  if (v[1] == BLOC_CHAINE) return (*nom = texte_de(v)) ? 0 : -1;
  if (v[1] != BLOC_LISTE || v[2] < 1 || v[2] > 2) return -1;
  const mot* e = v + 4;
  if (!(*nom = texte_de(e))) return -1;
  if (v[2] == 1) return 0;
  e += taille_item(e);
  float y[2];
  if (bloc_nombres(e, y, 2) != 1 || !std::isfinite(y[0])) return -1;
  *x = y[0];
  return 0;
}

// The peaks of travail[0..n) through the fitting routine, their values
// written over the phrase: the count of values, 0 when the routine said why
// it gave none, or below 0.
int lisse(mot* bloc, const mot* limite, const Clauses& c, int n) {
  ligne[0] = 4 + 3 * n;
  ligne[1] = BLOC_REEL;
  ligne[2] = 3 * n;
  ligne[3] = 1;
  for (int k = 0; k < n; ++k) {
    ligne[4 + 3 * k] = reel_mot(static_cast<float>(k));
    ligne[5 + 3 * k] = reel_mot(travail[k]);
    ligne[6 + 3 * k] = reel_mot(0);
  }
  nombre_voulu[0] = 5;
  nombre_voulu[1] = BLOC_REEL;
  nombre_voulu[2] = 1;
  nombre_voulu[3] = 1;
  nombre_voulu[4] = reel_mot(c.nb_voulus > 0 ? c.voulus : static_cast<float>(n));
  ParamCourbe pc;
  Ajust a;
  a.ligne = ligne;
  a.nombre = nombre_voulu;
  if (c.nb_courbe > 0) {
    mot s = 0;
    if (entier_de(c.courbe[0], &s, 0, 1000) < 0) return ECHEC;
    pc.s = s;
    if (c.nb_courbe > 1) pc.t = c.courbe[1];
    if (c.nb_courbe > 2) pc.f = entier_sature(c.courbe[2]);
    a.params = &pc;
  }
  a.loi = entier_sature(c.loi);
  bloc[1] = 0;
  const int r = ajust_1(nullptr, bloc, limite, &a);
  if (r < 0) return r;
  if (bloc[1] != BLOC_REEL) return 0;
  // Only the second coordinate is kept, moved down in place.
  const mot m = bloc[2] / 3;
  for (mot k = 0; k < m; ++k) bloc[4 + k] = bloc[5 + 3 * k];
  resultat_reels(bloc, limite, m);
  return m;
}

int cmd_audio(mot* bloc, mot* valeur, const mot* limite) {
  if (valeur) return refuse(1, B_AUDIO);
  Clauses c;
  mot* e = premier_element(bloc);
  for (mot k = 1; k < bloc[2]; ++k) {
    e = element_suivant(e);
    const int env = e[1], ord = e[2];
    if ((env == 0 && ord == A_BIP) || (env == 1 && ord == B_BOSSE)) {
      if (nom_et_nombre(argument(e), &c.nom, &c.fraction) < 0) return refuse(env, ord);
      c.action = env == 0 ? A_BIP : ACTION_BOSSE;
      continue;
    }
    float x[3] = {};
    const int n = bloc_nombres(argument(e), x, 3);
    if (n < 0) return refuse(env, ord);
    if (env == 1 && (ord == B_CADENCE || ord == B_NURBS || ord == B_TIRE)) {
      for (int i = 0; i < n; ++i)
        if (!std::isfinite(x[i])) return refuse(env, ord);
      if (ord == B_CADENCE) {
        c.lisse = true;
        c.voulus = x[0];
        c.nb_voulus = n;
      } else if (ord == B_NURBS) {
        std::memcpy(c.courbe, x, sizeof x);
        c.nb_courbe = n;
      } else {
        c.loi = n > 0 ? x[0] : 0;
      }
      continue;
    }
    if (env != 0) {
      std::printf("non implemente\a\n");
      bloc[0] = 0;
      return 0;
    }
    switch (ord) {
      case A_EDI:
        audio.edition = n > 0 && std::isfinite(x[0]) ? static_cast<int>(x[0]) : 1;
        std::printf("audio editer %d\n", audio.edition);
        break;
      case A_MIN:
        if (n < 1 || !std::isfinite(x[0])) return refuse(env, ord);
        audio.seuil = std::fabs(x[0]);
        break;
      case A_PLANCHE:
        if (n < 1 || !std::isfinite(x[0])) return refuse(env, ord);
        audio.ecart_pics = x[0];
        break;
      case A_MAX:
        if (n > 0) {
          if (!std::isfinite(x[0])) return refuse(env, ord);
          audio.variation = x[0];
        }
        c.action = ord;
        break;
      case A_VAR:
        c.liste = true;
        if (!c.action) c.action = A_VAR;
        break;
      case A_INI: case A_FIN: case A_FENETRE: case A_PIC: case A_TEM:
        for (int i = 0; i < n; ++i)
          if (!std::isfinite(x[i])) return refuse(env, ord);
        c.action = ord;
        std::memcpy(c.p, x, sizeof x);
        c.n = n;
        break;
      default:
        std::printf("non implemente\a\n");
        bloc[0] = 0;
        return 0;
    }
  }
  bloc[0] = 0;
  switch (c.action) {
    case A_INI:
      if (c.n > 1) audio.seuil = std::fabs(c.p[1]);
      return audio_ouvre(c.n > 0 ? audio_borne_fenetre(c.p[0]) : audio.taille_fenetre) < 0 ? ECHEC : 0;
    case A_FIN:
      audio_ferme(true);
      return 0;
    case A_BIP:
      return son_joue(c.nom) < 0 ? ECHEC : 0;
    case ACTION_BOSSE:
      return son_bosse(c.nom, c.fraction) < 0 ? ECHEC : 0;
    case A_TEM: {
      if (c.n < 1) return refuse(0, A_TEM);
      const float e = c.n > 1 ? c.p[1] : 0;
      int nf = 1;
      if (c.n > 2 && (c.p[2] < 1 || c.p[2] > MAX_FENETRES_HAUTEUR)) return refuse(0, A_TEM);
      if (c.n > 2) nf = static_cast<int>(c.p[2]);
      if (!audio.actif) {
        std::printf("AUDIO OFF\a\n");
        return ECHEC;
      }
      Hauteur h;
      for (int i = 0; i < nf; ++i) {
        if (audio_prend(octets) < 0) return ECHEC;
        audio_hauteur_fenetre(h, octets, audio.taille_fenetre, c.p[0], e);
      }
      const float r = audio_hauteur_fin(h);
      return rend(bloc, limite, &r, 1);
    }
    default: break;
  }
  if (fenetre() < 0) return ECHEC;
  const int w = audio.taille_fenetre;
  switch (c.action) {
    case A_VAR: return rend(bloc, limite, audio.signal, w);
    case A_MAX: return rend(bloc, limite, travail, audio_filtre(audio.signal, w, audio.variation, travail));
    case A_FENETRE: {
      // A window that is not a power of two ends the process with the
      // FFT's own line, as it always has.
      if (!fft_taille_ok(static_cast<std::uint32_t>(w))) audio_spectre(w, travail, travail);
      reel* r = resultat_reels(bloc, limite, 2L * w);
      if (!r) {
        std::printf("DEBORDEMENT\n");
        return PILE_PLEINE;
      }
      audio_spectre(w, r, r + w);
      return 0;
    }
    case A_PIC: {
      int h = static_cast<int>(std::log(static_cast<double>(w)) / std::log(2.0));
      if (c.n > 0) {
        mot m = 0;
        if (entier_de(c.p[0], &m, 0, AUDIO_MAX) < 0) return ECHEC;
        h = m;
      }
      if (h > w / 2) h = w / 2;
      int n = audio_pics(w, h, audio.ecart_pics, travail);
      if (c.lisse && n > 0) {
        // The smoothed values stand in place of the list.
        n = lisse(bloc, limite, c, n);
        if (n < 0) return n == PILE_PLEINE ? (std::printf("DEBORDEMENT\n"), PILE_PLEINE) : ECHEC;
        if (c.liste) return 0;
      }
      if (c.liste) return rend(bloc, limite, travail, n);
      const float un = n > 0 ? 1.0f : 0.0f;
      return rend(bloc, limite, &un, 1);
    }
    default: return rend(bloc, limite, audio.mesures, 3);
  }
}
}  // namespace

void audio_enregistre() { commande_enregistre(1, B_AUDIO, cmd_audio); }
