// The keyword ordinals that more than one folder names: the contract with
// the vocabulary files (env/koma.h, env/komb.h), one definition each. An
// ordinal that only one folder uses is named in that folder's header.
#pragma once

constexpr int A_LIB = 34;   // state below 1: no Bloc is released; in generer a mesh precision
constexpr int A_EDI = 36;   // verbosity state; values: page width and length
constexpr int A_OPT = 50;   // tolerance of ~; an option word of interaction
constexpr int A_EXEC = 69;  // runs a text, or a line of the history

// Every ordinal that the code names is below this. The state tables of a
// vocabulary always reach it, so that a keyword file cut short leaves the
// missing keywords off (state 0) rather than letting a read go past the
// table.
constexpr int ORDINAUX_CODE = 256;
