#pragma once

#include "common/parser/parserexception.h"

namespace ZUNO::Common::Parser::XML {

/// A document is not in the form that the parser accepts.
class XMLParserException : public ParserException {
public:
    using ParserException::ParserException;
    String getName() const override { return "XMLParserException"; }
};

} // namespace ZUNO::Common::Parser::XML
