// Patterns, cancel handles, and the text translations.
#include "bindings/c/compiled.h"
#include "regexp/inspect/growth.h"
#include "regexp/inspect/outline.h"
#include "regexp/translate/translate.h"

using namespace corvane_c;

namespace {

Compiled& compiledOf(const cvre_pattern* pattern) {
    return *needed(pattern).compiled;
}

void put(cvre_buffer* buffer, std::string_view bytes) {
    needed(buffer) = bufferOf(bytes);
}

template <class Translation>
cvre_status translated(cvre_text text, cvre_buffer* pattern, Translation translation) {
    return guarded([&] {
        needed(pattern) = {};
        const RE_Encoding encoding = checked(text);
        put(pattern, encodedUnits(translation(unitsOf(text)), encoding));
        return CVRE_OK;
    });
}

}  // namespace

extern "C" {

cvre_status cvre_compile(cvre_text pattern, const cvre_compile_options* options, cvre_pattern** made) {
    return guarded([&] {
        needed(made) = nullptr;
        auto handle = std::make_unique<cvre_pattern>();
        handle->compiled = std::make_shared<Compiled>(pattern, options);
        *made = handle.release();
        return CVRE_OK;
    });
}

void cvre_pattern_free(cvre_pattern* pattern) {
    delete pattern;
}

size_t cvre_pattern_warning_count(const cvre_pattern* pattern) {
    return pattern != nullptr ? pattern->compiled->source.warnings.size() : 0;
}

cvre_status cvre_pattern_warning(const cvre_pattern* pattern, size_t index, cvre_warning* warning) {
    return guarded([&] { return compiledOf(pattern).source.warning(index, warning); });
}

size_t cvre_pattern_token_count(const cvre_pattern* pattern) {
    return pattern != nullptr ? pattern->compiled->names.size() : 0;
}

cvre_status cvre_pattern_token_name(const cvre_pattern* pattern, size_t token, cvre_text* name) {
    return guarded([&]() -> cvre_status {
        const Compiled& compiled = compiledOf(pattern);
        needed(name);
        require(token < compiled.names.size(), "there are not so many tokens", CVRE_BAD_INDEX);
        if (!compiled.names[token]) {
            return CVRE_ABSENT;
        }
        *name = textOf(*compiled.names[token], compiled.source.encoding);
        return CVRE_OK;
    });
}

cvre_status cvre_pattern_token_number(const cvre_pattern* pattern, cvre_text name, size_t* token) {
    return guarded([&]() -> cvre_status {
        const Compiled& compiled = compiledOf(pattern);
        needed(token);
        const std::optional<std::size_t> number = tokenNamed(*compiled.tree, unitsOf(name));
        if (!number) {
            return CVRE_ABSENT;
        }
        *token = *number;
        return CVRE_OK;
    });
}

uint64_t cvre_pattern_memory(const cvre_pattern* pattern) {
    return pattern != nullptr ? pattern->compiled->tree->memoryUse() : 0;
}

cvre_status cvre_pattern_make_machine_code(cvre_pattern* pattern) {
    return guarded([&] {
        require(compiledOf(pattern).tree->makeMachineCode(), "there is no machine code for this pattern here",
                CVRE_UNAVAILABLE);
        return CVRE_OK;
    });
}

cvre_status cvre_pattern_make_automaton(cvre_pattern* pattern) {
    return guarded([&] {
        require(compiledOf(pattern).tree->makeDfa(), "there is no automaton for this pattern",
                CVRE_UNAVAILABLE);
        return CVRE_OK;
    });
}

cvre_status cvre_pattern_growth(const cvre_pattern* pattern, size_t times, cvre_growth* growth,
                                cvre_buffer* witness) {
    return guarded([&] {
        if (witness != nullptr) {
            *witness = {};
        }
        const RE_Tree& tree = *compiledOf(pattern).tree;
        needed(growth);
        const RE_Growth judged = judgeGrowth(tree);
        if (witness != nullptr) {
            require(times <= 1'000'000, "so long a witness is none", CVRE_BAD_SIZE);
            if (judged.kind == RE_Growth::Kind::polynomial || judged.kind == RE_Growth::Kind::exponential) {
                put(witness, encodedUnits(judged.witness(times), RE_Encoding::utf8));
            }
        }
        *growth = static_cast<cvre_growth>(judged.kind);
        return CVRE_OK;
    });
}

// A context of its own: the pattern's may be in use by a search.
cvre_status cvre_pattern_explain(const cvre_pattern* pattern, cvre_buffer* explanation) {
    return guarded([&] {
        needed(explanation) = {};
        const Source& source = compiledOf(pattern).source;
        Pattern_Context context(*source.options, source.host, false);
        put(explanation,
            outlinePattern(source.units.data(), source.units.size(), source.asked.flags, &context).text);
        return CVRE_OK;
    });
}

cvre_status cvre_pattern_graph(const cvre_pattern* pattern, cvre_buffer* graph) {
    return guarded([&] {
        needed(graph) = {};
        const RE_Tree& tree = *compiledOf(pattern).tree;
        put(graph, tree.graph());
        return CVRE_OK;
    });
}

cvre_status cvre_cancel_new(cvre_cancel** made) {
    return guarded([&] {
        needed(made) = nullptr;
        *made = new cvre_cancel;
        return CVRE_OK;
    });
}

cvre_status cvre_cancel_request(cvre_cancel* cancel) {
    return guarded([&] {
        needed(cancel).source.request_stop();
        return CVRE_OK;
    });
}

int32_t cvre_cancel_requested(const cvre_cancel* cancel) {
    return cancel != nullptr && cancel->source.stop_requested() ? 1 : 0;
}

void cvre_cancel_free(cvre_cancel* cancel) {
    delete cancel;
}

cvre_status cvre_escape(cvre_text text, cvre_buffer* pattern) {
    return translated(text, pattern, [](std::u16string_view units) { return RE_Translate::escape(units); });
}

cvre_status cvre_wildcard(cvre_text wildcard, cvre_buffer* pattern) {
    return translated(wildcard, pattern,
                      [](std::u16string_view units) { return RE_Translate::translateWildcard(units); });
}

}  // extern "C"
