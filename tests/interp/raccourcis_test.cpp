// The direct ways for scalars and single elements against the general way
// (ORVANE_LENT set): the same values, the same messages and the same state
// after a failure, on random sizes, indices and values.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "../outils/processus.h"

namespace {
// A folder of .fon files for one test, gone with it.
struct Dossier {
  std::string dir;
  Dossier() {
    char m[] = "/tmp/orvrXXXXXX";
    if (mkdtemp(m)) dir = m;
  }
  ~Dossier() {
    if (!dir.empty()) std::system(("rm -rf " + dir).c_str());
  }
};

// The whole output of a console text, on the direct or the general way.
std::string sortie(const std::string& entree, bool lent, const std::string& uti = "",
                   const std::string& cle = "") {
  if (lent) setenv("ORVANE_LENT", "1", 1);
  std::vector<std::string> args = {"gra=0", "ID", "ini=env/initb.h"};
  if (!uti.empty()) args.push_back("uti=" + uti);
  if (!cle.empty()) args.push_back(cle);
  Processus p = lance_orvane(args);
  unsetenv("ORVANE_LENT");
  bool fini = nourrit(p, entree, "##FIN", 60000);
  if (!fini) kill(p.pid, SIGKILL);
  EXPECT_EQ(termine(p), 0) << p.lu;
  return p.lu;
}

// The output of the direct way, which must be the general way's word for
// word.
std::string pareil(const std::string& entree, const std::string& uti = "", const std::string& cle = "") {
  std::string rapide = sortie(entree, false, uti, cle);
  EXPECT_EQ(rapide, sortie(entree, true, uti, cle)) << entree;
  return rapide;
}

std::string f6(double x) {
  char t[64];
  std::snprintf(t, sizeof t, "%f ", x);
  return t;
}

long compte(const std::string& s, const std::string& motif) {
  long n = 0;
  for (std::size_t i = s.find(motif); i != std::string::npos; i = s.find(motif, i + 1)) ++n;
  return n;
}
}  // namespace

TEST(Raccourcis, ElementsAndScalarsGiveTheSameTextAndFailAlike) {
  std::mt19937 a(std::random_device{}());
  for (int essai = 0; essai < 3; ++essai) {
    const int n = 1001 + 2 * static_cast<int>(a() % 2000);  // odd, past a thousand
    const int k = static_cast<int>(a() % static_cast<unsigned>(n));
    const int m = 3 + static_cast<int>(a() % 97);
    std::string t = "x = vecteur(" + std::to_string(n) + ")\n";
    // Filled through the direct write, read back through it and summed.
    t += "pour (i = 0, " + std::to_string(n - 1) + ") x[i] = i * " + std::to_string(m) + " + 1\n";
    t += "s = 0\npour (i = 0, " + std::to_string(n - 1) + ") s = s + x[i]\n";
    t += "$ x[" + std::to_string(k) + "], s\n";
    t += "x[" + std::to_string(k) + "] += 0.5\nx[" + std::to_string(k) + "] *= -3\n$ x[" + std::to_string(k) + "]\n";
    // The element is read when its group closes, before the right operand.
    t += "x[0] = 7\n$ x[0] + (x[0] = 5)\n$ x[0]\n";
    // Bad indices: past the end, negative, huge, not whole, on a string.
    t += "x[" + std::to_string(n) + "] = 1\nx[-1] = x[1] + 1\n$ x[1e9] + 1\nx[2.5] = 4\n$ x[2]\n";
    t += "z = \"abc\"\nz[1] = x[2]\n$ z\n";
    // Division by zero, directly and compound; the element stays as it was.
    t += "x[3] = x[3] / 0\nx[3] /= 0\n$ x[3]\n";
    // Below a ten-thousandth the divisor counts as zero.
    t += "x[4] /= 0.00001\n$ x[4]\nx[5] /= 0.25\n$ x[5]\n";
    // A scalar turns into a vector under a loop: the general way takes over.
    t += "v = 1\npour (i = 1, 4) v = v, i\n$ v\nw = 2\nw += 3\nw -= 0.25\n$ w\n";
    t += "$ \"##FIN\"\n";
    std::string rapide = pareil(t);

    float somme = 0;  // added up in floats, as the language does
    for (int i = 0; i < n; ++i) somme += static_cast<float>(i * m + 1);
    EXPECT_NE(rapide.find(f6(k * m + 1) + f6(somme)), std::string::npos)
        << "sum of " << n << " elements\n" << rapide;
    EXPECT_NE(rapide.find(f6((k * m + 1 + 0.5) * -3)), std::string::npos) << rapide;
    EXPECT_NE(rapide.find("> 12.000000 \n> 5.000000 "), std::string::npos) << rapide;
    EXPECT_EQ(compte(rapide, "Indice hors limites"), 3) << rapide;
    EXPECT_NE(rapide.find(std::to_string(n) + ": Indice hors limites"), std::string::npos);
    EXPECT_EQ(compte(rapide, "Division par zero"), 3) << rapide;
    EXPECT_NE(rapide.find(f6(3 * m + 1)), std::string::npos) << "x[3] unchanged\n" << rapide;
    EXPECT_NE(rapide.find(f6(4 * m + 1)), std::string::npos) << rapide;
    EXPECT_NE(rapide.find(f6((5 * m + 1) * 4)), std::string::npos) << rapide;
    EXPECT_NE(rapide.find("1.000000 1.000000 2.000000 3.000000 4.000000"), std::string::npos) << rapide;
    EXPECT_NE(rapide.find("4.750000"), std::string::npos) << rapide;
  }
}

