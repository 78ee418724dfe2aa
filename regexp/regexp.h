// SPDX-License-Identifier: BSD-3-Clause
//
// What most applications need: patterns, their matches, replacements, and the host's side of both. Needs the standard
// library alone.
//
// Beside it are limits for searches and for compiling (regexp/base/search_limits.h, regexp/base/compile_limits.h), the
// compile options (regexp/options/compile_options.h, which needs Boost.Program_options), the state of a search for callers
// of `RE_Tree::match_bool` and for observers (regexp/state/search_info.h), and the export of graphs
// (regexp/nodes/graph_export.h).
//
//     #include "regexp/regexp.h"
//
//     RE_Tree tree(u"(\\w+)\\s+Holmes", false);
//     if (std::unique_ptr<RE_Results> match{tree.match(text, 0)}) {
//         // match->matchStart, match->matchLength, match->tokens->get(0)
//     }
#pragma once

#include "regexp/base/flags.h"
#include "regexp/base/search_report.h"
#include "regexp/base/tuning.h"
#include "regexp/builder/algebra.h"
#include "regexp/eval/context.h"
#include "regexp/eval/evaluation_inputs.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/eval/evaluation_tokens.h"
#include "regexp/eval/warning.h"
#include "regexp/eval/warning_text.h"
#include "regexp/find_all.h"
#include "regexp/inspect/growth.h"
#include "regexp/pattern_set.h"
#include "regexp/replace/replace.h"
#include "regexp/replace/replace_nodes.h"
#include "regexp/search/observer.h"
#include "regexp/seek/seek_table.h"
#include "regexp/simple_match.h"
#include "regexp/state/profile.h"
#include "regexp/state/results.h"
#include "regexp/state/token_stack.h"
#include "regexp/translate/translate.h"
#include "regexp/tree.h"
#include "regexp/version.h"
