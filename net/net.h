// Networks: the `res` object (b161) in its two kinds, the layered
// perceptron (sub-type 0) trained by back-propagation and the
// self-organising map (sub-type 54) trained by winner and neighbourhood;
// training, recall and search from the language, and the training shown
// step by step in the window (mode 161).
//
// A network keeps everything in its attributes: b15 the layers (neuron
// numbers from 1), a112 the n x n weights (row j, column i: from i to j),
// b162 the neuron table, b27 the patterns, b26 the wanted outputs, b46 the
// map's neighbour rows, a6 the common activation. The routines below work
// on a `Reseau`, a record resolved from those attributes: the weights of
// each pair of consecutive layers packed as a dense matrix, the neuron
// words as float arrays in layer order. Training loads it once, runs its
// passes without allocating, and writes it back.
#pragma once
#include <cstdint>
#include <span>
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"

constexpr int RES_PERCEPTRON = 0;
constexpr int RES_CARTE = 54;
constexpr int RES_VOISINS = 9;        // entries of a neighbour row
constexpr int RES_MOT_NEURONE = 8;    // words of a neuron record
constexpr int BLOC_NEURONES = 162;    // tag of the neuron table

// The working record of one network. Positions count the neurons in layer
// order: layer k holds positions debut[k] .. debut[k + 1] - 1, and
// neurone[p] is the 0-based neuron number at position p. The matrix of
// layer k (k >= 1) has taille(k) rows of taille(k - 1) columns from
// w[wdebut[k]]: row j, column i is the weight from position debut[k-1]+i
// to debut[k]+j.
struct Reseau {
  Objet* objet = nullptr;
  int sorte = RES_PERCEPTRON;
  int n = 0;  // neurons in the weight matrix
  std::vector<int> neurone, debut;
  std::vector<long> wdebut;
  std::vector<float> w;
  std::vector<float> net, sortie, delta, erreur;  // by position
  std::vector<std::int8_t> code;                  // 0 threshold, 1 sigmoid
  std::vector<float> param;
  std::vector<std::int32_t> fonction;             // language function numbers
  float borne = 100;                              // weights kept in [-borne, borne]
  bool bavard = false;                            // a36: verbose
  // Map: the neighbour rows of the second layer's positions, as row
  // positions in that layer (-1: empty entry), RES_VOISINS per row.
  std::vector<int> voisins;
  // Loading: the whole n x n matrix when the weights were drawn anew, and
  // whether the neighbour rows were built here.
  std::vector<float> plein;
  bool voisins_neufs = false;

  int couches() const { return static_cast<int>(debut.size()) - 1; }
  int taille(int k) const { return debut[k + 1] - debut[k]; }
  float* matrice(int k) { return w.data() + wdebut[k]; }
};

// Patterns packed end to end: nb rows of `largeur` floats.
struct Motifs {
  int nb = 0, largeur = 0;
  std::vector<float> x;
  const float* motif(int k) const { return x.data() + static_cast<long>(k) * largeur; }
};

// ---- building a record by hand (tests, benchmark) -------------------------
// Layers of consecutive neurons with the given sizes, all sigmoid with slope
// 1, weights zero.
void res_prepare(Reseau* r, std::span<const int> tailles, int sorte = RES_PERCEPTRON);
// The weight from neuron i to neuron j (0-based) when both are in adjacent
// layers (j above i), else null.
float* res_poids(Reseau* r, int j, int i);

// ---- the passes ------------------------------------------------------------
// Forward pass of one input (the first layer's size of floats).
void res_avant(Reseau* r, const float* x);
// One pass of back-propagation over the patterns: the count of bad ones.
int res_passe_perceptron(Reseau* r, const Motifs& entrees, const Motifs& voulues, float taux, float tolerance);
// One pass of the map: the count of gaps; *ecart the largest gap. 1 after
// "Pas de vainqueur" (the pass stops there).
int res_passe_carte(Reseau* r, const Motifs& entrees, float taux, float tolerance, int v, float* ecart);
// The map's neighbour rows from the grid of its second layer: the neuron
// itself first, then its four sides, then its four corners.
void res_voisins_grille(Reseau* r);

// ---- the language ------------------------------------------------------------
// The `res` command: training, recall, search; other phrases go on to
// creation and the attributes (COMMANDE_SUITE).
int res_commande(mot* bloc, mot* valeur, const mot* limite);
// `interaction res(n) nb(P, ...) ...`: the training on screen; COMMANDE_SUITE
// when the phrase names no network.
int res_interaction(mot* bloc, mot* valeur, const mot* limite);
