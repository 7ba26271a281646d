#ifndef KVL_TESTS_ADAPTER_NAME_LISTED_TWICE_H
#define KVL_TESTS_ADAPTER_NAME_LISTED_TWICE_H

#include <string>

namespace kvl::test {

/// No directory holds a name twice, so this program lists directories itself and shows this one so. Empty: none.
std::string& nameListedTwice();

}  // namespace kvl::test

#endif
