// Mix-ins for nodes that can tell where they match next: a seek forward, and one backward.
//
// A seek may stop where the node does not match, as a node is matched afterwards. It must not pass over a
// position where it does. Every answer holds for all positions from the one it was computed for up to the
// answer; that is what the seek table relies on.
//
// Null from a seek means nowhere up to the end of the subject, or that the scan was broken off:
// `wasInterrupted` tells which, and whoever concludes something from it has to look.
#pragma once

#include "regexp/seek/seek_table.h"
#include "regexp/state/search_info.h"

/// Answers `seek` from the search's seek table where it can, and from the node's own scan where it must.
/// `scan` and `scanBack` look only at positions; they must not depend on tokens or windows.
template <class Base>
class RE_Can_Seek : public Base {
public:
    using Base::Base;

    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override {
        const char16_t* answer = nullptr;
        if (info.seekTable != nullptr && info.seekTable->size() != 0 &&
            info.seekTable->get(p, this->seekKey(true), answer)) {
            return answer;
        }
        // Null counts as a scan of all the rest. An answer of a scan that was broken off is not true and not
        // kept.
        answer = scan(p, info);
        const auto distance = static_cast<std::size_t>((answer != nullptr ? answer : info.subjectEnd) - p);
        info.noteScan(distance);
        if (distance >= worthKeeping && info.seekTable != nullptr && !info.wasInterrupted()) {
            info.seekTable->put(this->seekKey(true), RE_Seek_Value(p, answer));
        }
        return answer;
    }
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override {
        return scanBack(p, count, info);
    }

protected:
    /// In units. Answers nearer than this are found again as fast as they are looked up.
    static constexpr std::size_t worthKeeping = 1024;

    /// The first position at or after `p` at which the node can match, or null. Without an override nothing
    /// is ruled out.
    virtual const char16_t* scan(const char16_t* p, RE_Search_Info&) const { return p; }
    /// The last one in [p, p + count], or null.
    virtual const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info&) const {
        return p + count;
    }
};

/// A seeking node that may have a second way on. Where it has one the node can match wherever that way can,
/// so it rules nothing out by itself.
template <class Base>
class RE_Branch_Seek : public Base {
public:
    using Base::Base;

    bool isBranching() const override {
        return this->failNode() != nullptr || this->alternativeNode() != nullptr;
    }
    bool canSeek(bool) const override { return scans() && !isBranching(); }

protected:
    /// Whether the class can seek where a node of it has one way on.
    virtual bool scans() const { return false; }
};
