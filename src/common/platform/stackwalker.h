#pragma once

namespace ZUNO::Common::Platform {

/// One call on the stack. What could not be resolved is the empty text or 0.
/// The texts stay valid only while the visitor that receives the frame runs.
struct StackFrame {
    const char* mFunction = "";
    const char* mFile = "";
    unsigned int mLine = 0;
    const char* mModule = "";
};

/// Receives the frames of a walk, innermost first.
class StackVisitor {
public:
    virtual ~StackVisitor() = default;
    virtual void visit(const StackFrame& frame) = 0;
};

/// Walks the calling thread's stack. The first frame is this function itself.
/// What the visitor throws leaves this function.
void walkStack(StackVisitor& visitor);

} // namespace ZUNO::Common::Platform
