// How common units are in ordinary text: estimates by which scans are chosen. They decide about speed only.
#pragma once

#include "regexp/units/unit_set.h"

/// The share of the units of ordinary text that are this one.
double unitLikelihood(char16_t unit);
/// The share of those that are in the set of units below 0x40, and of those below 0x80, of these bits.
double asciiLikelihood(std::uint64_t low, std::uint64_t high);
/// The share of those that are in the set.
double setLikelihood(const RE_Unit_Set& set);
/// The share of units from 0x100 on.
inline constexpr double beyondLatinLikelihood = 0.02;
