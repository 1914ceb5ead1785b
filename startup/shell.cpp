// The shell: reads a line, wraps it in braces, compiles it as a transient
// object and runs it. The same routine serves the top level, the pause of
// the step mode, a paused function and the interruption menu.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/message.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
constexpr int M_PROMPT = 0, M_SECTION = 1;
// Words of the line's Bloc: 4 of header and 784 bytes of text.
constexpr mot MOTS_LIGNE = 200;
constexpr int OCTETS_LIGNE = (MOTS_LIGNE - 4) * 4;

struct EtatShell {
  int passes = 0;
  bool arret = false;
  Objet* historique = nullptr;
  bool lancement_fait = false;
  std::size_t mot_boucle = 0;
};
EtatShell sh;

inline mot etat(int ord) { return etats[0] ? etats[0][ord] : 0; }

const char* saute_blancs(const char* p) {
  while (*p == ' ' || *p == '\t') ++p;
  return p;
}

// Does the text begin with the primary name of (0, ord)?
bool commence_par(const char* p, int ord) {
  const char* nom = mot_entree(0, ord) ? mot_nom(0, ord) : nullptr;
  return nom && *nom && mot_correspond(nom, p) > 0;
}

// ---- history -------------------------------------------------------------------
mot* texte_historique() { return sh.historique ? sh.historique->donnees : nullptr; }

void ajoute_historique(const char* ligne) {
  mot* h = texte_historique();
  std::size_t ancien = h ? std::strlen(bloc_texte(h)) : 0;
  std::size_t lg = ancien + std::strlen(ligne) + 1;
  mot* b = bloc_alloue(long_chaine(lg));
  if (!b) return;  // the message is said; the line still runs
  b[1] = BLOC_CHAINE;
  b[2] = h ? h[2] + 1 : 1;
  b[3] = 1;
  char* t = bloc_texte(b);
  if (ancien) std::memcpy(t, bloc_texte(h), ancien);
  std::strcpy(t + ancien, ligne);
  std::strcat(t, "\n");
  if (!sh.historique) {
    sh.historique = objet_cree(0, A_HIS, 0, nullptr, nullptr, 1);
    if (!sh.historique) {
      bloc_libere(b);
      return;
    }
  }
  bloc_libere(h);
  sh.historique->donnees = b;
}

void retire_derniere() {
  mot* h = texte_historique();
  if (!h || h[2] < 1) return;
  char* t = bloc_texte(h);
  std::size_t lg = std::strlen(t);
  if (lg == 0) return;
  std::size_t i = lg - 1;  // the last newline
  while (i > 0 && t[i - 1] != '\n') --i;
  t[i] = 0;
  --h[2];
}

// Line n of the history (1-based; 0 is the last), copied into s.
bool ligne_historique(long n, std::string& s) {
  mot* h = texte_historique();
  long nb = h ? h[2] : 0;
  if (n == 0) n = nb;
  if (n < 1 || n > nb) return false;
  const char* t = bloc_texte(h);
  for (long k = 1; k < n; ++k) t = std::strchr(t, '\n') + 1;
  const char* f = std::strchr(t, '\n');
  s.assign(t, f ? f : t + std::strlen(t));
  return true;
}

// ---- prompt ----------------------------------------------------------------------
// The phrases waiting on the command stack, one per line, as a reminder.
void rappel_empilement() {
  if (!piles.emp || piles.emp[2] == 0) return;
  message(0, M_SECTION);
  // After an overflow the next push writes over the stack's own header, so
  // the counts read here may not match the words: every read stays below
  // the top, in its phrase, in its clause.
  mot* haut = piles.emp_haut;
  mot* p = piles.emp + 4;
  for (mot k = 0; k < piles.emp[2] && p + 4 <= haut; ++k) {
    mot* fin = p[0] > 4 && p + p[0] <= haut ? p + p[0] : p + 4;
    mot* e = p + 4;
    for (mot c = 0; c < p[2] && e + 3 <= fin && e[0] >= 3 && e + e[0] <= fin; ++c, e += e[0]) {
      mot_imprime(e[1], e[2]);
      bool valeur = e[0] > 3 && (e[3] < 0 ? e[0] >= 5 : e[3] >= 4 && e[3] <= e[0] - 3);
      if (valeur && etat(A_EDI) >= 1) {
        std::putchar('(');
        imprimer(e + 3, nullptr);
        std::fputs(") ", stdout);
      }
    }
    std::putchar('\n');
    p += p[0] > 0 ? p[0] : 2;
  }
}

}  // namespace

void invite_rappel() { rappel_empilement(); }
LectureConsole lecture_console;

