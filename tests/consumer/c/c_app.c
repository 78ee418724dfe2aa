/* What a program in C does first, built against the installed library. */
#include <corvane/corvane.h>

#include <stdio.h>
#include <string.h>

int main(void) {
    cvre_pattern* pattern;
    cvre_matcher* matcher;
    size_t start = 0, length = 0;
    int right = cvre_compile(cvre_utf8("a(b+)c"), NULL, &pattern) == CVRE_OK &&
                cvre_matcher_new(pattern, &matcher) == CVRE_OK &&
                cvre_matcher_use(matcher, cvre_utf8("xxabbc"), CVRE_BYTES, NULL) == CVRE_OK &&
                cvre_matcher_next(matcher) == CVRE_OK;
    if (!right) {
        printf("%s\n", cvre_last_message());
        return 1;
    }
    cvre_matcher_extent(matcher, &start, &length);
    right = cvre_matcher_match_at(matcher, 3) == CVRE_NO_MATCH && cvre_matcher_match_at(matcher, 2) == CVRE_OK &&
            CVRE_LINES_APART == 0x80;
    printf("[%u,%u] %s\n", (unsigned)start, (unsigned)length, cvre_version());
    cvre_matcher_free(matcher);
    cvre_pattern_free(pattern);
    return right && start == 2 && length == 4 && strlen(cvre_version()) > 4 ? 0 : 1;
}
