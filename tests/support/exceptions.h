#pragma once

#include "common/exceptions/exception.h"

#include <string>

namespace ZUNO::Tests {

/// Runs an action and tells what it raised: "Name: message {Parameter=value}", or "" for nothing.
template <typename Action>
std::string raisedBy(Action action) {
    std::string text;
    try {
        action();
    } catch (Common::Exceptions::Exception* exception) {
        text = exception->getName().getConstCharPtr();
        text += ": ";
        text += exception->getMessage().getConstCharPtr();
        {
            Common::Exceptions::ParameterList parameters;
            exception->getParameters(parameters);
            for (const auto& parameter : parameters) {
                text += " {";
                text += parameter.mFirst.getConstCharPtr();
                text += "=";
                text += parameter.mSecond.getConstCharPtr();
                text += "}";
            }
        }
        delete exception;
    }
    return text;
}

} // namespace ZUNO::Tests
