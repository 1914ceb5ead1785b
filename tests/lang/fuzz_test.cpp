// No source text crashes the compiler or makes it loop: random token
// sequences and random bytes, as lines and as functions, each compiled and
// linked, must end in success with nothing printed, or in a numbered
// message closed by message 107.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <random>

#include "lang/lang.h"
#include "tests/lang/aide_lang.h"

namespace {
const char* const JETONS[] = {
    "si", "sinon", "tantque", "pour", "selon", "cas", "defaut", "sortir", "aller", "retour",
    "externe", "statique", "var", "fonc", "aide", "err", "?", "RC", "NIL", "PI", "$", "vol", "rotx",
    "aff", "menu", "a", "b", "x", "fin", "fin:", "E1:", "f", "g(", "0", "1", "2.5", "0x1F", "017",
    "1e3", ".5", "09", "\"abc\"", "\"a\\\"b\"", "\"ouverte", "'ab'", "'\\n", "+", "-", "*", "/",
    "%", "^", "=", "==", "!=", "<=", ">=", "<", ">", "&&", "||", "&", "|", "~", "!", "++", "--",
    "+=", "-=", ",=", "<<", ">>=", ",", "(", ")", "[", "]", "{", "}", ";", ":", "::", "\n", "\n",
    "/* c */", "/*", "*/", "#define N 3", "#define", "#include x.h", "#include f(", "#foo", "@",
    "i=0", ";;", "(i=0,3)", "(i=0;i<3;i++)", "(;;)", "\\", "\t", "cas 1:", "defaut:",
};
constexpr int NB_JETONS = sizeof JETONS / sizeof JETONS[0];

// Programs written by a small grammar, so that most of them reach pass 3
// and link; a mutation then breaks some of them.
struct Generateur {
  std::mt19937& a;
  int prof = 0;
  std::string choix(std::initializer_list<const char*> l) { return *(l.begin() + a() % l.size()); }
  std::string expr() {
    if (++prof > 4) {
      --prof;
      return choix({"1", "x", "2.5", "PI"});
    }
    std::string e;
    switch (a() % 12) {
      case 0: e = choix({"0", "3", "0x10", ".5"}); break;
      case 1: e = choix({"a", "b", "x", "@a"}); break;
      case 2: e = expr() + choix({" + ", " * ", " ^ ", " < ", ", ", " == ", " && ", " = ", " += "}) + expr(); break;
      case 3: e = "(" + expr() + ")"; break;
      case 4: e = "g(" + expr() + ", " + expr() + ")"; break;
      case 5: e = "vol(" + expr() + ") rotx " + expr(); break;
      case 6:
        e = expr();
        e = e[0] == '-' || e[0] == '!' ? "-(" + e + ")" : "-" + e;
        break;
      case 7: e = "!" + expr(); break;
      case 8: e = "x[" + expr() + "]"; break;
      case 9: e = choix({"\"abc\"", "'ab'", "NIL", "a++", "--b"}); break;
      case 10: e = "[" + expr() + "]"; break;
      default: e = "x{" + expr() + "}";
    }
    --prof;
    return e;
  }
  std::string instr() {
    if (++prof > 4) {
      --prof;
      return "x = " + expr();
    }
    std::string i;
    switch (a() % 14) {
      case 0: i = "si(" + expr() + ") " + instr() + (a() % 2 ? " sinon " + instr() : ""); break;
      case 1: i = "tantque(" + expr() + ") { " + instrs() + " }"; break;
      case 2: i = "pour(i=(" + expr() + "),(" + expr() + ")) " + instr(); break;
      case 3: i = "pour(i=0;i<" + expr() + ";i++) { " + instrs() + " }"; break;
      case 4: i = "selon(" + expr() + "){cas 1: " + instr() + "; cas x+1: sortir; defaut: " + instr() + "}"; break;
      case 5:  // aide and ? take the rest of the statement: only at the top
        i = prof == 1 ? choix({"sortir", "aller fin", "fin: x = 1", "retour", "RC", "aide vol", "? rotx"})
                      : choix({"sortir", "aller fin", "fin: x = 1", "retour", "RC"});
        break;
      case 6: i = "$" + expr(); break;
      case 7: i = "retour " + expr(); break;
      case 8:  // declarations, which give no statement, only at the top
        i = prof == 1 ? choix({"statique s = 1, t[2]", "externe e", "var u, v = 2"}) : "x = 2";
        break;
      default:
        i = expr();
        if (i[0] == '-') i = "x = " + i;  // a line that begins with "-" goes on with the last
    }
    --prof;
    return i;
  }
  std::string instrs() {
    std::string s;
    int n = 1 + a() % 4;
    for (int k = 0; k < n; ++k) s += (k ? (a() % 2 ? "; " : "\n") : "") + instr();
    return s;
  }
};

struct Capture {
  char* tampon = nullptr;
  std::size_t taille = 0;
  FILE* flux = nullptr;
  FILE* ancien = nullptr;
  std::size_t lu = 0;
  void ouvre() {
    flux = open_memstream(&tampon, &taille);
    ancien = stdout;
    stdout = flux;
    lu = 0;
  }
  void ferme() {
    stdout = ancien;
    std::fclose(flux);
    std::free(tampon);
    tampon = nullptr;
  }
  std::string suite() {
    std::fflush(flux);
    std::string s(tampon + lu, taille - lu);
    lu = taille;
    return s;
  }
};

// A failure reports a numbered message and ends with message 107.
bool echec_signale(const std::string& s) {
  if (s.size() < 5 || s.compare(s.size() - 5, 5, "M107\n") != 0) return false;
  for (std::size_t i = s.find('M'); i != std::string::npos; i = s.find('M', i + 1)) {
    std::size_t j = i + 1;
    while (j < s.size() && s[j] >= '0' && s[j] <= '9') ++j;
    if (j > i + 1 && j < s.size() && s[j] == '\n' && s.compare(i, j - i, "M107") != 0) return true;
  }
  return false;
}

mot* bloc_texte_de(const std::string& t) {
  mot* b = bloc_alloue(long_chaine(t.size()));
  b[1] = BLOC_CHAINE;
  b[2] = b[3] = 1;
  std::memcpy(bloc_texte(b), t.data(), t.size());
  bloc_texte(b)[t.size()] = 0;
  return b;
}

// One source through compile, link and listing; an empty string when all is
// as it must be, else what went wrong.
std::string essaie(Capture& c, const std::string& texte, bool fonction) {
  Objet o{};
  o.type = fonction ? TYPE_FONCTION : OBJ_LIGNE;
  o.donnees = bloc_texte_de(fonction ? texte : "{" + texte + "}");
  std::string erreur;
  int r = compiler(&o);
  std::string s = c.suite();
  if (r == 1 ? !s.empty() : (r != -1 || !echec_signale(s))) erreur = "compile " + std::to_string(r) + ": " + s;
  if (r == 1) {
    int l = lier(&o);
    s = c.suite();
    if (l == 0 ? !s.empty() : (l != -1 || !echec_signale(s))) erreur = "lien " + std::to_string(l) + ": " + s;
    lister_code(&o, 0);
    c.suite();
  }
  bloc_libere_force(o.code);
  bloc_libere_force(o.donnees);
  return erreur;
}
}  // namespace

