// Statuses, messages and checks.
#include "bindings/c/guard.h"

#include "regexp/text/text_search.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <new>

namespace corvane_c {
namespace {

/// Of a fixed size, so that noting that memory is full takes none.
struct Message {
    char text[400];
};
thread_local Message lastMessage{"no error"};
thread_local Message messageOfHost{""};

void put(Message& message, std::string_view text) noexcept {
    // Not within a character.
    std::size_t size = std::min(text.size(), sizeof message.text - 1);
    while (size < text.size() && size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) {
        --size;
    }
    std::memcpy(message.text, text.data(), size);
    message.text[size] = '\0';
}

}  // namespace

void setMessage(std::string_view message) noexcept {
    put(lastMessage, message);
}

const char* hostMessage() noexcept {
    return messageOfHost.text[0] != '\0' ? messageOfHost.text : "a function of the host failed";
}

cvre_status statusOfException() noexcept {
    try {
        throw;
    } catch (const Failure& failure) {
        setMessage(failure.message);
        return failure.status;
    } catch (const std::bad_alloc&) {
        setMessage("there is no memory");
        return CVRE_NO_MEMORY;
    } catch (const std::exception& error) {
        setMessage(error.what());
    } catch (...) {
        setMessage("an unknown exception");
    }
    return CVRE_FAILED;
}

RE_Encoding checked(const cvre_text& text) {
    checkRange(text.encoding, CVRE_UTF32);
    require(text.data != nullptr || text.bytes == 0, "a text is null");
    require(text.bytes <= PTRDIFF_MAX, "a text is larger than memory", CVRE_BAD_SIZE);
    const auto encoding = static_cast<RE_Encoding>(text.encoding);
    require(text.bytes % reUnitBytes(encoding) == 0, "a text ends within a unit", CVRE_BAD_SIZE);
    return encoding;
}

RE_Offsets checkedOffsets(cvre_offsets offsets) {
    switch (offsets) {
        case CVRE_BYTES:
            return RE_Offsets::bytes;
        case CVRE_UNITS:
            return RE_Offsets::units;
        case CVRE_CHARACTERS:
            return RE_Offsets::characters;
        default:
            throw Failure{CVRE_BAD_ARGUMENT, "offsets count bytes, units or characters"};
    }
}

std::u16string unitsOf(const cvre_text& given) {
    RE_Text text;
    text.use(checked(given), given.data, given.bytes);
    text.convert(RE_Text::all);
    return std::u16string(text.known());
}

cvre_buffer bufferOf(std::string_view bytes) {
    constexpr std::size_t zeros = 4;  // a terminator of the widest encoding
    void* const block = std::malloc(bytes.size() + zeros);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(block, bytes.data(), bytes.size());
    std::memset(static_cast<char*>(block) + bytes.size(), 0, zeros);
    return {block, bytes.size()};
}

cvre_text textOf(std::string_view bytes, RE_Encoding encoding) {
    return {bytes.data(), bytes.size(), static_cast<cvre_encoding>(encoding)};
}

std::string encodedUnits(std::u16string_view units, RE_Encoding encoding) {
    std::string bytes;
    reAppendEncoded(bytes, encoding, units);
    return bytes;
}

}  // namespace corvane_c

using namespace corvane_c;

extern "C" {

const char* cvre_status_text(cvre_status status) {
    switch (status) {
        case CVRE_OK:
            return "done";
        case CVRE_NO_MATCH:
            return "there is no match";
        case CVRE_ABSENT:
            return "there is no such thing";
        case CVRE_INTERRUPTED:
            return "interrupted";
        case CVRE_STEPS_SPENT:
            return "the steps that the search was allowed are spent";
        case CVRE_MEMORY_FULL:
            return "the memory that was allowed is full";
        case CVRE_CANCELLED:
            return "cancelled";
        case CVRE_DEADLINE_PASSED:
            return "the time that was allowed is over";
        case CVRE_TOO_LARGE:
            return "the text takes more units, nodes or work than was allowed";
        case CVRE_BAD_ARGUMENT:
            return "an argument is null or out of its range";
        case CVRE_BAD_SIZE:
            return "the size of a structure or a text is wrong";
        case CVRE_BAD_INDEX:
            return "an index is out of its range";
        case CVRE_NO_MEMORY:
            return "there is no memory";
        case CVRE_HOST_FAILED:
            return "a function of the host failed";
        case CVRE_NO_CURRENT_MATCH:
            return "no match has been found";
        case CVRE_UNAVAILABLE:
            return "it is not available here";
        case CVRE_FAILED:
            return "something unforeseen went wrong";
        default:
            return "an unknown status";
    }
}

const char* cvre_last_message(void) {
    return lastMessage.text;
}

const char* cvre_version(void) {
    return CORVANE_VERSION;
}

cvre_text cvre_utf8(const char* terminated) {
    return {terminated, terminated != nullptr ? std::strlen(terminated) : 0, CVRE_UTF8};
}

void cvre_free(void* block) {
    std::free(block);
}

void cvre_host_message(const char* message) {
    put(messageOfHost, message != nullptr ? message : "");
}

}  // extern "C"
