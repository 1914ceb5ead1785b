// The command `audio`: its clauses set the capture's fields at once, and
// then one action runs: opening (ini), closing (fin), or a read of a fresh
// window that gives the three measures, the signal (var), the spectrum
// (fenetre), the filtered window (max), the peaks (pic) or the pitch (tem).
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "device/device.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int A_VAR = 21, A_INI = 24, A_EDI = 36, A_BIP = 52, A_MAX = 54, A_MIN = 55, A_FIN = 61,
              A_PIC = 81, A_PLANCHE = 90, A_TEM = 98, A_FENETRE = 102;
constexpr int B_AUDIO = 136;
constexpr int MAX_FENETRES_HAUTEUR = 1000;

// A phrase's elements: [length, env, ordinal, value...] after its header.
mot* premier_element(mot* bloc) { return bloc + 4; }
mot* element_suivant(mot* e) { return e + e[0]; }
const mot* argument(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

// The bytes of one period, and the results built before they are copied
// to the stack: sized once, so that a read allocates nothing.
std::uint8_t octets[AUDIO_MAX];
float travail[AUDIO_MAX];

// Up to `max` numbers of a clause's value; -1 when it holds something else.
int nombres(const mot* v, float* x, int max) {
  if (!v) return 0;
  if (v[0] == BLOC_REEL) {
    x[0] = lit_reel(v + 1);
    return 1;
  }
  if (v[0] == BLOC_ENTIER) {
    x[0] = static_cast<float>(v[1]);
    return 1;
  }
  if (v[0] < 4 || (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER)) return v[0] >= 4 && v[1] == BLOC_NIL ? 0 : -1;
  int n = static_cast<int>(v[0] - 4);
  if (n > max) n = max;
  for (int k = 0; k < n; ++k) x[k] = v[1] == BLOC_REEL ? lit_reel(v + 4 + k) : static_cast<float>(v[4 + k]);
  return n;
}

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
};

int cmd_audio(mot* bloc, mot* valeur, const mot* limite) {
  if (valeur) return refuse(1, B_AUDIO);
  Clauses c;
  mot* e = premier_element(bloc);
  for (mot k = 1; k < bloc[2]; ++k) {
    e = element_suivant(e);
    const int env = e[1], ord = e[2];
    float x[3] = {};
    const int n = nombres(argument(e), x, 3);
    if (n < 0) return refuse(env, ord);
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
      case A_INI: case A_FIN: case A_FENETRE: case A_PIC: case A_TEM: case A_BIP:
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
      std::printf("non implemente\a\n");
      return 0;
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
      const int n = audio_pics(w, h, audio.ecart_pics, travail);
      if (c.liste) return rend(bloc, limite, travail, n);
      const float un = n > 0 ? 1.0f : 0.0f;
      return rend(bloc, limite, &un, 1);
    }
    default: return rend(bloc, limite, audio.mesures, 3);
  }
}
}  // namespace

void audio_enregistre() { commande_enregistre(1, B_AUDIO, cmd_audio); }
