// Tables of times and ratios, as Markdown. Everything is computed from the rows; nothing is measured or
// decided here but the number of digits.
#include "bench/report.h"

#include "bench/machine.h"
#include "bench/ratios.h"
#include "bench/targets.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string_view>

namespace corvane_bench {
namespace {

/// Two or three digits that matter.
std::string number(double value) {
    char text[32];
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : value >= 1 ? 2 : value >= 0.01 ? 3 : 5;
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string ratio(double value) {
    return value == 0 ? "-" : number(value);
}

/// Nanoseconds a unit or a line, or microseconds a compilation.
double scaled(const Row& row, double seconds) {
    const Task task = row.workload->details.task;
    const bool inMicroseconds = task == Task::compile || task == Task::first;
    return seconds * (inMicroseconds ? 1e6 : 1e9) / row.amount;
}

std::string_view measureOf(const Row& row) {
    switch (row.workload->details.task) {
        case Task::compile:
            return "us a compilation";
        case Task::first:
            return "us a pattern";
        case Task::subjects:
        case Task::setLines:
            return "ns a line";
        default:
            return "ns a unit";
    }
}

// A time, or the word for why there is none.
std::string cellText(const Row& row, const Cell& cell) {
    switch (cell.outcome) {
        case Outcome::timed:
            return number(scaled(row, cell.seconds));
        case Outcome::differs:
            return "differs";
        case Outcome::gaveUp:
            return "gave up";
        default:
            return "-";
    }
}

std::string line(const std::vector<std::string>& cells) {
    std::string text = "|";
    for (const std::string& cell : cells) {
        text += " " + cell + " |";
    }
    return text + "\n";
}

// The first column is of words, the others are of numbers and aligned on the right.
std::string heading(const std::vector<std::string>& cells) {
    std::string rule = "|---|";
    for (std::size_t i = 1; i < cells.size(); ++i) {
        rule += "---:|";
    }
    return line(cells) + rule + "\n";
}

// Rows that share a table and a target.
using Group = std::vector<const Row*>;

std::vector<Group> groupsOf(const std::vector<Row>& rows) {
    std::vector<Group> groups;
    for (const Row& row : rows) {
        if (groups.empty() || groups.back().front()->workload->group != row.workload->group) {
            groups.emplace_back();
        }
        groups.back().push_back(&row);
    }
    return groups;
}

// A row for each workload, a column for each engine, then ratios. Rows above the target are bold.
std::string groupTable(const Group& group, const Engines& engines) {
    const Row& first = *group.front();
    std::vector<std::string> titles{std::string(measureOf(first))};
    for (const auto& engine : engines) {
        titles.push_back(engine->name());
    }
    titles.insert(titles.end(), {"floor", "by JIT", "by best", "best peer"});
    const Target target = targetOf(first.workload->group);
    std::string text = "## " + std::string(first.workload->group) + "\n\n" + heading(titles);
    for (const Row* row : group) {
        const bool above = target.ratio != 0 && ratioTo(*row, engines, target.peer) > target.ratio;
        const std::string mark = above ? "**" : "";
        std::vector<std::string> cells{mark + std::string(row->workload->name) + mark};
        for (const Cell& cell : row->cells) {
            cells.push_back(cellText(*row, cell));
        }
        const std::size_t best = bestPeer(*row);
        cells.insert(cells.end(),
                     {row->floorSeconds > 0 ? number(scaled(*row, row->floorSeconds)) : "",
                      ratio(ratioTo(*row, engines, "PCRE2 JIT")), ratio(ratioTo(*row, engines, "best")),
                      best == 0 ? "-" : engines[best]->name()});
        text += line(cells);
    }
    return text + "\n";
}

template <class Ratio>
std::vector<double> collect(const Group& group, Ratio of) {
    std::vector<double> ratios;
    for (const Row* row : group) {
        ratios.push_back(of(*row));
    }
    return ratios;
}

// Nothing when there is no ratio: no verdict without a measurement.
std::string verdict(double value, double most) {
    return value == 0 ? "" : value <= most ? ": met" : ": **missed**";
}

// The target in words and whether it was met; nothing for a group without one.
std::string targetText(const Target& target, double median, double byFloor) {
    std::string text;
    if (target.ratio != 0) {
        text = number(target.ratio) + " x " + std::string(target.peer) + verdict(median, target.ratio);
        if (byFloor != 0) {
            text += "; " + number(FLOOR_TARGET) + " x floor" + verdict(byFloor, FLOOR_TARGET);
        }
    }
    return text;
}

std::string summaryRow(const Group& group, const Engines& engines, std::string name, const Target& target) {
    const auto by = [&](std::string_view peer) {
        return collect(group, [&](const Row& row) { return ratioTo(row, engines, peer); });
    };
    const std::vector<double> counted = by(target.peer);
    const double median = medianOf(counted);
    const double byFloor = medianOf(collect(group, ratioToFloor));
    return line({std::move(name), std::to_string(group.size()), ratio(median),
                 ratio(geometricMeanOf(counted)), ratio(geometricMeanOf(by("PCRE2 JIT"))),
                 ratio(geometricMeanOf(by("best"))), ratio(byFloor), targetText(target, median, byFloor)});
}

/// Targets that are times, not ratios.
std::string timeTargets(const std::vector<Row>& rows) {
    std::string text;
    for (const Row& row : rows) {
        const double most = mostNanoseconds(row.workload->fullName());
        const Cell& ours = row.cells.front();
        if (most != 0 && ours.outcome == Outcome::timed) {
            text += "That of " + row.workload->fullName() + " is " + number(most) +
                    " ns a unit: " + cellText(row, ours) +
                    (scaled(row, ours.seconds) <= most ? ", met.\n" : ", **missed**.\n");
        }
    }
    return text;
}

// Mean ratios to an engine over all rows, of each of the ways in which ours is called, and how often it is ahead of the
// first of them.
std::string meansRow(const std::vector<Row>& rows, std::string name, std::size_t ways,
                     const std::function<std::size_t(const Row&)>& peerOf) {
    std::vector<std::string> means;
    std::size_t answered = 0, ahead = 0;
    for (std::size_t way = 0; way < ways; ++way) {
        std::vector<double> ratios;
        for (const Row& row : rows) {
            const std::size_t peer = peerOf(row);
            ratios.push_back(peer == 0 ? 0 : ratioTo(row, peer, way));
        }
        std::erase(ratios, 0.0);
        if (way == 0) {
            answered = ratios.size();
            ahead = static_cast<std::size_t>(
                std::count_if(ratios.begin(), ratios.end(), [](double value) { return value > 1; }));
        }
        means.push_back(ratio(geometricMeanOf(ratios)));
    }
    std::vector<std::string> cells{std::move(name), std::to_string(answered)};
    cells.insert(cells.end(), means.begin(), means.end());
    cells.push_back(std::to_string(ahead));
    return line(cells);
}

// Over all rows, so that no choice of groups can hide a loss.
std::string overall(const std::vector<Row>& rows, const Engines& engines) {
    std::size_t ways = 0;
    std::vector<std::string> titles{"peer", "rows"};
    for (; ways < engines.size() && engines[ways]->isOurs(); ++ways) {
        titles.push_back(engines[ways]->name());
    }
    titles.push_back("rows in which it is ahead of the first");
    std::string text = "Geometric means over all rows of our time by that of a peer, where both answer:\n\n" +
                       heading(titles);
    for (std::size_t i = ways; i < engines.size(); ++i) {
        text += meansRow(rows, engines[i]->name(), ways, [i](const Row&) { return i; });
    }
    return text + meansRow(rows, "the best of each row", ways, bestPeer) + "\nThe target is a mean of " +
           number(OVERALL_TARGET) + " to PCRE2 JIT.\n" + timeTargets(rows) + "\n";
}

std::string summary(const std::vector<Row>& rows, const Engines& engines) {
    std::string text =
        "## Ratios by group\n\nMedian and mean are those of our time by that of the peer that the "
        "target names; `by floor` is a median too.\n\n";
    text += heading({"group", "rows", "median", "mean", "mean by JIT", "mean by best", "by floor", "target"});
    for (const Group& group : groupsOf(rows)) {
        const std::string_view name = group.front()->workload->group;
        text += summaryRow(group, engines, std::string(name), targetOf(name));
    }
    return text + "\n" + overall(rows, engines);
}

// What a reader should look at first: rows in which an engine without machine code is faster than ours.
std::string behindInterpreters(const std::vector<Row>& rows, const Engines& engines) {
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t i = 1; i < engines.size(); ++i) {
            if (engines[i]->isInterpreter() && ratioTo(row, i) > 1) {
                text += "* " + row.workload->fullName() + ": " + number(ratioTo(row, i)) + " x " +
                        engines[i]->name() + "\n";
            }
        }
    }
    return "## Rows behind an interpreter\n\n" + (text.empty() ? "None.\n" : text) + "\n";
}

// Peers with another answer than the expected one. Not a fault of theirs: dialects differ.
std::string differences(const std::vector<Row>& rows, const Engines& engines) {
    std::string text;
    for (const Row& row : rows) {
        if (std::any_of(row.cells.begin(), row.cells.end(),
                        [](const Cell& cell) { return cell.outcome == Outcome::differs; })) {
            text += "* " + describeAnswers(row, engines) + "\n";
        }
    }
    return text.empty() ? "" : "## Answers that differ\n\n" + text + "\n";
}

std::string answerText(const Answer& answer) {
    return std::to_string(answer.count) +
           (answer.tokenUnits == 0 ? "" : ", " + std::to_string(answer.tokenUnits));
}

// Where and with what the times were taken; without that they mean nothing.
std::string header(const Engines& engines) {
    std::string text = "# Times of " + today() + "\n\n" + processorName() + "; " + compilerName() + ".\n\n";
    for (const auto& engine : engines) {
        text += "* " + engine->name() + ": " + engine->version() + "\n";
    }
    return text + "\n[How to read this](../README.md)\n\n";
}

}  // namespace

