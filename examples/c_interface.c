/* From C: matches and tokens of UTF-8, a replacement by a function, and what is wrong with a pattern. */
#include <corvane/corvane.h>

#include <stdio.h>
#include <string.h>

static int show_matches(const cvre_pattern* pattern, const char* subject) {
    cvre_matcher* matcher;
    cvre_status status = cvre_matcher_new(pattern, &matcher);
    if (status == CVRE_OK) {
        status = cvre_matcher_use(matcher, cvre_utf8(subject), CVRE_BYTES, NULL);
    }
    while (status == CVRE_OK && (status = cvre_matcher_next(matcher)) == CVRE_OK) {
        size_t start, length, year, digits;
        cvre_matcher_extent(matcher, &start, &length);
        if (cvre_matcher_token_named(matcher, cvre_utf8("year"), &year, &digits) == CVRE_OK) {
            printf("[%zu,%zu] %.*s\n", start, length, (int)digits, subject + year);
        }
    }
    cvre_matcher_free(matcher);
    return status == CVRE_NO_MATCH ? 0 : 1;
}

/* Brackets around the first token. */
static cvre_host_result in_brackets(void* count, cvre_matcher* match, cvre_output* output) {
    cvre_text token;
    ++*(int*)count;
    if (cvre_matcher_token_text(match, 0, &token) != CVRE_OK) {
        return CVRE_HOST_FALSE;
    }
    cvre_output_write(output, cvre_utf8("["));
    cvre_output_write(output, token);
    cvre_output_write(output, cvre_utf8("]"));
    return CVRE_HOST_TRUE;
}

static void show_warnings(const cvre_pattern* pattern) {
    size_t i;
    for (i = 0; i < cvre_pattern_warning_count(pattern); ++i) {
        cvre_warning warning = {sizeof warning, 0, 0, 0, {0, 0}, NULL, NULL, {NULL, 0, CVRE_UTF8}};
        cvre_pattern_warning(pattern, i, &warning);
        printf("warning %u at %zu: %s\n", (unsigned)warning.number, warning.position, warning.sentence);
    }
}

int main(void) {
    const char* subject = "K\xC3\xB6ln 1248, M\xC3\xBCnchen 1158";
    cvre_pattern* pattern;
    cvre_pattern* wrong;
    cvre_buffer replaced;
    int count = 0;
    if (cvre_compile(cvre_utf8("(?<year>\\d+)"), NULL, &pattern) != CVRE_OK) {
        fprintf(stderr, "%s\n", cvre_last_message());
        return 1;
    }
    if (show_matches(pattern, subject) != 0) {
        return 1;
    }
    if (cvre_replace_with(pattern, cvre_utf8(subject), in_brackets, &count, NULL, &replaced, NULL) == CVRE_OK) {
        printf("%s (%d)\n", (const char*)replaced.data, count);
        cvre_free(replaced.data);
    }
    cvre_pattern_free(pattern);

    if (cvre_compile(cvre_utf8("(a|b"), NULL, &wrong) == CVRE_OK) {
        show_warnings(wrong);
        cvre_pattern_free(wrong);
    }
    return 0;
}
