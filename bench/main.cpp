// The benchmarks' command line.
//
// Answers are checked before times are taken, and a wrong answer gets no time: a fast wrong answer is no
// result. With `--check-only` and `--answers` nothing is measured, and the exit status says whether our own
// answers are right.
#include "bench/engines/engines.h"
#include "bench/machine.h"
#include "bench/report.h"
#include "bench/runner.h"
#include "bench/workload.h"

#include <benchmark/benchmark.h>

#include <boost/program_options.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <string>

namespace {

using namespace corvane_bench;
namespace po = boost::program_options;

/// Without a word about engines: the ones that ours is held against every day.
constexpr const char* QUICK_ENGINES = "corvane.*|PCRE2.*";

struct Choice {
    std::string filter;
    std::string engines;
    bool quick = false;
    bool checkOnly = false;
    bool answers = false;
    bool record = false;
    bool help = false;
};

// The options of a call, with what they imply for each other.
Choice readCommandLine(int argc, char** argv) {
    Choice choice;
    po::options_description options("Options of the benchmarks");
    options.add_options()("filter", po::value(&choice.filter),
                          "only rows whose GROUP/NAME has a match of this")(
        "engines", po::value(&choice.engines), "only peers whose name is a match of this")(
        "quick", po::bool_switch(&choice.quick),
        "short repetitions; PCRE2 as the only peer unless told otherwise")(
        "check-only", po::bool_switch(&choice.checkOnly), "check our answers, measure nothing")(
        "answers", po::bool_switch(&choice.answers), "show the answers of all engines, measure nothing")(
        "record", po::bool_switch(&choice.record), "write the page to bench/record, as a full run does")(
        "help", po::bool_switch(&choice.help), "show this");
    po::variables_map values;
    po::store(po::parse_command_line(argc, argv, options), values);
    po::notify(values);
    if (choice.help) {
        std::cout << options;
    }
    if (choice.engines.empty()) {
        choice.engines = choice.checkOnly ? "corvane" : choice.quick ? QUICK_ENGINES : ".*";
    }
    // A full run is recorded without being told, a partial one is not.
    choice.record |= choice.filter.empty() && choice.engines == ".*" && !choice.quick && !choice.answers;
    return choice;
}

// Ours always, in front; the filter is about the peers.
Engines chosenEngines(const Choice& choice) {
    Engines engines = allEngines();
    const std::regex wanted(choice.engines, std::regex::icase);
    engines.erase(
        std::remove_if(engines.begin() + 1, engines.end(),
                       [&](const auto& engine) { return !std::regex_match(engine->name(), wanted); }),
        engines.end());
    return engines;
}

// Rows of which "GROUP/NAME" has a match of the filter.
std::vector<Workload> chosenWorkloads(const Choice& choice) {
    std::vector<Workload> workloads = allWorkloads();
    const std::regex wanted(choice.filter, std::regex::icase);
    std::erase_if(workloads,
                  [&](const Workload& workload) { return !std::regex_search(workload.fullName(), wanted); });
    return workloads;
}

/// Whether our own answers are right.
bool check(const std::vector<Workload>& workloads, const Engines& engines, bool showAll) {
    bool right = true;
    for (const Workload& workload : workloads) {
        const Row row = checkAnswers(workload, engines);
        const bool rightHere = row.cells.front().outcome == Outcome::timed;
        if (showAll || !rightHere) {
            std::cout << describeAnswers(row, engines) << std::endl;
        }
        right &= rightHere;
    }
    return right;
}

// A page for each day; a second run of a day replaces the first.
void write(const std::string& report) {
    std::filesystem::create_directories(CORVANE_BENCH_RECORD);
    const std::string path = CORVANE_BENCH_RECORD "/" + today() + ".md";
    std::ofstream(path) << report;
    std::cerr << "written to " << path << "\n";
}

// Row by row, each with all engines: a run that is broken off has complete rows.
void measureAll(const std::vector<Workload>& workloads, const Engines& engines, const Choice& choice) {
    // Seconds of one repetition, and repetitions. A median of five keeps one noisy moment out.
    const Settings settings = choice.quick ? Settings{0.01, 3} : Settings{0.02, 5};
    std::vector<Row> rows;
    for (const Workload& workload : workloads) {
        rows.push_back(checkAnswers(workload, engines));
        measure(rows.back(), engines, settings);
        std::cerr << summarize(rows.back(), engines) << std::endl;
    }
    const std::string report = writeReport(rows, engines);
    std::cout << report;
    if (choice.record) {
        write(report);
    }
}

int run(int argc, char** argv) {
    const Choice choice = readCommandLine(argc, argv);
    if (choice.help) {
        return 0;
    }
    const std::vector<Workload> workloads = chosenWorkloads(choice);
    const Engines engines = chosenEngines(choice);
    if (choice.checkOnly || choice.answers) {
        return check(workloads, engines, choice.answers) ? 0 : 1;
    }
    measureAll(workloads, engines, choice);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    char program[] = "corvane_bench";
    // The library runs the repetitions of all engines in random order, so that a slow moment hits none alone.
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char* forLibrary[] = {program, interleaving, nullptr};
    int count = 2;
    benchmark::Initialize(&count, forLibrary);
    try {
        return run(argc, argv);
    } catch (const std::exception& problem) {
        std::cerr << "corvane_bench: " << problem.what() << "\n";
        return 2;
    }
}