TEST(Raccourcis, StringsAppendedInPlaceReadAsTheGeneralWayMakesThem) {
  std::mt19937 a(std::random_device{}());
  Dossier d;
  const std::string& dir = d.dir;
  const int n = 20011 + static_cast<int>(a() % 30000);
  // In a function: a local that owns its string, and an argument, which
  // does not until it is assigned.
  std::ofstream(dir + "/allonge.fon") << "allonge(t, k)\n{\n  u = \"<\"\n  pour (i = 1, k) u = u, t\n"
                                         "  t = t, \"!\"\n  u = u, t\n  retour u\n}\n";
  std::string t = "s = \"a\"\npour (i = 1, " + std::to_string(n) + ") s = s, \"bc\"\n";
  t += "$ s[0, 2]\n$ s[" + std::to_string(2 * n - 2) + ", " + std::to_string(2 * n) + "]\n$ s[" +
       std::to_string(2 * n + 1) + "]\n";
  // A variable on the right, the variable itself on the right, a nil.
  t += "d = \"xyz\"\ne = \"\"\npour (i = 1, 37) e = e, d\n$ e[108, 110]\n$ e[111]\n";
  t += "d = d, d\n$ d\nd = d, NIL\n$ d\nd = d, 5\n$ d\n";
  // A character written as 0 cuts the text: the next append measures it.
  t += "c = \"abcdefgh\"\nc = c, \"i\"\nc[2] = 0\nc = c, \"Z\"\n$ c\nc = c, \"Y\"\n$ c\n";
  t += "w = allonge(\"pq\", 5)\n$ w\n$ allonge(\"r\", 3)\n";
  t += "$ \"##FIN\"\n";
  std::string rapide = pareil(t, dir + "/");
  EXPECT_NE(rapide.find("> abc \n> cbc \n> " + std::to_string(2 * n + 1) + ": Indice hors limites"),
            std::string::npos)
      << rapide;
  EXPECT_NE(rapide.find("> xyz \n"), std::string::npos) << rapide;
  EXPECT_NE(rapide.find("> xyzxyz \n"), std::string::npos) << rapide;
  EXPECT_NE(rapide.find("abZ"), std::string::npos) << rapide;
  EXPECT_NE(rapide.find("abZY"), std::string::npos) << rapide;
  EXPECT_NE(rapide.find("<pqpqpqpqpqpq!"), std::string::npos) << rapide;
  EXPECT_NE(rapide.find("<rrrr!"), std::string::npos) << rapide;
}

