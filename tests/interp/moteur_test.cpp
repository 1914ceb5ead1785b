// The engine on linked code built by hand: the offsets of si, tantque, both
// pour forms, selon and aller; calls with their frames, references, missing
// arguments, recursion and its limit.
#include "code.h"

using essai::Code;
using essai::lance;
using essai::reels_de;

namespace {
class Moteur : public testing::Test {
 protected:
  void SetUp() override { essai::environnement(); }
};

// si (cond) corps [sinon corps2], linked: condition, body, and the sinon
// item turned into a jump over the second body.
void si(Code& c, const char* cond, const char* corps, const char* sinon = nullptr) {
  int h = c.ici();
  c.bloc({0, IT_SI, 0, 0, 0});
  int g = c.ici();
  c.t(cond);
  int b = c.ici();
  c.t("{{").t(corps).t("}}");
  int s = 0, b2 = 0;
  if (sinon) {
    s = c.ici();
    c.paire(IT_SAUT, 0);
    b2 = c.ici();
    c.t("{{").t(sinon).t("}}");
  }
  int apres = c.ici();
  c.m[h + 2] = g - h;
  c.m[h + 3] = b - h;
  c.m[h + 4] = (sinon ? b2 : apres) - h;
  if (sinon) c.m[s + 1] = apres - s;
}

// tantque (cond) corps: the end of the body jumps back to the head.
void tantque(Code& c, const char* cond, const char* corps) {
  int h = c.ici();
  c.bloc({0, IT_SI, 0, 0, 0});
  int g = c.ici();
  c.t(cond);
  int b = c.ici();
  c.t("{{").t(corps);
  int f = c.ici();
  c.paire(IT_SAUT, h - f);
  c.m[h + 2] = g - h;
  c.m[h + 3] = b - h;
  c.m[h + 4] = c.ici() - h;
}

// pour (var = debut, limite [, pas]) corps, the counting form.
void pour(Code& c, const char* debut, const char* limite, const char* pas, const char* corps) {
  c.paire(IT_OP, OP_BOUCLE);
  int h = c.ici();
  c.bloc({0, IT_POUR, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  int d = c.ici();
  c.t(debut);
  int l = c.ici();
  c.t(limite);
  int s = c.ici();
  if (pas) c.t(pas);
  int j = c.ici();
  c.paire(IT_SAUT, h - j);
  int b = c.ici();
  c.t(corps);
  int f = c.ici();
  c.paire(IT_SAUT, h - f);
  c.m[h + 2] = d - h;
  c.m[h + 4] = l - h;
  c.m[h + 6] = pas ? s - h : 0;
  c.m[h + 7] = reel_mot(1.0f);
  c.m[h + 8] = b - h;
  c.m[h + 9] = c.ici() - h;
}

// pour (init; cond; pas) corps: the end of the body goes to the step,
// which falls on the jump back to the head.
void pour3(Code& c, const char* init, const char* cond, const char* pas, const char* corps) {
  c.t(init);
  int h = c.ici();
  c.bloc({0, IT_POUR3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  int g = c.ici();
  c.t(cond);
  int s = c.ici();
  c.t(pas);
  int j = c.ici();
  c.paire(IT_SAUT, h - j);
  int b = c.ici();
  c.t(corps);
  int f = c.ici();
  c.paire(IT_SAUT, s - f);
  c.m[h + 2] = g - h;
  c.m[h + 3] = b - h;
  c.m[h + 4] = c.ici() - h;
}
}  // namespace

TEST_F(Moteur, SiSinonAndTantque) {
  Code c;
  c.t("( x = 3 ) ;");
  si(c, "( x > 2 )", "( y = 1 ) ;", "( y = 2 ) ;");
  si(c, "( x > 5 )", "( z = 1 ) ;", "( z = 2 ) ;");
  si(c, "( 1 , 0 )", "( w = 1 ) ;");  // a vector is true only when all are
  si(c, "( NIL )", "( u = 1 ) ;");    // nil is true
  c.t("( n = 0 ) ;");
  tantque(c, "( n < 5 )", "( n += 1 ) ;");
  lance(c.fin());
  EXPECT_EQ(reels_de("y"), (std::vector<float>{1}));
  EXPECT_EQ(reels_de("z"), (std::vector<float>{2}));
  EXPECT_TRUE(reels_de("w").empty());
  EXPECT_EQ(reels_de("u"), (std::vector<float>{1}));
  EXPECT_EQ(reels_de("n"), (std::vector<float>{5}));
}

TEST_F(Moteur, BothPourForms) {
  Code c;
  c.t("( s = 0 ) ;");
  pour(c, "( i = 0 )", "( 3 )", nullptr, "( s += i ) ;");
  c.t("( t = 0 ) ;");
  pour(c, "( k = 10 )", "( 1 )", "( 0 - 3 )", "( t ,= k ) ;");
  // the body changes the variable: the test sees it, after the step
  c.t("( m = 0 ) ;");
  pour(c, "( j = 1 )", "( 3 )", nullptr, "( j = 10 ) ; ( m += 1 ) ;");
  c.t("( p = 1 ) ;");
  pour3(c, "( q = 0 ) ;", "( q < 4 )", "( q += 1 )", "( p *= 2 ) ;");
  lance(c.fin());
  EXPECT_EQ(reels_de("s"), (std::vector<float>{6}));  // 0 1 2 3
  EXPECT_EQ(reels_de("t"), (std::vector<float>{0, 10, 7, 4, 1}));
  EXPECT_EQ(reels_de("j"), (std::vector<float>{11}));
  EXPECT_EQ(reels_de("m"), (std::vector<float>{1}));
  EXPECT_EQ(reels_de("p"), (std::vector<float>{16}));
}

TEST_F(Moteur, SelonCasDefautAndSortir) {
  // selon (x) { cas 1: r = 10; sortir; cas "a"-like expression: ...; defaut: r = 30 }
  auto essaie = [](const char* x) {
    Code c;
    c.t(x);
    int h = c.ici();
    c.bloc({0, IT_SELON, 3, 0, 0, 0, 0, 0, 0});
    c.t("( x )");
    c.t("{{");
    int cas1 = c.ici();
    c.paire(IT_CAS, reel_mot(1.0f)).t("( r = 10 ) ;");
    int sortir = c.ici();
    c.paire(IT_SAUT, 0);
    c.paire(IT_CAS, 0);
    int g = c.ici();
    c.t("( 1 + 1 )");
    int fin_g = c.ici();
    c.t(";").t("( r = 20 ) ;");
    int defaut = c.ici();
    c.paire(IT_DEFAUT, 0).t("( r += 30 ) ;").t("}}");
    int apres = c.ici();
    c.m[h + 3] = cas1 - h;
    c.m[h + 4] = reel_mot(1.0f);
    c.m[h + 5] = -(fin_g - h);
    c.m[h + 6] = g - h;
    c.m[h + 7] = defaut - h;
    c.m[sortir + 1] = apres - sortir;
    c.t("( r = r ) ;");
    lance(c.fin());
    return reels_de("r");
  };
  EXPECT_EQ(essaie("( x = 1 ) ;"), (std::vector<float>{10}));
  EXPECT_EQ(essaie("( x = 2 ) ;"), (std::vector<float>{50}));  // falls into defaut
  EXPECT_EQ(essaie("( x = 7 ) ( r = 0 ) ;"), (std::vector<float>{30}));
}

TEST_F(Moteur, LabelsAndAller) {
  Code c;
  c.t("( n = 0 ) ;");
  int e = c.ici();
  c.paire(IT_ETIQUETTE, 1).t("( n += 1 ) ;");
  int h = c.ici();
  c.bloc({0, IT_SI, 0, 0, 0});
  int g = c.ici();
  c.t("( n < 4 )");
  int b = c.ici();
  c.t("{{");
  int saut = c.ici();
  c.paire(IT_SAUT, e + 2 - saut).t("}}");
  c.m[h + 2] = g - h;
  c.m[h + 3] = b - h;
  c.m[h + 4] = c.ici() - h;
  lance(c.fin());
  EXPECT_EQ(reels_de("n"), (std::vector<float>{4}));
}

TEST_F(Moteur, RecursionAndRetourFromNestedBlocks) {
  Code f;
  si(f, "( #0 < 2 )", "( kw:retour ( 1 ) ) ;");
  f.t("( kw:retour ( #0 * ( f:fact/1 ( #0 - 1 ) ) ) ) ;");
  essai::fonction("fact", f, 1, 1);
  // cherche(n): the first i of 1..10 with i == n, times 10, from inside si in pour
  Code k;
  k.paire(IT_OP, OP_BOUCLE);
  int t = k.ici();
  k.bloc({0, IT_POUR, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  int d = k.ici();
  k.t("( #1 = 1 )");
  int l = k.ici();
  k.t("( 10 )");
  int j = k.ici();
  k.paire(IT_SAUT, t - j);
  int b = k.ici();
  si(k, "( #1 == #0 )", "( kw:retour ( #1 * 10 ) ) ;");
  int fin = k.ici();
  k.paire(IT_SAUT, t - fin);
  k.m[t + 2] = d - t;
  k.m[t + 4] = l - t;
  k.m[t + 7] = reel_mot(1.0f);
  k.m[t + 8] = b - t;
  k.m[t + 9] = k.ici() - t;
  k.t("( kw:retour ( 0 - 1 ) ) ;");
  essai::fonction("cherche", k, 2, 1);
  lance("( a = ( f:fact/1 ( 10 ) ) ) ; ( b = ( f:cherche/1 ( 7 ) ) ) ; ( c = ( f:cherche/1 ( 70 ) ) ) ;");
  EXPECT_EQ(reels_de("a"), (std::vector<float>{3628800}));
  EXPECT_EQ(reels_de("b"), (std::vector<float>{70}));
  EXPECT_EQ(reels_de("c"), (std::vector<float>{-1}));
}

TEST_F(Moteur, ArgumentsLocalsAndReferences) {
  // deux(a, b): b; a missing argument reads as nil
  Code d;
  d.t("( kw:retour ( #1 ) ) ;");
  essai::fonction("deux", d, 2, 2);
  // locale(): z unassigned
  Code l;
  l.symbole(IT_LOCAL, 0, "z");
  l.t("( kw:retour ( #0 ) ) ;");
  essai::fonction("locale", l, 1, 0);
  // incr(v): v += 1, through a reference when the caller gives @x
  Code i;
  i.t("( #0 += 1 ) ;");
  essai::fonction("incr", i, 1, 1);
  // appelant(): a local passed by reference
  Code a;
  a.t("( #0 = 5 ) ; ( f:incr/1 ( @#0 ) ) ; ( kw:retour ( #0 ) ) ;");
  essai::fonction("appelant", a, 1, 0);
  // assigning a formal does not touch the caller's variable
  Code c;
  c.t("( #0 = 99 ) ; ( kw:retour ( #0 ) ) ;");
  essai::fonction("copie", c, 1, 1);

  EXPECT_EQ(lance("( kw:$ ( f:deux/1 ( 1 ) ) ) ;"), "NIL \n");
  EXPECT_EQ(lance("( kw:$ ( f:deux/3 ( 1 ) ( 2 ) ( 3 ) ) ) ;"), "2.000000 \n");  // extra ones ignored
  EXPECT_EQ(lance("( kw:$ ( f:locale/0 ) ) ;"),
            "z: variable sans valeur\a\nlocale 0: Execution abandonnee\a\n");
  lance("( x = 1 ) ; ( f:incr/1 ( @x ) ) ; ( f:incr/1 ( x ) ) ; ( y = ( f:appelant/0 ) ) ;");
  EXPECT_EQ(reels_de("x"), (std::vector<float>{2}));
  EXPECT_EQ(reels_de("y"), (std::vector<float>{6}));
  lance("( w = 3 ) ; ( v = ( f:copie/1 ( w ) ) ) ;");
  EXPECT_EQ(reels_de("w"), (std::vector<float>{3}));
  EXPECT_EQ(reels_de("v"), (std::vector<float>{99}));
  EXPECT_EQ(piles.loc_haut, piles.loc_base);
}

TEST_F(Moteur, FunctionValuedFormals) {
  Code d;
  d.t("( kw:retour ( #0 * 2 ) ) ;");
  essai::fonction("double", d, 1, 1);
  Code a;
  a.t("(").bloc({4, IT_FORMEL, 0, 1}).t("( #1 ) ) ;");
  essai::fonction("applique", a, 2, 2);
  Code r;
  r.t("( kw:retour ( ");
  r.bloc({4, IT_FORMEL, 0, 1}).t("( #1 ) ) ) ;");
  essai::fonction("appliquer", r, 2, 2);
  lance("( y = ( f:appliquer/2 ( \"double\" ) ( 21 ) ) ) ;");
  EXPECT_EQ(reels_de("y"), (std::vector<float>{42}));
  // a keyword's name: the arguments become its phrase's argument
  EXPECT_EQ(lance("( f:applique/2 ( \"$\" ) ( 3 ) ) ;"), "3.000000 \n");
  EXPECT_EQ(lance("( f:applique/2 ( 5 ) ( 3 ) ) ;"),
            "Argument fonction illegal\a\napplique 0: Execution abandonnee\a\n");
}

TEST_F(Moteur, RunawayRecursionEndsOnTheFrameStack) {
  interp_init();
  Code f;
  f.t("( kw:retour ( f:sansfin/1 ( #0 + 1 ) ) ) ;");
  essai::fonction("sansfin", f, 1, 1);
  std::string s = lance("( f:sansfin/1 ( 0 ) ) ;");
  EXPECT_EQ(s, "Pile des variables locales pleine\a\nsansfin 0: Execution abandonnee\a\n");
  EXPECT_EQ(piles.loc_haut, piles.loc_base);
  // the same with room for a million frames: the machine stack's guard
  piles.loc_fin = piles.loc_base + 1;  // keep the test cheap: the check is the same
  EXPECT_EQ(lance("( kw:$ ( f:sansfin/1 ( 0 ) ) ) ;"),
            "Pile des variables locales pleine\a\nExecution abandonnee\a\n");
}

TEST_F(Moteur, UnknownFunctionAndUnlinkedCall) {
  EXPECT_EQ(lance("( n:inconnue/1 ( 1 ) ) ;"),
            "inconnue: Fonction introuvable\a\nExecution abandonnee\a\n");
  Code s;
  s.t("(");
  s.bloc({4, IT_APPEL, 0, 0}).t(") ;");
  EXPECT_EQ(lance(s.fin()), "Appel non lie\a\nExecution abandonnee\a\n");
}
