#pragma once

#include "common/parser/parserexception.h"

namespace ZUNO::Common::Parser::XML {

/// A document is not in the form that the parser accepts. Parameters "Line", "Row" and, when the
/// document was included by another, "Document": its name.
class XMLParserException : public ParserException {
public:
    XMLParserException(const String& message, std::uint32_t line, std::uint32_t row,
                       const String& document = {})
        : ParserException(message, line, row), mDocument(keep(document)) {}

    String getName() const override { return "XMLParserException"; }
    void getParameters(Exceptions::ParameterList& parameters) const override {
        ParserException::getParameters(parameters);
        if (!mDocument.isEmpty())
            parameters.push_back({"Document", mDocument});
    }

private:
    String mDocument;
};

} // namespace ZUNO::Common::Parser::XML
