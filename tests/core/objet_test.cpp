// The object table: entry reuse, numbering, searches, deletion by type,
// generic creation from a sentence and the failures that must lose nothing.
#include <cstring>

#include "tests/core/outils.h"

using namespace outils;

TEST(Table, FreedEntryBelowMarkIsReusedFirst) {
  environnement();
  Objet* a = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  Objet* b = objet_cree(1, B_VOL, 0, nullptr, nullptr, 2);
  Objet* c = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  Objet* marque = piles.obj_haut;
  objet_supprime(c);
  objet_supprime(a);
  Objet* d = objet_cree(1, B_TRA, 0, nullptr, nullptr, 7);
  EXPECT_EQ(d, a);  // the first free from the start, not the last freed
  EXPECT_EQ(objet_cree(1, B_TRA, 0, nullptr, nullptr, 8), c);
  EXPECT_EQ(piles.obj_haut, marque);
  EXPECT_EQ(objet_cree(1, B_TRA, 0, nullptr, nullptr, 9), marque);
  EXPECT_EQ(b->numero, 2);
  // Emptying brings the mark back to the start.
  objets_vide();
  EXPECT_EQ(piles.obj_haut, piles.obj_base);
  EXPECT_EQ(objet_cree(1, B_VOL, 0, nullptr, nullptr, 1), piles.obj_base);
}

TEST(Table, FullTableReportsAndKeepsEarlierObjects) {
  environnement(3);
  objet_cree(1, B_VOL, 0, nullptr, "a", 0);
  objet_cree(1, B_VOL, 0, nullptr, nullptr, 2);
  auto v = reels_({5});
  objet_cree(1, B_LUM, 0, v.data(), nullptr, 1);
  long compteur = memoire.compteur;
  Objet* o = reinterpret_cast<Objet*>(1);
  EXPECT_EQ(sortie_de([&] { o = objet_cree(1, B_VOL, 0, v.data(), "x", 9); }), "[15]");
  EXPECT_EQ(o, nullptr);
  EXPECT_EQ(memoire.compteur, compteur);  // the data copy was given back
  EXPECT_EQ(nb_objets(), 3);
  EXPECT_STREQ(objet_trouve(B_VOL, 0, 0, "a")->nom, "a");
  EXPECT_EQ(lit_reel(objet_trouve(B_LUM, 0, 1, nullptr)->donnees + 4), 5.f);
  // Generic creation on a full table fails cleanly too.
  Phrase p;
  p.clause(1, B_VOL, reels_({4}));
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = objet_cree_phrase(*p); }), "[15]");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(piles.emp[2], 0);
}

TEST(Table, NameCountsTwiceInAllocationCounter) {
  environnement();
  long avant = memoire.compteur;
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, "nom", 0);
  EXPECT_EQ(memoire.compteur, avant + 2);
  objet_supprime(o);
  EXPECT_EQ(memoire.compteur, avant + 1);
  auto v = reels_({1, 2});
  o = objet_cree(1, B_VOL, 0, v.data(), "", 0);  // an empty name is no name
  EXPECT_EQ(o->nom, nullptr);
  EXPECT_NE(o->donnees, v.data());
  EXPECT_EQ(o->donnees[0], 6);
  objet_supprime(o);
  EXPECT_EQ(memoire.compteur, avant + 1);
}

TEST(Numeros, MaxAndMinPerEnvAndType) {
  environnement();
  EXPECT_EQ(numero_max(1, B_VOL), 0);
  EXPECT_EQ(numero_min(1, B_VOL), 0);
  Objet* a = objet_cree_arg(1, B_VOL, nullptr, 0);
  Objet* b = objet_cree_arg(1, B_VOL, nullptr, 0);
  EXPECT_EQ(a->numero, 1);
  EXPECT_EQ(b->numero, 2);
  objet_cree(1, B_VOL, 0, nullptr, nullptr, -7);
  objet_cree(0, B_VOL, 0, nullptr, nullptr, 50);  // other env: not counted
  EXPECT_EQ(numero_max(1, B_VOL), 2);
  EXPECT_EQ(numero_min(1, B_VOL), -7);
}

