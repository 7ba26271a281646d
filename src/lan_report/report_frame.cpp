#include <utility>

#include "host/CKvlXmlWrite.h"
#include "lan_report/CLanXmlWriter.h"

CLanXmlWriter::CLanXmlWriter(std::list<std::string> targetVendors, CNetworkParameter* parameter, std::string moduleName)
    : m_targetVendorList(std::move(targetVendors)),
      m_moduleName(std::move(moduleName)),
      m_pRootNode(std::make_unique<CKvlXmlNode>("data")),
      m_pNetworkParameter(parameter) {}

CLanXmlWriter::~CLanXmlWriter() = default;

void CLanXmlWriter::SetCommonInfo() {
    CKvlXmlNode common("Common");
    ResolvConf conf;
    if (m_pNetworkParameter->GetResolvConf(conf)) {
        for (const std::string& suffix : conf.dns_suffix) {
            AddXmlElement(common, "dns_suffix", suffix);
        }
    }
    m_pRootNode->addChildNode(common);
}

bool CLanXmlWriter::Write(std::string path) {
    return CKvlXmlWrite().writeXML(path, *m_pRootNode);
}

CKvlXmlNode CLanXmlWriter::GetNicNode() {
    m_pRootNode->setTagName("NIC");
    return *m_pRootNode;
}

void CLanXmlWriter::AddXmlElement(CKvlXmlNode& parent, std::string name, std::string value) {
    CKvlXmlNode element("attr");
    element.addAttribute("name", name);
    element.addAttribute("value", value);
    parent.addChildNode(element);
}

void CLanXmlWriter::AddXmlElement(CKvlXmlNode& parent, std::string name, int value) {
    AddXmlElement(parent, name, value == -1 ? "" : std::to_string(value));
}

void CLanXmlWriter::AddXmlElementOnOff(CKvlXmlNode& parent, std::string name, int value) {
    const std::string word = value == 0 ? "off" : "on";
    AddXmlElement(parent, name, value == -1 ? "" : word);
}

void CLanXmlWriter::AddXmlElementHex(CKvlXmlNode& parent, std::string name, std::string value) {
    if (!value.empty()) {
        AddXmlElement(parent, name, "0x" + value);
    }
}
