// The files of a run, from the walk to the threads that search them.
//
// The main thread walks and hands out tasks; the others search. With one thread the main thread does both. The output is in
// the order of the walk however many threads there are.
#include "tools/search/search_run.h"

#include "tools/exit_status.h"
#include "tools/interrupt.h"
#include "tools/report/prefix.h"
#include "tools/search/file_parts.h"
#include "tools/search/progress.h"
#include "tools/search/task_queue.h"
#include "tools/search/text_search.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace tool {
namespace {

class SearchRun {
public:
    SearchRun(const FinderPatterns& patterns, const RunSettings& settings)
        : patterns_(patterns),
          settings_(settings),
          output_(STDOUT_FILENO),
          progress_(settings.style.toTerminal),
          isDivided_(isDivided()),
          threads_(threadCount()),
          tasks_(threads_ > 1 ? 8 * threads_ : 0) {}

    int run() {
        const auto begin = std::chrono::steady_clock::now();
        std::vector<std::jthread> workers;
        if (threads_ > 1)
            for (std::size_t i = 0; i != threads_; ++i) workers.emplace_back([this] { work(); });
        guarded([this] { isDivided_ ? offerParts() : offerAll(); });
        if (!collected_.empty()) tasks_.push(std::move(collected_));
        tasks_.close();
        workers.clear();  // joins
        if (own_) totals_.add(own_->totals());
        if (isDivided_ && !failure_ && !interruptPending()) guarded([this] { sumUp(); });
        progress_.hide();
        if (failure_) std::rethrow_exception(failure_);
        if (interruptPending()) throw Interrupted();
        if (settings_.stats) printStats(std::chrono::steady_clock::now() - begin);
        return status();
    }

private:
    static constexpr std::size_t tasksAtOnce = 24;

    // Large enough that the threads are worth their while, and a few for each.
    static constexpr std::uint64_t partBytes = std::uint64_t{4} << 20;
    static constexpr std::uint64_t leastDivided = 4 * partBytes;

    // Whether the only file is searched by parts: what is printed of a line must not depend on those before it.
    bool isDivided() const {
        const ReportStyle& style = settings_.style;
        const bool printsLines = style.form == ReportForm::lines || style.form == ReportForm::parts;
        const bool counts = style.form == ReportForm::count || style.form == ReportForm::matches;
        const std::size_t threads =
            settings_.threads != 0 ? settings_.threads : std::thread::hardware_concurrency();
        if (!(printsLines || counts) || patterns_.unit == SearchUnit::text || threads < 2 ||
            !settings_.mayUseThreads || settings_.listsOnly || style.maxCount != ReportStyle::unlimited)
            return false;
        if (printsLines && (style.hasContext() || style.passthru)) return false;
        return isSingleFile() && isLargeUtf8(settings_.files.front());
    }

