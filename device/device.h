// Devices: the sound's analysis and its FFT (the peripheral channels add
// their own section here).
#pragma once
#include <cstdint>

// ---- the FFT ---------------------------------------------------------------
// Forward (inverse = 0) or inverse complex FFT of n points, n a power of two
// from 2: radix 2 in time, the inputs bit-reversed into the outputs first.
// im_in may be null (all zeros); the inverse divides by n. A size that is not
// a power of two, or a null array, prints its line and ends the process, as
// the sound command has always done: a caller checks first (fft_taille_ok).
void fft_float(std::uint32_t n, int inverse, const float* re_in, const float* im_in, float* re_out,
               float* im_out);
bool fft_taille_ok(std::uint32_t n);

// ---- sound: the analysis of a window ----------------------------------------
// A window is up to 1024 samples of 8-bit unsigned PCM, mono, 8000 Hz,
// centred by subtracting 128. `signal` holds the last window after the gate,
// as rectified amplitudes; `mesures` the level m / 127, the peak rate p / w
// and the measure of frequency.
constexpr int AUDIO_MAX = 1024;
struct Audio {
  int taille_fenetre = AUDIO_MAX;  // 1..1024
  int taille_tampon = AUDIO_MAX;   // 4..1024
  float seuil = 0;                 // the gate; 0 is none
  float signal[AUDIO_MAX] = {};
  float mesures[3] = {};
  bool actif = false;
  int edition = 0;                 // 0 silent, 1 the samples, 2 the trace
};
extern Audio audio;

// The analysis of w bytes (w clamped to 1..1024) into audio.signal and
// audio.mesures.
void audio_analyse(const std::uint8_t* octets, int w);
// A copy of the signal where a step from the previous sample outside -t..t
// repeats the previous output: a filter against clicks. n values written.
int audio_filtre(const float* s, int w, float t, float* sortie);
// The pitch counter over windows already taken: for each window, the first
// place where an amplitude passes above v + e adds its distance from the
// last such place; the total divided by the count when it is 2 or more.
float audio_hauteur(const std::uint8_t* const* fenetres, int n, int w, float v, float e);
