// The one routine that writes text into a growable buffer of the host's.
#pragma once

#include <cstddef>

/// Replaces `removed` units at `position` of a buffer that holds `length` units by `sourceLength` units from
/// `source` (which must not lie in the buffer). When the new length exceeds `*capacity`, the capacity grows
/// to its old value plus the new length and the buffer is reallocated. Returns the buffer, which may have
/// moved; the caller updates the length. All sizes in code units.
char16_t* insertText(char16_t* buffer, std::size_t length, std::size_t position, std::size_t removed,
                     const char16_t* source, std::size_t sourceLength, std::size_t* capacity);
