#include "provider/machine/translation/ifconfig_blocks.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <vector>

#include "provider/machine/translation/text_lines.h"

namespace kvl::provider {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kIndent = "          ";
constexpr std::string::size_type kNameWidth = 9;
constexpr const char* kHeaderMark = ": flags=";

/// Stands on standard output among the lines of an InfiniBand interface, at the beginning of a line.
constexpr const char* kInfinibandWarning = "Infiniband hardware address can be incorrect!";

struct ScopeWord {
    const char* printed;
    const char* read;
};

/// In the order in which 1.60 looks: an IPv4-compatible address is printed as <compat,global>.
constexpr std::array<ScopeWord, 5> kScopes = {{
    {"compat", "Compat"},
    {"link", "Link"},
    {"site", "Site"},
    {"host", "Host"},
    {"global", "Global"},
}};

/// A part of the line "device interrupt 11  memory 0xfe400000-fe420000".
struct DevicePart {
    const char* printed;
    const char* read;
    bool withoutPrefix;  ///< 1.60 prints the number without its "0x"
};

constexpr std::array<DevicePart, 4> kDeviceParts = {{
    {"interrupt", "Interrupt:", false},
    {"base", "Base address:", false},
    {"memory", "Memory:", true},
    {"dma", "DMA chan:", true},
}};

/// @return the word after that one; an empty text if there is none
std::string after(const Words& words, const std::string& word) {
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() || std::next(found) == words.end() ? "" : *std::next(found);
}

/// @return what stands between two characters; an empty text if they are not there
std::string between(const std::string& text, char open, char close) {
    const auto begin = text.find(open);
    const auto end = text.find(close, begin == std::string::npos ? begin : begin + 1);
    return end == std::string::npos ? "" : text.substr(begin + 1, end - begin - 1);
}

/// @return label and value; an empty text without a value
std::string labelled(const char* label, const std::string& value) {
    return value.empty() ? "" : label + value;
}

/// The counters of one direction.
struct Counters {
    Words packets;      ///< of the line that counts packets and bytes
    std::string bytes;  ///< such as "1420 (1.3 KiB)"
    Words errors;       ///< of the line that counts what went wrong

    bool complete() const { return !bytes.empty() && !errors.empty(); }

    std::string line(const std::string& direction, const char* last) const {
        return kIndent + direction + " packets:" + after(packets, "packets") + " errors:" + after(errors, "errors") +
               " dropped:" + after(errors, "dropped") + " overruns:" + after(errors, "overruns") + " " + last + ":" +
               after(errors, last) + "\n";
    }
};

/// An interface's block, as it is taken in and as 1.60 prints it.
class Block {
public:
    /// @return nothing if the line does not begin a block of net-tools 2
    static std::optional<Block> begin(const std::string& header) {
        const auto mark = header.find(kHeaderMark);
        if (mark == 0 || mark == std::string::npos || header.find_first_of(" \t") < mark) {
            return std::nullopt;
        }
        const Words words = wordsOf(header.substr(mark));
        const std::string mtu = after(words, "mtu");
        if (header.find('<', mark) == std::string::npos || header.find('>', mark) == std::string::npos || mtu.empty()) {
            return std::nullopt;
        }
        Block block;
        block.name_ = header.substr(0, mark);
        block.mtu_ = mtu;
        const std::string metric = after(words, "metric");
        block.metric_ = metric.empty() ? "1" : metric;
        block.flags_ = between(header.substr(mark), '<', '>');
        std::replace(block.flags_.begin(), block.flags_.end(), ',', ' ');
        return block;
    }

    void take(const std::string& line) {
        const Words words = wordsOf(line);
        if (words.size() < 2) {
            return;
        }
        if (words[0] == "inet") {
            takeIpv4(words);
        } else if (words[0] == "inet6") {
            takeIpv6(words);
        } else if (words[0] == "RX" || words[0] == "TX") {
            takeCounters(words[0] == "RX" ? received_ : sent_, words, line);
        } else if (words[0] == "device") {
            takeDevice(words);
        } else if (words.back().back() == ')' && line.find('(') != std::string::npos) {
            takeHardware(words, line);
        }
    }

    /// @return true if the lines that the library reads are all there: the hardware's line is the last of them
    bool complete() const { return !encapsulation_.empty(); }

