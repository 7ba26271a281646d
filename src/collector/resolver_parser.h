#ifndef KVL_COLLECTOR_RESOLVER_PARSER_H
#define KVL_COLLECTOR_RESOLVER_PARSER_H

#include <istream>

#include "collector/records.h"

namespace kvl {

/// Parses /etc/resolv.conf.
/// @return a valid record: a server for each "nameserver" line; the value of the first "domain" line, wherever it
///         stands, and then the words of the first "search" line
ResolvConf parseResolvConf(std::istream& text);

}  // namespace kvl

#endif
