// All rows in the order in which they are run. Rows of a group have to be together, as a table is made of
// neighbours.
#include "bench/workloads/groups.h"

#include <iterator>
#include <utility>

namespace corvane_bench {

std::vector<Workload> allWorkloads() {
    Rows all;
    for (Rows (*rows)() : {literals, dotStar, alternations, classes, structure, everyday, patternSets,
                           catastrophic, compiling, firstSearches, large}) {
        Rows some = rows();
        all.insert(all.end(), std::make_move_iterator(some.begin()), std::make_move_iterator(some.end()));
    }
    return all;
}

}  // namespace corvane_bench
