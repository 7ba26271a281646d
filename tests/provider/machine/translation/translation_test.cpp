#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "provider/machine/translation/text_lines.h"
#include "provider/machine/translation/translations.h"
#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {

void PrintTo(const TranslationCase& translationCase, std::ostream* stream) {
    *stream << translationCase.name;
}

std::vector<TranslationCase> translationCases() {
    std::vector<TranslationCase> all;
    for (const auto& cases : {ethtoolCases(), ifconfigCases(), routeCases(), resolverCases(), kernelFileCases(),
                              ifcfgCases(), keyfileCases()}) {
        all.insert(all.end(), cases.begin(), cases.end());
    }
    return all;
}

namespace {

using provider::linesOf;
using provider::translated;

class Translated : public testing::TestWithParam<TranslationCase> {};

TEST_P(Translated, IsWhatTheLibraryReads) {
    EXPECT_EQ(translated(GetParam().command, GetParam().printed), GetParam().read);
}

TEST_P(Translated, InTheLibrarysFormComesOutUnchanged) {
    EXPECT_EQ(translated(GetParam().command, GetParam().read), GetParam().read);
}

std::string nameOfCase(const testing::TestParamInfo<TranslationCase>& info) {
    std::string name;
    for (const char character : info.param.name) {
        const bool plain = std::isalnum(static_cast<unsigned char>(character)) != 0;
        if (plain || (!name.empty() && name.back() != '_')) {
            name += plain ? character : '_';
        }
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Output, Translated, testing::ValuesIn(translationCases()), nameOfCase);

void expectSettled(const TranslationCase& origin, const std::string& output) {
    const std::string once = translated(origin.command, output);
    EXPECT_EQ(translated(origin.command, once), once) << origin.name << "\n--- from\n" << output;
}

TEST(DamagedOutput, CutAnywhereIsTranslatedOnceAndForAll) {
    for (const TranslationCase& sample : translationCases()) {
        for (std::size_t length = 0; length < sample.printed.size(); ++length) {
            expectSettled(sample, sample.printed.substr(0, length));
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

TEST(DamagedOutput, WithOtherBytesIsTranslatedOnceAndForAll) {
    std::mt19937 random(20100401);
    // Bytes that mean something in one of the formats come more often than chance would bring them.
    const std::string telling = std::string("\0\t\r\n :;#'\"\\=$[]<>|/", 19);
    for (const TranslationCase& sample : translationCases()) {
        for (int round = 0; round < 300 && !sample.printed.empty(); ++round) {
            std::string output = sample.printed;
            for (std::uint_fast32_t changes = random() % 4 + 1; changes > 0; --changes) {
                const std::size_t position = random() % output.size();
                output[position] =
                    random() % 2 == 0 ? telling[random() % telling.size()] : static_cast<char>(random() % 256);
            }
            expectSettled(sample, output);
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

TEST(TranslatedLine, FitsTheLibrarysBufferWhereThePrintedOneDid) {
    for (const TranslationCase& sample : translationCases()) {
        std::size_t longest = provider::kLongestLine;
        for (const provider::TextLine& line : linesOf(sample.printed)) {
            longest = std::max(longest, line.text.size());
        }
        for (const provider::TextLine& line : linesOf(translated(sample.command, sample.printed))) {
            EXPECT_LE(line.text.size(), longest) << sample.name;
        }
    }
}

}  // namespace
}  // namespace kvl::test
