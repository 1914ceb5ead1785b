// The analysis of one window of sound: gate, rectified signal, level,
// local maxima and crossings; the click filter and the pitch counter.
#include <cmath>
#include <cstdio>

#include "device/device.h"

Audio audio;

namespace {
int centre(std::uint8_t o, float seuil) {
  int x = static_cast<int>(o) - 128;
  if (seuil != 0 && x != 0) {
    if (x > 0 && x < seuil) x = 0;
    if (x < 0 && x > -seuil) x = 0;
  }
  return x;
}
}  // namespace

void audio_analyse(const std::uint8_t* octets, int w) {
  if (w < 1) w = 1;
  if (w > AUDIO_MAX) w = AUDIO_MAX;
  float m = 0;
  int p = 0, z = 0;
  bool monte = false;
  int x_prec = 0;
  float a_prec = 0;
  for (int i = 0; i < w; ++i) {
    int x = centre(octets[i], audio.seuil);
    float a = static_cast<float>(std::abs(x));
    audio.signal[i] = a;
    audio.echantillons[i] = static_cast<float>(x);
    if (a > m) m = a;
    // A peak: a rise, then a fall; equal samples do not fall.
    if (i > 0) {
      if (a > a_prec) monte = true;
      else if (a < a_prec && monte) {
        ++p;
        monte = false;
      }
      if (x_prec <= 0 && x > 0) ++z;
    }
    x_prec = x;
    a_prec = a;
    if (audio.edition == 1) std::printf("%d ", x);
  }
  if (audio.edition == 1) std::printf("\n");
  // The rises through half the maximum count as crossings too.
  const float moitie = m / 2;
  if (audio.edition == 2) std::printf("-------------------\n");
  for (int i = 1; i < w; ++i) {
    if (audio.edition == 2) std::printf("%g ", static_cast<double>(audio.signal[i]));
    if (audio.signal[i - 1] < moitie && audio.signal[i] >= moitie) ++z;
  }
  if (audio.edition == 2) {
    std::printf("\nfm = %d\n", z);
    m = 0;
  }
  const float fw = static_cast<float>(w), pw = p / fw, zw = z / fw;
  audio.mesures[0] = m / 127;
  audio.mesures[1] = pw;
  audio.mesures[2] = p == 0 ? zw : zw * (std::fabs(pw - zw) / pw);
}

int audio_filtre(const float* s, int w, float t, float* sortie) {
  if (w < 1) return 0;
  sortie[0] = s[0];
  for (int i = 1; i < w; ++i) {
    float d = s[i] - s[i - 1];
    sortie[i] = d >= -t && d <= t ? s[i] : sortie[i - 1];
  }
  return w;
}

void audio_hauteur_fenetre(Hauteur& h, const std::uint8_t* octets, int w, float v, float e) {
  if (w > AUDIO_MAX) w = AUDIO_MAX;
  // Armed at each window; it is armed again only while already armed,
  // so one crossing is found per window.
  bool arme = true;
  for (int i = 0; i < w; ++i) {
    float a = static_cast<float>(std::abs(static_cast<int>(octets[i]) - 128));
    if (arme && a > v + e) {
      h.total += i - h.dernier;
      ++h.compte;
      arme = false;
      h.dernier = i;
    } else if (arme && a <= v - e) {
      arme = true;
    }
  }
}

float audio_hauteur_fin(const Hauteur& h) {
  return h.compte >= 2 ? static_cast<float>(h.total) / static_cast<float>(h.compte)
                       : static_cast<float>(h.total);
}

float audio_hauteur(const std::uint8_t* const* fenetres, int n, int w, float v, float e) {
  Hauteur h;
  for (int k = 0; k < n; ++k) audio_hauteur_fenetre(h, fenetres[k], w, v, e);
  return audio_hauteur_fin(h);
}

int audio_borne_fenetre(float x) {
  if (!(x >= 1)) return 1;
  if (x >= AUDIO_MAX) return AUDIO_MAX;
  return static_cast<int>(x);
}

int audio_pics(int w, int h, float d, float* sortie) {
  int n = 0;
  for (int i = h; i < w - h;) {
    bool haut = true, bas = true;
    for (int k = 1; k <= h && (haut || bas); ++k) {
      const float a = audio.signal[i], g = audio.signal[i - k], dr = audio.signal[i + k];
      if (!(a - g >= d && a - dr >= d)) haut = false;
      if (!(g - a >= d && dr - a >= d)) bas = false;
    }
    if (haut || bas) {
      sortie[n++] = audio.signal[i];
      i += h > 0 ? h : 1;
    } else {
      ++i;
    }
  }
  return n;
}

void audio_spectre(int w, float* re, float* im) {
  fft_float(static_cast<std::uint32_t>(w), 0, audio.echantillons, nullptr, re, im);
}
