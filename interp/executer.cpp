// The statement walker of one code block: control flow over the offsets
// that link put in the heads of si, tantque, pour and selon.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "interp/interne.h"
#include "interp/ajout.h"
#include "interp/rapide.h"

namespace {
// The limit, the step and the variable of a counting pour belong to one run
// of the function: a recursive call walks the same head with its own.
//
// The running loops of one run form a stack in the order of their nesting:
// a loop's body is the words from its head to its exit, so a loop whose
// body does not hold a head being entered is over (left by its end, sortir
// or a jump) and leaves the stack. The stack is thus as deep as the
// nesting, whatever the number of loops in the function, and nothing that
// is still running is ever dropped: it grows past its first 16 entries.
struct Boucle {
  mot* tete;
  Objet* variable;
  float limite, pas;
};
inline bool contient(const mot* tete, const mot* p) { return p > tete && p < tete + tete[9]; }

struct Boucles {
  int n = 0, cap = 16;
  Boucle* b = locales;
  Boucle locales[16];
  std::unique_ptr<Boucle[]> tas;

  Boucles() = default;
  Boucles(const Boucles&) = delete;
  Boucles& operator=(const Boucles&) = delete;

  // The loop of that head, the loops inside it being over; null if it is
  // not running in this run.
  Boucle* cherche(mot* tete) {
    for (int k = n - 1; k >= 0; --k)
      if (b[k].tete == tete) {
        n = k + 1;
        return &b[k];
      }
    return nullptr;
  }
  // Entering the head: the loops that do not hold it are over.
  Boucle* ajoute(mot* tete) {
    while (n > 0 && b[n - 1].tete != tete && !contient(b[n - 1].tete, tete)) --n;
    if (n > 0 && b[n - 1].tete == tete) return &b[n - 1];
    if (n == cap) {
      auto plus = std::make_unique<Boucle[]>(2 * static_cast<std::size_t>(cap));
      std::copy(b, b + n, plus.get());
      tas = std::move(plus);
      b = tas.get();
      cap *= 2;
    }
    b[n] = Boucle{tete, nullptr, 0, 1};
    return &b[n++];
  }
};

int mauvais_pour() {
  message(0, M_POUR_EXEC);
  return ECHEC;
}

// The first float of a group's value.
int premier_reel(mot* groupe, mot* base, float* x) {
  int etat = 0;
  if (!evaluer_groupe(groupe, base, &etat)) return interp.code;
  Valeur v;
  if (decrire(base, &v) < 0) return ECHEC;
  if (v.type != BLOC_REEL || v.n < 1) return mauvais_pour();
  *x = reels(v.donnees)[0];
  return 0;
}

// Loop head of the counting pour: the start assigns the variable, limit and
// step are evaluated once.
int pour_entree(mot* h, mot* resultat, Boucles& boucles) {
  mot* debut = h + h[2];
  mot* v = debut + 2;
  if (debut[0] != IT_OP || (v[0] != IT_LOCAL && v[0] != IT_STATIQUE && v[0] != IT_GLOBAL))
    return mauvais_pour();
  int etat = 0;
  if (!evaluer_groupe(debut, resultat, &etat)) return interp.code;
  Objet* var = variable_de(v);
  if (!var) return ECHEC;
  Boucle* b = boucles.ajoute(h);
  b->variable = var;
  int r = premier_reel(h + h[4], resultat, &b->limite);
  if (r < 0) return r;
  b->pas = 1.0f;
  if (h[6]) {
    r = premier_reel(h + h[6], resultat, &b->pas);
    if (r < 0) return r;
  }
  h[3] = ptr_vers_mot(var);
  ecrit_reel(h + 5, b->limite);
  ecrit_reel(h + 7, b->pas);
  return 0;
}

// The step and test of a running counting pour on its variable: 1 past the
// limit, 0 to go on, -1 when the variable holds no number.
inline int pas_boucle(const Boucle* b, bool increment) {
  mot* x = b->variable ? b->variable->donnees : nullptr;
  if (!x || x[0] <= 4 || x[1] != BLOC_REEL) return -1;
  reel* e = reels(x + 4);
  if (increment) *e += b->pas;
  const float v = *e;
  return (b->pas > 0 && v > b->limite) || (b->pas < 0 && v < b->limite);
}

// The test of the counting pour: the next item, or null after failure.
mot* pour_test(mot* h, Boucles& boucles, bool increment) {
  Boucle* b = boucles.cherche(h);
  Boucle secours;
  if (!b) {
    // Entered by a jump from outside: the head keeps the last limit and
    // step; the variable is this run's own, never the record another run
    // left in the head (a recursive call's frame is gone by now).
    secours = {h, variable_de(h + h[2] + 2), lit_reel(h + 5), lit_reel(h + 7)};
    b = &secours;
  }
  int fin = pas_boucle(b, increment);
  if (fin < 0) {
    mauvais_pour();
    return nullptr;
  }
  return h + (fin ? h[9] : h[8]);
}

// ---- a counting pour over one scalar statement ------------------------------
// The statement of a pour's body that holds it alone, with line marks and
// separators around it; null otherwise. `ligne` gets the body's last line
// mark, 0 without one.
mot* seule_instruction(mot* h, mot* ligne) {
  mot* const f = h + h[9] - 2;  // the jump back onto the head
  if (f[0] != IT_SAUT) return nullptr;
  mot* s = nullptr;
  *ligne = 0;
  for (mot* p = h + h[8]; p < f;) {
    if (p[0] == IT_LIGNE) {
      *ligne = p[1];
      p += 2;
      continue;
    }
    if (p[0] != IT_OP) return nullptr;
    mot op = p[1];
    if (op == ';' || op == OP_NOP || op == OP_DEBUT || op == OP_FIN || op == '{' || op == '}') {
      p += 2;
      continue;
    }
    if (s || op != '(') return nullptr;
    s = p;
    p = groupe_suivant(p);
    if (p > f) return nullptr;
  }
  return s;
}

// A counting pour whose body is one such statement turns here, without the
// walk, with its step and test inline. The word of the interrupt and the
// other flags is read at every turn, so Ctrl-C stops it as any loop. Any
// turn that is not plain (a value that is not a scalar, a failure to
// report, a loop variable replaced) goes back to the walk at the point
// where it stands, which then does and says what it always does. The next
// item to walk.
template <bool ELEMENT, class F>
mot* tours(mot* h, Boucle* b, const Rapide& r, float* valeur, bool* tourne, F attention) {
  for (;;) {
    if (attention() || !rapide_tour<ELEMENT>(r, valeur)) return h + h[8];
    *tourne = true;
    ++interp.passes;
    const int fin = pas_boucle(b, true);
    if (fin < 0) return h + h[9] - 2;  // the walk's step says what is wrong
    if (fin) return h + h[9];
  }
}

// The operator of ( V = ( A op B ) ), fixed for the loop when it is one of
// the frequent ones (0: any, through calcul_scalaire).
template <mot OP>
TOUJOURS_EN_LIGNE bool calcul(mot op, float a, float b, float* r) {
  if constexpr (OP == '+') *r = a + b;
  else if constexpr (OP == '-') *r = a - b;
  else if constexpr (OP == '*') *r = a * b;
  else return calcul_scalaire(op, a, b, r);
  return true;
}

// The turns of ( V = ( A op B ) ), as tours<false> makes them, with the
// places of the operands, the step and the limit held for the loop. Inside
// the turns only the interrupt and the restart can change: the step mode
// and the debug options change by statements, and none runs here. The
// number of turns made goes to `nb`.
template <mot OP, bool FN>
[[gnu::noinline]] mot* tours_scalaires(mot* h, Boucle* b, const Rapide& r, float* valeur, long* nb) {
  using rapide_detail::scalaire;
  mot* const* const pa = r.a.bloc;
  mot* const* const pb = r.b.bloc;
  mot* const* const pc = r.cible.bloc;
  mot* const* const pv = &b->variable->donnees;
  const mot op = r.op;
  const int fa = r.a.fn, fb = r.b.fn;
  const float pas = b->pas, limite = b->limite;
  float v = 0;
  long n = 0;
  mot* suite;
  for (;;) {
    float x, y;
    mot* c;
    if ((interrompu | reprise_demandee) || !scalaire(*pa, &x) || !scalaire(*pb, &y) ||
        (FN && ((fa >= 0 && !maths_scalaire(fa, x, &x)) || (fb >= 0 && !maths_scalaire(fb, y, &y)))) ||
        !calcul<OP>(op, x, y, &v) || !(c = *pc) || c == bloc_nil || c[0] != 5 || c[1] != BLOC_REEL) {
      suite = h + h[8];
      break;
    }
    ecrit_reel(c + 4, v);
    *valeur = v;
    ++n;
    mot* w = *pv;
    if (!w || w[0] <= 4 || w[1] != BLOC_REEL) {
      suite = h + h[9] - 2;  // the walk's step says what is wrong
      break;
    }
    reel* e = reels(w + 4);
    const float i = *e += pas;
    if ((pas > 0 && i > limite) || (pas < 0 && i < limite)) {
      suite = h + h[9];
      break;
    }
  }
  *nb = n;
  return suite;
}

// Where an operand of ( V = ( A op B ) ) finds its value during the turns
// of tours_registres: the target, the loop variable, or a block that no turn
// writes, read once.
enum Source : std::uint8_t { DANS_CIBLE, DANS_VARIABLE, FIXE };

TOUJOURS_EN_LIGNE bool source(const mot* bloc, const mot* cible, const mot* variable, Source* s, float* k) {
  if (bloc == cible) {
    *s = DANS_CIBLE;
    return true;
  }
  if (bloc == variable) {
    *s = DANS_VARIABLE;
    return variable[0] == 5;  // a loop variable of several floats is no scalar
  }
  *s = FIXE;
  return rapide_detail::scalaire(bloc, k);
}

TOUJOURS_EN_LIGNE float choisit(Source s, float cible, float variable, float k) {
  return s == DANS_CIBLE ? cible : s == DANS_VARIABLE ? variable : k;
}

// The turns of tours_scalaires with the values held in registers. A turn
// writes the target's float and the loop variable's in place, and nothing
// else runs between turns (only the interrupt and restart words can change,
// from the signal): so the blocks stay where they are and hold what the
// registers hold, and the next turn need not read them back from memory,
// which made each turn wait for its own stores. Null when the blocks are
// not of that kind at the start (the loop then takes tours_scalaires, whose
// first turn says so); otherwise as tours_scalaires.
template <mot OP, bool FN>
[[gnu::noinline]] mot* tours_registres(mot* h, Boucle* b, const Rapide& r, float* valeur, long* nb) {
  mot* const c = *r.cible.bloc;
  mot* const w = b->variable->donnees;
  if (!c || c == bloc_nil || c[0] != 5 || c[1] != BLOC_REEL || !w || w[0] <= 4 || w[1] != BLOC_REEL || c == w)
    return nullptr;
  Source sa, sb;
  float ka = 0, kb = 0;
  if (!source(*r.a.bloc, c, w, &sa, &ka) || !source(*r.b.bloc, c, w, &sb, &kb)) return nullptr;
  const mot op = r.op;
  const int fa = r.a.fn, fb = r.b.fn;
  const float pas = b->pas, limite = b->limite;
  reel* const e = reels(w + 4);
  float v = lit_reel(c + 4), i = *e;
  long n = 0;
  mot* suite;
  for (;;) {
    float x = choisit(sa, v, i, ka), y = choisit(sb, v, i, kb), z;
    if ((interrompu | reprise_demandee) ||
        (FN && ((fa >= 0 && !maths_scalaire(fa, x, &x)) || (fb >= 0 && !maths_scalaire(fb, y, &y)))) ||
        !calcul<OP>(op, x, y, &z)) {
      suite = h + h[8];
      break;
    }
    v = z;
    ecrit_reel(c + 4, v);
    ++n;
    i += pas;
    *e = i;
    if ((pas > 0 && i > limite) || (pas < 0 && i < limite)) {
      suite = h + h[9];
      break;
    }
  }
  if (n) *valeur = v;
  *nb = n;
  return suite;
}

template <mot OP, bool FN>
mot* tours_(mot* h, Boucle* b, const Rapide& r, float* valeur, long* nb) {
  if (mot* s = tours_registres<OP, FN>(h, b, r, valeur, nb)) return s;
  return tours_scalaires<OP, FN>(h, b, r, valeur, nb);
}

// The turns of s = s, t (see ajout.h), the step inline as in
// tours_scalaires; the interrupt word is read at every turn.
template <class F>
[[gnu::noinline]] mot* tours_ajout(mot* h, Boucle* b, Ajouts& a, long* nb, F attention) {
  mot* const* const pv = &b->variable->donnees;
  const float pas = b->pas, limite = b->limite;
  long n = 0;
  mot* suite;
  for (;;) {
    if (attention() || !ajouts_tour(a)) {
      suite = h + h[8];
      break;
    }
    ++n;
    mot* w = *pv;
    if (!w || w[0] <= 4 || w[1] != BLOC_REEL) {
      suite = h + h[9] - 2;  // the walk's step says what is wrong
      break;
    }
    const float i = *reels(w + 4) += pas;
    if ((pas > 0 && i > limite) || (pas < 0 && i < limite)) {
      suite = h + h[9];
      break;
    }
  }
  *nb = n;
  return suite;
}

template <class F>
mot* boucle_rapide(mot* h, Boucle* b, mot* s, mot ligne, mot* resultat, F attention) {
  if (forme_ajout(s)) {
    Ajouts a;
    if (!b->variable || !ajouts_prepare(a, s, resultat)) return h + h[8];
    interp.instruction = s;
    long n = 0;
    mot* suite = tours_ajout(h, b, a, &n, attention);
    interp.passes += static_cast<unsigned long>(n);
    if (n > 0) {
      if (ligne) interp.ligne = ligne;
      ajouts_fin(a, resultat);
    }
    return suite;
  }
  Rapide r;
  if (!rapide_prepare(r, s)) return h + h[8];
  interp.instruction = s;
  float valeur = 0;
  bool tourne = false;
  mot* suite;
  if (!r.element && b->variable && !attention()) {
    long n = 0;
    if (r.a.fn >= 0 || r.b.fn >= 0) suite = tours_<0, true>(h, b, r, &valeur, &n);
    else if (r.op == '+') suite = tours_<'+', false>(h, b, r, &valeur, &n);
    else if (r.op == '-') suite = tours_<'-', false>(h, b, r, &valeur, &n);
    else if (r.op == '*') suite = tours_<'*', false>(h, b, r, &valeur, &n);
    else suite = tours_<0, false>(h, b, r, &valeur, &n);
    interp.passes += static_cast<unsigned long>(n);
    tourne = n > 0;
  } else {
    suite = r.element ? tours<true>(h, b, r, &valeur, &tourne, attention)
                      : tours<false>(h, b, r, &valeur, &tourne, attention);
  }
  if (tourne) {
    // What the walk leaves behind the turns it did not make.
    if (ligne) interp.ligne = ligne;
    ecrit_scalaire(resultat, valeur);
    piles.eva_haut = resultat + 5;
  }
  return suite;
}

float valeur_cas(mot w) {
  // A character constant is kept as its code, any other as float bits.
  return w >= 0 && w < 0x800000 ? static_cast<float>(w) : std::bit_cast<float>(w);
}

bool memes_valeurs(mot* a, mot* b) {
  Valeur x, y;
  if (decrire(a, &x) < 0 || decrire(b, &y) < 0) return false;
  if (x.type == BLOC_NIL && y.type == BLOC_NIL) return true;
  if (x.type != y.type || x.n != y.n) return false;
  if (x.type == BLOC_REEL) {
    for (long k = 0; k < x.n; ++k)
      if (reels(x.donnees)[k] != reels(y.donnees)[k]) return false;
    return true;
  }
  if (x.type == BLOC_CHAINE) return std::memcmp(x.donnees, y.donnees, static_cast<std::size_t>(x.n)) == 0;
  return false;
}

// selon: the selector group stands behind the table; the value of the
// selector stays as the result.
mot* selon(mot* h, mot* resultat) {
  int etat = 0;
  if (!evaluer_groupe(h + h[0], resultat, &etat)) return nullptr;
  if (resultat[0] < 0 && copie_valeur(resultat, piles.eva_limite) < 0) return nullptr;
  mot n = h[2];
  mot* table = h + 3;
  mot* haut = resultat + taille_item(resultat);
  Valeur s;
  if (decrire(resultat, &s) < 0) return nullptr;
  for (mot k = 0; k + 1 < n; ++k) {
    mot w0 = table[2 * k], w1 = table[2 * k + 1];
    if (w0 < 1) {
      if (!evaluer_groupe(h + w1, haut, &etat)) return nullptr;
      bool egal = memes_valeurs(resultat, haut);
      piles.eva_haut = haut;
      if (egal) return h - w0;
    } else if (s.type == BLOC_REEL && s.n == 1 && reels(s.donnees)[0] == valeur_cas(w1)) {
      return h + w0;
    }
  }
  return h + table[2 * (n - 1)];
}

// A sortir that link left unresolved stands directly in a tantque body:
// the loop's jump back to its head is the first backward jump ahead, and
// the walk goes on behind that head's body.
mot* sortie_de_boucle(mot* p) {
  for (mot* q = p + 2; q[0] != 0; q += q[0] < 0 ? 2 : q[0]) {
    if (q[0] != IT_SAUT || q[1] >= 0) continue;
    mot* h = q + q[1];
    if (h >= p || h[0] <= 0) continue;
    if (h[1] == IT_SI || h[1] == IT_POUR3) return h + h[4];
    if (h[1] == IT_POUR) return h + h[9];
  }
  return p + 2;
}

// The failing statement is reported; the line in the running function
// comes first when there is one.
void rapporte(int code) {
  if (code == ECHEC_CLOS || reprise_demandee) return;
  if (code == PILE_PLEINE) message(0, M_EVALUATION);
  if (interp.fonction)
    std::printf("%s %d: ", nom_fonction(interp.fonction), ligne_fichier(interp.fonction, interp.ligne));
  echec_instruction();
}

// A failure where the text may go on: with cont off the next statement
// runs, and the failure is then told only by its own message and by a108,
// which the language can test; 108 would say that the run stopped. True
// when the walk stops; a called function's failure stops a statement, not
// a test.
bool rapporte_ou_continue(int code, bool test = false) {
  bool arret = etat_a(A_CONT) != 0 || reprise_demandee || (code == ECHEC_CLOS && !test);
  if (arret) {
    rapporte(code);
    return true;
  }
  if (code == PILE_PLEINE) message(0, M_EVALUATION);
  if (MotCle* m = mot_entree(0, A_ERR); m && m->nv > 0 && m->courant) ecrit_reel(m->courant + 4, -1.f);
  return false;
}
}  // namespace

