// Surveying the case of a text, and giving it to another.
#include "regexp/replace/case_adjustment.h"

#include "host/unit_class.h"

namespace {

// The underscore, which joins words elsewhere, separates them here: names like `first_name` have words.
bool separatesWords(char16_t unit) {
    return unit == u'_' || cvu_isspace(unit);
}

// What is known of a text after some of its units. All forms are tracked at once, as a form may fail at the
// last unit.
class Case_Survey {
public:
    void add(char16_t unit) {
        if (separatesWords(unit)) {
            endWord();
        } else if (cvu_isupper(unit)) {
            anyUpper = true;
            // Only as the first cased letter of a word; a capital later in a word fits no form but upper.
            wordCapitalised = !inWord;
            wordLower = false;
            inWord = true;
        } else if (cvu_islower(unit)) {
            anyLower = true;
            wordCapitalised = wordCapitalised && inWord;
            inWord = true;
        }
    }

    // Closes the last word, so it is called once. The order of the checks is that of the forms.
    RE_Case_Form form() {
        endWord();
        if (!anyUpper) {
            return anyLower ? RE_Case_Form::lower : RE_Case_Form::irregular;
        }
        if (!anyLower) {
            return RE_Case_Form::upper;
        }
        if (allCapitalised) {
            return RE_Case_Form::every_word;
        }
        return firstCapitalised && laterLower ? RE_Case_Form::first_word : RE_Case_Form::irregular;
    }

private:
    // Words without cased letters are skipped: `inWord` is set by a cased letter only.
    void endWord() {
        if (!inWord) {
            return;
        }
        allCapitalised = allCapitalised && wordCapitalised;
        if (words == 0) {
            firstCapitalised = wordCapitalised;
        } else {
            laterLower = laterLower && wordLower;
        }
        ++words;
        inWord = false;
        wordCapitalised = false;
        wordLower = true;
    }

    bool anyUpper = false;
    bool anyLower = false;
    bool inWord = false;  ///< a cased letter of the current word was met
    bool wordCapitalised = false;
    bool wordLower = true;
    std::size_t words = 0;
    bool allCapitalised = true;
    bool firstCapitalised = false;
    bool laterLower = true;  ///< every word but the first is in lower case
};

// Raises the first unit of each word, up to `most` words. Here a word begins with any unit that separates
// nothing: a digit at its front has no upper-case form and uses up the turn.
void capitaliseWords(char16_t* text, std::size_t length, std::size_t most) {
    bool wordStarts = true;
    for (std::size_t i = 0; i < length && most > 0; ++i) {
        const bool separator = separatesWords(text[i]);
        if (wordStarts && !separator) {
            text[i] = cvu_toupper(text[i]);
            --most;
        }
        wordStarts = separator;
    }
}

}  // namespace

RE_Case_Form caseForm(std::u16string_view text) {
    Case_Survey survey;
    for (const char16_t unit : text) {
        survey.add(unit);
    }
    return survey.form();
}

void applyCaseForm(char16_t* text, std::size_t length, RE_Case_Form form) {
    if (form == RE_Case_Form::irregular) {
        return;
    }
    // Lower case first: the replacement may have capitals of its own.
    for (std::size_t i = 0; i < length; ++i) {
        text[i] = form == RE_Case_Form::upper ? cvu_toupper(text[i]) : cvu_tolower(text[i]);
    }
    if (form == RE_Case_Form::every_word) {
        capitaliseWords(text, length, length);
    } else if (form == RE_Case_Form::first_word) {
        capitaliseWords(text, length, 1);
    }
}
