// What is compiled or made within a search goes on as long as the search may.
#pragma once

#include "regexp/base/compile_meter.h"
#include "regexp/state/search_info.h"

#include <cstddef>
#include <cstdint>

/// For the parts by which a pattern becomes faster: they are no work of the search, which only has to end in time. Whether it
/// does is left to the search.
class RE_Aside_Of_Search final : public RE_Compile_Monitor {
public:
    explicit RE_Aside_Of_Search(const RE_Search_Info& search) : info(search) {}
    RE_Compile_Outcome goesOn(std::uint64_t) override {
        return info.isAskedToStop() ? RE_Compile_Outcome::cancelled : RE_Compile_Outcome::compiled;
    }

private:
    const RE_Search_Info& info;
};

/// For dynamic texts: a unit of work is a step of the search, and whatever ends the search ends it.
class RE_Work_Of_Search final : public RE_Compile_Monitor {
public:
    explicit RE_Work_Of_Search(RE_Search_Info& search) : info(search) {}
    RE_Compile_Outcome goesOn(std::uint64_t work) override {
        info.meter.scanned(static_cast<std::size_t>(work) * RE_Step_Meter::unitsAStep);
        return info.pollScan() || !info.takeStep() ? RE_Compile_Outcome::cancelled
                                                   : RE_Compile_Outcome::compiled;
    }

private:
    RE_Search_Info& info;
};
