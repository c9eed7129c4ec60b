#pragma once

#include <string>

/// Why a text is not well-formed XML, as far as tags, attributes and references go; empty when it
/// is. Knows no document types and no CDATA.
std::string WhyNotWellFormed(const std::string& xml);