TEST(Raccourcis, AppendLoopsTurnAloneAndFailAlike) {
  // A counting pour over s = s, t turns without the walk, its length known
  // from turn to turn: random counts, steps and texts, a local, a text that
  // is not a string, and a string grown past what the evaluation stack
  // holds, which must stop at the same turn with the same message.
  std::mt19937 a(std::random_device{}());
  Dossier d;
  const std::string& dir = d.dir;
  std::ofstream(dir + "/repete.fon") << "repete(t, k)\n{\n  u = \"\"\n  pour (j = k, 1, -1) u = u, t\n"
                                        "  retour u\n}\n";
  auto texte = [&](int n) {
    std::string r;
    for (int k = 0; k < n; ++k) r += static_cast<char>('a' + a() % 26);
    return r;
  };
  for (int essai = 0; essai < 2; ++essai) {
    const int n = 3001 + static_cast<int>(a() % 9000), m = 1 + static_cast<int>(a() % 13);
    const std::string d = texte(m), c = texte(1 + static_cast<int>(a() % 5));
    const std::string pas = std::to_string(1 + a() % 3) + ".5";
    std::string t = "s = \"" + c + "\"\nd = \"" + d + "\"\npour (i = 1, " + std::to_string(n) + ", " + pas +
                    ") s = s, d\n$ i\n$ s[0, " + std::to_string(c.size() + 2 * m) + "]\n";
    // The length the turns made: the last character, then the index past it.
    const long tours = static_cast<long>((n - 1) / std::stod(pas)) + 1;
    const long lg = static_cast<long>(c.size()) + tours * m;
    t += "$ s[" + std::to_string(lg - 1) + "]\n$ s[" + std::to_string(lg) + "]\n";
    t += "$ repete(\"" + d + "\", " + std::to_string(n) + ")[" + std::to_string(n * m - 3) + ", " +
         std::to_string(n * m - 1) + "]\n";
    // Not a string on the right: the general way says what it does.
    t += "k = 7\npour (i = 1, 3) s = s, k\n$ i\nz = 3\npour (i = 1, 3) z = z, \"a\"\n$ z\n";
    // Past the stack: the same turn fails, the string is kept, the next
    // append alone fails too.
    const std::string e = texte(1 + static_cast<int>(a() % 40));
    t += "h = \"" + c + "\"\npour (i = 1, 1e8) h = h, \"" + e + "\"\n$ i\n$ h[0, 2]\nh = h, \"" + e +
         "\"\n$ \"##FIN\"\n";
    std::string rapide = pareil(t, dir + "/");
    EXPECT_NE(rapide.find(f6(1 + tours * std::stod(pas))), std::string::npos) << "i after the loop\n" << rapide;
    EXPECT_NE(rapide.find("> " + d.substr(m - 1) + " \n> " + std::to_string(lg) + ": Indice hors limites"),
              std::string::npos)
        << rapide;
    EXPECT_NE(rapide.find("> " + c + d + d + d.substr(0, 1) + " \n"), std::string::npos) << rapide;
    EXPECT_EQ(compte(rapide, "Pile d'evaluation pleine"), 2) << rapide;
  }
}

