// How common units are in ordinary text: estimates by which scans and start finders are chosen.
//
// They decide about speed only. A text in which the estimates are wrong is searched more slowly, with the
// same matches. Shares are between 0 and 1; those of sets are sums over their units.
#pragma once

#include "regexp/units/unit_set.h"

/// The share of the units of ordinary text that are this one.
double unitLikelihood(char16_t unit);
/// The share of the units of a set of ASCII units, given by its bits below 0x40 and those up to 0x7F.
double asciiLikelihood(std::uint64_t low, std::uint64_t high);
/// The share of the units of the set. Quick for the classes that escapes name, whose shares are kept.
double setLikelihood(const RE_Unit_Set& set);
/// The share of all units from 0x100 on together. Sets that hold any of them count as holding all.
inline constexpr double beyondLatinLikelihood = 0.02;
