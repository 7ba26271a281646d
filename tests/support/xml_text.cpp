#include "tests/support/xml_text.h"

#include <gtest/gtest.h>

#include "host/CKvlXmlWrite.h"
#include "tests/support/private_machine_test.h"

namespace kvl::test {

std::string xmlText(const CKvlXmlNode& node) {
    const std::string path = "/tmp/document.xml";
    EXPECT_TRUE(CKvlXmlWrite().writeXML(path, node));
    return contentOf(path);
}

std::string attr(int depth, const std::string& name, const std::string& value) {
    return std::string(static_cast<std::size_t>(depth) * 2, ' ') + "<attr name=\"" + name + "\" value=\"" + value +
           "\" />\n";
}

}  // namespace kvl::test
