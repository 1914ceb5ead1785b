// Private to the networks: the messages, the options of a `res` phrase, the
// loading of a record from a network's attributes and its writing back.
#pragma once
#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"
#include "net/net.h"

// Messages of env 1.
constexpr int MES_RES_VAINQUEUR = 112;  // "Pas de vainqueur pour motif"
constexpr int MES_RES_COURBE = 113;     // a rate curve that is no function
constexpr int MES_RES_NEURONE = 114;    // a neuron number outside the network
constexpr int MES_RES_NAN = 115;        // a value that is no number
// Keywords.
constexpr int RB_FAC = 15, RB_SORTIE = 26, RB_MOTIF = 27, RB_COE = 42, RB_VOISIN = 46, RB_NB = 47,
              RB_ALE = 59, RB_MAS = 112, RB_NEU = 162, RB_INTERACTION = 85;
constexpr int RA_PAS = 3, RA_FONC = 6, RA_LIRE = 14, RA_COURBE = 15, RA_EDI = 36, RA_MAX = 54,
              RA_CHERCHE = 67, RA_PIC = 81, RA_CONT = 89, RA_PLANCHE = 90, RA_FONC_AVANT = 101,
              RA_POIDS = 112, RA_FIN = 61;

// How new weights are drawn: (mode, a, b, d).
// Mode TIRAGE_AUCUN draws nothing: missing weights are then an error.
constexpr int TIRAGE_AUCUN = -1000;
struct Tirage {
  int mode = -2;
  float a = -1, b = 1, d = 0.01f;
};

struct OptionsRes {
  std::vector<int> ids;  // empty: every network
  float r0 = 0.5f, r1 = 0.5f;
  int passes = 1, depart = 0;
  bool tirage_donne = false, ini = false;
  Tirage tirage;
  bool gagnant = false, bavard = false;
  std::vector<float> courbe;
  bool avec_courbe = false;
  float borne = 100, tolerance = 0.1f;
  std::vector<float> fenetres, entree, sortie;
  bool rappel = false, cherche = false, chaine = false;
  std::vector<int> ordre_chaine;
};

// The options of a `res` phrase whose elements from `saute` on start with
// res(...): 0 with the networks named, 1 when the phrase is another's, -1
// after a message.
int res_phrase(mot* bloc, int saute, OptionsRes* o, std::vector<Objet*>* nets);

// The object's name in messages: "res(3) ".
void res_nomme(const Objet* o);
// "fac res(3) " then message 0:9: a missing attribute.
int res_absent(const Objet* o, int env, int ord);

// The floats of a value (block, scalar pair, integer block); false for
// another kind.
bool res_reels(const mot* v, std::vector<float>* x);
// Rows of a value: a list of vectors, ragged rows, a matrix, or a flat
// vector cut every `largeur` floats (0: one row). False for another kind.
bool res_rangs(const mot* v, int largeur, std::vector<std::vector<float>>* rangs);
// Patterns of attribute (1, ord) of the object, packed at `largeur`. -1
// after the message when one has another length, holds a value that is no
// number, or when the attribute is missing.
int res_motifs(Objet* o, int ord, int largeur, Motifs* m);

// The record from the object's attributes. The weights are drawn with `t`
// when none of the right size exist, or when `tirer`. -1 after a message;
// nothing of the object is changed then.
int res_charge(Objet* o, Reseau* r, const Tirage& t, bool tirer);
// Writes the weights and the neuron words back. -1 on allocation failure.
int res_range(Reseau* r);
// Draws the n x n weights of the layers as new.
void res_tire(float* w, int n, const std::vector<std::vector<int>>& couches, int sorte, const Tirage& t);
// The layers of a network (neuron numbers from 1), or -1 after the message.
int res_couches(Objet* o, std::vector<std::vector<int>>* c);
// Sizes the weights and the per-neuron arrays from `debut` and `neurone`
// (weights zero, codes and parameters 1); throws std::bad_alloc.
void res_dimensionne(Reseau* v);

// The training of one network: res[0..2] = passes used, largest error,
// converged flag. -1 on failure with the weights as they were.
int res_apprend(Objet* o, const OptionsRes& opt, float res[3]);
// Recall of one network on x into y; with `gagnant`, (number, output).
int res_rappel(Objet* o, const std::vector<float>& x, const OptionsRes& opt, std::vector<float>* y);
// The networks of a phrase: those numbered, or all in table order.
int res_rappel_liste(const std::vector<Objet*>& nets, const OptionsRes& opt, std::vector<float>* y);
int res_cherche(const std::vector<Objet*>& nets, const std::vector<float>& v, std::vector<float>* y);
// Every network, in table order.
std::vector<Objet*> res_tous();
