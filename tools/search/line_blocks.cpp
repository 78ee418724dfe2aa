// The rest of a block after its last line end is moved to the front of the buffer, where the next read continues
// it. The buffer grows only for a line that does not fit.
#include "tools/search/line_blocks.h"

#include <cstring>

namespace tool {

void LineBlocks::use(ByteSource& source) {
    source_ = &source;
    ended_ = false;
    begin_ = end_ = 0;
    offset_ = 0;
    if (buffer_.size() < blockBytes) buffer_.resize(blockBytes);
}

// False when nothing more comes.
bool LineBlocks::fill() {
    if (end_ == buffer_.size()) buffer_.resize(2 * buffer_.size());
    const std::size_t got = source_->read(buffer_.data() + end_, buffer_.size() - end_);
    end_ += got;
    ended_ = got == 0;
    return !ended_;
}

bool LineBlocks::next(LineBlock& block) {
    if (begin_ != 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        offset_ += begin_;
        begin_ = 0;
    }
    // Only what is new is looked at for a line end, so that one long line is read in linear time.
    for (std::size_t seen = end_; !ended_ && fill();) {
        const void* last = holdsAll_ ? nullptr : ::memrchr(buffer_.data() + seen, terminator_, end_ - seen);
        seen = end_;
        if (last == nullptr) continue;
        begin_ = static_cast<std::size_t>(static_cast<const char*>(last) - buffer_.data()) + 1;
        block = {{buffer_.data(), begin_}, offset_};
        return true;
    }
    begin_ = end_;
    block = {{buffer_.data(), end_}, offset_};
    return end_ != 0;
}

}  // namespace tool