TEST(Raccourcis, VectorsComputedIntoTheirOwnBlockReadAsTheStoreMakesThem) {
  // x = (a op b) on a float vector that x owns goes into x's block: copies
  // stay apart, a failure leaves x as it was, an operand that reads x
  // elsewhere than element by element, a postfix, a compound, a size that
  // changes, a local and an argument, all as the general way gives them.
  std::mt19937 a(std::random_device{}());
  Dossier d;
  const std::string& dir = d.dir;
  std::ofstream(dir + "/pousse.fon") << "pousse(t, k)\n{\n  u = t * 1\n  pour (j = 1, k) u = u * 0.5 + j\n"
                                        "  t = t - u\n  retour t, u[0]\n}\n";
  for (int essai = 0; essai < 2; ++essai) {
    const int n = 2001 + 2 * static_cast<int>(a() % 5000), k = 3 + static_cast<int>(a() % 40);
    const std::string f = std::to_string(1 + a() % 997) + "." + std::to_string(a() % 1000);
    const std::string ns = std::to_string(n), ks = std::to_string(k);
    std::string t = "v = remplir(" + ns + ", 1)\npour (i = 1, " + ks + ") v = v * 1.0001 + " + f + "\n";
    t += "$ v[0], v[" + std::to_string(n - 1) + "]\nw = v\nv = v * 2\n$ w[1], v[1]\n";
    t += "v = v * 2 + v\n$ v[2]\nv = v[0, 2] - v\n$ v\nv = remplir(" + ns + ", 3)\n";
    t += "v = v / 0\n$ v[3]\nv = v - v[1, " + ns + "]\n$ v[4]\nv = v + (v = v * 3)\n$ v[5]\n";
    t += "z = remplir(" + ns + ", 2)\nv = (z += 1)\n$ v[6], z[6]\nv = v++ * 2\n$ v[7]\n";
    t += "v = v && remplir(" + ns + ", 0)\n$ v[8]\nv = v, 1\n$ v[" + ns + "]\n";
    t += "$ pousse(remplir(" + ns + ", 2), " + ks + ")[0, 1]\n$ pousse(v, 2)[" + ns + "]\n";
    t += "$ \"##FIN\"\n";
    std::string rapide = pareil(t, dir + "/");
    EXPECT_EQ(compte(rapide, "Division par zero"), 1) << rapide;
    float x = 1;  // in floats, as the language computes
    for (int i = 0; i < k; ++i) x = x * 1.0001f + std::stof(f);
    EXPECT_NE(rapide.find("> " + f6(x) + f6(x) + "\n"), std::string::npos) << rapide;
    EXPECT_NE(rapide.find("> " + f6(x) + f6(2 * x) + "\n"), std::string::npos) << "the copy stays\n" << rapide;
    EXPECT_NE(rapide.find("> " + f6(6 * x) + "\n"), std::string::npos) << rapide;
  }
}

TEST(Raccourcis, DeepRecursionThroughElementsStopsAlikeAndTheStateIsClean) {
  Dossier d;
  const std::string& dir = d.dir;
  // Each call writes and reads an element of its own vector, and never ends.
  std::ofstream(dir + "/plonge.fon") << "plonge(n)\n{\n  x = vecteur(3)\n  x[1] = n\n  x[2] += x[1] * 2\n"
                                        "  retour plonge(x[1] + 1)\n}\n";
  std::string t = "y = vecteur(4)\ny[3] = 41\n$ plonge(1)\n$ plonge(7)\ny[3] += 1\n$ y[3]\n$ \"##FIN\"\n";
  std::string rapide = pareil(t, dir + "/");
  EXPECT_EQ(compte(rapide, "pleine"), 2) << rapide;
  EXPECT_EQ(compte(rapide, "plonge 6: Execution abandonnee"), 2) << rapide;
  EXPECT_EQ(compte(rapide, "Execution abandonnee"), 2) << rapide;
  EXPECT_NE(rapide.find("42.000000"), std::string::npos) << rapide;
}

