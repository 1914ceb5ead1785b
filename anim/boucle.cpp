// The start of an interaction, its frame of 32 ordered steps, and its end.
// Everything a frame touches was made at the start: a frame follows the
// records and allocates nothing (the frame files and typed lines aside).
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "anim/dyn.h"
#include "anim/interne.h"
#include "anim/trajet.h"
#include "display/gl_plan.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "image/image.h"
#include "interp/interp.h"
#include "startup/startup.h"

Inter inter;
OutilsInter outils_inter;

namespace {
constexpr int B_FOND = 1, B_ZBU = 25, B_INTER = 85, B_DYN = 150, B_ANC = 153, B_RAPIDE = 69;
constexpr int NB_PICK = 1000;
// The pacing spins at most this long in one idle event, so that the
// console and the window's events still get their turn.
constexpr std::int64_t ATTENTE_MAX_MS = 10;

void etat_inter(int e) {
  if (nb_etats[1] > B_INTER) etats[1][B_INTER] = e;
}

void vue_calcule() {
  const Oeil& o = oeil_courant;
  float d[3] = {o.vise[0] - o.oeil[0], o.vise[1] - o.oeil[1], o.vise[2] - o.oeil[2]};
  inter.dist_oeil = static_cast<float>(module(d));
  normer(d, inter.vue);
}

void libere_tout() {
  ancres_libere();
  for (Vol_inter* v = inter.liste_inter; v;) {
    Vol_inter* s = v->suivant;
    trajets_libere(v);
    vol_inter_libere(v);
    v = s;
  }
  inter.liste_inter = inter.fin_inter = nullptr;
}

// Frame step 21's vertices: a hook may have changed the object's vertices
// in place, or given it new ones; the drawing record follows.
void som_suit(Vol_inter* v) {
  Objet* o = v->objet;
  if (!o || o->type != B_VOL || o->numero != v->num || !v->rt || v->nappe) return;
  int ns = 0, d = 3;
  reel* s = vol_som(o, &ns, &d);
  if (!s) return;
  v->som = s;
  Vol_rt* r = v->rt;
  if (ns != r->ns || d != r->dim) {
    // Another count of vertices: the record is made again (a rare event,
    // which allocates).
    Vol_rt* n = vol_rt_cree(o);
    if (!n) return;
    vol_rt_libere(r);
    v->rt = n;
    v->nb_som = ns;
    return;
  }
  const std::size_t octets = sizeof(float) * static_cast<std::size_t>(ns) * d;
  if (std::memcmp(r->som, s, octets) != 0) {
    std::memcpy(r->som, s, octets);
    vol_rt_som_change(r);
  }
}

int dessine_scene() {
  glMatrixMode(GL_MODELVIEW);
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (!v->rt || v->etat < 0) continue;
    som_suit(v);
    if (!v->rt) continue;
    // A record that has not moved is drawn as it stands: no matrix.
    const bool place = v->mat_arbre || v->pos[0] != 0 || v->pos[1] != 0 || v->pos[2] != 0 || v->angle != 0 ||
                       v->rotx != 0 || v->roty != 0 || v->rotz != 0;
    int r = 0;
    if (place) {
      // A follower's matrix comes from its leader's (frame step 13).
      if (!v->mat_arbre) vol_inter_matrice(v);
      glPushMatrix();
      glMultMatrixf(v->mat);
      r = aff_rt(v->rt);
      glPopMatrix();
    } else {
      r = aff_rt(v->rt);
    }
    if (r < 0) return r;
  }
  return 0;
}

void efface() {
  GLbitfield b = 0;
  // A background image stands for the cleared colour.
  if (inter.nb_images != 1 && inter.efface_fond && inter.num_fond <= 0 && etat_ou(1, B_FOND, 1) > 0) {
    int n = 0;
    const reel* c = mot_valeur(1, B_FOND, &n);
    glClearColor(n >= 3 ? c[0] : 0.f, n >= 3 ? c[1] : 0.f, n >= 3 ? c[2] : 0.f, 0.f);
    b |= GL_COLOR_BUFFER_BIT;
  }
  if (etat_ou(1, B_ZBU, 1) > 0) b |= GL_DEPTH_BUFFER_BIT;
  if (b) glClear(b);
}

// Frame step 30: nom_images with the frame number in four digits, before
// the extension when the name has one ("f.png": f0001.png).
int image_ecrit() {
  char num[64];
  nom_numero(num, "4D", inter.num_image);
  std::string_view nom = inter.nom_images;
  std::string chemin;
  std::size_t point = nom.rfind('.');
  std::size_t barre = nom.rfind('/');
  if (point != std::string_view::npos && (barre == std::string_view::npos || point > barre) && point > 0)
    chemin.append(nom.substr(0, point)).append(num).append(nom.substr(point));
  else
    chemin.append(nom).append(num);
  return ima_ecrit_fichier(ima_ecran(), chemin);
}