TEST(Trouve, CurrentObjectNamesAndNumbers) {
  environnement();
  Objet* v3 = objet_cree(1, B_VOL, 14, nullptr, nullptr, 3);
  Objet* zero = objet_cree(1, B_VOL, 0, nullptr, nullptr, 0);
  Objet* nomme = objet_cree(1, B_VOL, 0, nullptr, "cube", 5);
  objet_courant = v3;
  EXPECT_EQ(objet_trouve(TYPE_COURANT, 99, 1234, "rien"), v3);
  EXPECT_EQ(objet_trouve_arg(1, TYPE_COURANT, nullptr, 8), v3);
  EXPECT_EQ(objet_trouve(B_VOL, 0, 3, nullptr), v3);
  EXPECT_EQ(objet_trouve(B_VOL, 14, 3, nullptr), v3);
  EXPECT_EQ(objet_trouve(B_VOL, 15, 3, nullptr), nullptr);
  EXPECT_EQ(objet_trouve(B_VOL, 0, 0, nullptr), zero);
  EXPECT_EQ(objet_trouve(B_VOL, 0, 0, "cube"), nomme);
  EXPECT_EQ(objet_trouve(B_VOL, 0, 5, "cube"), nomme);
  EXPECT_EQ(objet_trouve(B_VOL, 0, 6, "cube"), nullptr);  // both must match
  EXPECT_EQ(objet_trouve(B_LUM, 0, 3, nullptr), nullptr);
}

TEST(Trouve, ByArgumentElements) {
  environnement();
  Objet* v2 = objet_cree(1, B_VOL, 0, nullptr, nullptr, 2);
  Objet* nomme = objet_cree(1, B_VOL, 0, nullptr, "sol", 0);
  objet_cree(0, B_VOL, 0, nullptr, nullptr, 4);
  auto r = reels_({9, 2.7f});
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, r.data(), 2), v2);  // truncated
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, r.data(), 3), nullptr);
  std::vector<mot> ent{6, BLOC_ENTIER, 2, 1, 2, 4};
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, ent.data(), 1), v2);
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, ent.data(), 2), nullptr);  // env 0 one
  auto s = chaine_("sol");
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, s.data(), 1), nomme);
  auto l = liste_({chaine_("x"), reels_({2})});
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, l.data(), 2), v2);
  EXPECT_EQ(objet_trouve_arg(1, B_VOL, nullptr, 2), v2);  // i is the number
  EXPECT_EQ(objet_trouve2(B_VOL, 0, nullptr, 2), v2);
}

TEST(Trouve, FunctionsByTheFirstWordOfTheirText) {
  environnement();
  auto texte = [](const char* t) {
    std::vector<mot> b = chaine_(t);
    b[1] = BLOC_FONCTION;
    return b;
  };
  auto t1 = texte("/* tete */\n# ligne\nfa(x) { }");
  auto t2 = texte("  f(x) { }");
  Objet* fa = objet_cree(0, A_FONC, 0, t1.data(), nullptr, 1);
  Objet* f = objet_cree(0, A_FONC, 0, t2.data(), nullptr, 2);
  EXPECT_EQ(objet_trouve(A_FONC, 0, 0, "f"), f);
  EXPECT_EQ(objet_trouve(A_FONC, 0, 0, "fa"), fa);
  EXPECT_EQ(fonction_trouve("fab"), nullptr);
}

TEST(Creation, ListArgumentCreatesNothingAndDeletesNothing) {
  environnement();
  Objet* v2 = objet_cree(1, B_VOL, 0, nullptr, nullptr, 2);
  auto l = liste_({reels_({2})});
  Objet* fin = piles.obj_haut;
  EXPECT_EQ(objet_cree_arg(1, B_VOL, l.data(), 1), nullptr);
  EXPECT_EQ(piles.obj_haut, fin);
  EXPECT_EQ(v2->type, B_VOL);
  std::vector<mot> ent{5, BLOC_ENTIER, 1, 1, 2};
  EXPECT_EQ(objet_cree_arg(1, B_VOL, ent.data(), 1), nullptr);
  EXPECT_EQ(nb_objets(), 1);
}

