// Training speed of a 64-16-10 perceptron against FANN, in one run: the same
// start weights, the same patterns, plain per-pattern gradient descent with
// no momentum and the same sigmoid on both sides. Epochs per second of each
// and their ratio (goal: at least 1).
//   build/bench/bench_res [epochs]
#include <floatfann.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "net/net.h"

namespace {
constexpr int NI = 64, NH = 16, NO = 10, NP = 1300;

double maintenant() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
}  // namespace

int main(int argc, char** argv) {
  const int epoques = argc > 1 ? std::atoi(argv[1]) : 200;
  const float taux = 0.2f;
  // Patterns: ten noisy prototypes in [0, 1], one-hot wanted outputs.
  std::mt19937 g(4242);
  std::uniform_real_distribution<float> u(0.f, 1.f);
  std::vector<float> proto(NO * NI);
  for (float& v : proto) v = u(g);
  Motifs x, y;
  x.nb = y.nb = NP;
  x.largeur = NI;
  y.largeur = NO;
  x.x.resize(NP * NI);
  y.x.assign(NP * NO, 0.f);
  for (int p = 0; p < NP; ++p) {
    int c = p % NO;
    for (int i = 0; i < NI; ++i) x.x[p * NI + i] = std::clamp(proto[c * NI + i] + 0.3f * (u(g) - 0.5f), 0.f, 1.f);
    y.x[p * NO + c] = 1.f;
  }
  // Ours.
  Reseau r;
  const int t[] = {NI, NH, NO};
  res_prepare(&r, t);
  for (float& w : r.w) w = 0.2f * (u(g) - 0.5f);
  // FANN with the same weights, its bias weights 0; steepness 0.5 makes its
  // sigmoid 1 / (1 + exp(-s)) and its derivative out (1 - out).
  fann* f = fann_create_standard(3, NI, NH, NO);
  fann_set_activation_function_hidden(f, FANN_SIGMOID);
  fann_set_activation_function_output(f, FANN_SIGMOID);
  fann_set_activation_steepness_hidden(f, 0.5f);
  fann_set_activation_steepness_output(f, 0.5f);
  fann_set_training_algorithm(f, FANN_TRAIN_INCREMENTAL);
  fann_set_learning_rate(f, taux);
  fann_set_learning_momentum(f, 0.f);
  fann_set_train_error_function(f, FANN_ERRORFUNC_LINEAR);
  for (int j = 0; j < NH; ++j) {
    for (int i = 0; i < NI; ++i) fann_set_weight(f, i, NI + 1 + j, *res_poids(&r, NI + j, i));
    fann_set_weight(f, NI, NI + 1 + j, 0.f);
  }
  for (int j = 0; j < NO; ++j) {
    for (int i = 0; i < NH; ++i) fann_set_weight(f, NI + 1 + i, NI + NH + 2 + j, *res_poids(&r, NI + NH + j, NI + i));
    fann_set_weight(f, NI + NH + 1, NI + NH + 2 + j, 0.f);
  }
  fann_train_data* d = fann_create_train(NP, NI, NO);
  for (int p = 0; p < NP; ++p) {
    for (int i = 0; i < NI; ++i) d->input[p][i] = x.x[p * NI + i];
    for (int j = 0; j < NO; ++j) d->output[p][j] = y.x[p * NO + j];
  }
  // Interleaved rounds so that both see the same machine state.
  double t_nous = 0, t_fann = 0;
  float mse_fann = 0;
  const int tours = 5;
  for (int k = 0; k < tours; ++k) {
    double a = maintenant();
    for (int e = 0; e < epoques / tours; ++e) res_passe_perceptron(&r, x, y, taux, 0.f);
    double b = maintenant();
    for (int e = 0; e < epoques / tours; ++e) mse_fann = fann_train_epoch(f, d);
    double c = maintenant();
    t_nous += b - a;
    t_fann += c - b;
  }
  // The two learnt alike: mean squared error over the patterns.
  double mse = 0;
  for (int p = 0; p < NP; ++p) {
    res_avant(&r, x.motif(p));
    for (int j = 0; j < NO; ++j) {
      double e = y.x[p * NO + j] - r.sortie[NI + NH + j];
      mse += e * e;
    }
  }
  mse /= NP * NO;
  const int n = epoques / tours * tours;
  const double ep_nous = n / t_nous, ep_fann = n / t_fann;
  std::printf("res 64-16-10, %d motifs, %d epoques: orvane %.1f epoques/s, FANN %.1f epoques/s, rapport %.2f\n", NP, n,
              ep_nous, ep_fann, ep_nous / ep_fann);
  std::printf("erreur quadratique moyenne: orvane %.2e, FANN %.2e\n", mse, static_cast<double>(mse_fann));
  fann_destroy_train(d);
  fann_destroy(f);
  return 0;
}
