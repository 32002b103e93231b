/// Reading elements that a document must or may have.
#pragma once

#include "common/parser/xml/xmlnode.h"

namespace ZUNO::Common::Parser::XML {

/// Reports that the next child of `parent` should have that name. Returns false. These reports show
/// the whole path of names from the root on.
bool reportMissingTag(const XMLNodeElements* parent, const char* name);

/// Reports that the node lacks an attribute.
void reportMissingAttribute(const XMLNode* node, const char* name);

/// Reads the next child of `parent`, which must be an element of that name that may have children.
/// Returns whether it is; `out` is null when not, and the tag is reported as missing.
bool getRequiredElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name);

/// The same without a report.
bool getOptionalElements(const XMLNodeElements*& out, const XMLNodeElements* parent,
                         const char* name);

/// Reads the value or the text of the next child of `parent`, which must have that name. Returns
/// whether it has; when not, the tag is reported as missing.
template <XMLValue T>
bool getRequiredValue(T& out, const XMLNodeElements* parent, const char* name) {
    return parent->getChildValue(out, name) || reportMissingTag(parent, name);
}
bool getRequiredText(const char*& out, const XMLNodeElements* parent, const char* name);

} // namespace ZUNO::Common::Parser::XML
