/* SPDX-License-Identifier: BSD-3-Clause */
/* Regular expressions for C, and for languages that call C.
 *
 *     cvre_pattern* pattern;
 *     cvre_matcher* matcher;
 *     size_t start, length;
 *     cvre_compile(cvre_utf8("(\\w+) Holmes"), NULL, &pattern);
 *     cvre_matcher_new(pattern, &matcher);
 *     cvre_matcher_use(matcher, cvre_utf8("Mr Sherlock Holmes"), CVRE_BYTES, NULL);
 *     while (cvre_matcher_next(matcher) == CVRE_OK) {
 *         cvre_matcher_extent(matcher, &start, &length);
 *     }
 *     cvre_matcher_free(matcher);
 *     cvre_pattern_free(pattern);
 *
 * Errors. Functions that can fail return a cvre_status; cvre_last_message() has the details. What a failing function was
 * to write is unchanged, except that handles, buffers and arrays to be made are null, and the counts of these are 0. Null handles, bad indices and bad sizes are
 * statuses, never a crash. No exception leaves the library, and it never aborts or prints. What is wrong with the syntax
 * of a pattern is no failure: the pattern has warnings, and the rest of it is compiled.
 *
 * Texts are a pointer, a size in bytes and an encoding. They are borrowed, for the call or for as long as a function says.
 * Ill-formed text is searched as if it had U+FFFD there. UTF-16 and UTF-32 are in the byte order of the machine.
 *
 * Offsets and lengths count what the caller asks for (cvre_offsets). Tokens, the texts of groups, count from 0: token 0
 * is $1 in a pattern.
 *
 * Structures that are passed by pointer begin with their size, sizeof of the type as the caller was compiled with it; one
 * that ends within a member is CVRE_BAD_SIZE. In options zero means the default, so `cvre_compile_options options = {sizeof options};` has all defaults.
 *
 * Threads. Patterns, replacements and cancel handles may be used by any number of threads at the same time. A matcher
 * belongs to one thread at a time. Handles may be freed in any order: those that need another keep what they need of it.
 * A handle must not be freed while a call uses it. Freeing null does nothing.
 *
 * Functions of the host that are called back must return: no longjmp and no exception may pass through the library.
 */
#ifndef CORVANE_CORVANE_H
#define CORVANE_CORVANE_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define CVRE_API __attribute__((visibility("default")))
#else
#define CVRE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- statuses ---- */

typedef int32_t cvre_status;
enum {
    CVRE_OK = 0,
    CVRE_NO_MATCH = 1, /* a search came to its end: no error */
    CVRE_ABSENT = 2,   /* the token took no part in the match, or there is no such thing: no error */
    /* What ended a search, or compiling, before its end. */
    CVRE_INTERRUPTED = 16,
    CVRE_STEPS_SPENT = 17,
    CVRE_MEMORY_FULL = 18, /* the ceiling of the limits */
    CVRE_CANCELLED = 19,
    CVRE_DEADLINE_PASSED = 20,
    CVRE_TOO_LARGE = 21, /* a text to be compiled: more units, nodes or work than it was allowed */
    /* Errors. */
    CVRE_BAD_ARGUMENT = 32, /* null where something is needed, or a value that an enumeration does not have */
    CVRE_BAD_SIZE = 33,     /* of a structure, or of a text that ends within a unit */
    CVRE_BAD_INDEX = 34,
    CVRE_NO_MEMORY = 35,
    CVRE_HOST_FAILED = 36, /* a function of the host said so */
    CVRE_NO_CURRENT_MATCH = 37,
    CVRE_UNAVAILABLE = 38, /* not on this machine, or not for this pattern */
    CVRE_FAILED = 39       /* something unforeseen */
};

/* A sentence for a status, in English; never null, lives for ever. */
CVRE_API const char* cvre_status_text(cvre_status status);
/* What was wrong with the last call on this thread that did not return CVRE_OK, CVRE_NO_MATCH or CVRE_ABSENT: UTF-8, never
 * null, good until the next such call on the thread. */
CVRE_API const char* cvre_last_message(void);
/* "MAJOR.MINOR.PATCH"; lives for ever. */
CVRE_API const char* cvre_version(void);

/* ---- texts ---- */

typedef int32_t cvre_encoding;
enum { CVRE_UTF8 = 0, CVRE_LATIN1 = 1, CVRE_UTF16 = 2, CVRE_UTF32 = 3 };