std::string describeAnswers(const Row& row, const Engines& engines) {
    std::string text = row.workload->fullName() + ": expected " + answerText(row.workload->expected);
    for (std::size_t i = 0; i < engines.size(); ++i) {
        const Cell& cell = row.cells[i];
        const bool answered = cell.outcome == Outcome::timed || cell.outcome == Outcome::differs;
        text += "; " + engines[i]->name() + " " + (answered ? answerText(cell.answer) : cellText(row, cell));
    }
    return text;
}

std::string summarize(const Row& row, const Engines& engines) {
    std::string text = row.workload->fullName() + ": " + cellText(row, row.cells.front()) + " " +
                       std::string(measureOf(row));
    for (std::size_t i = 1; i < engines.size(); ++i) {
        const Cell& cell = row.cells[i];
        text += "; " +
                (cell.outcome == Outcome::timed ? ratio(ratioTo(row, i)) + " x" : cellText(row, cell)) + " " +
                engines[i]->name();
    }
    return row.floorSeconds > 0 ? text + "; " + ratio(ratioToFloor(row)) + " x floor" : text;
}

std::string writeReport(const std::vector<Row>& rows, const Engines& engines) {
    std::string text = header(engines) + summary(rows, engines) + behindInterpreters(rows, engines);
    for (const Group& group : groupsOf(rows)) {
        text += groupTable(group, engines);
    }
    return text + differences(rows, engines);
}

}  // namespace corvane_bench