TEST(Fuzz, RandomTokensAndBytes) {
  prepare_lang();
  // A longer hunt: ORVANE_FUZZ_N cases from the seed ORVANE_FUZZ_GRAINE.
  const char* n_env = std::getenv("ORVANE_FUZZ_N");
  const char* g_env = std::getenv("ORVANE_FUZZ_GRAINE");
  const int N = n_env ? std::atoi(n_env) : 100000;
  alarm(n_env ? 0 : 300);  // a loop would hang the run: better a failure
  std::mt19937 alea(g_env ? std::atoi(g_env) : 20240521);
  Capture c;
  c.ouvre();
  int echecs = 0;
  for (int i = 0; i < N && echecs < 5; ++i) {
    std::string t;
    if (i % 10 < 4) {
      Generateur g{alea};
      t = g.instrs();
      if (alea() % 3 == 0) {  // a mutation
        std::size_t k = alea() % (t.size() + 1);
        if (alea() % 2) {
          t.insert(k, JETONS[alea() % NB_JETONS]);
        } else {
          t.erase(k, alea() % 4);
        }
      }
      if (t.find("fin:") == std::string::npos && t.find("aller") != std::string::npos) t += "; fin: x";
    } else if (i % 10 < 7) {
      int n = 1 + alea() % 40;
      for (int k = 0; k < n; ++k) {
        t += JETONS[alea() % NB_JETONS];
        if (alea() % 3) t += ' ';
      }
    } else {
      int n = alea() % 200;
      for (int k = 0; k < n; ++k) t += static_cast<char>(1 + alea() % 255);
    }
    bool fonction = i % 4 == 3;
    if (fonction && alea() % 2) t = "f(a, b) fonc b;\n{ " + t + (alea() % 4 ? "\n}" : "");
    macros_globales_vide();  // a "#define x ..." of one case would change the next ones
    std::string e = essaie(c, t, fonction);
    if (!e.empty()) {
      ++echecs;
      ADD_FAILURE() << "source [" << t << "]\n" << e;
    }
    // Links create globals and statics: the table is emptied now and then,
    // and the output buffer let go.
    if (i % 500 == 499) {
      objets_vide();
      c.ferme();
      c.ouvre();
    }
  }
  c.ferme();
  alarm(0);
}