TEST(Creation, ArgumentReplacesTheObjectItNames) {
  environnement();
  auto v = reels_({1});
  Objet* ancien = objet_cree(1, B_VOL, 0, v.data(), nullptr, 3);
  auto a = reels_({3.9f});
  Objet* o = objet_cree_arg(1, B_VOL, a.data(), 1);
  ASSERT_NE(o, nullptr);
  EXPECT_EQ(o, ancien);  // the freed entry, reused
  EXPECT_EQ(o->numero, 3);
  EXPECT_EQ(o->donnees, nullptr);
  auto s = chaine_("boite");
  Objet* n = objet_cree_arg(1, B_VOL, s.data(), 1);
  EXPECT_STREQ(objet_nom(n), "boite");
  EXPECT_EQ(n->numero, 0);
  EXPECT_EQ(nb_objets(), 2);
}

TEST(Creation, DuplicateIsDeep) {
  environnement();
  auto v = reels_({1, 2});
  Objet* o = objet_cree(1, B_LUM, 7, nullptr, "l", 4);
  attribut_ecrit_1(o, 1, 86, reels(v.data() + 4), 2, 0);
  o->code = bloc_alloue(4);
  Objet* c = objet_duplique(o);
  ASSERT_NE(c, nullptr);
  EXPECT_NE(c, o);
  EXPECT_EQ(c->sous_type, 7);
  EXPECT_EQ(c->numero, 4);
  EXPECT_NE(c->nom, o->nom);
  EXPECT_STREQ(c->nom, "l");
  EXPECT_EQ(c->code, nullptr);
  mot* a = attribut_valeur_1(c->donnees, 1, 86);
  ASSERT_NE(a, nullptr);
  EXPECT_NE(a, attribut_valeur_1(o->donnees, 1, 86));
  EXPECT_EQ(lit_reel(a + 5), 2.f);
}

TEST(Suppression, FunctionTakesItsStaticsAndOnlyThose) {
  environnement();
  Objet* f = objet_cree(0, A_FONC, 0, nullptr, nullptr, 3);
  Objet* s1 = objet_cree(0, OBJ_STATIQUE, 0, nullptr, "x", 3);
  Objet* autre_fonction = objet_cree(0, OBJ_STATIQUE, 0, nullptr, "y", 4);
  Objet* s2 = objet_cree(0, OBJ_STATIQUE, 0, nullptr, "z", 3);
  Objet* autre_sous_type = objet_cree(0, OBJ_STATIQUE, 1, nullptr, "w", 3);
  Objet* globale = objet_cree(0, OBJ_GLOBAL, 0, nullptr, "x", 3);
  objet_supprime(f);
  EXPECT_EQ(f->type, 0);
  EXPECT_EQ(s1->type, 0);
  EXPECT_EQ(s2->type, 0);
  EXPECT_EQ(autre_fonction->type, OBJ_STATIQUE);
  EXPECT_EQ(autre_sous_type->type, OBJ_STATIQUE);
  EXPECT_EQ(globale->type, OBJ_GLOBAL);
}

TEST(Suppression, OwnedDataGoesAliasTargetStays) {
  environnement();
  Objet* cible = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  auto v = reels_({1});
  attribut_ecrit_1(cible, 1, 86, reels(v.data() + 4), 1, 0);
  Objet* alias = objet_cree(0, OBJ_ALIAS, 0, nullptr, "a", 0);
  alias->donnees = reinterpret_cast<mot*>(cible);
  long avant = memoire.compteur;
  objet_supprime(alias);
  EXPECT_EQ(memoire.compteur, avant - 1);  // its name only
  EXPECT_EQ(cible->type, B_VOL);
  objet_supprime(cible);  // the list and its attribute
  EXPECT_EQ(memoire.compteur, avant - 3);
  EXPECT_EQ(cible->donnees, nullptr);
}

TEST(Resout, ReferencesVariablesAndFrameSlots) {
  environnement();
  Objet* g = objet_cree(0, OBJ_GLOBAL, 0, nullptr, "g", 0);
  EXPECT_EQ(objet_resout(g), g);
  Objet ref{};
  ref.type = OBJ_REFERENCE;
  ref.donnees = reinterpret_cast<mot*>(g);
  EXPECT_EQ(objet_resout(&ref), g);
  Objet local{};
  local.type = OBJ_LOCAL;
  local.numero = 2;
  Objet* r = reinterpret_cast<Objet*>(1);
  EXPECT_EQ(sortie_de([&] { r = objet_resout(&local); }), "[81]");  // top level
  EXPECT_EQ(r, nullptr);
  Objet slots[3] = {};
  for (int i = 0; i < 3; ++i) slots[i].numero = i + 1;
  cadre.locaux = slots;
  cadre.nb = 3;
  EXPECT_EQ(objet_resout(&local), &slots[1]);
  local.numero = 4;
  EXPECT_EQ(sortie_de([&] { r = objet_resout(&local); }), "[81]");
  EXPECT_EQ(sortie_de([&] { r = objet_resout(objet_cree(1, B_VOL, 0, nullptr, nullptr, 1)); }),
            "[81]");
}

