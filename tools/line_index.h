// Line numbers of a large text, for positions queried in ascending order.
#pragma once

#include <cstddef>
#include <string_view>

namespace tool {

// Reads every unit once however many positions are queried, even when the whole text is a single line. Refers
// to the text, which has to outlive it.
class LineCursor {
public:
    explicit LineCursor(std::u16string_view text) : text_(text) {}

    // Positions must not descend. A line feed belongs to the line it ends.
    void advanceTo(std::size_t position);

    std::size_t line() const { return line_; }  // counted from 1
    std::size_t lineBegin() const { return lineBegin_; }
    std::size_t column() const { return position_ - lineBegin_ + 1; }  // counted from 1, in code units

private:
    std::u16string_view text_;
    std::size_t position_ = 0;
    std::size_t line_ = 1;
    std::size_t lineBegin_ = 0;
};

// One past the line feed that ends the line holding `position`, or the end of the text.
std::size_t lineEndAfter(std::u16string_view text, std::size_t position);

}  // namespace tool