int executer(mot* code, mot* resultat) {
  mot* p = code + 4;
  *resultat = 0;
  piles.eva_haut = resultat;
  Boucles boucles;
  mot* const pas = etats[0] ? etats[0] + A_PAS : nullptr;
  static const mot zero = 0;
  const mot* const pas_lu = pas ? pas : &zero;
  // The interrupt, the restart, the step mode and the debug options, read
  // together: anything but 0 sends the statement to the slow checks.
  const int lent = !interp.raccourcis;
  auto attention = [pas_lu, lent] { return interrompu | reprise_demandee | debug.drapeau | (*pas_lu == 1) | lent; };
  if (p[0] > 0 && p[1] == IT_NOM) p += p[0];
  for (;;) {
    // Separators and line marks are passed over first, so that the checks
    // below run once per statement.
    for (;; p += 2) {
      if (p[0] == IT_LIGNE) {
        if (*pas_lu != 2) interp.ligne = p[1];
        continue;
      }
      if (p[0] == IT_SAUT && p[1] < 0 && !attention()) {
        // The jump back onto a counting pour runs its step and test at
        // once. The word above is read at each turn, so that an empty body
        // still stops on Ctrl-C; with any of its flags up the jump and the
        // head are walked as two items, as the step mode and the item
        // listing show them.
        mot* h = p + p[1];
        if (h[0] > 0 && h[1] == IT_POUR) {
          mot* suite = pour_test(h, boucles, true);
          if (!suite) {
            rapporte(ECHEC);
            return ECHEC;
          }
          p = suite - 2;
          continue;
        }
        break;
      }
      if (p[0] != IT_OP) break;
      mot op = p[1];
      if (op != ';' && op != OP_NOP && op != OP_DEBUT && op != OP_FIN && op != '{' && op != '}') break;
    }
    if (__builtin_expect(attention(), 0)) {
      // The interrupt and the restart are seen at every statement.
      if (interrompu | reprise_demandee) {
        if (interrompu) menu_interruption();
        if (reprise_demandee) return ECHEC;
      }
      if (*pas_lu == 1 && pas_a_pas(code, p) < 0) return ECHEC;
      if (debug.drapeau != 0 && debug_option(0, A_LISTE_ITEMS)) lister_item(code, p);
    }
    ++interp.passes;
    mot w = p[0];
    mot* suite;
    if (w == IT_SAUT) {
      p += p[1];
      continue;
    }
    if (w < 0) {
      switch (w) {
        case IT_OP: {
          mot op = p[1];
          if (op == '(' || op == '[') break;
          if (op == OP_BOUCLE) {
            mot* h = p + 2;
            int r = pour_entree(h, resultat, boucles);
            if (r < 0) {
              rapporte(r);
              return ECHEC;
            }
            *resultat = 0;
            suite = pour_test(h, boucles, false);
            if (!suite) {
              rapporte(ECHEC);
              return ECHEC;
            }
            mot ligne;
            if (suite == h + h[8] && !attention() && place(resultat, 5))
              if (mot* s = seule_instruction(h, &ligne))
                if (Boucle* b = boucles.cherche(h)) suite = boucle_rapide(h, b, s, *pas_lu != 2 ? ligne : 0, resultat, attention);
            p = suite;
            continue;
          }
          p += 2;  // ; { } no-operation, body marks
          continue;
        }
        case IT_SAUT:
          p += p[1];
          continue;
        case IT_LIGNE:
          if (*pas_lu != 2) interp.ligne = p[1];
          p += 2;
          continue;
        case IT_FIN:
          goto fin;
        case IT_RC:
          std::putchar('\n');
          p += 2;
          continue;
        case IT_AIDE_MOT:
          aide_mot(static_cast<MotCle*>(mot_vers_ptr(p[1])));
          p += 2;
          continue;
        case IT_MOT:
          break;
        case IT_SORTIR:
          p = sortie_de_boucle(p);
          continue;
        default:
          p += 2;  // labels, cas, defaut
          continue;
      }
    } else if (w == 0) {
      goto fin;
    } else if (p[1] == IT_SI) {
      float x;
      int t = groupe_scalaire(p + p[2], &x) ? x != 0 : tester(p + p[2], resultat);
      if (t < 0) {
        if (rapporte_ou_continue(interp.code, true)) return ECHEC;
        t = 0;
      }
      *resultat = 0;
      p += t ? p[3] : p[4];
      continue;
    } else {
      switch (p[1]) {
        case IT_POUR:
          suite = pour_test(p, boucles, true);
          if (!suite) {
            rapporte(ECHEC);
            return ECHEC;
          }
          p = suite;
          continue;
        case IT_POUR3:
        case IT_SI: {
          float x;
          int t = groupe_scalaire(p + p[2], &x) ? x != 0 : tester(p + p[2], resultat);
          if (t < 0) {
            if (rapporte_ou_continue(interp.code, true)) return ECHEC;
            t = 0;
          }
          *resultat = 0;
          p += t ? p[3] : p[4];
          continue;
        }
        case IT_SELON:
          suite = selon(p, resultat);
          if (!suite) {
            rapporte(interp.code);
            return ECHEC;
          }
          p = suite;
          continue;
        case IT_AIDE:
        case IT_BRUT_ERR:
          break;
        default:
          p += w;
          continue;
      }
    }
    // A statement: a group, a bare phrase or a raw block.
    int etat = 0;
    if (w == IT_OP && p[1] == '(' && p[2] == IT_MOT && p[4] == IT_OP && p[5] == '(' &&
        p[3] == mot_retour()) {
      // (retour (v)): the value straight to the result, the walk ends; a
      // scalar operand needs no walk at all.
      float x;
      if (p[8] == IT_OP && p[9] == ')' && p[10] == IT_OP && p[11] == ')' && scalaire_item(p + 6, &x) &&
          place(resultat, 5)) {
        ecrit_scalaire(resultat, x);
        piles.eva_haut = resultat + 5;
        break;
      }
      suite = evaluer_groupe(p + 4, resultat, &etat);
      if (suite && suite[0] == IT_OP && suite[1] == ')') {
        if (resultat[0] < 0 && copie_valeur(resultat, piles.eva_limite) < 0) suite = nullptr;
        else break;
      } else if (suite) {
        // More follows: the phrase is made as construire_phrase would, and
        // the statement's walk goes on behind it.
        mot* q = suite;
        mot n = taille_item(resultat);
        if (!place(resultat, 7 + n)) {
          interp.code = PILE_PLEINE;
          suite = nullptr;
        } else {
          std::memmove(resultat + 7, resultat, static_cast<std::size_t>(n) * sizeof(mot));
          mot tete[7] = {7 + n, BLOC_PHRASE, 1, 0, 3 + n, 0, A_RETOUR};
          std::memcpy(resultat, tete, sizeof tete);
          suite = evaluer_suite(q, resultat, resultat + 7 + n, ')', &etat);
        }
      }
    } else if (w == IT_OP) {
      interp.instruction = p;
      suite = evaluer_groupe(p, resultat, &etat);
    } else if (w == IT_MOT) {
      suite = construire_phrase(p, resultat);
      if (suite) {
        int r = executer_phrase(resultat);
        if (r < 0) interp.code = r, suite = nullptr;
        else if (r == 2) etat = 2;
      }
    } else {
      std::memmove(resultat, p, static_cast<std::size_t>(w) * sizeof(mot));
      int r = evaluer_valeur(resultat, piles.eva_limite);
      suite = r < 0 ? (interp.code = r, nullptr) : p + w;
    }
    if (!suite) {
      if (rapporte_ou_continue(interp.code)) return ECHEC;
      // Errors do not stop the text: the next statement runs.
      *resultat = 0;
      p = w == IT_OP ? groupe_suivant(p) : p + (w > 0 ? w : 2);
      continue;
    }
    if (etat == 2) break;
    p = suite;
  }
fin:
  interp.resultat = resultat;
  return 0;
}

int tester(mot* groupe, mot* haut) {
  float r;
  if (groupe_scalaire(groupe, &r)) return r != 0;
  int etat = 0;
  if (!evaluer_groupe(groupe, haut, &etat)) return ECHEC;
  Valeur v;
  if (haut[0] == 0) return 1;
  if (decrire(haut, &v) < 0) {
    interp.code = ECHEC;
    return ECHEC;
  }
  if (v.type == BLOC_NIL) return 1;
  if (v.type != BLOC_REEL) {
    message(0, M_CONDITION);
    interp.code = ECHEC;
    return ECHEC;
  }
  const reel* x = reels(v.donnees);
  for (long k = 0; k < v.n; ++k)
    if (x[k] == 0) return 0;
  return 1;
}