TEST(Raccourcis, LoopsOverOneStatementTurnAloneAndHandBackAlike) {
  // A counting pour whose body is one scalar or element assignment turns
  // without the walk; any turn that is not plain goes back to it. Random
  // bounds and steps, failures in the middle of the turns, the loop variable
  // written by the body, and the same inside a function, with its lines.
  std::mt19937 a(std::random_device{}());
  Dossier d;
  const std::string& dir = d.dir;
  std::ofstream(dir + "/somme.fon") << "somme(n)\n{\n  s = 0\n  t = vecteur(n)\n  pour (i = 0, n - 1)\n"
                                       "    t[i] += i\n  pour (i = 0, n - 1) s = s + i\n  retour s, t[n - 1]\n}\n";
  std::ofstream(dir + "/divise.fon") << "divise(n)\n{\n  r = 1\n  pour (i = -2, n)\n    r = r / i\n"
                                        "  retour r\n}\n";
  auto nombre = [&](int lo, int hi) { return std::to_string(lo + static_cast<int>(a() % (hi - lo + 1))); };
  for (int essai = 0; essai < 2; ++essai) {
    std::string t = "s = 0\nq = 100\n";
    std::string d = nombre(-50, 50), f = nombre(-50, 5000), p = nombre(1, 9) + "." + nombre(0, 99);
    if (a() % 2) p = "-" + p, std::swap(d, f);
    t += "pour (i = " + d + ", " + f + ", " + p + ") s = s + i\n$ s, i\n";
    t += "pour (i = -3, 3) q = q / i\n$ q, i\n";
    t += "pour (i = 1, 1000) i = i * 2\n$ i\n";
    t += "v = vecteur(3)\npour (i = 1, 3) v = v + i\n$ v\n";
    t += "x = vecteur(10)\npour (i = 0, 12) x[i] = x[i] + i\n$ x, i\n";
    t += "x[2] = 5\npour (i = 0, 9) x[i] += x[2]\n$ x\n";
    t += "pour (k = 1, 5, 0.3) x[k] = k\n$ x, k\n";
    t += "pour (k = 9, 0, -1) x[k] = x[9 - k] * k\n$ x\n";
    t += "pour (i = 1, 4) s = i - s\n$ s\n";
    // Operands that are the target twice, the loop variable twice, a
    // variable no turn writes, a built-in on the target.
    t += "w = " + nombre(-99999, 99999) + ".37\ns = 1.001\npour (i = 1, " + nombre(1, 400) + ") s = s * s\n$ s, i\n";
    t += "pour (i = " + d + ", " + f + ", " + p + ") u = i + i\n$ u, i\n";
    t += "pour (i = 1, " + nombre(1, 9000) + ") s = w - i\n$ s\npour (i = 0, 77) s = sin(s) + w\n$ s\n";
    t += "pour (i = 3, -40, -1.5) w = w / i\n$ w, i\n";
    t += "$ somme(" + nombre(1, 3000) + ")\n$ divise(" + nombre(0, 4) + ")\n";
    t += "$ \"##FIN\"\n";
    std::string rapide = pareil(t, dir + "/");
    EXPECT_EQ(compte(rapide, "Division par zero"), 3) << rapide;
    EXPECT_NE(rapide.find("divise 4: "), std::string::npos) << "the failing line of the body\n" << rapide;
    EXPECT_NE(rapide.find("> 1023.000000 \n"), std::string::npos) << "i = i * 2, then its step\n" << rapide;
  }
}

