#include "adapter/catalogue_parser.h"

#include <map>
#include <vector>

#include <gtest/gtest.h>

namespace kvl::test {
namespace {

using Texts = std::list<std::string>;

struct Entry {
    const char* vendor;
    const char* device;
};

/// A catalogue in memory, and the keys that it was asked for.
class MemoryCatalogue {
public:
    explicit MemoryCatalogue(const std::vector<Entry>& entries, long number = -1) {
        for (std::size_t entry = 0; entry < entries.size(); ++entry) {
            texts_["Vendor" + std::to_string(entry + 1)] = entries[entry].vendor;
            texts_["Device" + std::to_string(entry + 1)] = entries[entry].device;
        }
        number_ = number < 0 ? static_cast<long>(entries.size()) : number;
    }

    CatalogueValues values() {
        return {[this](const std::string& key) {
                    asked_ += key + " ";
                    return key == "SuportDeviceNum" ? number_ : -7;
                },
                [this](const std::string& key) {
                    asked_ += key + " ";
                    const auto found = texts_.find(key);
                    return found != texts_.end() ? found->second : "";
                }};
    }

    const std::string& asked() const { return asked_; }

private:
    std::map<std::string, std::string> texts_;
    long number_ = 0;
    std::string asked_;
};

const std::vector<Entry> kEntries = {
    {"VEN_19A2", "DEV_E220"},
    {"VEN_10DF", "DEV_E222"},
    {"VEN_1234", "DEV_0714"},
    {"VEN_10DF", "DEV_F100"},
    {"VEN_19a2", "DEV_0710"},
    {"VEN_19A2", "DEV_0711"},
    {"", ""},
    {"VEN_10DFX", "DEV_F1000"},
};

TEST(CnaDevices, AreListedByTheirLastDigitWhateverTheVendor) {
    MemoryCatalogue catalogue(kEntries);
    Texts in0 = {"earlier"};
    Texts in2;
    Texts in4;
    listCnaDevices(catalogue.values(), &in0, &in2, &in4);
    EXPECT_EQ(in0, (Texts{"earlier", "E220", "F100", "0710"}));
    EXPECT_EQ(in2, (Texts{"E222"}));
    EXPECT_EQ(in4, (Texts{"0714"}));
    EXPECT_EQ(catalogue.asked(), "SuportDeviceNum Device1 Device2 Device3 Device4 Device5 Device6 Device7 Device8 ");
}

TEST(CnaDevices, NeedNoListThatNoneBelongsTo) {
    MemoryCatalogue catalogue(std::vector<Entry>{{"VEN_19A2", "DEV_E220"}});
    Texts in0;
    listCnaDevices(catalogue.values(), &in0, nullptr, nullptr);
    EXPECT_EQ(in0, (Texts{"E220"}));
}

TEST(FcDevices, AreListedWithTheirPrefixForTheVendorsDevicesAlone) {
    MemoryCatalogue catalogue(kEntries);
    Texts devices = {"earlier"};
    listFcDevices(catalogue.values(), &devices);
    EXPECT_EQ(devices, (Texts{"earlier", "DEV_E222", "DEV_F100"}));
    EXPECT_EQ(catalogue.asked(),
              "SuportDeviceNum Vendor1 Vendor2 Device2 Vendor3 Vendor4 Device4 Vendor5 Vendor6 Vendor7 Vendor8 ");
}

TEST(CnaHardware, IsListedForDevicesOfTheVendorsThatEndInZero) {
    MemoryCatalogue catalogue(kEntries);
    Texts identifiers = {"earlier"};
    listCnaHardware(catalogue.values(), &identifiers);
    EXPECT_EQ(identifiers, (Texts{"earlier", "PCI\\VEN_19A2&DEV_E220", "PCI\\VEN_10DF&DEV_F100"}));
    EXPECT_EQ(catalogue.asked(),
              "SuportDeviceNum Vendor1 Device1 Vendor2 Device2 Vendor3 Vendor4 Device4 Vendor5 Vendor6 Device6 "
              "Vendor7 Vendor8 ");
}

TEST(FcHardware, IsListedForAllDevicesOfTheVendor) {
    MemoryCatalogue catalogue(kEntries);
    Texts identifiers = {"earlier"};
    listFcHardware(catalogue.values(), &identifiers);
    EXPECT_EQ(identifiers, (Texts{"earlier", "PCI\\VEN_10DF&DEV_E222", "PCI\\VEN_10DF&DEV_F100"}));
    EXPECT_EQ(catalogue.asked(),
              "SuportDeviceNum Vendor1 Vendor2 Device2 Vendor3 Vendor4 Device4 Vendor5 Vendor6 Vendor7 Vendor8 ");
}

TEST(CnaVendors, AreListedOnceForEachOfTheirEntries) {
    MemoryCatalogue catalogue(kEntries);
    Texts vendors = {"earlier"};
    listCnaVendors(catalogue.values(), &vendors);
    EXPECT_EQ(vendors, (Texts{"earlier", "19A2", "10DF", "10DF", "19A2"}));
    EXPECT_EQ(catalogue.asked(), "SuportDeviceNum Vendor1 Vendor2 Vendor3 Vendor4 Vendor5 Vendor6 Vendor7 Vendor8 ");
}

TEST(Catalogue, IsReadAsFarAsItsNumberSays) {
    for (const long number : {0L, 1L, 9L}) {
        MemoryCatalogue catalogue({{"VEN_10DF", "DEV_F100"}, {"VEN_10DF", "DEV_E220"}}, number);
        Texts devices;
        listFcDevices(catalogue.values(), &devices);
        EXPECT_EQ(devices.size(), static_cast<std::size_t>(number < 2 ? number : 2));
    }
}

}  // namespace
}  // namespace kvl::test
