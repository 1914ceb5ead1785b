// The analysis of a window on built signals: silence, the gate, a tone's
// level, peaks and crossings, the click filter and the pitch counter.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "device/device.h"

namespace {
std::vector<std::uint8_t> ton(int w, double f, double amp, double phase = 0) {
  std::vector<std::uint8_t> o(static_cast<std::size_t>(w));
  for (int i = 0; i < w; ++i)
    o[static_cast<std::size_t>(i)] =
        static_cast<std::uint8_t>(std::lround(128 + amp * std::sin(2 * M_PI * f * i / 8000 + phase)));
  return o;
}

struct Remet {
  ~Remet() { audio = Audio{}; }
};

TEST(AudioAnalyse, SilenceSeuilEtBornes) {
  Remet r;
  std::vector<std::uint8_t> silence(AUDIO_MAX, 128);
  audio_analyse(silence.data(), AUDIO_MAX);
  EXPECT_EQ(audio.mesures[0], 0);
  EXPECT_EQ(audio.mesures[1], 0);
  EXPECT_EQ(audio.mesures[2], 0);
  // Random noise of magnitude below 10 is silence behind a gate of 10;
  // louder samples pass whole.
  std::mt19937 g(99);
  std::vector<std::uint8_t> bruit(AUDIO_MAX);
  for (auto& o : bruit) o = static_cast<std::uint8_t>(128 + static_cast<int>(g() % 19) - 9);
  bruit[500] = 128 + 10;
  bruit[700] = 128 - 127;
  audio.seuil = 10;
  audio_analyse(bruit.data(), AUDIO_MAX);
  for (int i = 0; i < AUDIO_MAX; ++i) {
    if (i != 500 && i != 700) {
      ASSERT_EQ(audio.signal[i], 0) << i;
    }
  }
  EXPECT_EQ(audio.signal[500], 10);
  EXPECT_EQ(audio.signal[700], 127);
  EXPECT_FLOAT_EQ(audio.mesures[0], 1);
  // Windows past the ends are clamped, and what lies past them untouched.
  audio.seuil = 0;
  std::vector<std::uint8_t> grand(5000, 255);
  audio_analyse(grand.data(), 5000);
  EXPECT_EQ(audio.signal[AUDIO_MAX - 1], 127);
  audio.signal[1] = -1;
  audio_analyse(grand.data(), 0);
  EXPECT_EQ(audio.signal[0], 127);
  EXPECT_EQ(audio.signal[1], -1);
}

TEST(AudioAnalyse, TonConnu) {
  Remet r;
  // 500 Hz at 8000 Hz over 1024 samples: 64 periods, two peaks of the
  // rectified signal a period, one rise through zero a period and two
  // through half the maximum.
  std::vector<std::uint8_t> o = ton(1024, 500, 100, 0.3);
  audio_analyse(o.data(), 1024);
  EXPECT_NEAR(audio.mesures[0], 100.0 / 127, 0.01);
  EXPECT_NEAR(audio.mesures[1], 128.0 / 1024, 2.0 / 1024);
  float pw = audio.mesures[1], zw = (64 + 128) / 1024.0f;
  EXPECT_NEAR(audio.mesures[2], zw * std::fabs(pw - zw) / pw, 0.01);
}

TEST(AudioAnalyse, FiltreEtHauteur) {
  const float s[] = {0, 2, 4, 60, 5, 7, -40, 6};
  float f[8];
  ASSERT_EQ(audio_filtre(s, 8, 5, f), 8);
  // The step is taken from the preceding input sample, so the sample after
  // a click is held as well.
  EXPECT_EQ(std::vector<float>(f, f + 8), (std::vector<float>{0, 2, 4, 4, 4, 7, 7, 7}));
  // Random large steps: every output is an input whose step was in the band,
  // or the output before it.
  std::mt19937 g(4241);
  std::vector<float> r(AUDIO_MAX), fo(AUDIO_MAX);
  for (auto& x : r) x = static_cast<float>(static_cast<int>(g() % 255)) - 127.0f;
  ASSERT_EQ(audio_filtre(r.data(), AUDIO_MAX, 37.5f, fo.data()), AUDIO_MAX);
  for (int i = 1; i < AUDIO_MAX; ++i) {
    float d = r[i] - r[i - 1];
    ASSERT_EQ(fo[i], std::fabs(d) <= 37.5f ? r[i] : fo[i - 1]) << i;
  }
  EXPECT_EQ(audio_filtre(r.data(), 0, 1, fo.data()), 0);
  // One crossing a window, at the first sample past the band: a sine of
  // amplitude 100 passes 50 at a twelfth of its period.
  for (double hz : {100.0, 333.0, 1000.0}) {
    std::vector<std::uint8_t> o = ton(1024, hz, 100);
    const std::uint8_t* f1[] = {o.data()};
    int attendu = 0;
    while (std::abs(static_cast<int>(o[static_cast<std::size_t>(attendu)]) - 128) <= 50) ++attendu;
    EXPECT_EQ(audio_hauteur(f1, 1, 1024, 50, 0), attendu) << hz;
    EXPECT_NEAR(attendu, 8000 / hz / 12, 1.5) << hz;
    // Over three windows: the distances 1st, 0, 0 averaged over 3.
    const std::uint8_t* f3[] = {o.data(), o.data(), o.data()};
    EXPECT_FLOAT_EQ(audio_hauteur(f3, 3, 1024, 50, 0), attendu / 3.0f) << hz;
  }
  // A band wider than the signal: no crossing.
  std::vector<std::uint8_t> o = ton(256, 440, 30);
  const std::uint8_t* f1[] = {o.data()};
  EXPECT_EQ(audio_hauteur(f1, 1, 256, 50, 5), 0);
}
}  // namespace
