// PCRE2 on 16-bit units, interpreted or compiled to machine code.
#define PCRE2_CODE_UNIT_WIDTH 16
#include "bench/engines/engines.h"
#include "bench/engines/set_walk.h"
#include "bench/engines/walk.h"

#include <pcre2.h>

namespace corvane_bench {
namespace {

constexpr std::size_t JIT_STACK_LEAST = 32 * 1024;
constexpr std::size_t JIT_STACK_MOST = 8 * 1024 * 1024;

/// Our `$` never matches before a final line feed.
std::uint32_t toOptions(unsigned flags) {
    return PCRE2_DOLLAR_ENDONLY | ifSet(flags, IGNORE_CASE, PCRE2_CASELESS) |
           ifSet(flags, DOT_ALL, PCRE2_DOTALL) | ifSet(flags, LINES, PCRE2_MULTILINE) |
           ifSet(flags, UNICODE, PCRE2_UCP);
}

PCRE2_SPTR16 units(std::u16string_view text) {
    return reinterpret_cast<PCRE2_SPTR16>(text.data());
}

class Pcre2_Searcher : public Searcher {
public:
    Pcre2_Searcher(pcre2_code_16* code, bool jit, std::u16string_view replacement)
        : m_code(code), m_jit(jit), m_replacement(replacement) {}
    Pcre2_Searcher(const Pcre2_Searcher&) = delete;
    Pcre2_Searcher& operator=(const Pcre2_Searcher&) = delete;
    ~Pcre2_Searcher() override {
        pcre2_match_data_free_16(m_data);
        pcre2_match_context_free_16(m_context);
        pcre2_jit_stack_free_16(m_stack);
        pcre2_code_free_16(m_code);
    }

    std::optional<Answer> countMatches(const Text& text) override {
        prepare();
        return walkMatches(std::u16string_view(text.units), FindFrom{this}, noTokens);
    }

    std::optional<Answer> countTokens(const Text& text) override {
        prepare();
        return walkMatches(std::u16string_view(text.units), FindFrom{this},
                           [this] { return lengthOfTokens(); });
    }

    std::optional<Answer> countLines(const Text& text) override {
        prepare();
        return walkLines<&Line::units>(text, FindFrom{this});
    }

    std::optional<Answer> replace(const Text& text) override {
        prepare();
        std::u16string result(2 * text.units.size() + 64, u'\0');
        PCRE2_SIZE length = result.size();
        const int status = pcre2_substitute_16(m_code, units(text.units), text.units.size(), 0,
                                               PCRE2_SUBSTITUTE_GLOBAL | (m_jit ? 0U : PCRE2_NO_JIT), m_data,
                                               m_context, units(m_replacement), m_replacement.size(),
                                               reinterpret_cast<PCRE2_UCHAR16*>(result.data()), &length);
        return status < 0 ? std::nullopt : std::optional<Answer>(Answer{length, 0});
    }

    /// Made before the first search, since compiling is timed alone too.
    void prepare() {
        if (m_data != nullptr) {
            return;
        }
        m_data = pcre2_match_data_create_from_pattern_16(m_code, nullptr);
        m_context = pcre2_match_context_create_16(nullptr);
        if (m_jit) {
            m_stack = pcre2_jit_stack_create_16(JIT_STACK_LEAST, JIT_STACK_MOST, nullptr);
            pcre2_jit_stack_assign_16(m_context, nullptr, m_stack);
        }
    }
    Found search(std::u16string_view text, std::size_t offset, std::size_t& end) {
        std::size_t start = 0;
        return search(text, offset, start, end, 0);
    }
    Found search(std::u16string_view text, std::size_t offset, std::size_t& start, std::size_t& end,
                 std::uint32_t options) {
        const int status =
            m_jit ? pcre2_jit_match_16(m_code, units(text), text.size(), offset, options, m_data, m_context)
                  : pcre2_match_16(m_code, units(text), text.size(), offset, options | PCRE2_NO_JIT, m_data,
                                   m_context);
        if (status <= 0) {
            return status == PCRE2_ERROR_NOMATCH ? Found::nothing : Found::gaveUp;
        }
        m_pairs = static_cast<std::size_t>(status);
        start = pcre2_get_ovector_pointer_16(m_data)[0];
        end = pcre2_get_ovector_pointer_16(m_data)[1];
        return Found::match;
    }

private:
    struct FindFrom {
        Pcre2_Searcher* searcher;
        Found operator()(std::u16string_view text, std::size_t offset, std::size_t& end) const {
            return searcher->search(text, offset, end);
        }
    };

