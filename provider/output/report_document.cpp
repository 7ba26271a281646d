#include "provider/output/report_document.h"

#include <array>
#include <iterator>
#include <stdexcept>

#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

struct CountedSection {
    const char* tag;
    const char* item;
    const char* one;
    const char* many;
};

constexpr std::array<CountedSection, 3> kCountedSections = {{
    {"Physical", "physical_port", "port", "ports"},
    {"Team", "team_port", "team", "teams"},
    {"VLAN", "vlan_port", "VLAN", "VLANs"},
}};

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

pugi::xml_document loadReport(const std::string& file) {
    pugi::xml_document report;
    const pugi::xml_parse_result result = report.load_file(file.c_str());
    if (!result) {
        throw std::runtime_error("the report in " + file + " can't be read: " + result.description());
    }
    return report;
}

std::string parameter(const pugi::xml_node& parent, const char* name) {
    return parent.find_child_by_attribute("attr", "name", name).attribute("value").value();
}

bool hasParameter(const pugi::xml_node& parent, const char* name) {
    return !parent.find_child_by_attribute("attr", "name", name).empty();
}

std::vector<std::string> parameters(const pugi::xml_node& parent, const char* name) {
    std::vector<std::string> values;
    for (const pugi::xml_node& element : parent.children("attr")) {
        if (element.attribute("name").value() == std::string(name)) {
            values.emplace_back(element.attribute("value").value());
        }
    }
    return values;
}

std::string interfaceName(const pugi::xml_node& port) {
    return port.attribute("interface_name").value();
}

std::string countedContent(const pugi::xml_document& report) {
    const pugi::xml_node root = report.document_element();
    std::vector<std::string> counts;
    for (const CountedSection& section : kCountedSections) {
        if (const pugi::xml_node node = root.child(section.tag)) {
            const auto items = node.children(section.item);
            const auto count = static_cast<std::size_t>(std::distance(items.begin(), items.end()));
            counts.push_back(counted(count, section.one, section.many));
        }
    }
    if (counts.empty()) {
        counts.push_back(counted(parameters(root.child("Common"), "dns_suffix").size(), "DNS suffix", "DNS suffixes"));
    }
    return joined(counts);
}

}  // namespace kvl::provider
