#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "host/HostFunctions.h"
#include "reference_host/ini_cache.h"
#include "tests/reference_host/host_test.h"

namespace {

using kvl::host::IniCache;
using kvl::test::HostTest;
using kvl::test::lay;

class PrivateProfileTest : public HostTest {
protected:
    std::string text(const char* section, const char* key, const char* fallback = "") const {
        std::array<char, 256> buffer{};
        GetPrivateProfileStringA(section, key, fallback, buffer.data(), buffer.size(), path_.c_str());
        return buffer.data();
    }

    int number(const char* section, const char* key, int fallback) const {
        return GetPrivateProfileIntA(section, key, fallback, path_.c_str());
    }

    const std::string path_ = scratch_ / "catalogue.ini";
};

class PrivateProfileString : public PrivateProfileTest {};
class PrivateProfileInt : public PrivateProfileTest {};
class IniCacheTest : public PrivateProfileTest {};

// Comes back when the clock of the file system is past the file's last change, so that another one would show.
void awaitLaterTime(const std::string& path) {
    struct stat status {};
    timespec now{};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    do {
        ::sched_yield();
        ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    } while (std::tie(now.tv_sec, now.tv_nsec) <= std::tie(status.st_ctim.tv_sec, status.st_ctim.tv_nsec));
}

TEST_F(PrivateProfileString, GivesTheValueOfTheKeyInItsSection) {
    lay(path_, "; comment\n[Other]\nVendor1=no\n\n[SuportDevice]\nSuportDeviceNum=1\nVendor1 = VEN_19A2 \r\nEmpty=\n");
    EXPECT_EQ(text("SuportDevice", "Vendor1"), "VEN_19A2");
    EXPECT_EQ(text("Other", "Vendor1"), "no");
    EXPECT_EQ(text("SuportDevice", "Empty", "default"), "");
}

TEST_F(PrivateProfileString, FindsSectionAndKeyInAnyCase) {
    lay(path_, "[SUPORTDEVICE]\nVENDOR1=a\n");
    EXPECT_EQ(text("SuportDevice", "Vendor1"), "a");
    EXPECT_EQ(text("suportdevice", "vendor1"), "a");
}

TEST_F(PrivateProfileString, GivesTheDefaultForWhatIsMissing) {
    EXPECT_EQ(text("Section", "Key", "default"), "default");
    lay(path_, "[Section]\nKey=value\n");
    EXPECT_EQ(text("Section", "Missing", "default"), "default");
    EXPECT_EQ(text("Missing", "Key", "default"), "default");
    EXPECT_EQ(text("Section", nullptr, "default"), "default");
    EXPECT_EQ(text(nullptr, "Key", "default"), "default");
    EXPECT_EQ(text("Section", "Missing", nullptr), "");
}

TEST_F(PrivateProfileString, GivesTheDefaultForWhatIsNoFile) {
    kvl::test::layDirectory(path_);
    EXPECT_EQ(text("Section", "Key", "default"), "default");
    std::filesystem::remove(path_);
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(text("Section", "Key", "default"), "default");
    std::array<char, 8> buffer{};
    GetPrivateProfileStringA("Section", "Key", "default", buffer.data(), buffer.size(), nullptr);
    EXPECT_STREQ(buffer.data(), "default");
}

TEST_F(PrivateProfileString, TakesTheFirstOfSeveralLinesWithTheKey) {
    lay(path_, "[Section]\nKey=first\nkey=second\n");
    EXPECT_EQ(text("Section", "Key"), "first");
}

struct Quoted {
    const char* line;
    const char* expected;
};

constexpr Quoted kQuoted[] = {
    {"\"text\"", "text"}, {"'text'", "text"},         {"\" text \"", " text "}, {"\"\"text\"\"", "\"text\""},
    {"\"text", "\"text"}, {"text\"", "text\""},       {"\"text'", "\"text'"},   {"\"", "\""},
    {"\"\"", ""},         {"a \"b\" c", "a \"b\" c"},
};

TEST_F(PrivateProfileString, RemovesOnePairOfQuotesAroundTheValue) {
    for (const Quoted& row : kQuoted) {
        lay(path_, std::string("[Section]\nKey=") + row.line + "\n");
        EXPECT_EQ(text("Section", "Key"), row.expected) << row.line;
    }
}

TEST_F(PrivateProfileString, CutsTheValueToTheBuffer) {
    lay(path_, "[Section]\nKey=value\n");
    for (std::size_t size = 1; size <= 7; ++size) {
        std::vector<char> buffer(8, '#');
        GetPrivateProfileStringA("Section", "Key", "", buffer.data(), size, path_.c_str());
        EXPECT_EQ(std::string(buffer.data()), std::string("value").substr(0, size - 1));
        EXPECT_EQ(buffer[std::min<std::size_t>(size, 6)], '#') << size;
    }
}

TEST_F(PrivateProfileString, CutsTheDefaultToTheBuffer) {
    std::array<char, 4> buffer{};
    GetPrivateProfileStringA("Section", "Key", "default", buffer.data(), buffer.size(), path_.c_str());
    EXPECT_STREQ(buffer.data(), "def");
}

TEST_F(PrivateProfileString, WritesNothingIntoABufferWithoutSize) {
    char byte = '#';
    GetPrivateProfileStringA("Section", "Key", "default", &byte, 0, path_.c_str());
    EXPECT_EQ(byte, '#');
    GetPrivateProfileStringA("Section", "Key", "default", nullptr, 8, path_.c_str());
}

struct Number {
    const char* value;
    int expected;
};

constexpr Number kNumbers[] = {
    {"12", 12},
    {"  12", 12},
    {"+7", 7},
    {"-7", -7},
    {"007", 7},
    {"12 devices", 12},
    {"12;x", 12},
    {"\"12\"", 12},
    {"0x10", 0},
    {"", 0},
    {"text", 0},
    {"-", 0},
    {"+", 0},
    {"+-5", 0},
    {"--5", 0},
    {"99999999999", std::numeric_limits<int>::max()},
    {"+99999999999", std::numeric_limits<int>::max()},
    {"-99999999999", std::numeric_limits<int>::min()},
};

TEST_F(PrivateProfileInt, GivesTheLeadingDecimalNumber) {
    for (const Number& row : kNumbers) {
        lay(path_, std::string("[SuportDevice]\nSuportDeviceNum=") + row.value + "\n");
        EXPECT_EQ(number("SuportDevice", "SuportDeviceNum", 77), row.expected) << row.value;
    }
}

TEST_F(PrivateProfileInt, GivesTheDefaultForWhatIsMissing) {
    EXPECT_EQ(number("SuportDevice", "SuportDeviceNum", 5), 5);
    lay(path_, "[SuportDevice]\nOther=1\n");
    EXPECT_EQ(number("SuportDevice", "SuportDeviceNum", -5), -5);
    EXPECT_EQ(number("Missing", "Other", 5), 5);
    EXPECT_EQ(number(nullptr, "Other", 5), 5);
    EXPECT_EQ(number("SuportDevice", nullptr, 5), 5);
    EXPECT_EQ(GetPrivateProfileIntA("SuportDevice", "Other", 5, nullptr), 5);
}

TEST_F(IniCacheTest, ReadsAnUnchangedFileOnceForAllItsKeys) {
    constexpr int kKeys = 10000;
    std::string content = "[SuportDevice]\n";
    for (int i = 1; i <= kKeys; ++i) {
        content += "Device" + std::to_string(i) + "=DEV_" + std::to_string(i) + "\n";
    }
    lay(path_, content);
    awaitLaterTime(path_);
    IniCache cache;
    for (int i = 1; i <= kKeys; ++i) {
        ASSERT_EQ(cache.value("SuportDevice", ("Device" + std::to_string(i)).c_str(), path_.c_str()),
                  "DEV_" + std::to_string(i));
    }
    EXPECT_EQ(cache.loadCount(), 1U);
}

TEST_F(IniCacheTest, KeepsTwoFilesThatAreReadInTurn) {
    const std::string other = scratch_ / "other.ini";
    lay(path_, "[S]\nk=1\n");
    lay(other, "[S]\nk=2\n");
    awaitLaterTime(other);
    IniCache cache;
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(cache.value("S", "k", path_.c_str()), "1");
        EXPECT_EQ(cache.value("S", "k", other.c_str()), "2");
    }
    EXPECT_EQ(cache.loadCount(), 2U);
}

