// The searches that a compiled pattern offers. How one is run is in search/search.cpp.
#include "regexp/tree.h"

#include "host/code_page.h"
#include "regexp/base/search_limits.h"
#include "regexp/base/within_size.h"
#include "regexp/dfa/dfa.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/machine/machine_code.h"
#include "regexp/match_sequence.h"
#include "regexp/search/guest_run.h"
#include "regexp/search/search.h"
#include "regexp/search/thread_state.h"
#include "regexp/state/search_info.h"

#include <new>

RE_Results* RE_Tree::match(const std::u16string& subject, std::size_t offset) const {
    return match(subject.data(), subject.size(), offset);
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset) const {
    RE_Seek_Table table;
    return searchFrom(subject, length, offset, &table);
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Seek_Table* table) const {
    return searchFrom(subject, length, offset, table);
}

RE_Results* RE_Tree::match(const char* subject, std::size_t offset) const {
    if (subject == nullptr) {
        return nullptr;
    }
    std::size_t length = 0;
    const RE_Host_Block<char16_t> converted(lcp_to_utf16(subject, &length));
    RE_Results* const results = match(converted.get(), length, offset);
    if (results != nullptr) {
        results->subjectBegin = results->subjectEnd = nullptr;
    }
    return results;
}

RE_Results* RE_Tree::match(const char16_t* subject, std::size_t length, std::size_t offset,
                           const RE_Search_Limits& limits, RE_Search_Report& report) const {
    report = {};
    if (subject == nullptr || offset > length) {
        return nullptr;
    }
    RE_Match_Sequence search(*this, {subject, length}, &limits);
    search.find(offset);
    report = search.report();
    RE_Results* const match = search.releaseMatch();
    if (match == nullptr && report.outcome == RE_Search_Outcome::matched) {
        report.outcome = RE_Search_Outcome::memoryFull;
    }
    return match;
}

RE_Results* RE_Tree::trace(const char16_t* subject, std::size_t length, std::size_t offset,
                           RE_Observer& observer) const {
    RE_Seek_Table table;
    return searchFrom(subject, length, offset, &table, &observer);
}

bool RE_Tree::match_bool(const char16_t* position, std::size_t* length, RE_Search_Info* info) const {
    *length = 0;
    if (root == nullptr || position < info->subjectBegin || position > info->subjectEnd) {
        return false;
    }
    RE_Guest_Run run(*info, *facts, position);
    const std::size_t start = info->indexOf(position);
    std::size_t pos = start;
    const bool completed = run.run(root, pos);
    *length = completed ? pos - start : 0;
    return completed;
}

RE_Results* RE_Tree::searchFrom(const char16_t* subject, std::size_t length, std::size_t offset,
                                RE_Seek_Table* table, RE_Observer* observer) const {
    if (subject == nullptr || offset > length || root == nullptr) {
        return nullptr;
    }
    RE_Thread_State state(*facts, {subject, length}, table, interruptible, observer);
    RE_Search_Info& info = state.info();
    std::size_t matchLength = 0;
    const bool found = findMatch(*facts, info, offset, matchLength) && !info.pollInterrupt();
    state.keep();
    if (!found) {
        return nullptr;
    }
    return new (std::nothrow) RE_Results(&info, info.matchStart, matchLength, true);
}

void RE_Tree::releaseThreadState() noexcept {
    RE_Thread_State::release();
}

void RE_Tree::tune(const RE_Tuning& settings) {
    if (facts != nullptr) {
        facts->tuning = settings;
        facts->serial = RE_Graph_Facts::nextSerial();
    }
}

const RE_Tuning& RE_Tree::getTuning() const {
    static constexpr RE_Tuning usual;
    return facts != nullptr ? facts->tuning : usual;
}

bool RE_Tree::makeMachineCode() {
    return facts != nullptr && RE_Machine_Code::obtain(*facts) != nullptr;
}

bool RE_Tree::makeDfa() {
    return facts != nullptr && RE_Dfa::obtain(*facts) != nullptr;
}