// Step 12: the last four positions.
void histoire() {
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    std::memmove(v->hist + 3, v->hist, 9 * sizeof(float));
    std::memcpy(v->hist, v->pos, 3 * sizeof(float));
    if (v->lien_vol && v->lead) {
      for (int k = 0; k < 3; ++k) {
        v->vit_anc[k] = v->mat[12 + k] - v->hist[3 + k];
        v->pos[k] = v->mat[12 + k] - v->centre[k];
      }
    }
  }
}

void souris_sequence() {
  if (!inter.sequence_souris || inter.seq_n < 1) return;
  if (inter.seq_i >= inter.seq_n) return;
  const reel* s = reels(inter.sequence_souris + 4) + 3 * inter.seq_i++;
  fen.souris_x = static_cast<int>(s[0]);
  fen.souris_y = static_cast<int>(s[1]);
  fen.souris_z = static_cast<int>(s[2]);
}

// The steps that belong to trajectories, dynamics and anchors.
void trajets_avance() { trajets_pas(); }
// The dynamics reads the records' limits and force: they follow what the
// trajectories and the dynamics itself made or moved.
void dynamique_pas() {
  vols_inter_suivent();
  dyn::pas_dynamique();
  vols_inter_suivent();
}
void attaches_pas() {
  arbre_evalue();
  nappes_pas();
}
void ancres_verifie() {
  arbre_evalue();
  for (Ancre* a = liste_anc; a; a = a->suivant) ancre_verifie(a);
}
void fond_image() { inter_fond_dessine(); }
// Step 25: each trace shifts by one matrix, the record's latest in front.
void traces_pas() {
  const std::size_t n = static_cast<std::size_t>(inter.nb_traces);
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) {
    if (!v->trace) continue;
    std::memmove(v->trace + 16, v->trace, sizeof(float) * 16 * (n - 1));
    std::memcpy(v->trace, v->mat, sizeof v->mat);
  }
}

// Step 27: over the first frames, the frame's number at the top left.
void premieres_images() {
  char t[48];
  std::snprintf(t, sizeof t, "orvane %ld", inter.num_image + 1);
  Gl_sans sans{GL_DEPTH_TEST, GL_LIGHTING};
  glColor3f(1, 1, 1);
  glWindowPos2i(10, fen.dimy - 20);
  for (const char* c = t; *c; ++c) glutBitmapCharacter(GLUT_BITMAP_HELVETICA_12, static_cast<unsigned char>(*c));
}

int fin_frame() {
  interaction_fin();
  return -1;
}

void outil_sortie() { interaction_fin(); }

void outil_projection() {
  oeil_courant.projection = inter.projection;
  projection_set(1);
}
}  // namespace

bool interaction_en_cours() { return inter.en_cours; }
long interaction_num_image() { return inter.num_image; }

