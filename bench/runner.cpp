// Checks answers and measures with Google Benchmark.
//
// The library measures functions that were registered by name; a row registers one for each engine, runs them
// all, and clears the list. Its own output is suppressed by the collector, which keeps the times.
#include "bench/runner.h"

#include "bench/everyday_patterns.h"
#include "bench/floor.h"
#include "bench/texts.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <string>

namespace corvane_bench {
namespace {

/// What takes longer has been measured well enough by the run that checked the answer.
constexpr double LONG_RUN_SECONDS = 0.4;

// The request to an engine: peers may need the pattern in other words.
Request requestFor(const Workload& workload, const Engine& engine) {
    const bool other = !engine.isOurs() && !workload.details.peerPattern.empty();
    return {other ? workload.details.peerPattern : workload.pattern, workload.details.flags,
            workload.details.task, workload.details.replacement};
}

// Counts the patterns that their lines have a match of. No answer where the engine cannot say one of them.
std::optional<Answer> runFirstSearches(const Engine& engine) {
    Answer sum;
    for (const Everyday_Pattern& each : everydayPatterns()) {
        const bool other = !engine.isOurs() && !each.peerPattern.empty();
        const std::unique_ptr<Searcher> searcher =
            engine.compile({other ? each.peerPattern : each.pattern, 0, Task::first, {}});
        const std::optional<Answer> answer = searcher ? searcher->countLines(each.line) : std::nullopt;
        if (!answer) {
            return std::nullopt;
        }
        sum.count += answer->count;
    }
    return sum;
}

// One run with its time, which is all that a long one gets.
Cell checkAnswer(const Workload& workload, const Engine& engine) {
    Cell cell;
    cell.isPeer = !engine.isOurs();
    const bool isFirst = workload.details.task == Task::first;
    if (isSet(workload.details.task) && !engine.takesSets()) {
        return cell;
    }
    const std::unique_ptr<Searcher> searcher =
        isFirst ? nullptr : engine.compile(requestFor(workload, engine));
    if (!isFirst && !searcher) {
        return cell;
    }
    const Text& text = textNamed(workload.text);
    const std::clock_t start = std::clock();
    const std::optional<Answer> answer =
        isFirst ? runFirstSearches(engine) : searcher->run(workload.details.task, text);
    if (isFirst && !answer) {
        return cell;
    }
    if (workload.details.task != Task::compile) {
        cell.seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }
    cell.answer = answer.value_or(Answer());
    cell.outcome = !answer                        ? Outcome::gaveUp
                   : *answer == workload.expected ? Outcome::timed
                                                  : Outcome::differs;
    return cell;
}

/// Collects the seconds of all repetitions by the name under which a benchmark was registered.
class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                seconds[run.run_name.function_name].push_back(run.cpu_accumulated_time /
                                                              static_cast<double>(run.iterations));
            }
        }
    }

    // Of an even number the greater of the two in the middle; five or three are usual.
    double median(const std::string& name) {
        std::vector<double>& all = seconds[name];
        std::sort(all.begin(), all.end());
        return all.empty() ? 0 : all[all.size() / 2];
    }

    std::map<std::string, std::vector<double>> seconds;
};

template <class Body>
void enlist(const std::string& name, const Settings& settings, Body body) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [body](benchmark::State& state) {
                                     for ([[maybe_unused]] auto step : state) {
                                         body();
                                     }
                                 })
        ->MinTime(settings.leastSeconds)
        ->Repetitions(settings.repetitions);
}

// Registers one engine's run of the row.
void enlistEngine(const std::string& name, const Workload& workload, const Engine& engine,
                  const Settings& settings) {
    if (workload.details.task == Task::first) {
        enlist(name, settings, [&engine] { benchmark::DoNotOptimize(runFirstSearches(engine)); });
        return;
    }
    const Request request = requestFor(workload, engine);
    if (workload.details.task == Task::compile) {
        enlist(name, settings, [&engine, request] { benchmark::DoNotOptimize(engine.compile(request)); });
        return;
    }
    // Compiled once, outside of what is timed. Shared, as the library copies functions.
    const std::shared_ptr<Searcher> searcher = engine.compile(request);
    const Text& text = textNamed(workload.text);
    enlist(name, settings, [searcher, &text, task = workload.details.task] {
        benchmark::DoNotOptimize(searcher->run(task, text));
    });
}

}  // namespace

// Peers with a wrong answer stay in the row, without a time.
Row checkAnswers(const Workload& workload, const Engines& engines) {
    Row row;
    row.workload = &workload;
    const Text& text = textNamed(workload.text);
    if (workload.details.task == Task::first) {
        row.amount = static_cast<double>(everydayPatterns().size());
    } else if (workload.details.task != Task::compile) {
        const bool byLine =
            workload.details.task == Task::subjects || workload.details.task == Task::setLines;
        row.amount = static_cast<double>(byLine ? text.lines.size() : text.units.size());
    }
    for (const auto& engine : engines) {
        row.cells.push_back(checkAnswer(workload, *engine));
    }
    return row;
}

// Times of runs that are short enough to be repeated; a long one keeps the time of its check.
void measure(Row& row, const Engines& engines, const Settings& settings) {
    const Workload& workload = *row.workload;
    const auto isShort = [](const Cell& cell) {
        return cell.outcome == Outcome::timed && cell.seconds < LONG_RUN_SECONDS;
    };
    for (std::size_t i = 0; i < engines.size(); ++i) {
        if (isShort(row.cells[i])) {
            enlistEngine(engines[i]->name(), workload, *engines[i], settings);
        }
    }
    if (!workload.details.floor.empty()) {
        const std::u16string_view text = textNamed(workload.text).units;
        const Bare_Scan scan(workload.details.floor, (workload.details.flags & IGNORE_CASE) != 0, text);
        enlist("floor", settings, [scan, text] { benchmark::DoNotOptimize(scan.count(text)); });
    }
    Collector collector;
    if (!workload.details.floor.empty() || std::any_of(row.cells.begin(), row.cells.end(), isShort)) {
        benchmark::RunSpecifiedBenchmarks(&collector, nullptr, ".");  // which complains when there are none
    }
    benchmark::ClearRegisteredBenchmarks();
    for (std::size_t i = 0; i < engines.size(); ++i) {
        if (isShort(row.cells[i])) {
            row.cells[i].seconds = collector.median(engines[i]->name());
        }
    }
    row.floorSeconds = collector.median("floor");
}

}  // namespace corvane_bench