typedef int32_t cvre_offsets;
enum {
    CVRE_BYTES = 0,
    CVRE_UNITS = 1,     /* of UTF-16 */
    CVRE_CHARACTERS = 2 /* code points */
};

typedef struct cvre_text {
    const void* data; /* may be null when `bytes` is 0 */
    size_t bytes;     /* a multiple of 2 for UTF-16 and of 4 for UTF-32 */
    cvre_encoding encoding;
} cvre_text;

typedef struct cvre_extent {
    size_t start;
    size_t length;
} cvre_extent;

/* A result: `bytes` bytes, and four zero bytes after them. The caller frees `data` with cvre_free. */
typedef struct cvre_buffer {
    void* data;
    size_t bytes;
} cvre_buffer;

/* A text of zero-terminated UTF-8; null is empty. */
CVRE_API cvre_text cvre_utf8(const char* terminated);
/* Frees what the library says is the caller's. Null is allowed. */
CVRE_API void cvre_free(void* block);

/* ---- the interpreter of the host ---- */

/* Where a callback writes a text. Belongs to the library, for the time of the call. */
typedef struct cvre_output cvre_output;
/* Appends a text in any encoding. */
CVRE_API cvre_status cvre_output_write(cvre_output* output, cvre_text text);
/* The message (terminated UTF-8, copied) with which the call fails that is calling back on this thread. For callbacks that
 * return CVRE_HOST_ERROR. */
CVRE_API void cvre_host_message(const char* message);

typedef int32_t cvre_host_result;
enum {
    CVRE_HOST_TRUE = 0, /* also: done */
    CVRE_HOST_FALSE = 1, /* of a condition: it does not hold. Of an expression: it yields no text, so nothing matches there */
    CVRE_HOST_ERROR = 2  /* ends the call that led here, with CVRE_HOST_FAILED */
};

/* An expression of a pattern or a replacement, to be compiled. All texts are in the encoding of the host and good for the
 * time of the call. */
typedef struct cvre_expression {
    size_t size;
    cvre_text body;              /* with the names of variables in place of the references */
    const cvre_text* variables;  /* the names, in the order in which evaluations pass their texts */
    size_t variable_count;
} cvre_expression;

/* How expressions of patterns, such as (?(?@expr)yes|no) and (??@expr), and those of replacements, ${expr}, are compiled
 * and evaluated. Functions that are null refuse: `compile` is needed for any. They are called on the threads that compile
 * and search. The table is copied; `data` and the functions must live as long as what was compiled with them. */
typedef struct cvre_host {
    size_t size;
    void* data;             /* passed to each function */
    cvre_encoding encoding; /* of the texts that the functions are passed */
    /* Variables are called by this, a number, an underscore and a word, as in v1_token_1; terminated ASCII; null is "v". */
    const char* variable_prefix;
    /* Compiles an expression and stores whatever tells it from others in `*function`. */
    cvre_host_result (*compile)(void* data, const cvre_expression* expression, void** function);
    /* Writes the value of an expression for these texts of its variables. */
    cvre_host_result (*evaluate_text)(void* data, void* function, const cvre_text* arguments, size_t count,
                                      cvre_output* value);
    cvre_host_result (*evaluate_condition)(void* data, void* function, const cvre_text* arguments, size_t count);
    /* For its effects. */
    cvre_host_result (*run_script)(void* data, void* function, const cvre_text* arguments, size_t count);
    /* The function is not needed any more. */
    void (*release)(void* data, void* function);
} cvre_host;

/* ---- compiling ---- */

typedef uint32_t cvre_flags;
enum {
    CVRE_IGNORE_CASE = 0x01,
    CVRE_DOT_ALL = 0x02,      /* the dot matches line feeds, too */
    CVRE_LINE_ANCHORS = 0x04, /* ^ and $ match at lines, too */
    CVRE_FREE_SPACING = 0x08,
    CVRE_EVALUATE = 0x10,     /* expressions are compiled, where there is a host for them */
    CVRE_ALLOW_EMPTY = 0x20,  /* a match may be empty */
    CVRE_KEEP_TOKENS = 0x40,  /* closing a token leaves those with higher numbers in effect */
    CVRE_LINES_APART = 0x80   /* no unit matches a line feed, ^ and $ match at lines: a search of many lines finds what a
                               * search of each line alone would */
};