int interaction_debut(const ArgsInter& a) {
  if (fen.fenetre < 1) {
    message(1, 95);
    return -1;
  }
  if (inter.en_cours) interaction_fin();
  // 1. The state back to its start.
  const Inter vide{};
  inter.liste_inter = inter.fin_inter = nullptr;
  std::memcpy(inter.fonc, a.fonc, sizeof inter.fonc);
  inter.fonc_fin = a.fonc_fin;
  inter.cadence = a.cadence;
  inter.cpt_cadence = 0;
  inter.en_attente = false;
  inter.nb_images = a.nb_images;
  inter.nb_premieres = a.nb_premieres;
  inter.num_image = 0;
  inter.pas_bloque = inter.pas_demande = 0;
  std::snprintf(inter.nom_images, sizeof inter.nom_images, "%s", a.nom_images ? a.nom_images : "");
  inter.cmd_souris = inter.cmd_rayon = inter.souris_active = 0;
  inter.projection = vide.projection;
  inter.echap_permis = a.echap_permis;
  inter.attache_menu = a.attache_menu;
  inter.nb_traces = a.nb_traces;
  inter.efface_fond = 1;
  inter.affiche_menu = inter.rendu_fin = inter.num_fond = 0;
  inter.tache_eye = 0;
  inter.glide_n = inter.glide_k = 0;
  inter.quitter_sans_valider = false;
  for (Cle_fonc& c : inter.cle_fonc) c = Cle_fonc{};
  inter.pick = bloc_alloue(4 + NB_PICK);
  if (!inter.pick) return -1;
  inter.pick_x = fen.dimx / 2, inter.pick_y = fen.dimy / 2;
  fen.souris_x = inter.pick_x, fen.souris_y = inter.pick_y;
  // 3.
  fen.mode_interactif = MODE_INTER;
  inter.en_cours = true;
  // 4. The records, in table order or in the list's.
  auto ajoute = [](Vol_inter* v) {
    if (inter.fin_inter) inter.fin_inter->suivant = v;
    else inter.liste_inter = v;
    inter.fin_inter = v;
  };
  bool echec = false;
  if (!a.vols) {
    for (Objet* o = piles.obj_base; o && o < piles.obj_haut && !echec; ++o) {
      if (o->env != 1 || o->type != B_VOL) continue;
      Vol_inter* v = interaction_creer_1(o, 0);
      if (v) ajoute(v);
      else echec = true;
    }
  } else {
    for (int i = 0; i < a.nb_vols && !echec; ++i) {
      Objet* o = objet_trouve(B_VOL, 0, a.vols[i], nullptr);
      if (!o || o->env != 1 || vol_inter_de(a.vols[i])) continue;  // unknown: skipped
      Vol_inter* v = interaction_creer_1(o, 0);
      if (v) ajoute(v);
      else echec = true;
    }
  }
  // 6. Numbers become records.
  for (Vol_inter* v = inter.liste_inter; v && !echec; v = v->suivant) {
    if (v->lien) {
      v->lien_vol = vol_inter_de(v->lien);
      if (!v->lien_vol) {
        std::printf("%d: ", v->lien);
        message(0, 9);
        echec = true;
      }
    }
    if (!echec && v->lead_num) {
      v->lead = vol_inter_de(v->lead_num);
      if (!v->lead) {
        std::printf("%d: ", v->lead_num);
        message(0, 9);
        echec = true;
      }
    }
  }
  if (!echec) nappes_resout();
  // 7.
  if (!echec && interaction_anc() < 0) echec = true;
  // The records' pointers are as the objects stand now.
  inter.epoque = table_objets.epoque;
  if (echec) {
    // Nothing starts: the partial records go, the shell has the events.
    interaction_fin();
    return -1;
  }
  // 8-9. The window's state for the scene.
  if (a.lissage >= 0) {
    glEnable(GL_LINE_SMOOTH);
    glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
    if (a.lissage > 0) {
      glEnable(GL_POLYGON_SMOOTH);
      glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
    }
  }
  lum_gl();
  // The mode's pop-up menu is made only when Escape may end the loop.
  if (inter.echap_permis) {
    if (outils_inter.attache_menu) outils_inter.attache_menu(inter.attache_menu != 0);
    if (outils_inter.entre_mode) outils_inter.entre_mode(MODE_INTER);
  }
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  if (etat_ou(1, B_RAPIDE, 1) <= 0) glEnable(GL_CULL_FACE);
  brouillard_applique();
  // 10.
  etat_inter(1);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  gl_arriere();
  inter.echap_avant = fen.echap;
  fen.echap = inter.echap_permis != 0;
  // 11-12.
  if (inter_lance(inter.fonc[0]) < 0) {
    interaction_fin();
    return -1;
  }
  if (!inter.en_cours) return -1;
  if (inter.nb_images == 1) {
    // One frame only: the scene is drawn at once over what the window
    // shows, which the frame does not clear.
    outil_projection();
    if (dessine_scene() < 0) {
      interaction_fin();
      return -1;
    }
  }
  inter.t0 = ticks_ms();
  vue_calcule();
  fen.outil_fini_seul = inter.nb_images > 0;
  return 0;
}