TEST_F(IniCacheTest, SeesEveryChangeAtOnce) {
    IniCache cache;
    for (int i = 0; i < 200; ++i) {
        const std::string value = std::to_string(100 + i);
        lay(path_, "[S]\nk=" + value + "\n");
        ASSERT_EQ(cache.value("S", "k", path_.c_str()), value);
    }
}

TEST_F(IniCacheTest, SeesAChangeUnderAKeptTime) {
    lay(path_, "[S]\nk=1\n");
    const auto time = std::filesystem::last_write_time(path_);
    awaitLaterTime(path_);
    IniCache cache;
    EXPECT_EQ(cache.value("S", "k", path_.c_str()), "1");
    lay(path_, "[S]\nk=2\n");
    std::filesystem::last_write_time(path_, time);
    EXPECT_EQ(cache.value("S", "k", path_.c_str()), "2");
}

TEST_F(IniCacheTest, ForgetsAFileThatIsGone) {
    lay(path_, "[S]\nk=1\n");
    awaitLaterTime(path_);
    IniCache cache;
    EXPECT_EQ(cache.value("S", "k", path_.c_str()), "1");
    std::filesystem::remove(path_);
    EXPECT_EQ(cache.value("S", "k", path_.c_str()), std::nullopt);
}

TEST_F(IniCacheTest, DropsTheOldestOfMoreFilesThanItKeeps) {
    IniCache cache;
    for (int i = 0; i < 10; ++i) {
        lay(scratch_ / std::to_string(i), "[S]\nk=" + std::to_string(i) + "\n");
    }
    awaitLaterTime(scratch_ / "9");
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(cache.value("S", "k", (scratch_ / std::to_string(i % 10)).c_str()), std::to_string(i % 10));
    }
    EXPECT_EQ(cache.loadCount(), 20U);
}

TEST_F(IniCacheTest, AnswersManyThreads) {
    lay(path_, "[S]\nk=1\n");
    IniCache cache;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_EQ(cache.value("S", "k", path_.c_str()), "1");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