namespace {
struct Transitoire {
  Objet* objet = nullptr;
  mot* ligne = nullptr;
};

// The line's object and Bloc live in the arena: the compiler may write
// their addresses into words.
bool prepare(Transitoire& t, std::size_t octets) {
  mot n = long_chaine(octets + 2);
  if (n < MOTS_LIGNE) n = MOTS_LIGNE;
  t.ligne = bloc_alloue(n);
  t.objet = static_cast<Objet*>(tas::alloue(sizeof(Objet)));
  if (!t.ligne || !t.objet) return false;
  t.ligne[1] = BLOC_LIGNE;
  t.ligne[2] = 1;
  t.ligne[3] = 1;
  *t.objet = Objet{};
  t.objet->type = OBJ_LIGNE;
  t.objet->donnees = t.ligne;
  return true;
}

void libere(Transitoire& t) {
  if (t.objet) {
    bloc_libere(t.objet->code);
    tas::libere(t.objet);
  }
  bloc_libere(t.ligne);
  t = Transitoire{};
}

// Compiles and links the transient: 1; 0 when the compiler refused the
// text; the link's result when it failed.
int compile(Transitoire& t) {
  bloc_libere(t.objet->code);
  t.objet->code = nullptr;
  if (compiler(t.objet) < 1) return 0;
  int r = lier(t.objet);
  return r < 0 ? r : 1;
}

// A line run at the top level, as the shell would after a reset.
void remise_a_zero() {
  sh.arret = false;
  interp.ligne = 0;
  interp.fonction = nullptr;
  cadre = Cadre{};
  piles_reset();
  int n = 0;
  if (mot_entree(0, A_CONT)) {
    reel* v = mot_valeur(0, A_CONT, &n);
    if (v && n > 0) v[0] = 0;
  }
}

// The next word of a launch or loop text; the index moves on when a blank
// follows the word and goes back to the start otherwise.
std::string mot_suivant(const std::string& texte, std::size_t& i) {
  std::size_t d = texte.find_first_not_of(" \t", i < texte.size() ? i : 0);
  if (d == std::string::npos) {
    i = 0;
    return {};
  }
  std::size_t f = texte.find_first_of(" \t", d);
  std::string m = texte.substr(d, f == std::string::npos ? std::string::npos : f - d);
  i = f == std::string::npos || texte.find_first_not_of(" \t", f) == std::string::npos ? 0 : f;
  return m;
}

void lance(const std::string& nom) {
  if (nom.empty()) return;
  if (!dem.cle_code.empty()) {
    // The function is first read from its file with the decoding key.
    std::string l = std::string(mot_nom(0, A_LIRE)) + " " + mot_nom(0, A_FONC) + "(\"" + nom + "\") " +
                    mot_nom(0, A_COD) + "(\"" + dem.cle_code + "\")";
    remise_a_zero();
    execute_ligne(l.c_str());
  }
  remise_a_zero();
  execute_ligne(nom.find('(') == std::string::npos ? (nom + "()").c_str() : nom.c_str());
}
}  // namespace

int execute_ligne(const char* texte) {
  Transitoire t;
  std::size_t n = std::strlen(texte);
  if (!prepare(t, n)) {
    libere(t);
    return ECHEC;
  }
  char* s = bloc_texte(t.ligne);
  s[0] = '{';
  std::memcpy(s + 1, texte, n);
  s[n + 1] = '}';
  s[n + 2] = 0;
  int r = compile(t);
  if (r == 0) r = ECHEC;
  if (r == 1) {
    Objet* source = interp.source;
    if (!interp.fonction) interp.source = t.objet;
    r = executer(t.objet->code, piles.eva_haut);
    interp.source = source;
  }
  libere(t);
  return r;
}

