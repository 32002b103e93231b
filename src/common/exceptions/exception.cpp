#include "common/exceptions/exception.h"

#include "common/platform/messagebox.h"

namespace ZUNO::Common::Exceptions {

Exception::~Exception() {
    delete mInner;
}

String Exception::getName() const {
    return "Exception";
}

void Exception::getParameters(ParameterList&) const {}

void Exception::setInnerException(Exception* inner) {
    if (inner == mInner)
        return;
    delete mInner;
    mInner = inner;
}

String Exception::getReport(unsigned int callStackFlags) const {
    String report = "Error: " + mMessage;
    if (mInner != nullptr)
        report += "\nInner Exceptions:";
    for (const Exception* inner = mInner; inner != nullptr; inner = inner->mInner)
        report += "\n   " + inner->getName();
    ParameterList parameters(mAllocator);
    getParameters(parameters);
    if (!parameters.empty())
        report += "\nParameters:";
    for (const Parameter& parameter : parameters)
        report += "\n   " + parameter.mFirst + ": " + parameter.mSecond;
    if (callStackFlags != 0)
        report += "\nCallStack:\n   " + mCallStack.format(callStackFlags);
    return report;
}

void Exception::show(unsigned int callStackFlags) const {
    Platform::showMessageBox(getReport(callStackFlags).getConstCharPtr(),
                             getName().getConstCharPtr(), Platform::BOX_OK);
}

} // namespace ZUNO::Common::Exceptions
