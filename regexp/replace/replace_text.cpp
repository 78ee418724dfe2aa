// The overloads of `replace`: one does the work, the others convert its texts.
#include "host/code_page.h"
#include "host/interrupt.h"
#include "regexp/base/insert_text.h"
#include "regexp/replace/replace.h"
#include "regexp/replace/replacement_run.h"

#include <memory>

namespace {

/// A request to stop that came before the work does not stop it. It is there again afterwards; so is one that
/// came in between.
class Interrupt_Bracket {
public:
    explicit Interrupt_Bracket(bool interruptible)
        : wasPending(interruptible && utInterruptState::IsInterruptPending()) {
        if (wasPending) {
            utInterruptState::SetInterruptPending(false);
        }
    }
    ~Interrupt_Bracket() {
        if (wasPending) {
            utInterruptState::SetInterruptPending(true);
        }
    }
    Interrupt_Bracket(const Interrupt_Bracket&) = delete;
    Interrupt_Bracket& operator=(const Interrupt_Bracket&) = delete;

private:
    bool wasPending;
};

struct Wide_Text {
    Wide_Text(const char* text, std::size_t bytes) : units(lcp_to_utf16(text, bytes, &length)) {}
    std::u16string_view view() const { return {units.get(), length}; }

    std::size_t length = 0;
    RE_Host_Block<char16_t> units;
};

}  // namespace

std::u16string RE_Replace::replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                                   std::size_t which) const {
    std::size_t matches = 0;
    return replace(subject, tree, adjustCase, which, &matches);
}

std::u16string RE_Replace::replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                                   std::size_t which, std::size_t* matches) const {
    const Interrupt_Bracket bracket(interruptible);
    RE_Replacement_Run run(*this, tree, subject, {adjustCase, which, interruptible});
    std::u16string result = run.run();
    *matches = run.matchesMet();
    return result;
}

std::u16string RE_Replace::replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                                   std::size_t which, const RE_Search_Limits& limits,
                                   RE_Search_Report& report) const {
    const Interrupt_Bracket bracket(interruptible);
    RE_Replacement_Run work(*this, tree, subject, {adjustCase, which, interruptible, &limits});
    std::u16string result = work.run();
    report = work.report();
    return result;
}

char16_t* RE_Replace::replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                              const RE_Tree* tree, bool adjustCase, std::size_t which) const {
    const std::u16string result = replace(std::u16string_view(buffer, *length), *tree, adjustCase, which);
    buffer = insertText(buffer, *length, 0, *length, result.data(), result.size(), capacity);
    *length = result.size();
    return buffer;
}

char* RE_Replace::replace(char* buffer, std::size_t* length, const RE_Tree* tree, bool adjustCase,
                          std::size_t which) const {
    const Wide_Text subject(buffer, *length);
    const std::u16string result = replace(subject.view(), *tree, adjustCase, which);
    char* const narrow = utf16_to_lcp_n(result.data(), result.size(), length);
    utFree(buffer);
    return narrow;
}

// Text without a match is handed back byte for byte, whatever the code page would make of it.
std::string RE_Replace::replace(const std::string& subject, const RE_Tree& tree, bool adjustCase,
                                std::size_t which) const {
    const Wide_Text wide(subject.data(), subject.size());
    if (std::unique_ptr<RE_Results>(tree.match(wide.units.get(), wide.length, 0)) == nullptr) {
        return subject;
    }
    const std::u16string result = replace(wide.view(), tree, adjustCase, which);
    std::size_t length = 0;
    const RE_Host_Block<char> narrow(utf16_to_lcp_n(result.data(), result.size(), &length));
    return {narrow.get(), length};
}

char* RE_Replace::replace(char* buffer, std::size_t* length, const char* pattern, const char* replacement,
                          bool ignoreCase, bool adjustCase) {
    const RE_Tree tree(pattern, ignoreCase);
    const RE_Replace compiled(replacement);
    return compiled.replace(buffer, length, &tree, adjustCase, 0);
}