TEST(Raccourcis, ScalarFunctionsGiveTheGeneralWaysValuesAndFailures) {
  // Functions that only compute on scalars run on floats; whatever such a
  // run cannot finish plainly runs again the general way. Recursion, locals,
  // loops, calls between functions, then each way of failing: a division by
  // zero deep down, a local read before it is written, a recursion without
  // end (the frames' records, or the machine stack with a large frame
  // stack), arguments that are not scalars or missing.
  std::mt19937 a(std::random_device{}());
  Dossier d;
  const std::string& dir = d.dir;
  auto fichier = [&](const std::string& nom, const std::string& texte) { std::ofstream(dir + "/" + nom + ".fon") << texte; };
  fichier("fib", "fib(n)\n{\n  si (n < 2) retour n\n  retour fib(n - 1) + fib(n - 2)\n}\n");
  fichier("moyenne", "moyenne(a, b, c)\n{\n  m = a + b\n  m = m + c\n  retour m / 3\n}\n");
  fichier("total", "total(n)\n{\n  s = 0\n  i = 1\n  tantque (i <= n)\n  {\n    s = s + i\n    i = i + 1\n  }\n"
                   "  retour s\n}\n");
  fichier("inverse", "inverse(n)\n{\n  si (n < 1) retour 1 / n\n  retour inverse(n - 1) + 1\n}\n");
  fichier("plonge", "plonge(n)\n{\n  retour plonge(n + 1) * 2\n}\n");
  fichier("lit", "lit(n)\n{\n  si (n > 0) m = n\n  retour m\n}\n");
  fichier("deux", "deux(a, b)\n{\n  retour a * b - moyenne(a, b, 1)\n}\n");
  fichier("pair", "pair(n)\n{\n  si (n < 1) retour 1\n  retour impair(n - 1)\n}\n");
  fichier("impair", "impair(n)\n{\n  si (n < 1) retour 0\n  retour pair(n - 1)\n}\n");
  fichier("nulle", "nulle(n)\n{\n  si (n > 2) retour n\n}\n");
  fichier("onde", "onde(x, k)\n{\n  si (k < 1) retour 0 - sin(x)\n  retour onde(cos(x) * 2, k - 1) + abs(x) / tanh(k)\n}\n");
  // Calls as arguments of calls, a test on a value, tests of constants, a
  // local written on one branch only.
  fichier("arbre", "arbre(a, b)\n{\n  retour deux(moyenne(a, b, a - b), b) * moyenne(b, 1, deux(a, 2))\n}\n");
  fichier("cond", "cond(n)\n{\n  si (n) retour 2 > 1\n  si (3 < 2) retour 9\n  retour 0 - n\n}\n");
  fichier("mixte", "mixte(x)\n{\n  si (x >= 0) y = sin(x) * 2\n  z = y / x - cond(x - 1)\n  retour z\n}\n");
  auto nombre = [&](int lo, int hi) { return lo + static_cast<int>(a() % static_cast<unsigned>(hi - lo + 1)); };
  for (int essai = 0; essai < 2; ++essai) {
    const int n = nombre(12, 19), grand = 2 * nombre(500000, 9000000) + 1;
    const int profond = nombre(3, 60), impair = 2 * nombre(1, 150) + 1;
    std::string t = "$ fib(" + std::to_string(n) + ")\n";
    t += "$ moyenne(" + std::to_string(grand) + ", -7654321.5, 3.25e7)\n$ moyenne(1e30, 1e30, -3)\n";
    t += "$ total(" + std::to_string(nombre(1, 3000)) + ")\n$ deux(" + std::to_string(grand) + ", 0.125)\n";
    t += "$ pair(" + std::to_string(impair) + "), impair(" + std::to_string(impair) + ")\n";
    t += "x = 4\n$ inverse(" + std::to_string(profond) + ")\n$ x + 1\n";
    t += "$ plonge(1)\n$ x + 2\n$ lit(-1)\n$ lit(7.5)\n$ nulle(1)\n$ nulle(9)\n";
    t += "$ deux(vecteur(3), 2)\n$ deux(3)\n$ deux(\"ab\", 2)\n$ fib(vecteur(2))\n";
    t += "$ onde(" + std::to_string(grand) + ", " + std::to_string(profond) + ")\n$ onde(0.5, -1), onde(3, 1)\n";
    t += "$ arbre(" + std::to_string(grand) + ".75, -" + std::to_string(profond) + ".5)\n$ cond(0), cond(-17.25)\n";
    t += "$ mixte(" + std::to_string(nombre(1, 999999)) + ".125)\n$ mixte(-2.5)\n$ x + 3\n";
    t += "$ fib(1e9 - 0.5) < 0\n";  // so deep that it only fails
    t += "$ \"##FIN\"\n";
    std::string rapide = pareil(t, dir + "/");
    long f0 = 0, f1 = 1;
    for (int k = 0; k < n; ++k) f1 = f0 + f1, f0 = f1 - f0;
    EXPECT_NE(rapide.find("> " + f6(static_cast<double>(f0)) + "\n"), std::string::npos) << n << "\n" << rapide;
    EXPECT_NE(rapide.find("> 0.000000 1.000000 \n"), std::string::npos) << "pair, impair of an odd number\n" << rapide;
    EXPECT_EQ(compte(rapide, "Division par zero"), 1) << rapide;
    EXPECT_NE(rapide.find("> 5.000000 \n"), std::string::npos) << "the line after a failure runs\n" << rapide;
    EXPECT_NE(rapide.find("> 7.500000 \n"), std::string::npos) << rapide;
    EXPECT_GE(compte(rapide, "pleine"), 2) << rapide;
    const float o = (0 - std::sin(std::cos(3.f) * 2)) + std::fabs(3.f) / std::tanh(1.f);
    EXPECT_NE(rapide.find(f6(0 - std::sin(0.5f)) + f6(o)), std::string::npos) << f6(o) << "\n" << rapide;
  }
  // A frame stack far larger than the machine stack can fill: the machine
  // stack is the limit that shows, on both ways alike.
  std::string t = "$ plonge(3)\n$ fib(6)\n$ \"##FIN\"\n";
  std::string rapide = pareil(t, dir + "/", "loc=3000000");
  EXPECT_NE(rapide.find("Pile d'evaluation pleine"), std::string::npos) << rapide;
  EXPECT_NE(rapide.find("> 8.000000 \n"), std::string::npos) << rapide;
}

