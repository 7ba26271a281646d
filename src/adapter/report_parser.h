#ifndef KVL_ADAPTER_REPORT_PARSER_H
#define KVL_ADAPTER_REPORT_PARSER_H

#include <string>
#include <utility>

#include "adapter/report_lines.h"

namespace kvl {

/// A key of a report and its value, both empty if there is none.
using KeyValue = std::pair<std::string, std::string>;

// The parsers of hbacmd's reports: the adapter list, a dump, and its one-line answers.

/// Reads the value of a key from the first line that holds one of the keys and, after it, the separator and
/// something other than a blank.
/// @param keys       alternatives, "|" between them: the first of them that a line holds counts for that line
/// @param separator  searched from the start of the key
/// @param count      how many lines that hold a key to skip first
/// @return the key as spelled in `keys` and the value, without blanks around it
KeyValue findKeyValue(ReportLines report, std::string keys, const std::string& separator, unsigned int count);

/// Reads the value of a key from the lines that follow a line with one of the tags. The report is read to its end:
/// once there is a value, only one line is looked at after each further line with a tag, and a value there replaces
/// the earlier one.
/// @param tags   alternatives, "|" between them. Each that a line holds starts a search after that line, or after
///               the line where the search before it ended
/// @param count  how many lines with a tag to skip first; the other arguments are those of `findKeyValue`
KeyValue findTagKeyValue(ReportLines report, std::string tags, std::string keys, const std::string& separator,
                         unsigned int count);

/// @return true if a line of the report holds the text
bool holdsText(ReportLines report, const std::string& text);

}  // namespace kvl

#endif
