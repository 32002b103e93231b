/// Reading elements that a document must or may have.
#pragma once

#include "common/parser/xml/xmlnode.h"

namespace ZUNO::Common::Parser::XML {

/// Reads the next child of `parent`, which must be an element of that name that may have children.
/// When it isn't, this is reported, `out` is null and the result false.
bool getRequiredElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name);

/// The same without a report.
bool getOptionalElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name);

/// Reads the value or text of the next child of `parent`, which must have that name.
/// When it hasn't, this is reported and the result false.
template <typename T>
bool getRequiredValue(T& out, const XMLNodeElements* parent, const char* name);
bool getRequiredText(const char*& out, const XMLNodeElements* parent, const char* name);

/// Reports that the node lacks an attribute.
void reportMissingAttribute(const XMLNode* node, const char* name);

} // namespace ZUNO::Common::Parser::XML
