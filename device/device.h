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
  float echantillons[AUDIO_MAX] = {};  // the same window centred, gated, signed
  float variation = 5;             // the click filter's largest step
  float ecart_pics = 3;            // the peak analysis's least difference
  float mesures[3] = {};
  bool actif = false;
  int edition = 0;                 // 0 silent, 1 the samples, 2 the trace
};
extern Audio audio;
constexpr unsigned AUDIO_TAUX = 8000;
// Messages of env 1.
constexpr int M_AUDIO_PERIPH = 126, M_AUDIO_FICHIER = 127;

// A window asked for: clamped to 1..1024 and truncated (finite x).
int audio_borne_fenetre(float x);
// Opens the capture (closing it first) with a window of w samples: 0, or
// -1 after its messages with `actif` left at 0.
int audio_ouvre(int w);
// Closes the capture; `annonce` prints the closing lines.
void audio_ferme(bool annonce);
// Takes the next `taille_tampon` bytes of sound into octets: 0, or -1 after
// its line (capture closed, or a device that gives nothing).
int audio_prend(std::uint8_t* octets);
// The command `audio`, registered with the dispatch by the executable.
void audio_enregistre();

// The analysis of w bytes (w clamped to 1..1024) into audio.signal and
// audio.mesures.
void audio_analyse(const std::uint8_t* octets, int w);
// A copy of the signal where a step from the previous sample outside -t..t
// repeats the previous output: a filter against clicks. n values written.
int audio_filtre(const float* s, int w, float t, float* sortie);
// The pitch counter over windows already taken: for each window, the first
// place where an amplitude passes above v + e adds its distance from the
// last such place; the total divided by the count when it is 2 or more.
struct Hauteur {
  long total = 0, compte = 0;
  int dernier = 0;
};
void audio_hauteur_fenetre(Hauteur& h, const std::uint8_t* octets, int w, float v, float e);
float audio_hauteur_fin(const Hauteur& h);
float audio_hauteur(const std::uint8_t* const* fenetres, int n, int w, float v, float e);
// The peak analysis of audio.signal over w samples with half-window h and
// least difference d: the kept values go to sortie (room for w); their
// count is returned.
int audio_pics(int w, int h, float d, float* sortie);
// The spectrum of audio.echantillons over w points (a power of two, or the
// FFT ends the process): real parts to re, imaginary parts to im.
void audio_spectre(int w, float* re, float* im);