TEST(Phrase, CreatesNumberedObjectsAndPushesThePhrase) {
  environnement();
  Phrase p;
  p.clause(1, B_VOL).clause(1, 30);  // no number: the next one
  EXPECT_EQ(objet_cree_phrase(*p), 0);
  Objet* o = objet_trouve(B_VOL, 0, 1, nullptr);
  ASSERT_NE(o, nullptr);
  EXPECT_EQ(o->sous_type, 30);
  EXPECT_EQ(piles.emp[2], 1);
  EXPECT_EQ(piles.emp[4], p.m[0]);
  EXPECT_EQ(piles.emp[5], BLOC_PHRASE);

  Phrase q;  // vol(1) b14(2,3) b48(5.5): replaces volume 1
  q.clause(1, B_VOL, reels_({1}))
      .clause(1, B_SORTE_14, reels_({2, 3}))
      .clause(1, B_F4, reels_({5.5f}));
  EXPECT_EQ(objet_cree_phrase(*q), 0);
  EXPECT_EQ(nb_objets(), 1);
  o = objet_trouve(B_VOL, 0, 1, nullptr);
  EXPECT_EQ(o->sous_type, B_SORTE_14);
  EXPECT_EQ(o->f4, 5);
  mot* sorte = attribut_valeur_1(o->donnees, 1, B_SORTE_14);
  ASSERT_NE(sorte, nullptr);
  EXPECT_EQ(lit_reel(sorte + 5), 3.f);
  EXPECT_EQ(piles.emp[2], 2);

  Phrase n;  // lum nom("haut") b48
  n.clause(1, B_LUM).clause(0, A_NOM, chaine_("haut")).clause(1, B_F4);
  EXPECT_EQ(objet_cree_phrase(*n), 0);
  Objet* l = objet_trouve(B_LUM, 0, 0, "haut");
  ASSERT_NE(l, nullptr);
  EXPECT_EQ(l->f4, 1);
}

TEST(Phrase, PhrasesNotForCreation) {
  environnement();
  Phrase autre_type;
  autre_type.clause(1, B_VOL, reels_({1})).clause(1, B_LUM);
  EXPECT_EQ(objet_cree_phrase(*autre_type), POUR_ATTRIBUT);
  Phrase application;
  application.clause(1, B_VOL).clause(3, 0);
  EXPECT_EQ(objet_cree_phrase(*application), 3);
  EXPECT_EQ(nb_objets(), 0);
  EXPECT_EQ(piles.emp[2], 0);
}

TEST(Phrase, CorruptHeaderAndBadArgument) {
  environnement();
  Phrase p;
  p.clause(1, B_VOL, reels_({1}));
  p.m[4] = 40;  // a clause longer than its phrase
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = objet_cree_phrase(*p); }), "[105]");
  EXPECT_EQ(r, -1);
  Phrase l;
  l.clause(1, B_VOL, liste_({reels_({1})}));
  EXPECT_EQ(sortie_de([&] { r = objet_cree_phrase(*l); }), "[81]");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(nb_objets(), 0);
}

TEST(Phrase, FullCommandStackGivesMinus16) {
  environnement(100, 20);
  Phrase p;
  p.clause(1, B_VOL, reels_({1})).clause(1, 30, reels_({1, 2, 3, 4, 5, 6}));
  ASSERT_GT(p.m[0], 16);
  Objet* v1 = objet_cree(1, B_VOL, 0, nullptr, nullptr, 9);
  EXPECT_EQ(objet_cree_phrase(*p), -16);
  EXPECT_EQ(piles.emp[2], 0);
  EXPECT_EQ(piles.emp_haut, piles.emp);  // dropped to the very start
  EXPECT_EQ(v1->type, B_VOL);
  EXPECT_NE(objet_trouve(B_VOL, 0, 1, nullptr), nullptr);  // made before the push failed
}
