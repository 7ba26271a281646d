#ifndef KVL_PROVIDER_OUTPUT_REPORT_TEXT_H
#define KVL_PROVIDER_OUTPUT_REPORT_TEXT_H

#include <pugixml.hpp>
#include <string>

namespace kvl::provider {

/// The report for an operator's eyes: a block for each port, team and VLAN.
std::string reportText(const pugi::xml_document& report);

}  // namespace kvl::provider

#endif
