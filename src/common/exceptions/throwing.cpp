// Functions that throw on behalf of headers that the exceptions themselves are built on.
#include "common/exceptions/argumentexceptions.h"
#include "common/exceptions/stateexceptions.h"
#include "common/report/indexerror.h"

namespace ZUNO::Common {

void Exceptions::throwNullDereference() {
    throw new InvalidStateException("Try to dereference a NULL pointer");
}

void Exceptions::throwIndexError(const char* argumentName) {
    throw new ArgumentOutOfRangeException(argumentName, "There is no element with this index");
}

} // namespace ZUNO::Common
