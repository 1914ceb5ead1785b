// A reduced walker of linked code for the tests (see marche_essai.cpp).
#pragma once
#include <map>
#include <string>

#include "core/bloc.h"
#include "core/objet.h"

// Walks a linked block; globals live in the map; "$" prints to the result.
std::string marche(const mot* code, std::map<const Objet*, float>& globaux, int max_pas = 100000);
float globale(const std::map<const Objet*, float>& g, const char* nom);
