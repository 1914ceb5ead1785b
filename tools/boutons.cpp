// The on-screen command buttons and the `puls` table behind them. Entry i
// of the `puls` table owns button i: the entry holds the name it is found
// by and the motion of its place, the button what the frame draws and runs.
//
// Invariants: a free entry has nom[0] == 0 and texte[0] == 0; a used one
// has the same text in both (the name is the command), n == its length,
// and its place in x, y. Drawing allocates nothing.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "display/display.h"
#include "display/gl_plan.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tools/interne.h"
#include "tools/tools.h"

Bouton boutons[NB_PULS];
Puls puls_table[NB_PULS];

namespace {
// The keywords that give a button's axis of motion, and its default colour.
constexpr int AXES[] = {16, 89, 90, 91, 128, 136};
constexpr int B_ACC = 89, B_DEC = 90, B_ACD = 91;
constexpr float COUL_DEFAUT[3] = {0.2f, 0.3f, 0.6f};
constexpr float DEMI_HAUTEUR = 15, PAR_CARACTERE = 6;

std::int64_t tick_precedent = -1;

bool est_axe(int ord) {
  for (int a : AXES)
    if (a == ord) return true;
  return false;
}

// The motion of the pulses: the phase moves by the step at each frame (or
// each second for a timed entry), and the place swings about its start by
// the amount along the axis: b89 x, b90 y, b91 both. The other axes (the
// mouse, a peripheral, the sound) are kept for their devices.
void avance(float secondes) {
  for (Puls& p : puls_table) {
    if (!p.nom[0] || p.pas == 0 || !p.axe) continue;
    p.phase += (p.drapeaux & PULS_MINUTE) ? p.pas * secondes : p.pas;
    if (!std::isfinite(p.phase)) p.phase = 0;
    float s = p.quantite * std::sin(p.phase);
    int i = static_cast<int>(&p - puls_table);
    if (p.axe == B_ACC || p.axe == B_ACD) p.x = p.x0 + s;
    if (p.axe == B_DEC || p.axe == B_ACD) p.y = p.y0 + s;
    boutons[i].x = p.x;
    boutons[i].y = p.y;
  }
}

// At a window position, not a raster position that the clipping would
// drop: a text that starts left of the window still shows its visible part.
void texte_bitmap(float x, float y, const char* t) {
  glWindowPos2f(static_cast<float>(fen.dimx) / 2 + x, static_cast<float>(fen.dimy) / 2 - y);
  for (; *t; ++t) glutBitmapCharacter(GLUT_BITMAP_HELVETICA_12, static_cast<unsigned char>(*t));
}
}  // namespace

namespace outils {
const char* chaine_de(const mot* v) {
  return v && v[0] >= 5 && v[1] == BLOC_CHAINE ? reinterpret_cast<const char*>(v + 4) : nullptr;
}

}  // namespace outils

int puls_cree(std::string_view nom, float x, float y, float pas) {
  if (nom.size() > LONG_NOM_PULS) {
    message(0, outils::M_TAILLE);
    return -1;
  }
  int libre = -1;
  for (int i = 0; i < NB_PULS; ++i) {
    if (!puls_table[i].nom[0]) {
      if (libre < 0) libre = i;
      continue;
    }
    if (nom == puls_table[i].nom) return i;
  }
  if (libre < 0) {
    std::printf("TROP DE PULS\a\n");
    std::fflush(stdout);
    return -1;
  }
  Puls& p = puls_table[libre];
  p = Puls{};
  nom.copy(p.nom, nom.size());
  p.x = p.x0 = x;
  p.y = p.y0 = y;
  p.pas = pas;
  Bouton& b = boutons[libre];
  b = Bouton{};
  nom.copy(b.texte, nom.size());
  b.n = static_cast<std::int32_t>(nom.size());
  b.x = x, b.y = y;
  std::memcpy(b.coul, COUL_DEFAUT, sizeof b.coul);
  return libre;
}

void puls_vide() {
  for (Puls& p : puls_table) p = Puls{};
  for (Bouton& b : boutons) b = Bouton{};
  tick_precedent = -1;
}

