// The playback of a sound file through ALSA's device "default", in the
// file's own format. The samples are written in blocking mode, and the
// device is left to play what its buffer holds while the language goes on:
// a short sound returns at once, a long one when its last half second is
// queued. The next sound, or the end of the process, stops the one before.
#include <alsa/asoundlib.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "core/charge.h"
#include "core/message.h"
#include "device/device.h"

namespace {
struct Ferme {
  void operator()(snd_pcm_t* p) const {
    snd_pcm_drop(p);
    snd_pcm_close(p);
  }
};
std::unique_ptr<snd_pcm_t, Ferme> jeu;

void muet(const char*, int, const char*, int, const char*, ...) {}

int regle(snd_pcm_t* p, const FormatSon& f) {
  snd_pcm_hw_params_t* hw;
  snd_pcm_hw_params_alloca(&hw);
  unsigned taux = f.taux, duree = 500000;
  int r = snd_pcm_hw_params_any(p, hw);
  if (r >= 0) r = snd_pcm_hw_params_set_access(p, hw, SND_PCM_ACCESS_RW_INTERLEAVED);
  if (r >= 0) r = snd_pcm_hw_params_set_format(p, hw, f.bits == 8 ? SND_PCM_FORMAT_U8 : SND_PCM_FORMAT_S16_LE);
  if (r >= 0) r = snd_pcm_hw_params_set_channels(p, hw, f.canaux);
  if (r >= 0) r = snd_pcm_hw_params_set_rate_near(p, hw, &taux, nullptr);
  if (r >= 0) r = snd_pcm_hw_params_set_buffer_time_near(p, hw, &duree, nullptr);
  if (r >= 0) r = snd_pcm_hw_params(p, hw);
  if (r >= 0) r = snd_pcm_prepare(p);
  return r;
}

int refuse(int r) {
  jeu.reset();
  std::printf("ALSA: %s\n", snd_strerror(r));
  message(1, M_SON_SORTIE);
  return ECHEC;
}
}  // namespace

int son_joue(const char* nom) {
  std::vector<std::uint8_t> o;
  Son s;
  if (son_lit(nom, o, s) < 0) return ECHEC;
  jeu.reset();
  if (!charge_bib(BIB_SON)) return ECHEC;
  snd_lib_error_set_handler(muet);
  snd_pcm_t* p = nullptr;
  int r = snd_pcm_open(&p, "default", SND_PCM_STREAM_PLAYBACK, 0);
  if (r < 0) return refuse(r);
  jeu.reset(p);
  if ((r = regle(p, s.format)) < 0) return refuse(r);
  const std::uint8_t* d = o.data() + s.debut;
  const snd_pcm_uframes_t trames = s.taille / s.format.bloc;
  for (snd_pcm_uframes_t fait = 0; fait < trames;) {
    snd_pcm_sframes_t n = snd_pcm_writei(p, d + fait * s.format.bloc, trames - fait);
    if (n > 0) {
      fait += static_cast<snd_pcm_uframes_t>(n);
      continue;
    }
    // An underrun starts again; anything else ends the sound.
    if (n == 0) n = -EIO;
    if ((r = snd_pcm_recover(p, static_cast<int>(n), 1)) < 0) return refuse(r);
  }
  return 0;
}

void son_arrete() { jeu.reset(); }
