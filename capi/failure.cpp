#include "capi/failure.h"

#include "capi/check.h"
#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/memoryexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/io/ioexceptions.h"
#include "common/parser/parserexception.h"
#include "hostkit/recording.h"
#include "pathfinder/version.h"

#include <memory>
#include <string_view>

namespace ZUNO::CInterface {

using namespace Common;

static_assert(ZUNO_HEADER_VERSION == ZUNO_VERSION);

namespace {

/// A thread's last error. It takes no memory and needs no destruction, so that it can always be
/// kept, at the end of memory and of a thread.
struct LastError {
    zuno_status mStatus = ZUNO_OK;
    char mText[2048] = "";
    char mType[64] = "";
    char mWords[3072] = ""; ///< the parameters' names and values, one after the other
    zuno_parameter mParameters[6] = {};
    std::uint32_t mParameterCount = 0;
};

constinit thread_local LastError theLastError;

/// Copies a text, or as much of it as there is room for in whole characters. Returns the place
/// behind its zero.
char* put(std::string_view text, char* place, const char* end) {
    std::size_t count = std::min(text.size(), static_cast<std::size_t>(end - place) - 1);
    while (count < text.size() && count > 0 &&
           (static_cast<unsigned char>(text[count]) & 0xC0U) == 0x80U)
        --count;
    place += text.copy(place, count);
    *place = 0;
    return place + 1;
}

zuno_status statusOf(const Exceptions::Exception& exception) {
    if (dynamic_cast<const Memory::OutOfMemoryException*>(&exception) != nullptr)
        return ZUNO_NO_MEMORY;
    if (dynamic_cast<const IO::IOException*>(&exception) != nullptr ||
        dynamic_cast<const Exceptions::UnAuthorizedAccessException*>(&exception) != nullptr)
        return ZUNO_BAD_FILE;
    if (dynamic_cast<const Parser::ParserException*>(&exception) != nullptr)
        return ZUNO_BAD_MESH;
    if (dynamic_cast<const Exceptions::ArgumentException*>(&exception) != nullptr)
        return ZUNO_BAD_ARGUMENT;
    return ZUNO_FAILED;
}

Failure failureOf(const Exceptions::Exception& exception) {
    Failure failure{statusOf(exception), exception.getMessage().getConstCharPtr(),
                    exception.getName().getConstCharPtr()};
    Exceptions::ParameterList parameters;
    exception.getParameters(parameters);
    for (const Exceptions::Parameter& parameter : parameters)
        failure.mParameters.emplace_back(parameter.mFirst.getConstCharPtr(),
                                         parameter.mSecond.getConstCharPtr());
    return failure;
}

} // namespace

Failure currentFailure() {
    try {
        throw;
    } catch (Failure& failure) {
        return std::move(failure);
    } catch (Exceptions::Exception* exception) {
        const std::unique_ptr<Exceptions::Exception> owner(exception);
        return failureOf(*owner);
    } catch (const HostKit::RecordingError& error) {
        return {ZUNO_BAD_RECORDING, error.what()};
    } catch (const std::bad_alloc&) {
        return {ZUNO_NO_MEMORY, "No Memory available", "std::bad_alloc"};
    } catch (const std::exception& error) {
        return {ZUNO_FAILED, error.what()};
    } catch (...) {
        return {ZUNO_FAILED, "a callback of the host's threw an exception"};
    }
}

zuno_status keep(const char* function, const Failure& failure) noexcept {
    LastError& last = theLastError;
    last.mStatus = failure.mStatus;
    char* const text = put(function, last.mText, std::end(last.mText));
    text[-1] = ':';
    *text = ' ';
    put(failure.mText, text + 1, std::end(last.mText));
    put(failure.mType, last.mType, std::end(last.mType));
    last.mParameterCount = 0;
    char* place = last.mWords;
    for (const auto& [name, value] : failure.mParameters) {
        const std::size_t left = static_cast<std::size_t>(std::end(last.mWords) - place);
        if (last.mParameterCount == std::size(last.mParameters) || left < name.size() + 16)
            break;
        zuno_parameter& parameter = last.mParameters[last.mParameterCount++];
        parameter.name = place;
        place = put(name, place, std::end(last.mWords));
        parameter.value = place;
        place = put(value, place, std::end(last.mWords));
    }
    return last.mStatus;
}

zuno_status keepCurrentFailure(const char* function) noexcept {
    try {
        return keep(function, currentFailure());
    } catch (...) { // no memory for the failure's texts
        LastError& last = theLastError;
        last = {};
        last.mStatus = ZUNO_NO_MEMORY;
        put(function, last.mText, std::end(last.mText));
        return last.mStatus;
    }
}

} // namespace ZUNO::CInterface

using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_last_error(zuno_error* error) {
    return guarded(__func__, [&] {
        const LastError& last = theLastError;
        checkStruct(error, "the error");
        error->status = last.mStatus;
        error->text = last.mText;
        error->type = last.mType;
        error->parameters = last.mParameters;
        error->parameter_count = last.mParameterCount;
        return last.mStatus == ZUNO_OK ? ZUNO_NONE : ZUNO_OK;
    });
}

extern "C" zuno_status zuno_check_version(std::uint32_t header, std::uint32_t* library) {
    return guarded(__func__, [&] {
        if (library != nullptr)
            *library = ZUNO_HEADER_VERSION;
        if (header / 10000 != ZUNO_HEADER_VERSION / 10000 ||
            header / 100 > ZUNO_HEADER_VERSION / 100)
            throw Failure{ZUNO_BAD_VERSION, "the header is of version " + std::to_string(header) +
                                                ", the library of " +
                                                std::to_string(ZUNO_HEADER_VERSION)};
        return ZUNO_OK;
    });
}
