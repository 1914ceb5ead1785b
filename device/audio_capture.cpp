// The capture of sound through ALSA: 8-bit unsigned mono at 8000 Hz from
// the device "default" (a user's asoundrc may make it anything), opened
// non-blocking with a ring of two periods of `taille_tampon` frames. A read
// waits for one period, takes it, and then restarts the capture so that the
// next read sees only sound that arrives after it.
#include <alsa/asoundlib.h>

#include <cstdio>
#include <memory>

#include "core/charge.h"
#include "core/message.h"
#include "device/device.h"

namespace {
struct Ferme {
  void operator()(snd_pcm_t* p) const { snd_pcm_close(p); }
};
std::unique_ptr<snd_pcm_t, Ferme> pcm;

// ALSA's own complaints go to the console otherwise; ours are numbered.
void muet(const char*, int, const char*, int, const char*, ...) {}

// The longest a read waits for its period: a period is 128 ms at most.
constexpr int ATTENTE_MS = 2000;

int regle(snd_pcm_t* p, int tampon) {
  snd_pcm_hw_params_t* hw;
  snd_pcm_hw_params_alloca(&hw);
  unsigned taux = AUDIO_TAUX;
  snd_pcm_uframes_t periode = static_cast<snd_pcm_uframes_t>(tampon), total = periode * 2;
  int r = snd_pcm_hw_params_any(p, hw);
  if (r >= 0) r = snd_pcm_hw_params_set_access(p, hw, SND_PCM_ACCESS_RW_INTERLEAVED);
  if (r >= 0) r = snd_pcm_hw_params_set_format(p, hw, SND_PCM_FORMAT_U8);
  if (r >= 0) r = snd_pcm_hw_params_set_channels(p, hw, 1);
  if (r >= 0) r = snd_pcm_hw_params_set_rate_near(p, hw, &taux, nullptr);
  if (r >= 0) r = snd_pcm_hw_params_set_buffer_size_near(p, hw, &total);
  if (r >= 0) r = snd_pcm_hw_params_set_period_size_near(p, hw, &periode, nullptr);
  if (r >= 0) r = snd_pcm_hw_params(p, hw);
  if (r >= 0) r = snd_pcm_prepare(p);
  if (r >= 0) r = snd_pcm_start(p);
  return r;
}
}  // namespace

int audio_ouvre(int fenetre) {
  audio_ferme(false);
  audio.taille_fenetre = audio_borne_fenetre(static_cast<float>(fenetre));
  if (!charge_bib(BIB_SON)) return ECHEC;
  snd_lib_error_set_handler(muet);
  snd_pcm_t* p = nullptr;
  int r = snd_pcm_open(&p, "default", SND_PCM_STREAM_CAPTURE, SND_PCM_NONBLOCK);
  if (r >= 0) {
    pcm.reset(p);
    r = regle(p, audio.taille_tampon);
  }
  if (r < 0) {
    pcm.reset();
    std::printf("ALSA: %s\n", snd_strerror(r));
    message(1, M_AUDIO_PERIPH);
    std::printf("ERREUR InitDirectSound\a\n");
    return ECHEC;
  }
  std::printf("Fenetre d'echantillonnage = %d\n", audio.taille_fenetre);
  audio.actif = true;
  return 0;
}

void audio_ferme(bool annonce) {
  if (annonce && !audio.actif) std::printf("audio fin\n");
  if (pcm) {
    snd_pcm_drop(pcm.get());
    pcm.reset();
  }
  if (annonce) std::printf("Capture micro OFF\n");
  audio.actif = false;
}

int audio_prend(std::uint8_t* octets) {
  if (!audio.actif || !pcm) {
    std::printf("AUDIO OFF\a\n");
    return ECHEC;
  }
  snd_pcm_t* p = pcm.get();
  const long voulu = audio.taille_tampon;
  long lu = 0;
  int attente = 0;
  while (lu < voulu) {
    snd_pcm_sframes_t n = snd_pcm_readi(p, octets + lu, static_cast<snd_pcm_uframes_t>(voulu - lu));
    if (n > 0) {
      lu += n;
      continue;
    }
    // An overrun or a suspended device starts again; a device that gives
    // nothing for too long has failed.
    if (n == -EAGAIN || n == 0) {
      if ((attente += 20) > ATTENTE_MS) break;
      snd_pcm_wait(p, 20);
      continue;
    }
    if (snd_pcm_recover(p, static_cast<int>(n), 1) < 0) break;
    snd_pcm_start(p);
  }
  if (lu < voulu) {
    std::printf("ERREUR HandleNotification\a\n");
    return ECHEC;
  }
  snd_pcm_drop(p);
  snd_pcm_prepare(p);
  snd_pcm_start(p);
  return 0;
}
