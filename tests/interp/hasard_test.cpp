// Bad input through the whole road of a line: 100,000 random lines of the
// language's tokens typed at the shell of a real orvane process. No crash,
// no hang, every failure a numbered message, and the prompt still answers.
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "../outils/processus.h"

namespace {
// Tokens of the language. Left out: what loops or waits for ever (tantque,
// pour, aller, labels, pas, demande), what leaves or touches the system
// (quitter, systeme, files), what prints without bound (aide, his), and
// #define, which changes the language for the rest of the session.
const std::vector<std::string> JETONS = {
    "0", "1", "2.5", "-3", "1e9", "0.00001", "7", "x", "y", "z", "v", "s", "t", "\"a\"", "\"b c\"",
    "\"\"", "'ab'", "+", "-", "*", "/", "%", "^", "&", "|", "&&", "||", "==", "!=", "<", ">", "<=",
    ">=", "~", "<<", ">>", "=", "+=", "-=", "*=", "/=", ",=", ",", "!", "++", "--", "(", ")", "(",
    ")", "[", "]", "{", "}", ";", "$", "si", "sinon", "selon", "cas", "defaut", ":", "sortir",
    "retour", "NIL", "PI", "RC", "var", "remplir", "vecteur", "err", "@", "f(", "g(1)", "vol",
    "rotx", "coul", "sqrt", "exec(1)", "statique", "externe"};

std::vector<std::string> lignes_au_hasard(int n) {
  std::mt19937 g(20240521);
  std::uniform_int_distribution<std::size_t> jeton(0, JETONS.size() - 1);
  std::uniform_int_distribution<int> longueur(1, 12);
  std::vector<std::string> l;
  for (int i = 0; i < n; ++i) {
    std::string s;
    for (int k = longueur(g); k > 0; --k) {
      if (!s.empty()) s += ' ';
      s += JETONS[jeton(g)];
    }
    l.push_back(s);
  }
  return l;
}

// The texts of the messages of both environments, as the files give them.
std::vector<std::string> textes_messages() {
  std::vector<std::string> t;
  for (const char* f : {"env/mesa.h", "env/mesb.h"}) {
    std::ifstream in(std::string(ORVANE_SOURCE) + "/" + f);
    std::string ligne;
    while (std::getline(in, ligne)) {
      std::size_t d = ligne.find(':');
      if (ligne.empty() || ligne[0] != '|' || d == std::string::npos) continue;
      std::string m = ligne.substr(d + 1);
      // Escapes as the loader reads them; only texts that end in a bell
      // and a newline are failures.
      std::string r;
      for (std::size_t k = 0; k < m.size(); ++k) {
        if (m[k] == '\\' && k + 1 < m.size()) {
          char c = m[++k];
          r += c == '7' ? '\a' : c == 'e' ? ' ' : c == 'n' ? '\n' : c == 't' ? '\t' : c;
        } else {
          r += m[k];
        }
      }
      if (r.size() > 2 && r.substr(r.size() - 2) == "\a\n") t.push_back(r.substr(0, r.size() - 2));
    }
  }
  return t;
}

// Types the lines into a real orvane, then "$ 123456": the answer must come,
// the process must end with 0 at the end of its input, and every bell must
// close a numbered message.
void tape_et_verifie(const std::vector<std::string>& lignes, std::vector<std::string> cles = {}) {
  std::vector<std::string> args = {"gra=0", "ID", "ini=env/initb.h"};
  args.insert(args.end(), cles.begin(), cles.end());
  Processus p = lance_orvane(args);
  ASSERT_GT(p.pid, 0);
  // Typing and reading go on together, so that neither pipe fills up.
  std::thread tape_tout([&] {
    for (const std::string& l : lignes) tape(p, l);
    tape(p, "$ 123456");
  });
  std::string sortie;
  char buf[65536];
  ssize_t n;
  auto fin = std::chrono::steady_clock::now() + std::chrono::seconds(50);
  bool fini = false;
  while (!fini && std::chrono::steady_clock::now() < fin) {
    pollfd f{p.sortie, POLLIN, 0};
    if (poll(&f, 1, 1000) <= 0) continue;
    n = read(p.sortie, buf, sizeof buf);
    if (n <= 0) break;
    std::size_t avant = sortie.size() > 16 ? sortie.size() - 16 : 0;
    sortie.append(buf, static_cast<std::size_t>(n));
    fini = sortie.find("123456.000000", avant) != std::string::npos;
  }
  if (!fini) kill(p.pid, SIGKILL);  // the writer may be blocked on a full pipe
  tape_tout.join();
  ASSERT_TRUE(fini) << "no answer to the last line; output ends with:\n"
                    << sortie.substr(sortie.size() > 2000 ? sortie.size() - 2000 : 0);
  EXPECT_EQ(termine(p), 0);
  EXPECT_EQ(sortie.find("ILLEGAL"), std::string::npos);
  EXPECT_EQ(sortie.find("ERREUR INTERNE"), std::string::npos);
  // Every bell ends a numbered message, or the command dispatch's notice of
  // a keyword not yet implemented.
  std::vector<std::string> textes = textes_messages();
  textes.push_back("non implemente");
  std::set<std::string> inconnus;
  for (std::size_t k = sortie.find('\a'); k != std::string::npos; k = sortie.find('\a', k + 1)) {
    std::size_t d = sortie.rfind('\n', k);
    std::size_t debut = d == std::string::npos ? 0 : d + 1;
    std::string avant = sortie.substr(debut, k - debut);
    bool connu = false;
    for (const std::string& t : textes)
      if (avant.size() >= t.size() && avant.compare(avant.size() - t.size(), t.size(), t) == 0) connu = true;
    if (!connu) inconnus.insert(avant);
  }
  EXPECT_TRUE(inconnus.empty()) << *inconnus.begin();
}

// Lines that the compiler takes: assignments, indices, control forms and
// prints over random nested expressions, so that the evaluator sees every
// pair of value kinds under every operator.
struct Expressions {
  std::mt19937 g{777};
  std::string tire(const std::vector<std::string>& v) {
    return v[std::uniform_int_distribution<std::size_t>(0, v.size() - 1)(g)];
  }
  double u() { return std::uniform_real_distribution<double>(0, 1)(g); }
  const std::vector<std::string> ops = {"+", "-", "*", "/", "%", "^", "&", "|", "&&", "||", "==",
                                        "!=", "<", ">", "<=", ">=", "~", "<<", ">>", ","};
  const std::vector<std::string> vars = {"x", "y", "z", "v", "s"};
  // Numbers stay small inside brackets: a ramp to 1e9 is only a stack
  // full, but a ramp to 1e5 printed on every line would be gigabytes.
  bool crochet = false;
  std::string atome(int d) {
    double r = u();
    if (r < 0.2 && crochet) return tire({"0", "1", "2.5", "-3", "7", "0.5"});
    if (r < 0.2) return tire({"0", "1", "2.5", "-3", "1e9", "0.00001", "7", "100"});
    if (r < 0.35) return tire(vars);
    if (r < 0.45) return tire({"\"a\"", "\"b c\"", "\"\"", "\"un deux\"", "NIL", "PI", "'xy'"});
    if (r < 0.55 && d < 4) return "[" + dedans(d) + "]";
    if (r < 0.6 && d < 4) return "{" + dedans(d) + "}";
    if (r < 0.7 && d < 4) return tire(vars) + "[" + dedans(d) + "]";
    if (r < 0.75 && d < 4) return tire(vars) + "{" + dedans(d) + "}";
    if (r < 0.8) return tire(vars) + tire({"++", "--"});
    if (r < 0.85) return tire({"vecteur", "remplir"}) + "(" + expr(d + 1) + ")";
    if (r < 0.9) return "!" + atome(d + 1);
    return "(" + expr(d + 1) + ")";
  }
  std::string dedans(int d) {
    bool avant = crochet;
    crochet = true;
    std::string e = expr(d + 1);
    crochet = avant;
    return e;
  }
  std::string expr(int d = 0) {
    if (d > 5 || u() < 0.3) return atome(d);
    return atome(d) + " " + tire(ops) + " " + expr(d + 1);
  }
  std::string ligne() {
    double r = u();
    if (r < 0.4) return tire(vars) + " " + tire({"=", "+=", "-=", "*=", "/=", ",=", "%=", "^="}) + " " + expr();
    if (r < 0.5) return tire(vars) + "[" + expr() + "] = " + expr();
    if (r < 0.55) return tire(vars) + "{" + expr() + "} = " + expr();
    if (r < 0.65) return "si (" + expr() + ") " + tire(vars) + " = " + expr() + " sinon $ " + expr();
    if (r < 0.7)
      return "pour (i = 0, " + std::to_string(g() % 6) + ") " + tire(vars) + " ,= " + expr();
    if (r < 0.75) return "selon (" + expr() + ") { cas 1: $ 1; sortir; cas \"a\": $ 2; defaut: $ 3 }";
    return "$ " + expr();
  }
};
}  // namespace

TEST(Hasard, CentMilleLignesSansPlantage) { tape_et_verifie(lignes_au_hasard(100000)); }

TEST(Hasard, ExpressionsBienFormees) {
  Expressions e;
  std::vector<std::string> l;
  for (int i = 0; i < 30000; ++i) l.push_back(e.ligne());
  // A small evaluation stack keeps the vectors, and so what $ prints, short.
  tape_et_verifie(l, {"eva=2000"});
}