typedef int32_t cvre_when;
enum { CVRE_AUTO = 0, CVRE_NOW = 1, CVRE_NEVER = 2 };
typedef int32_t cvre_switch;
enum { CVRE_DEFAULT = 0, CVRE_ON = 1, CVRE_OFF = 2 };

/* Ends searches and compiling from outside: any thread may request that. Once requested it stays so. */
typedef struct cvre_cancel cvre_cancel;
CVRE_API cvre_status cvre_cancel_new(cvre_cancel** made);
CVRE_API cvre_status cvre_cancel_request(cvre_cancel* cancel);
CVRE_API int32_t cvre_cancel_requested(const cvre_cancel* cancel); /* 0 or 1; 0 for null */
CVRE_API void cvre_cancel_free(cvre_cancel* cancel);               /* those who use it may go on */

/* What compiling a text may take. A text that passes a limit is refused as a whole. */
typedef struct cvre_compile_limits {
    size_t size;
    uint64_t units;       /* of UTF-16 in the text; 0: no limit, as for all of these */
    uint64_t nodes;       /* made on the way, copies of repeated groups included */
    uint64_t work;        /* some hundred nanoseconds each, counted alike on every machine */
    uint64_t bytes;       /* held at one time, and by the pattern with machine code and automaton afterwards */
    uint64_t nanoseconds; /* from the call on */
    const cvre_cancel* cancel;
} cvre_compile_limits;

typedef struct cvre_compile_options {
    size_t size;
    cvre_flags flags;
    cvre_offsets offsets;    /* of warnings */
    cvre_when machine_code;  /* auto: once searches have been enough work. Not to be had is no error */
    cvre_when automaton;
    cvre_switch interruptible;         /* whether searches and compiling heed cvre_interrupt; off by default */
    cvre_switch linear_subpatterns;    /* passes of the compiler; they change no match */
    cvre_switch dot_star;
    cvre_switch null_nodes;
    int64_t inline_threshold; /* nodes up to which repetitions are unrolled; 0: the default, -1: none is */
    const cvre_host* host;    /* null: there are no expressions */
    const cvre_compile_limits* limits; /* null: none */
} cvre_compile_options;

typedef struct cvre_pattern cvre_pattern;

/* Compiles a pattern; null options are all defaults. The text is needed during the call only. Patterns never fail for
 * their syntax. One that passes a limit is refused: CVRE_TOO_LARGE, CVRE_MEMORY_FULL, CVRE_CANCELLED or
 * CVRE_DEADLINE_PASSED, with the place in the message. So is one that is interruptible while cvre_interrupt is called:
 * CVRE_INTERRUPTED. */
CVRE_API cvre_status cvre_compile(cvre_text pattern, const cvre_compile_options* options, cvre_pattern** made);
CVRE_API void cvre_pattern_free(cvre_pattern* pattern);

/* A problem in a pattern or a replacement. The texts are as long-lived as the handle that the warning is of. */
typedef struct cvre_warning {
    size_t size;
    uint32_t number;      /* 1 to 22; docs/dialect.md lists them */
    int32_t has_correction;
    size_t position;      /* where it was noticed, in what cvre_compile_options asked for */
    cvre_extent extent;   /* the part of the text that it is about; empty after the first 256 warnings */
    const char* name;     /* for programs: lower case, with hyphens */
    const char* sentence; /* for people, in English */
    cvre_text correction; /* what should probably be there instead, in the encoding of the text */
} cvre_warning;

CVRE_API size_t cvre_pattern_warning_count(const cvre_pattern* pattern); /* 0 for null */
/* Fills in `*warning`, whose `size` the caller has set. By position. */
CVRE_API cvre_status cvre_pattern_warning(const cvre_pattern* pattern, size_t index, cvre_warning* warning);

CVRE_API size_t cvre_pattern_token_count(const cvre_pattern* pattern); /* 0 for null */
/* The name of a token in the encoding of the pattern, as long-lived as that; CVRE_ABSENT when it has none. */
CVRE_API cvre_status cvre_pattern_token_name(const cvre_pattern* pattern, size_t token, cvre_text* name);
/* The lowest number that has this name; CVRE_ABSENT when none has. */
CVRE_API cvre_status cvre_pattern_token_number(const cvre_pattern* pattern, cvre_text name, size_t* token);
/* Bytes that the pattern holds; 0 for null. */
CVRE_API uint64_t cvre_pattern_memory(const cvre_pattern* pattern);
/* Makes machine code, or an automaton, now. CVRE_UNAVAILABLE where there is none to be had: searches go on without. */
CVRE_API cvre_status cvre_pattern_make_machine_code(cvre_pattern* pattern);
CVRE_API cvre_status cvre_pattern_make_automaton(cvre_pattern* pattern);

