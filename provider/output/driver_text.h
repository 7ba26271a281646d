#ifndef KVL_PROVIDER_OUTPUT_DRIVER_TEXT_H
#define KVL_PROVIDER_OUTPUT_DRIVER_TEXT_H

#include <pugixml.hpp>

#include "provider/output/text_block.h"

namespace kvl::provider {

/// Adds the rows of a driver_parameter_lin node: those settings that have a value, by their groups. A group that was
/// skipped has no row.
void addDriverRows(TextBlock& block, const pugi::xml_node& driver);

}  // namespace kvl::provider

#endif