    std::string text() const {
        const std::string encapsulation = encapsulation_.empty() ? "UNSPEC" : encapsulation_;
        std::string text = name_ + std::string(name_.size() < kNameWidth ? kNameWidth - name_.size() : 0, ' ');
        text += " Link encap:" + encapsulation + "  " + (hardware_.empty() ? "" : "HWaddr " + hardware_ + "  ") + "\n";
        text += ipv4_ + ipv6_;
        text += kIndent + (flags_.empty() ? "[NO FLAGS]" : flags_) + "  MTU:" + mtu_ + "  Metric:" + metric_ + "\n";
        if (received_.complete() && sent_.complete()) {
            text += received_.line("RX", "frame") + sent_.line("TX", "carrier");
            text += kIndent + labelled("collisions:", after(sent_.errors, "collisions")) + " ";
            text += (queue_.empty() ? "" : "txqueuelen:" + queue_ + " ") + "\n";
            text += kIndent + ("RX bytes:" + received_.bytes) + "  TX bytes:" + sent_.bytes + "\n";
        }
        return text + device_;
    }

private:
    void takeIpv4(const Words& words) {
        if (!ipv4_.empty()) {
            return;
        }
        ipv4_ = kIndent + ("inet addr:" + words[1]) + labelled("  P-t-P:", after(words, "destination")) +
                labelled("  Bcast:", after(words, "broadcast")) + labelled("  Mask:", after(words, "netmask")) + "\n";
    }

    void takeIpv6(const Words& words) {
        const std::string length = after(words, "prefixlen");
        if (length.empty()) {
            return;
        }
        const std::string scopes = "," + between(after(words, "scopeid"), '<', '>') + ",";
        const auto* const scope = std::find_if(kScopes.begin(), kScopes.end(), [&scopes](const ScopeWord& word) {
            return scopes.find("," + std::string(word.printed) + ",") != std::string::npos;
        });
        ipv6_ += kIndent + ("inet6 addr: " + words[1]) + "/" + length +
                 " Scope:" + (scope != kScopes.end() ? scope->read : "Unknown") + "\n";
    }

    static void takeCounters(Counters& counters, const Words& words, const std::string& line) {
        if (words[1] == "packets") {
            const auto bytes = line.find("bytes ");
            counters.packets = words;
            counters.bytes =
                bytes == std::string::npos ? "" : trimmed(line.substr(bytes + std::string("bytes ").size()));
        } else if (words[1] == "errors") {
            counters.errors = words;
        }
    }

    void takeDevice(const Words& words) {
        device_ = kIndent;
        for (const DevicePart& part : kDeviceParts) {
            const std::string value = after(words, part.printed);
            const bool withoutPrefix = part.withoutPrefix && startsWith(value, "0x");
            device_ += value.empty() ? "" : part.read + value.substr(withoutPrefix ? 2 : 0) + " ";
        }
        device_ += "\n";
    }

    /// Such as "ether 52:54:00:12:34:00  txqueuelen 1000  (Ethernet)" and "loop  txqueuelen 1000  (Local Loopback)".
    void takeHardware(const Words& words, const std::string& line) {
        encapsulation_ = between(line, '(', ')');
        queue_ = after(words, "txqueuelen");
        if (words[1] != "txqueuelen" && words[1].front() != '(') {
            hardware_ = words[1];
            std::transform(hardware_.begin(), hardware_.end(), hardware_.begin(),
                           [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
        }
    }

    std::string name_;
    std::string flags_;
    std::string mtu_;
    std::string metric_;
    std::string ipv4_;
    std::string ipv6_;
    std::string encapsulation_;
    std::string hardware_;
    std::string queue_;
    Counters received_;
    Counters sent_;
    std::string device_;
};

/// A value inside a line can stand at the end of one afterwards.
std::string withoutCarriageReturnsInside(std::string line) {
    std::replace(line.begin(), line.end(), '\r', ' ');
    return line;
}

bool isIndented(const std::string& line) {
    return line.front() == ' ' || line.front() == '\t';
}

}  // namespace

std::string translateIfconfig(const std::string& output) {
    std::string translated;
    std::optional<Block> block;
    const auto closeBlock = [&translated, &block] {
        if (block) {
            translated += block->text() + (block->complete() ? "\n" : "");
            block.reset();
        }
    };
    for (const TextLine& line : linesOf(output)) {
        if (block && line.text.empty()) {
            translated += block->text() + "\n";
            block.reset();
            continue;
        }
        if (block && (isIndented(line.text) || startsWith(line.text, kInfinibandWarning))) {
            if (line.ended) {
                block->take(withoutCarriageReturnsInside(line.text));
            }
            continue;
        }
        closeBlock();
        if (line.ended) {
            block = Block::begin(withoutCarriageReturnsInside(line.text));
        }
        if (!block) {
            translated += textOf({line});
        }
    }
    closeBlock();
    return translated;
}

}  // namespace kvl::provider
