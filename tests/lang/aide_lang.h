// Shared by the tests of the language folder: a small vocabulary whose
// keywords stand at the ordinals the compiler knows, message texts that say
// their own number ("M66"), and a readable form of compiled items.
#pragma once
#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"

// Fresh pools, keyword tables and message tables; the front end's state back
// to its start.
void prepare_lang();
// A line as the shell hands it: "{" text "}" in a transient Objet.
Objet* ligne(const std::string& texte);
// A function Objet bearing its text, as the store makes it.
Objet* fonction(const std::string& texte);
// Compiles and gives what was printed; *r gets the result.
std::string compile(Objet* o, int* r = nullptr);
std::string lie(Objet* o, int* r = nullptr);
// The items of a code block, one word each: "(" "vol" "1" ... with
// variables as g:x (global), l:x (local), s:x (static), @ for references.
std::vector<std::string> items(const mot* code);
std::string texte_items(const mot* code);  // the same, blank-separated, no NOP
// The words of the items, without the header and the symbol run.
std::vector<mot> mots_items(const mot* code);
mot mot_cle(int env, int ord);  // arena word of a keyword record
int ord_b(const char* nom);     // ordinal in list "b" of a test spelling