int interaction_image() {
  if (!inter.en_cours) return -1;
  // Lines typed at the console since the last frame may have changed the
  // volumes.
  vols_inter_suivent();
  if (!inter.en_attente) {
    // 1-3.
    if (inter_liste(0) < 0) return fin_frame();
    if (fen.mode_interactif < 0) return 0;
    ++inter.cpt_cadence;
  }
  if (inter.cadence > 0) {
    const std::int64_t debut = ticks_ms();
    for (;;) {
      std::int64_t t = ticks_ms();
      if ((t - inter.t0) * inter.cadence / 1000 >= inter.cpt_cadence) break;
      if (t - debut >= ATTENTE_MAX_MS) {
        inter.en_attente = true;
        return 0;
      }
    }
  }
  inter.en_attente = false;
  // 4. Single-stepping.
  bool fige = false;
  if (inter.pas_demande > 0) {
    if (inter.pas_bloque > 0) fige = true;
    else inter.pas_bloque = 1;
  }
  if (!fige) {
    // 5-7.
    if (inter_lance(inter.fonc[1]) < 0) return fin_frame();
    if (inter_liste(1) < 0) return fin_frame();
    if (!inter.en_cours) return -1;
    if (etat_ou(1, B_INTER, 1) == 0) return fin_frame();
    // 8-11.
    souris_sequence();
    trajets_avance();
    if (inter_lance(inter.fonc[2]) < 0 || inter_liste(2) < 0) return fin_frame();
    if (!inter.en_cours) return -1;
    if (etat_ou(1, B_DYN, 0) > 0) dynamique_pas();
    // 12-15.
    histoire();
    attaches_pas();
    if (inter_lance(inter.fonc[3]) < 0) return fin_frame();
    if (!inter.en_cours) return -1;
    if (etat_ou(1, B_ANC, 0) > 0) ancres_verifie();
    // 16-18.
    fond_image();
    inter_glide_pas();
    if (inter_lance(inter.fonc[4]) < 0 || inter_liste(3) < 0 || inter_liste(4) < 0) return fin_frame();
    if (!inter.en_cours) return -1;
    // 19-21.
    efface();
    outil_projection();
    if (dessine_scene() < 0) return fin_frame();
  }
  // 22-23.
  if (inter_lance(inter.fonc[5]) < 0 || inter_liste(5) < 0) return fin_frame();
  if (!inter.en_cours) return -1;
  if (inter.affiche_menu && outils_inter.affiche_menu) outils_inter.affiche_menu();
  if (outils_inter.dessine_puls) outils_inter.dessine_puls();
  // 24. A negative result ends the frame there.
  if (inter_cles() < 0) return inter.en_cours ? 0 : -1;
  if (!inter.en_cours) return -1;
  // 25-26.
  vols_inter_suivent();
  if (inter.nb_traces > 0) traces_pas();
  if (fen.clavier[0] != '<' && fen.clavier[0] != '!') clavier_vide();
  // 27-29. The pixels are read before the swap: the back buffer holds the
  // frame just drawn, while the front one may be hidden by other windows.
  if (inter.num_image < inter.nb_premieres) premieres_images();
  ++inter.num_image;
  const bool fichier = inter.nom_images[0] != 0;
  if (fichier) fenetre_lit_image();
  gl_echange();
  // 30.
  if (fichier && image_ecrit() < 0) return fin_frame();
  // 31.
  for (Vol_inter* v = inter.liste_inter; v; v = v->suivant)
    if (v->force_frame) v->force_frame[0] = v->force_frame[1] = v->force_frame[2] = 0;
  // 32.
  if (inter.nb_images > 0 && inter.num_image >= inter.nb_images) {
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    return fin_frame();
  }
  return 0;
}

void interaction_fin() {
  if (!inter.en_cours) return;
  inter.en_cours = false;
  bloc_libere(inter.pick);
  inter.pick = nullptr;
  if (inter.quitter_sans_valider)
    for (Vol_inter* v = inter.liste_inter; v; v = v->suivant) vol_inter_restaure(v);
  libere_tout();
  inter_listes_libere();
  etat_inter(0);
  inter.cmd_souris = inter.souris_active = inter.cmd_rayon = 0;
  fen.echap = inter.echap_avant;
  fen.outil_fini_seul = false;
  if (fen.fenetre > 0) glDisable(GL_DEPTH_TEST);
  fen.mode_interactif = 0;
  inter.efface_fond = 0;
  inter.sequence_souris = nullptr;
  if (fen.fenetre > 0) gl_avant();
  if (Objet* f = inter.fonc_fin) {
    inter.fonc_fin = nullptr;
    inter_lance(f);
  }
  if (outils_inter.attache_menu) outils_inter.attache_menu(true);
  if (outils_inter.entre_mode) outils_inter.entre_mode(0);
  if (fen.fenetre > 0) {
    for (GLenum c : {GL_TEXTURE_2D, GL_DEPTH_TEST, GL_FOG, GL_BLEND, GL_CULL_FACE, GL_POINT_SMOOTH, GL_NORMALIZE,
                     GL_LIGHTING, GL_COLOR_MATERIAL, GL_LINE_SMOOTH, GL_POLYGON_SMOOTH})
      glDisable(c);
    glDisableClientState(GL_VERTEX_ARRAY);
  }
  std::fflush(stdout);
}

void interaction_enregistre() {
  commande_enregistre(1, B_INTER, interaction_commande);
  dynamique_enregistre();
  cin_enregistre();
  Outil o;
  o.pas = interaction_image;
  o.sortie = outil_sortie;
  o.souris = inter_souris;
  o.mouvement = inter_mouvement;
  o.projection = outil_projection;
  outil_enregistre(MODE_INTER, o);
}