    std::size_t lengthOfTokens() const {
        const PCRE2_SIZE* extents = pcre2_get_ovector_pointer_16(m_data);
        std::size_t length = 0;
        for (std::size_t pair = 1; pair < m_pairs; ++pair) {
            length += extents[2 * pair + 1] - extents[2 * pair];  // 0 for a group that is not set
        }
        return length;
    }

    pcre2_code_16* m_code;
    bool m_jit;
    std::u16string m_replacement;
    pcre2_match_data_16* m_data = nullptr;
    pcre2_match_context_16* m_context = nullptr;
    pcre2_jit_stack_16* m_stack = nullptr;
    std::size_t m_pairs = 0;
};

/// Many patterns, none of which may match the empty text.
class Pcre2_Set_Searcher : public Set_Searcher {
public:
    void add(std::unique_ptr<Pcre2_Searcher> pattern) {
        pattern->prepare();
        m_patterns.push_back(std::move(pattern));
    }

protected:
    std::optional<Answer> countIn(std::u16string_view text) override {
        return walkSet(m_patterns.size(), text, true,
                       [this](std::size_t i, std::u16string_view subject, std::size_t offset,
                              std::size_t& start, std::size_t& end) {
                           return m_patterns[i]->search(subject, offset, start, end, PCRE2_NOTEMPTY);
                       });
    }

private:
    std::vector<std::unique_ptr<Pcre2_Searcher>> m_patterns;
};

class Pcre2_Engine : public Engine {
public:
    explicit Pcre2_Engine(bool jit) : m_jit(jit), m_context(pcre2_compile_context_create_16(nullptr)) {
        pcre2_set_newline_16(m_context, PCRE2_NEWLINE_LF);
    }
    Pcre2_Engine(const Pcre2_Engine&) = delete;
    Pcre2_Engine& operator=(const Pcre2_Engine&) = delete;
    ~Pcre2_Engine() override { pcre2_compile_context_free_16(m_context); }

    std::string name() const override { return m_jit ? "PCRE2 JIT" : "PCRE2"; }
    std::string version() const override {
        PCRE2_UCHAR16 units16[64];
        const int length = pcre2_config_16(PCRE2_CONFIG_VERSION, units16);
        return {units16, units16 + length - 1};
    }
    bool isInterpreter() const override { return !m_jit; }

    bool takesSets() const override { return m_jit; }
    std::unique_ptr<Searcher> compile(const Request& request) const override {
        return isSet(request.task) ? compileSet(request) : compileOne(request);
    }

private:
    std::unique_ptr<Searcher> compileSet(const Request& request) const {
        auto set = std::make_unique<Pcre2_Set_Searcher>();
        for (const std::u16string_view pattern : patternsOf(request.pattern)) {
            std::unique_ptr<Pcre2_Searcher> searcher = compileOne({pattern, request.flags, request.task, {}});
            if (searcher == nullptr) {
                return nullptr;
            }
            set->add(std::move(searcher));
        }
        return set;
    }
    std::unique_ptr<Pcre2_Searcher> compileOne(const Request& request) const {
        int error = 0;
        PCRE2_SIZE place = 0;
        pcre2_code_16* code = pcre2_compile_16(units(request.pattern), request.pattern.size(),
                                               toOptions(request.flags), &error, &place, m_context);
        if (code == nullptr || (m_jit && pcre2_jit_compile_16(code, PCRE2_JIT_COMPLETE) != 0)) {
            pcre2_code_free_16(code);
            return nullptr;
        }
        return std::make_unique<Pcre2_Searcher>(code, m_jit, request.replacement);
    }
    bool m_jit;
    pcre2_compile_context_16* m_context;
};

}  // namespace

std::unique_ptr<Engine> makePcre2(bool jit) {
    return std::make_unique<Pcre2_Engine>(jit);
}

}  // namespace corvane_bench
