#include "adapter/catalogue_parser.h"

namespace kvl {

namespace {

constexpr std::string::size_type kPrefixLength = 4;
constexpr std::string::size_type kLastDigit = 7;  // of the device number, counted in the field

std::string without(std::string text, std::string::size_type length) {
    return text.erase(0, length);
}

/// The entries of a catalogue, which count from 1.
class Entries {
public:
    explicit Entries(const CatalogueValues& values) : values_(values), size_(values.number("SuportDeviceNum")) {}

    /// How many there are; not above 0 for none.
    long size() const { return size_; }
    std::string vendor(long entry) const { return values_.text("Vendor" + std::to_string(entry)); }
    std::string device(long entry) const { return values_.text("Device" + std::to_string(entry)); }

private:
    const CatalogueValues& values_;
    long size_;
};

bool isFcVendor(const std::string& vendorNumber) {
    return vendorNumber == "10DF";
}

bool isCnaVendor(const std::string& vendorNumber) {
    return vendorNumber == "19A2" || vendorNumber == "10DF";
}

std::string hardwareId(const std::string& vendor, const std::string& device) {
    return "PCI\\" + vendor + "&" + device;
}

}  // namespace

void listCnaDevices(const CatalogueValues& catalogue, std::list<std::string>* endingIn0,
                    std::list<std::string>* endingIn2, std::list<std::string>* endingIn4) {
    const Entries entries(catalogue);
    for (long entry = 1; entry <= entries.size(); ++entry) {
        const std::string device = entries.device(entry);
        const std::string lastDigit = without(device, kLastDigit);
        const std::string number = without(device, kPrefixLength);
        if (lastDigit == "0") {
            endingIn0->push_back(number);
        } else if (lastDigit == "2") {
            endingIn2->push_back(number);
        } else if (lastDigit == "4") {
            endingIn4->push_back(number);
        }
    }
}

void listFcDevices(const CatalogueValues& catalogue, std::list<std::string>* devices) {
    const Entries entries(catalogue);
    for (long entry = 1; entry <= entries.size(); ++entry) {
        if (isFcVendor(without(entries.vendor(entry), kPrefixLength))) {
            // kept: with the prefix, unlike the numbers of the other catalogue.
            devices->push_back(entries.device(entry));
        }
    }
}

void listCnaHardware(const CatalogueValues& catalogue, std::list<std::string>* identifiers) {
    const Entries entries(catalogue);
    for (long entry = 1; entry <= entries.size(); ++entry) {
        const std::string vendor = entries.vendor(entry);
        if (!isCnaVendor(without(vendor, kPrefixLength))) {
            continue;
        }
        const std::string device = entries.device(entry);
        // kept: devices whose number ends in 2 or 4 are left out.
        if (without(device, kLastDigit) == "0") {
            identifiers->push_back(hardwareId(vendor, device));
        }
    }
}

void listFcHardware(const CatalogueValues& catalogue, std::list<std::string>* identifiers) {
    const Entries entries(catalogue);
    for (long entry = 1; entry <= entries.size(); ++entry) {
        const std::string vendor = entries.vendor(entry);
        if (isFcVendor(without(vendor, kPrefixLength))) {
            identifiers->push_back(hardwareId(vendor, entries.device(entry)));
        }
    }
}

void listCnaVendors(const CatalogueValues& catalogue, std::list<std::string>* vendors) {
    const Entries entries(catalogue);
    for (long entry = 1; entry <= entries.size(); ++entry) {
        const std::string vendorNumber = without(entries.vendor(entry), kPrefixLength);
        if (isCnaVendor(vendorNumber)) {
            vendors->push_back(vendorNumber);
        }
    }
}

}  // namespace kvl