typedef int32_t cvre_growth;
enum { CVRE_LINEAR = 0, CVRE_POLYNOMIAL = 1, CVRE_EXPONENTIAL = 2, CVRE_UNKNOWN_GROWTH = 3 };
/* How the work of backtracking may grow with the subject. When `witness` is not null and there is one, it becomes a text
 * in UTF-8 that shows it, with `times` repetitions; else its data is null. May take a while: for tools. */
CVRE_API cvre_status cvre_pattern_growth(const cvre_pattern* pattern, size_t times, cvre_growth* growth,
                                         cvre_buffer* witness);
/* The pattern in English, a line for each part, in UTF-8. */
CVRE_API cvre_status cvre_pattern_explain(const cvre_pattern* pattern, cvre_buffer* explanation);
/* The graph of its nodes in the language DOT, in UTF-8. */
CVRE_API cvre_status cvre_pattern_graph(const cvre_pattern* pattern, cvre_buffer* graph);

/* ---- limits ---- */

/* For all searches of one subject together. */
typedef struct cvre_limits {
    size_t size;
    uint64_t steps;       /* a step is a node visited or 64 units scanned; 0: no limit */
    uint64_t bytes;       /* held at one time, converted text included; 0: no limit */
    uint64_t nanoseconds; /* from the call that takes the limits; 0: no limit */
    const cvre_cancel* cancel;
} cvre_limits;

/* What the searches of one subject took. */
typedef struct cvre_report {
    size_t size;
    cvre_status outcome; /* CVRE_OK: there was a match; CVRE_NO_MATCH; or what ended them */
    uint64_t steps;
    uint64_t peak_bytes;
    uint64_t converted_bytes; /* of the subject: those that the searches had to see */
} cvre_report;

/* ---- matching ---- */

typedef struct cvre_matcher cvre_matcher;

CVRE_API cvre_status cvre_matcher_new(const cvre_pattern* pattern, cvre_matcher** made);
CVRE_API void cvre_matcher_free(cvre_matcher* matcher);
/* From now on searches are of this subject, which must stay as it is until another is used or the matcher is freed.
 * Nothing is searched yet. Null limits are none. Buffers are kept from subject to subject. */
CVRE_API cvre_status cvre_matcher_use(cvre_matcher* matcher, cvre_text subject, cvre_offsets offsets,
                                      const cvre_limits* limits);
/* The next match from left to right, none overlapping another; an empty match that directly follows a match is left out.
 * CVRE_OK, CVRE_NO_MATCH, or what ended the search. Converts no more of the subject than the pattern has to see.
 * Allocates nothing for the match. */
CVRE_API cvre_status cvre_matcher_next(cvre_matcher* matcher);
/* The same from this offset on, which may be anywhere; text before it is seen by look-behinds. Matches go on
 * from there, but after an offset past the end, where nothing matches, from where they were. */
CVRE_API cvre_status cvre_matcher_find(cvre_matcher* matcher, size_t offset);
/* A match that starts at exactly this offset. A following cvre_matcher_next goes on where it was. Counts against the limits
 * like any search of the subject. */
CVRE_API cvre_status cvre_matcher_match_at(cvre_matcher* matcher, size_t offset);

/* Of the match found last; CVRE_NO_CURRENT_MATCH when there is none. A match that takes one half of a surrogate pair is told
 * as that of the whole character, but for CVRE_UNITS and in UTF-16. */
CVRE_API cvre_status cvre_matcher_extent(cvre_matcher* matcher, size_t* start, size_t* length);
/* CVRE_ABSENT when the token is not in effect or its group took no part; CVRE_BAD_INDEX when the pattern has no such
 * token. `start` and `length` may be null. */
CVRE_API cvre_status cvre_matcher_token(cvre_matcher* matcher, size_t token, size_t* start, size_t* length);
/* Of the first token of this name that took part. */
CVRE_API cvre_status cvre_matcher_token_named(cvre_matcher* matcher, cvre_text name, size_t* start, size_t* length);
CVRE_API int32_t cvre_matcher_took_part(const cvre_matcher* matcher, size_t token); /* 0 or 1; 0 for null */
/* The bytes of the match, or of a token: a part of the subject, in its encoding. */
CVRE_API cvre_status cvre_matcher_text(cvre_matcher* matcher, cvre_text* text);
CVRE_API cvre_status cvre_matcher_token_text(cvre_matcher* matcher, size_t token, cvre_text* text);
CVRE_API cvre_status cvre_matcher_report(const cvre_matcher* matcher, cvre_report* report);

