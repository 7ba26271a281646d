#include "host/CKvlXmlWrite.h"

#include "reference_host/atomic_file.h"
#include "reference_host/xml_document.h"
#include "reference_host/xml_node_content.h"

CKvlXmlWrite::CKvlXmlWrite() = default;

// Not defaulted: that would belong in the class, which is declared for every host alike.
CKvlXmlWrite::~CKvlXmlWrite() {}

bool CKvlXmlWrite::writeXML(std::string path, CKvlXmlNode root) {
    kvl::host::AtomicFile file(path);
    return file.isGood() && kvl::host::writeDocument(root.content_->element(), file) && file.commit();
}
