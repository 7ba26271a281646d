#ifndef KVL_PROVIDER_OUTPUT_REPORT_DOCUMENT_H
#define KVL_PROVIDER_OUTPUT_REPORT_DOCUMENT_H

#include <pugixml.hpp>
#include <string>
#include <vector>

namespace kvl::provider {

/// Reads a report that the library has written.
/// @throws std::runtime_error if it can't be read
pugi::xml_document loadReport(const std::string& file);

/// The value of the parameter element with this name below `parent`; empty if there is none.
std::string parameter(const pugi::xml_node& parent, const char* name);

bool hasParameter(const pugi::xml_node& parent, const char* name);

/// The values of all parameter elements with this name.
std::vector<std::string> parameters(const pugi::xml_node& parent, const char* name);

/// The interface that a port, a team or a VLAN stands for.
std::string interfaceName(const pugi::xml_node& port);

/// What a report holds, such as "4 ports, 2 teams, 2 VLANs": sections that it lacks are not counted.
std::string countedContent(const pugi::xml_document& report);

}  // namespace kvl::provider

#endif
