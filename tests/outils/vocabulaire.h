// The bundled keywords and messages loaded as start-up loads them, for the
// tests and benchmarks that call command handlers without a whole process.
#pragma once
#include "core/bloc.h"
#include "core/message.h"
#include "startup/startup.h"

inline void vocabulaire_charge() {
  tas::init();
  kom_charge(ORVANE_SOURCE "/env/koma.h", 0);
  kom_charge(ORVANE_SOURCE "/env/komb.h", 1);
  mes_charge(ORVANE_SOURCE "/env/mesa.h", 0);
  mes_charge(ORVANE_SOURCE "/env/mesb.h", 1);
  messages.charges = true;
}