    bool isLargeUtf8(const std::string& name) const {
        struct stat status;
        if (name == "-" || ::stat(name.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
            static_cast<std::uint64_t>(status.st_size) < leastDivided || ::access(name.c_str(), R_OK) != 0)
            return false;
        FileSource file(name);
        std::array<char, 4> bytes;
        const std::size_t got = file.read(bytes.data(), bytes.size());
        return startOfText({bytes.data(), got}, settings_.encoding).encoding.empty();
    }

    void offerParts() {
        const std::string& name = settings_.files.front();
        const FileSource file(name);
        progress_.expect(file.size());
        const bool nulIsText = settings_.searchesBinary || settings_.style.terminator == '\0';
        const bool countsLines = settings_.style.lineNumbers || settings_.style.hyperlinks;
        FileParts(file, settings_.style.terminator, nulIsText, countsLines)
            .forEach(partBytes, [&](const FilePart& part) {
                SearchTask task{name, false, part};
                task.number = nextNumber_++;
                return !over_ && tasks_.push({std::move(task)});
            });
    }

    // What the search of a file by one thread says at its end.
    void sumUp() {
        totals_.texts = 1;
        totals_.textsSelected = totals_.lines != 0 ? 1 : 0;
        const ReportForm form = settings_.style.form;
        if (form != ReportForm::count && form != ReportForm::matches) return;
        LineOutput output(output_, nextNumber_);
        const std::string& name = settings_.files.front();
        appendCount(output.text(), settings_.style, {name, name},
                    form == ReportForm::count ? totals_.lines : totals_.matches);
        output.flush();
        output_.close(nextNumber_++);
    }

    // One file alone is searched by the thread that is there, unless it is divided.
    std::size_t threadCount() const {
        if (!settings_.mayUseThreads || settings_.listsOnly) return 1;
        if (settings_.threads != 0) return settings_.threads;
        constexpr std::size_t usefulThreads = 12;
        const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
        return isSingleFile() && !isDivided_ ? 1 : std::min(cores, usefulThreads);
    }

    bool isSingleFile() const { return settings_.files.size() == 1 && !isDirectory(settings_.files.front()); }

    int status() const {
        const bool found = found_;
        // A file that cannot be read outweighs a match: a script must not take an incomplete answer for a complete one. The
        // exception is --quiet, whose answer is complete with the first match.
        if (found && settings_.style.form == ReportForm::silent) return exitPositive;
        if (trouble_) return exitTrouble;
        return found ? exitPositive : exitNegative;
    }

    // The first failure ends the run.
    template <class Work>
    void guarded(Work work) {
        try {
            work();
        } catch (...) {
            const std::lock_guard lock(mutex_);
            if (!failure_) failure_ = std::current_exception();
            over_ = true;
            tasks_.close();
            output_.abandon();
        }
    }

    // False when the run is over.
    bool offer(SearchTask task) {
        if (settings_.order == FileOrder::modified && task.isWalked) {
            gathered_.push_back(std::move(task));
            return !over_;
        }
        return handOut(std::move(task));
    }

    bool handOut(SearchTask task) {
        task.number = nextNumber_++;
        if (over_) return false;
        if (threads_ > 1) {
            collected_.push_back(std::move(task));
            return collected_.size() < tasksAtOnce || tasks_.push(std::exchange(collected_, {}));
        }
        if (!own_) own_ = makeSearch();
        search(*own_, task);
        return !over_;
    }

    void offerAll() {
        const bool whole = Walker(settings_.walk)
                               .walkAll(
                                   settings_.files,
                                   [this](const std::string& path) {
                                       return offer({path, false, {}});
                                   },
                                   [this](const std::string& path) {
                                       return offer({path, true, {}});
                                   },
                                   [this](const std::string& message) { complain(message); });
        if (!whole) return;
        offerGathered();
    }

    // The files of all walks, the oldest first.
    void offerGathered() {
        std::vector<std::pair<struct timespec, std::size_t>> times;
        for (std::size_t i = 0; i != gathered_.size(); ++i) {
            struct stat status {};
            ::stat(gathered_[i].path.c_str(), &status);
            times.emplace_back(status.st_mtim, i);
        }
        std::ranges::stable_sort(times, [](const auto& one, const auto& other) {
            return std::pair(one.first.tv_sec, one.first.tv_nsec) <
                   std::pair(other.first.tv_sec, other.first.tv_nsec);
        });
        for (const auto& [time, index] : times)
            if (!handOut(std::move(gathered_[index]))) return;
    }

    std::unique_ptr<TextSearch> makeSearch() {
        return std::make_unique<TextSearch>(patterns_, settings_.style, settings_.encoding,
                                            [this](std::uint64_t bytes) { progress_.advance(bytes); });
    }

    void work() {
        guarded([this] {
            std::unique_ptr<TextSearch> search;
            while (const std::optional<SearchTasks> tasks = tasks_.take()) {
                if (!search) search = makeSearch();
                for (const SearchTask& task : *tasks)
                    if (!over_) this->search(*search, task);
            }
            if (!search) return;
            const std::lock_guard lock(mutex_);
            totals_.add(search->totals());
        });
    }

    // A file that cannot be read does not keep the others from being searched.
    void search(TextSearch& search, const SearchTask& task) {
        LineOutput output(output_, task.number);
        try {
            if (settings_.listsOnly) {
                list(task, output);
            } else if (searchFile(search, task, output)) {
                found_ = true;
                // Nothing that comes after it changes the answer.
                if (settings_.style.form == ReportForm::silent) over_ = true;
            }
            output.flush();
        } catch (const std::system_error& failure) {
            // What the output refuses ends the run.
            if (outputFailed(failure)) throw;
            output.flush();
            complain(failure.what());
        }
        output_.close(task.number);
    }

    static bool outputFailed(const std::system_error& failure) {
        return std::string_view(failure.what()).starts_with("cannot write to standard output");
    }

    bool searchFile(TextSearch& search, const SearchTask& task, LineOutput& output) {
        FileSource file(task.path);
        if (file.isDirectory()) throw std::system_error(EISDIR, std::generic_category(), task.path);
        if (!task.part) progress_.expect(file.size());
        const TextInfo text{task.path == "-" ? "(standard input)" : task.path,
                            task.path == "-" ? "" : task.path, task.part ? task.part->firstLine : 1};
        const BinaryFiles binary = settings_.searchesBinary                  ? BinaryFiles::print
                                   : task.isWalked && !settings_.findsBinary ? BinaryFiles::skip
                                                                             : BinaryFiles::tell;
        if (!task.part) return search.run(file, text, binary, output);
        PartSource part(file, task.part->begin, task.part->end);
        return search.runPart(part, task.part->begin, text, binary, output);
    }

    void list(const SearchTask& task, LineOutput& output) {
        found_ = true;
        appendName(output.text(), settings_.style, {task.path, task.path}, 0);
        output.text() += settings_.style.nulAfterName ? '\0' : '\n';
    }

    void complain(const std::string& message) {
        const std::lock_guard lock(mutex_);
        trouble_ = true;
        if (settings_.quietAboutFiles) return;
        progress_.hide();
        std::cerr << "cvregexp: " << message << '\n';
    }

    void printStats(std::chrono::steady_clock::duration time) const {
        const double seconds = std::chrono::duration<double>(time).count();
        std::fprintf(
            stderr,
            "%llu lines selected in %llu of %llu files; %llu bytes searched in %.3f s by %zu threads\n",
            static_cast<unsigned long long>(totals_.lines),
            static_cast<unsigned long long>(totals_.textsSelected),
            static_cast<unsigned long long>(totals_.texts), static_cast<unsigned long long>(totals_.bytes),
            seconds, threads_);
    }

    const FinderPatterns& patterns_;
    const RunSettings& settings_;
    OrderedOutput output_;
    Progress progress_;
    bool isDivided_;  // the only file
    std::size_t threads_;
    TaskQueue tasks_;
    std::size_t nextNumber_ = 0;
    std::vector<SearchTask> gathered_;
    SearchTasks collected_;            // on their way to the threads
    std::unique_ptr<TextSearch> own_;  // of the main thread
    std::mutex mutex_;                 // for the three below, and for messages
    std::exception_ptr failure_;
    SearchTotals totals_;
    bool trouble_ = false;
    std::atomic<bool> found_ = false;
    std::atomic<bool> over_ = false;
};

}  // namespace

int searchFiles(const FinderPatterns& patterns, const RunSettings& settings) {
    return SearchRun(patterns, settings).run();
}

}  // namespace tool
