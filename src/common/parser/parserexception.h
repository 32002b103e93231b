#pragma once

#include "common/exceptions/exception.h"

#include <cstdint>

namespace ZUNO::Common::Parser {

/// A text does not follow its format. Parameters "Line" and "Row": where.
class ParserException : public Exceptions::Exception {
public:
    ParserException(const String& message, std::uint32_t line, std::uint32_t row)
        : Exception(message), mLine(line), mRow(row) {}

    String getName() const override { return "ParserException"; }
    void getParameters(Exceptions::ParameterList& parameters) const override {
        Exception::getParameters(parameters);
        parameters.push_back({"Line", String(mLine)});
        parameters.push_back({"Row", String(mRow)});
    }

    std::uint32_t getLine() const { return mLine; }
    std::uint32_t getRow() const { return mRow; }

private:
    std::uint32_t mLine;
    std::uint32_t mRow;
};

} // namespace ZUNO::Common::Parser
