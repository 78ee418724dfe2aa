// Runs the compilation of one text within limits, and tells how it ended.
#pragma once

#include "regexp/base/compile_limits.h"
#include "regexp/base/compile_meter.h"
#include "regexp/base/earlier_interrupt.h"
#include "regexp/base/memory_account.h"

#include <cstdint>

/// What holds for one compilation besides its text. All may be null; nothing is owned.
struct RE_Compile_Terms {
    const RE_Compile_Limits* limits = nullptr;
    RE_Compile_Report* report = nullptr;
    /// The search that the text is compiled in: it looks at the host's flag by itself.
    RE_Compile_Monitor* monitor = nullptr;
};

/// Calls `compile` with a meter. Where that is stopped, all that it made is gone when this returns, as it went with the
/// exception. `allowsInterrupts`: a request by the host's flag that comes meanwhile stops it. `held` receives the bytes that
/// are left. Exceptions of the host pass, and of its memory; so does the ceiling of an account around, as long as
/// there is no ceiling here.
template <class Compile>
RE_Compile_Report compileWithin(const RE_Compile_Terms& terms, bool allowsInterrupts, std::uint64_t& held,
                                const Compile& compile) {
    const bool polls = allowsInterrupts && terms.monitor == nullptr;
    const RE_Earlier_Interrupt aside(polls);
    RE_Compile_Meter meter(terms.limits, terms.monitor, polls);
    RE_Memory_Account account;
    RE_Compile_Report report;
    {
        const RE_Memory_Account::Scope scope(account);
        if (terms.limits != nullptr) {
            account.setCeiling(terms.limits->bytes);
        }
        try {
            if (terms.limits != nullptr) {
                meter.ask();  // a short text would be compiled before anybody is
            }
            compile(meter);
            meter.finish();
        } catch (const RE_Compile_Stopped& stopped) {
            report.outcome = stopped.outcome;
        } catch (const RE_Ceiling_Reached&) {
            if (terms.limits == nullptr || terms.limits->bytes == RE_Compile_Limits::unlimited) {
                throw;
            }
            report.outcome = RE_Compile_Outcome::memoryFull;
        }
    }
    held = account.held();
    report.position = report.isRefused() ? meter.place : 0;
    report.nodes = meter.nodes();
    report.work = meter.work();
    report.peakBytes = account.peak();
    if (terms.report != nullptr) {
        *terms.report = report;
    }
    return report;
}
