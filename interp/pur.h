// Functions that only compute on scalars, run on floats without frames.
//
// A function whose reachable statements are only `si (E)` heads, jumps,
// assignments of its locals `V = (E)` and `retour (E)`, where every E is
// made of constants, its locals, the four operations, comparisons, the
// built-ins on one scalar (sin, abs, ...), and calls of such functions with
// as many arguments as they have formals, changes
// nothing but its own value. It is translated once into a small tree, then
// into a flat list of operations on float registers, and run without
// frames. A run that meets anything that is not plain (a division
// that has to report, a local read before it is written, a retour without
// value, the machine stack near its end, an interrupt) gives the whole
// outermost call up: that call then runs again the general way from its
// start and does and says all that this way always does. Nothing was
// written before, so the two runs cannot be told apart.
//
// Invariants: a translation belongs to one generation of the function table
// and to the code block it was made from. Nothing a run does changes the
// functions, so the outermost call checks, once, the code of every
// translation the run may enter; inner calls check only the interrupt and
// the stack limits. Translations do not move once built.
#pragma once
#include "interp/interne.h"

struct Pur;

// The translation of the function f, or null when it is not of that kind
// (or the general way is asked for).
Pur* pur_de(Objet* f);

// Runs the call block `appel` (arguments behind its four-word header) of a
// translated function: its value, or false with nothing done when the
// arguments are not as many scalars as the formals or the run gave up.
bool pur_appel(const Pur* p, const mot* appel, float* valeur);
