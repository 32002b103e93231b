#include "hostkit/exceptiontext.h"

#include <memory>

namespace ZUNO::HostKit {

using namespace Common;

std::string takeMessage(Exceptions::Exception* exception) {
    const std::unique_ptr<Exceptions::Exception> owner(exception);
    std::string text = exception->getMessage().getConstCharPtr();
    Exceptions::ParameterList parameters;
    exception->getParameters(parameters);
    const char* separator = " (";
    for (const Exceptions::Parameter& parameter : parameters) {
        text += separator;
        text += parameter.mFirst.getConstCharPtr();
        text += ": ";
        text += parameter.mSecond.getConstCharPtr();
        separator = ", ";
    }
    if (!parameters.empty())
        text += ")";
    return text;
}

} // namespace ZUNO::HostKit
