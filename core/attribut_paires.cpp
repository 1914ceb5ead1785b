// The attribute routines with their key pairs as arguments, one per count,
// and the pair builders.
#include "core/interne.h"

mot* attribut_trouve_1(mot* l, int e1, int o1) {
  const mot c[] = {e1, o1};
  return cle_trouve(l, 1, c, nullptr);
}

mot* attribut_trouve_2(mot* l, int e1, int o1, int e2, int o2) {
  const mot c[] = {e1, o1, e2, o2};
  return cle_trouve(l, 2, c, nullptr);
}

mot* attribut_trouve_3(mot* l, int e1, int o1, int e2, int o2, int e3, int o3) {
  const mot c[] = {e1, o1, e2, o2, e3, o3};
  return cle_trouve(l, 3, c, nullptr);
}

mot* attribut_trouve_4(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4};
  return cle_trouve(l, 4, c, nullptr);
}

mot* attribut_trouve_5(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5};
  return cle_trouve(l, 5, c, nullptr);
}

mot* attribut_trouve_6(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5, int e6, int o6) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5, e6, o6};
  return cle_trouve(l, 6, c, nullptr);
}

mot* attribut_trouve_pos_1(Objet* o, int* pos, int e1, int o1) {
  const mot c[] = {e1, o1};
  return o ? cle_trouve(o->donnees, 1, c, pos) : nullptr;
}

mot* attribut_trouve_pos_2(Objet* o, int* pos, int e1, int o1, int e2, int o2) {
  const mot c[] = {e1, o1, e2, o2};
  return o ? cle_trouve(o->donnees, 2, c, pos) : nullptr;
}

mot* attribut_trouve_pos_3(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3) {
  const mot c[] = {e1, o1, e2, o2, e3, o3};
  return o ? cle_trouve(o->donnees, 3, c, pos) : nullptr;
}

mot* attribut_trouve_pos_4(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3,
                           int e4, int o4) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4};
  return o ? cle_trouve(o->donnees, 4, c, pos) : nullptr;
}

mot* attribut_trouve_pos_5(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3,
                           int e4, int o4, int e5, int o5) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5};
  return o ? cle_trouve(o->donnees, 5, c, pos) : nullptr;
}

mot* attribut_trouve_pos_6(Objet* o, int* pos, int e1, int o1, int e2, int o2, int e3, int o3,
                           int e4, int o4, int e5, int o5, int e6, int o6) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5, e6, o6};
  return o ? cle_trouve(o->donnees, 6, c, pos) : nullptr;
}

mot* attribut_valeur_1(mot* l, int e1, int o1) {
  mot* a = attribut_trouve_1(l, e1, o1);
  return a ? a + a[2] : nullptr;
}

mot* attribut_valeur_2(mot* l, int e1, int o1, int e2, int o2) {
  mot* a = attribut_trouve_2(l, e1, o1, e2, o2);
  return a ? a + a[2] : nullptr;
}

mot* attribut_valeur_3(mot* l, int e1, int o1, int e2, int o2, int e3, int o3) {
  mot* a = attribut_trouve_3(l, e1, o1, e2, o2, e3, o3);
  return a ? a + a[2] : nullptr;
}

mot* attribut_valeur_4(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4) {
  mot* a = attribut_trouve_4(l, e1, o1, e2, o2, e3, o3, e4, o4);
  return a ? a + a[2] : nullptr;
}

mot* attribut_valeur_5(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5) {
  mot* a = attribut_trouve_5(l, e1, o1, e2, o2, e3, o3, e4, o4, e5, o5);
  return a ? a + a[2] : nullptr;
}

mot* attribut_valeur_6(mot* l, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                       int e5, int o5, int e6, int o6) {
  mot* a = attribut_trouve_6(l, e1, o1, e2, o2, e3, o3, e4, o4, e5, o5, e6, o6);
  return a ? a + a[2] : nullptr;
}

mot* attribut_ecrit_1(Objet* o, int e1, int o1, const reel* v, int nv, int mode) {
  const mot c[] = {e1, o1};
  return cle_ecrit(o, 1, c, v, nv, mode);
}

mot* attribut_ecrit_2(Objet* o, int e1, int o1, int e2, int o2, const reel* v, int nv, int mode) {
  const mot c[] = {e1, o1, e2, o2};
  return cle_ecrit(o, 2, c, v, nv, mode);
}

mot* attribut_ecrit_3(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, const reel* v,
                      int nv, int mode) {
  const mot c[] = {e1, o1, e2, o2, e3, o3};
  return cle_ecrit(o, 3, c, v, nv, mode);
}

mot* attribut_ecrit_4(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                      const reel* v, int nv, int mode) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4};
  return cle_ecrit(o, 4, c, v, nv, mode);
}

mot* attribut_ecrit_5(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                      int e5, int o5, const reel* v, int nv, int mode) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5};
  return cle_ecrit(o, 5, c, v, nv, mode);
}

mot* attribut_ecrit_6(Objet* o, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4,
                      int e5, int o5, int e6, int o6, const reel* v, int nv, int mode) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5, e6, o6};
  return cle_ecrit(o, 6, c, v, nv, mode);
}

int attribut_enleve_1(Objet* o, bool affiche, int e1, int o1) {
  const mot c[] = {e1, o1};
  return cle_enleve(o, affiche, 1, c, "");
}

int attribut_enleve_2(Objet* o, bool affiche, int e1, int o1, int e2, int o2) {
  const mot c[] = {e1, o1, e2, o2};
  return cle_enleve(o, affiche, 2, c, "");
}

int attribut_enleve_3(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3) {
  const mot c[] = {e1, o1, e2, o2, e3, o3};
  return cle_enleve(o, affiche, 3, c, "");
}

int attribut_enleve_4(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3,
                      int e4, int o4) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4};
  return cle_enleve(o, affiche, 4, c, "");
}

int attribut_enleve_5(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3,
                      int e4, int o4, int e5, int o5) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5};
  return cle_enleve(o, affiche, 5, c, "");
}

int attribut_enleve_6(Objet* o, bool affiche, int e1, int o1, int e2, int o2, int e3, int o3,
                      int e4, int o4, int e5, int o5, int e6, int o6) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5, e6, o6};
  return cle_enleve(o, affiche, 6, c, "");
}

int phrase_1(mot* b, int e1, int o1) {
  const mot c[] = {e1, o1};
  return phrase_paires(b, 1, c);
}

int phrase_2(mot* b, int e1, int o1, int e2, int o2) {
  const mot c[] = {e1, o1, e2, o2};
  return phrase_paires(b, 2, c);
}

int phrase_3(mot* b, int e1, int o1, int e2, int o2, int e3, int o3) {
  const mot c[] = {e1, o1, e2, o2, e3, o3};
  return phrase_paires(b, 3, c);
}

int phrase_4(mot* b, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4};
  return phrase_paires(b, 4, c);
}

int phrase_5(mot* b, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4, int e5,
             int o5) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5};
  return phrase_paires(b, 5, c);
}

int phrase_6(mot* b, int e1, int o1, int e2, int o2, int e3, int o3, int e4, int o4, int e5, int o5,
             int e6, int o6) {
  const mot c[] = {e1, o1, e2, o2, e3, o3, e4, o4, e5, o5, e6, o6};
  return phrase_paires(b, 6, c);
}
