#ifndef KVL_HOST_CKVLXMLWRITE_H
#define KVL_HOST_CKVLXMLWRITE_H

#include <string>

#include "host/CKvlXmlNode.h"

/// Writes XML trees to files. Any thread may call; a call blocks until the file is written.
class __attribute__((visibility("default"))) CKvlXmlWrite {
public:
    CKvlXmlWrite();
    ~CKvlXmlWrite();

    /// Writes `root` and all below it, replacing a file of that name.
    /// @return true on success
    bool writeXML(std::string path, CKvlXmlNode root);
};

#endif
