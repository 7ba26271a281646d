#include "adapter/silent_settings_parser.h"

#include "tests/support/parser_table.h"

namespace kvl::test {
namespace {

class SilentSettings : public ParserTable {};

/// A line for each event, then the answer for the first settings file.
std::string parsed(std::istream& text) {
    std::string shown;
    SilentSettingsEvents events;
    events.line = [&shown](const std::string& line) { shown += "line [" + line + "]\n"; };
    events.blankDeleted = [&shown](const std::string& line) { shown += "left [" + line + "]\n"; };
    events.found = [&shown](const Setting& setting, const std::string& line) {
        shown += std::string("found ") + setting.key + " in [" + line + "]\n";
    };
    events.compared = [&shown](const Setting& setting, const std::string& line, bool isSilent) {
        shown += std::string(isSilent ? "right " : "wrong ") + setting.key + " in [" + line + "]\n";
    };
    const bool isSilent = isSilentInstall(text, kSettingsFiles[0], events);
    return shown + (isSilent ? "silent" : "not silent");
}

/// The events of a line that is right.
std::string right(const std::string& key, const std::string& line) {
    return "line [" + line + "]\nfound " + key + " in [" + line + "]\nright " + key + " in [" + line + "]\n";
}

const std::string kRemote = right("ClientRemoteOperation", "ClientRemoteOperation:disabled");
const std::string kMode = right("ClientOperationMode", "ClientOperationMode:enabled");
const std::string kReadOnly = right("ClientReadOnlyOperation", "ClientReadOnlyOperation:disabled");
const std::string kPort = right("TcpSocketPortNumber", "TcpSocketPortNumber:23333");

TEST_P(SilentSettings, AreJudged) {
    std::istringstream text(GetParam().input);
    EXPECT_EQ(parsed(text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Parser, SilentSettings,
    testing::Values(
        ParserCase{"AsSilentUpToTheLastOutstandingLine",
                   "TcpSocketPortNumber:23333\nClientRemoteOperation:disabled\nClientOperationMode:enabled\n"
                   "ClientReadOnlyOperation:disabled\nClientOperationMode:disabled\n",
                   kPort + kRemote + kMode + kReadOnly + "silent"},
        ParserCase{"WithALineThatOccursTwiceCountedTwice",
                   "TcpSocketPortNumber:23333\nTcpSocketPortNumber:23333\nTcpSocketPortNumber:23333\n"
                   "TcpSocketPortNumber:23333",
                   kPort + kPort + kPort + kPort + "silent"},
        ParserCase{"AsNotSilentWithALineMissing", "ClientRemoteOperation:disabled\nother\n",
                   kRemote + "line [other]\nnot silent"},
        ParserCase{"AsNotSilentAtTheFirstWrongLine",
                   "ClientRemoteOperation:disabled\nClientOperationMode:disabled\nTcpSocketPortNumber:23333\n",
                   kRemote +
                       "line [ClientOperationMode:disabled]\nfound ClientOperationMode in "
                       "[ClientOperationMode:disabled]\nwrong ClientOperationMode in [ClientOperationMode:disabled]\n"
                       "not silent"},
        ParserCase{"WithoutTheBlanksOfALine", " TcpSocketPortNumber : 23333\n",
                   "line [ TcpSocketPortNumber : 23333]\nleft [TcpSocketPortNumber : 23333]\n"
                   "left [TcpSocketPortNumber: 23333]\nleft [TcpSocketPortNumber:23333]\n"
                   "found TcpSocketPortNumber in [TcpSocketPortNumber:23333]\n"
                   "right TcpSocketPortNumber in [TcpSocketPortNumber:23333]\nnot silent"},
        ParserCase{"WithTheTabsAndCarriageReturnsOfALine", "TcpSocketPortNumber:23333\r\n",
                   "line [TcpSocketPortNumber:23333\r]\nfound TcpSocketPortNumber in [TcpSocketPortNumber:23333\r]\n"
                   "wrong TcpSocketPortNumber in [TcpSocketPortNumber:23333\r]\nnot silent"},
        ParserCase{"ByTheFirstOfTwoKeysInALine", "TcpSocketPortNumberClientOperationMode\n",
                   "line [TcpSocketPortNumberClientOperationMode]\n"
                   "found ClientOperationMode in [TcpSocketPortNumberClientOperationMode]\n"
                   "wrong ClientOperationMode in [TcpSocketPortNumberClientOperationMode]\nnot silent"},
        ParserCase{"AsNotSilentWithoutALine", "", "not silent"}),
    ruleOf);

TEST(SilentSettingsFile, IsNotSilentWhereNothingCanBeRead) {
    for (const char* path : {kAbsentFile, kDirectory}) {
        std::ifstream file(path);
        EXPECT_EQ(parsed(file), "not silent");
    }
}

}  // namespace
}  // namespace kvl::test