int shell(int niveau, int prompt, mot* pile, int boucle) {
  if (sh.passes > 0) {
    --sh.passes;
    return 1;
  }
  if (boucle) sh.arret = false;
  Transitoire t;
  if (!prepare(t, OCTETS_LIGNE)) {
    libere(t);
    return ECHEC;
  }
  int sortie = 0;
  bool ajoutee = false, rappel = false;
  // The idle step's own call reads without waiting; the calls that its
  // line makes (a pause, a question) wait as at the console.
  bool dehors = lecture_console.non_bloquante;
  lecture_console.non_bloquante = false;
  for (;;) {
    if (dehors && !console_ligne_prete()) break;
    if (!(dehors && lecture_console.editeur)) {
      if (prompt) message(0, prompt);
      else {
        rappel_empilement();
        message(0, M_PROMPT);
      }
    }
    char* s = bloc_texte(t.ligne);
    s[0] = '{';
    bool reprise;
    int n = console_lit(s + 1, OCTETS_LIGNE - 2, &reprise);
    if (reprise) {
      sortie = ECHEC;
      break;
    }
    if (n < 0) {
      // The end of the console's input ends the program.
      std::fflush(stdout);
      std::exit(0);
    }
    const char* p = saute_blancs(s + 1);
    if (*p == static_cast<char>(dem.esc)) {
      sh.passes = std::isdigit(static_cast<unsigned char>(p[1])) ? std::atoi(p + 1) - 1 : 0;
      if (sh.passes < 0) sh.passes = 0;
      sortie = 1;
      break;
    }
    if (etat(A_PAS) == 2 && commence_par(p, A_SOR) && !*saute_blancs(p + std::strlen(mot_nom(0, A_SOR)))) {
      sh.arret = true;
      sortie = 1;
      break;
    }
    ajoutee = rappel = false;
    if (etat(A_HIS) > 0 && *p && !commence_par(p, A_HIS)) {
      const char* q = commence_par(p, A_EXEC) ? saute_blancs(p + std::strlen(mot_nom(0, A_EXEC))) : nullptr;
      if (q && *q == '(') q = saute_blancs(q + 1);
      if (q && std::isdigit(static_cast<unsigned char>(*q))) {
        rappel = true;
      } else {
        ajoute_historique(s + 1);
        ajoutee = true;
      }
    }
    std::strcat(s, "}");
    int c = compile(t);
    if (c < 1) {
      if (ajoutee) retire_derniere();
      ajoutee = false;
      if (c == 0) continue;  // a text that does not compile: the prompt again
      sortie = c;
      break;
    }
    if (niveau > 0) {
      remise_a_zero();
      pile = piles.eva_base;
    }
    Objet* source = interp.source;
    if (!interp.fonction) interp.source = t.objet;
    sortie = executer(t.objet->code, pile);
    interp.source = source;
    if (reprise_demandee) break;
    if (sortie < 0 && niveau > 0 && interp.mode_impression < 2) {
      if (ajoutee) retire_derniere();
      ajoutee = false;
      if (etat(A_CONT) == 0) continue;
    }
    if (sh.arret || !boucle) break;
  }
  if (sortie < 0 && ajoutee && !rappel) retire_derniere();
  libere(t);
  return sortie;
}

int histoire(int mode, mot* args) {
  // The numbers that select lines, if the argument has any.
  const reel* x = nullptr;
  long n = 0;
  if (args && args[4] > 3) {
    Valeur v;
    if (decrire(args + 7, &v) == 0 && v.type == BLOC_REEL) {
      x = reels(v.donnees);
      n = v.n;
    }
  }
  if (!x) {
    int nb = 0;
    reel* page = mot_entree(0, A_EDI) ? mot_valeur(0, A_EDI, &nb) : nullptr;
    long longueur = page && nb > 1 && page[1] > 0 ? entier_sature(page[1]) : 24;
    mot* h = texte_historique();
    const char* t = h ? bloc_texte(h) : "";
    for (long k = 1, lignes = 0; *t; ++k) {
      const char* f = std::strchr(t, '\n');
      std::size_t lg = f ? static_cast<std::size_t>(f - t) : std::strlen(t);
      std::printf("%ld\t%.*s\n", k, static_cast<int>(lg), t);
      t += lg + (f ? 1 : 0);
      if (++lignes >= longueur && *t) {
        lignes = 0;
        if (pause_page('q') == 0) break;
      }
    }
    std::fflush(stdout);
    return 0;
  }
  // Lines are copied first: running one may add to the history.
  std::string lignes[16];
  long m = n < 16 ? n : 16;
  for (long k = 0; k < m; ++k)
    if (!ligne_historique(entier_sature(x[k]), lignes[k])) {
      std::printf("%d: ", entier_sature(x[k]));
      message(0, M_VALEUR);
      return ECHEC;
    }
  for (long k = 0; k < m; ++k) {
    // his(n) passes each line through the line editor; exec(n) runs it.
    if (mode == 0) {
      int e = editer_ligne(lignes[k]);
      if (e < 0) return 0;
      if (e == 0) continue;
    }
    // The line's own failure was reported where it happened.
    if (execute_ligne(lignes[k].c_str()) < 0) return ECHEC_CLOS;
  }
  return 0;
}

bool listes_inactif() {
  if (!sh.lancement_fait) {
    sh.lancement_fait = true;
    if (!dem.fonction_lancement.empty()) {
      std::size_t i = 0;
      lance(mot_suivant(dem.fonction_lancement, i));
      return true;
    }
  }
  if (!dem.fonction_boucle.empty()) {
    lance(mot_suivant(dem.fonction_boucle, sh.mot_boucle));
    return true;
  }
  return false;
}

void shell_inactif() {
  if (!listes_inactif()) shell(1, 0, piles.eva_base, 0);
}

void shell_console() {
  if (!sh.lancement_fait) {
    sh.lancement_fait = true;
    const std::string liste = dem.fonction_lancement;
    std::size_t i = 0;
    do {
      lance(mot_suivant(liste, i));
      if (reprise_demandee) return;  // the menu's restart ends the list
    } while (i != 0);
    return;
  }
  shell(1, 0, piles.eva_base, 0);
}
