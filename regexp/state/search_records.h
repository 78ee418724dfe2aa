// What an attempt has recorded: the choices that it may return to, its tokens, and the passes of its loops.
//
// While there is a choice to return to, whatever is overwritten goes to the trail: popping a choice puts tokens
// and registers back to what they were when it was left.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/state/backtrack_stack.h"
#include "regexp/state/pass_word.h"
#include "regexp/state/search_stops.h"
#include "regexp/state/token_stack.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <vector>

class CORVANE_REGEXP_EXPORT RE_Search_Records : public RE_Search_Stops {
public:
    // --- choices ---

    /// Leaves a choice without asking the memo, with a word of the node's own beside it.
    void pushRecord(const RE_Node* node, const char16_t* position, std::size_t word);
    /// The word beside the record that was just popped.
    std::size_t poppedWord() const;

    // --- tokens ---

    /// The token, or null when it is not in effect or would reach past the subject.
    const RE_TokenInfo* getToken(std::size_t index) const {
        return tokens == nullptr ? nullptr : withinSubject(tokens->get(index));
    }
    template <std::integral Index>
    const RE_TokenInfo* getToken(Index index) const {
        return getToken(static_cast<std::size_t>(index));
    }
    const RE_TokenInfo* getToken(const char16_t* name) const;
    /// Notes where a token opened. The slot itself is written when the token closes, so that it always
    /// describes a group that was matched as a whole.
    void noteTokenStart(std::size_t index, std::size_t position);
    /// Where the tokens opened, one for each.
    std::size_t* tokenStarts() { return registers.data(); }
    /// Closes a token opened by `noteTokenStart`: writes the slot and puts the token in effect, with all lower
    /// ones.
    void recordToken(std::size_t index, const char16_t* name, std::size_t end);
    /// Both at once.
    void recordToken(std::size_t index, const char16_t* name, std::size_t start, std::size_t end);

    // --- passes of loops whose body may consume nothing ---

    /// Remembers how the current pass of a loop began: `RE_Start_Pass` gives the meaning of the word.
    void notePass(std::size_t pass, std::size_t word);
    std::size_t passWord(std::size_t pass) const;
    static constexpr std::size_t noPass = noPassWord;

    RE_Token_Stack* tokens = nullptr;  ///< null without memory, and when an `RE_Results` has taken the store
    RE_Backtrack_Stack backtrack;

protected:
    using RE_Search_Stops::RE_Search_Stops;
    ~RE_Search_Records() = default;

    /// One overwritten value: a token slot, or (slot null) the register `old.length` that held `old.start`.
    struct Trail_Entry {
        RE_TokenInfo* slot;
        RE_TokenInfo old;
    };

    void makeTokens(std::size_t count);
    void nameSlots();
    const RE_TokenInfo* withinSubject(const RE_TokenInfo* token) const {
        const bool fits = token != nullptr && token->start <= subjectLength() &&
                          token->length <= subjectLength() - token->start;
        return fits ? token : nullptr;
    }
    /// Makes room for tokens and passes.
    void needRegisters(std::size_t count) {
        if (registers.size() < count) {
            registers.resize(count, noPass);
        }
    }
    void undoTo(std::size_t height);
    /// Bytes of memory held.
    std::size_t bytesOfRecords() const {
        const auto bytesOf = [](const auto& list) { return list.capacity() * sizeof(list[0]); };
        return bytesOf(backtrack.records) + bytesOf(backtrack.marks) + bytesOf(trail) + bytesOf(registers) +
               bytesOf(ownTokens.slots);
    }

    RE_Inline_List<std::size_t, 12> registers;
    std::vector<Trail_Entry, RE_Allocator<Trail_Entry>> trail;
    std::int32_t scopes = 0;       ///< open: sub-searches, whose writes may have to be undone as a whole
    std::size_t keptInEffect = 0;  ///< all ones when closing a token leaves the higher ones in effect

private:
    bool writesAreTrailed() const { return backtrack.top >= 0 || scopes > 0; }
    void setRegister(std::size_t index, std::size_t value);
    void setSlot(std::size_t index, const RE_TokenInfo& value);
    void trailRegister(std::size_t index);
    void trailSlot(std::size_t index);

    RE_Token_Stack ownTokens;
    bool slotsHaveNames = false;
};

inline void RE_Search_Records::pushRecord(const RE_Node* node, const char16_t* position, std::size_t word) {
    const std::size_t slot = static_cast<std::size_t>(backtrack.top) + 1;
    if (slot >= backtrack.records.size()) {
        backtrack.grow();
    }
    backtrack.records[slot] = {node, position, tokens != nullptr ? tokens->count : 0};
    backtrack.marks[slot] = {trail.size(), word};
    ++backtrack.top;
}

inline std::size_t RE_Search_Records::poppedWord() const {
    return backtrack.marks[static_cast<std::size_t>(backtrack.top) + 1].word;
}

inline void RE_Search_Records::noteTokenStart(std::size_t index, std::size_t position) {
    if (index < registers.size()) {
        setRegister(index, position);
    }
}

inline void RE_Search_Records::recordToken(std::size_t index, const char16_t* name, std::size_t end) {
    if (index < registers.size()) {
        recordToken(index, name, registers[index], end);
    }
}

inline void RE_Search_Records::recordToken(std::size_t index, const char16_t* name, std::size_t start,
                                           std::size_t end) {
    if (tokens == nullptr || index >= tokens->slots.size()) {
        return;
    }
    if (index >= tokens->written) {
        tokens->begin(index);
    }
    setSlot(index, RE_TokenInfo{start, end - start, name, true});
    tokens->count = std::max(tokens->count & keptInEffect, index + 1);
}

inline void RE_Search_Records::setRegister(std::size_t index, std::size_t value) {
    if (writesAreTrailed()) {
        trailRegister(index);
    }
    registers[index] = value;
}

inline void RE_Search_Records::setSlot(std::size_t index, const RE_TokenInfo& value) {
    if (writesAreTrailed()) {
        trailSlot(index);
    }
    tokens->slots[index] = value;
}

inline void RE_Search_Records::undoTo(std::size_t height) {
    while (trail.size() > height) {
        const Trail_Entry& entry = trail.back();
        if (entry.slot != nullptr) {
            *entry.slot = entry.old;
        } else {
            registers[entry.old.length] = entry.old.start;
        }
        trail.pop_back();
    }
}