/* The parts between the matches, an array of `*count` extents that the caller frees with cvre_free. There is at least one.
 * Where a limit ends the searches there are none, and the status says why. */
CVRE_API cvre_status cvre_split(const cvre_pattern* pattern, cvre_text subject, cvre_offsets offsets,
                                const cvre_limits* limits, cvre_extent** parts, size_t* count);

/* ---- replacing ---- */

/* A compiled replacement text: docs/replacement.md has the language. */
typedef struct cvre_replacement cvre_replacement;
/* Of the options only flags, offsets, interruptible, the host and the limits count. Refuses what cvre_compile does. */
CVRE_API cvre_status cvre_replacement_compile(cvre_text text, const cvre_compile_options* options,
                                              cvre_replacement** made);
CVRE_API void cvre_replacement_free(cvre_replacement* replacement);
CVRE_API size_t cvre_replacement_warning_count(const cvre_replacement* replacement); /* 0 for null */
CVRE_API cvre_status cvre_replacement_warning(const cvre_replacement* replacement, size_t index, cvre_warning* warning);

typedef struct cvre_replace_options {
    size_t size;
    uint64_t which;          /* the number of the only match to replace, counted from 1; 0: all are */
    cvre_switch adjust_case; /* the text takes the case of the match; off by default */
    cvre_offsets offsets;    /* of the matcher that a callback gets */
    const cvre_limits* limits;
} cvre_replace_options;

/* The subject with its matches replaced, in its encoding; what no match covers is copied byte by byte. `matches` (null:
 * not wanted) becomes their number. CVRE_OK also when there was no match. Where something ends the searches the text after
 * the last match found stays as it is, the status says what it was, and the result is there all the same. */
CVRE_API cvre_status cvre_replace(const cvre_pattern* pattern, cvre_text subject, const cvre_replacement* replacement,
                                  const cvre_replace_options* options, cvre_buffer* result, size_t* matches);
/* Writes what replaces a match. The matcher is for looking at the match, during the call. */
typedef cvre_host_result (*cvre_replace_function)(void* data, cvre_matcher* match, cvre_output* output);
/* The same by a function: CVRE_HOST_FALSE leaves the match as it is, CVRE_HOST_ERROR ends the call without a result. */
CVRE_API cvre_status cvre_replace_with(const cvre_pattern* pattern, cvre_text subject, cvre_replace_function function,
                                       void* data, const cvre_replace_options* options, cvre_buffer* result,
                                       size_t* matches);

/* ---- pattern texts ---- */

/* A pattern that matches exactly this text where case counts and spacing is not free; and one for a wildcard with * and ?.
 * In the encoding of the text. */
CVRE_API cvre_status cvre_escape(cvre_text text, cvre_buffer* pattern);
CVRE_API cvre_status cvre_wildcard(cvre_text wildcard, cvre_buffer* pattern);

/* ---- the process ---- */

/* Raises (1) or lowers (0) the flag that ends all interruptible calls of the process that are under way, searches and
 * compiling; it stays up until it is lowered. Each call looks for its being raised from its beginning on: a flag that was
 * raised before a call, or between two calls of a matcher, does not stop the later one. To end what is to come, request
 * it of a cvre_cancel. May be called by any thread and by a signal handler. */
CVRE_API void cvre_interrupt(int32_t pending);
CVRE_API int32_t cvre_interrupt_pending(void);

/* Watches the memory of the engine. `allow` is called before a block is made or resized, with its size in bytes: 0 makes
 * that fail. `allocated` and `freed` are called once for each block. Any of them may be null. They are called by every
 * thread that allocates, must not allocate by this library, and stay installed until others, or null for none, are. The
 * table is copied; `data` must live on after that as long as a call may be under way. */
typedef struct cvre_memory_watch {
    size_t size;
    void* data;
    int32_t (*allow)(void* data, size_t bytes);
    void (*allocated)(void* data);
    void (*freed)(void* data);
} cvre_memory_watch;
CVRE_API cvre_status cvre_watch_memory(const cvre_memory_watch* watch);

#ifdef __cplusplus
}
#endif

#endif /* CORVANE_CORVANE_H */