TEST(Raccourcis, BuiltInsOnScalarsGiveThePhrasesValues) {
  // sin, cos, abs, ... on one scalar are computed without their phrase, in
  // loops and in single statements; a vector argument, a failure after them
  // and a built-in that checks its argument take the general way.
  std::mt19937 a(std::random_device{}());
  for (int essai = 0; essai < 2; ++essai) {
    const int n = 2 * (100000 + static_cast<int>(a() % 400000)) + 1;
    const float x0 = static_cast<float>(a() % 20000) / 7.0f - 1400.0f;
    std::string t = "s = 0\npour (i = 1, " + std::to_string(n) + ") s = s + sin(i)\n$ s\n";
    t += "c = 1\npour (i = -50, 50, 0.37) c = cos(i) * c\n$ c, i\n";
    t += "y = " + std::to_string(x0) + "\npour (k = 1, 9) y = abs(y) - ent(k)\n$ y\n";
    t += "pour (k = 1, 9) y = ent(y) / frac(k)\n$ y, k\n";  // frac(k) = 0: division by zero
    t += "u = vecteur(3)\npour (i = 1, 3) u = sin(u) + i\n$ u\n";
    t += "x = " + std::to_string(x0) + "\nx = x + tanh(x)\n$ x\nx = signe(x) * arrondi(x)\n$ x\n";
    t += "x = tan(x) / 0\n$ x, exp(3) - cosh(2), atan(1e30), sinh(-3), arrondi(2.5), racine(-4)\n";
    t += "$ \"##FIN\"\n";
    std::string rapide = pareil(t);
    float s = 0;  // added up in floats, as the language does
    for (int i = 1; i <= n; ++i) s += std::sin(static_cast<float>(i));
    EXPECT_NE(rapide.find("> " + f6(s) + "\n"), std::string::npos) << f6(s) << "\n" << rapide;
    EXPECT_EQ(compte(rapide, "Division par zero"), 2) << rapide;
    float u = 0;
    for (int i = 1; i <= 3; ++i) u = std::sin(u) + static_cast<float>(i);
    EXPECT_NE(rapide.find("> " + f6(u) + f6(u) + f6(u)), std::string::npos) << rapide;
  }
}