// puls(x, y, pas) nom("commande") [acc(q) | dec(q) | acd(q) | sou(q) |
// periph(q) | audio(q)] [cadence] [coul(r, g, b)]: makes the button of
// that command at x, y from the window's centre, or finds it and moves it.
// Its place x, y is the result.
int puls_commande(mot* bloc, mot* valeur, const mot* limite) {
  mot* e = bloc + 4;
  float v[3] = {0, 0, 0};
  int nv = bloc_nombres(e[0] > 3 ? e + 3 : valeur, v, 3);
  const char* nom = nullptr;
  int axe = 0;
  float quantite = 1, coul[3];
  bool a_coul = false, minute = false, liste = false;
  if (nv < 0) {
    mot_imprime(0, outils::A_PULS);
    message(0, M_TYPE);
    return ECHEC;
  }
  for (mot k = 1; k < bloc[2]; ++k) {
    e += e[0];
    const mot* a = e[0] > 3 ? e + 3 : nullptr;
    if (e[1] == 0 && e[2] == outils::A_NOM) {
      nom = outils::chaine_de(a);
    } else if (e[1] == 1 && est_axe(e[2])) {
      axe = e[2];
      float q = 1;
      if (bloc_nombres(a, &q, 1) > 0) quantite = q;
    } else if (e[1] == 1 && e[2] == outils::B_CADENCE) {
      minute = true;
    } else if (e[1] == 1 && e[2] == outils::B_COUL) {
      a_coul = bloc_nombres(a, coul, 3) == 3;
    } else if (e[1] == 1 && e[2] == outils::B_VOL && a) {
      liste = true;
    }
  }
  // With a volume the phrase is for the running scene's lists, which hold
  // it; without one running there is nothing to add it to.
  if (liste) return outils::puls_liste(bloc);
  if (!nom || !nom[0]) {
    std::printf("puls nom\a\n");
    std::fflush(stdout);
    resultat_nil(bloc);
    return 0;
  }
  int i = puls_cree(nom, v[0], v[1], v[2]);
  if (i < 0) return ECHEC;
  Puls& p = puls_table[i];
  if (nv > 0) p.x = p.x0 = v[0];
  if (nv > 1) p.y = p.y0 = v[1];
  if (nv > 2) p.pas = v[2];
  if (axe) p.axe = axe, p.quantite = quantite;
  if (minute) p.drapeaux |= PULS_MINUTE;
  boutons[i].x = p.x, boutons[i].y = p.y;
  if (a_coul) std::memcpy(boutons[i].coul, coul, sizeof coul);
  reel* r = resultat_reels(bloc, limite, 2);
  if (!r) return PILE_PLEINE;
  r[0] = p.x, r[1] = p.y;
  return 0;
}

int dessine_puls() {
  bool un = false;
  for (const Bouton& b : boutons) un = un || b.texte[0];
  if (!un) return 0;
  std::int64_t t = ticks_ms();
  avance(tick_precedent < 0 ? 0 : static_cast<float>(t - tick_precedent) / 1000.f);
  tick_precedent = t;

  float w = static_cast<float>(fen.dimx), h = static_cast<float>(fen.dimy);
  int tires[NB_PULS], nt = 0;
  {
    Gl_sans sans{GL_DEPTH_TEST, GL_LIGHTING, GL_FOG, GL_TEXTURE_2D, GL_CULL_FACE};
    // Window pixels from the centre, y down as the pointer counts it.
    Gl_plan plan(-w / 2, w / 2, h / 2, -h / 2);
    float px = static_cast<float>(fen.souris_x) - w / 2, py = static_cast<float>(fen.souris_y) - h / 2;
    for (int i = 0; i < NB_PULS; ++i) {
      const Bouton& b = boutons[i];
      if (!b.texte[0]) continue;
      float l = PAR_CARACTERE * static_cast<float>(b.n);
      bool dans = px >= b.x - l && px <= b.x + l && py >= b.y - DEMI_HAUTEUR && py <= b.y + DEMI_HAUTEUR;
      if (dans) glColor3f(1, 0, 0), tires[nt++] = i;
      else glColor3fv(b.coul);
      glRectf(b.x - l, b.y - DEMI_HAUTEUR, b.x + l, b.y + DEMI_HAUTEUR);
      glColor3f(1, 1, 1);
      texte_bitmap(b.x - l + 10, b.y + 10, b.texte);
    }
  }
  // The commands run once the picture's state is back: they may draw, or
  // change the buttons themselves.
  char ligne[sizeof boutons[0].texte];
  for (int k = 0; k < nt; ++k) {
    std::memcpy(ligne, boutons[tires[k]].texte, sizeof ligne);
    if (ligne[0]) {
      execute_ligne(ligne);
      std::fflush(stdout);
    }
  }
  return nt;
}
