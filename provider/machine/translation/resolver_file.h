#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_RESOLVER_FILE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_RESOLVER_FILE_H

#include <string>

namespace kvl::provider {

/// /etc/resolv.conf as glibc reads it (resolv.conf(5), res_init.c since 2.0). A keyword stands at the very beginning of
/// a line; blanks and tabs part the words, where the library knows blanks alone. The last of all "domain" and "search"
/// lines wins, where the library takes the first of each. A "nameserver" line without an address, and a "domain" or
/// "search" line without a word, are passed over. Lines that begin with "#", ";" or a blank are no keyword lines for
/// either. A search list that is longer than the library's line ends with the last domain that fits.
///
/// glibc asks the first three name servers only; the report has all that are configured.
std::string translateResolverFile(const std::string& file);

}  // namespace kvl::provider

#endif
