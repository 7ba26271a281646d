#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_COALESCE_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_ETHTOOL_COALESCE_H

#include <optional>
#include <string>

namespace kvl::provider {

/// `ethtool -c`. From 5.9 on, which asks over netlink, a setting that the driver does not have is "n/a", which the
/// library takes for 0 or off; its line is left out, and the library has no value. Over ioctl, 6.1 prints
/// "rx-frames-low:", where the library reads "rx-frame-low:", as RHEL 5 and 6 and netlink have it.
///
/// "Adaptive RX: on  TX: n/a" stays: the library reads both switches from one line, or has neither. It takes the "n/a"
/// for off, so whoever reports its record must ask readAdaptive, too.
std::string translateCoalesce(const std::string& output);

/// The two switches of the line "Adaptive RX: on  TX: off"; nothing for one that the driver does not have.
struct AdaptiveCoalescing {
    std::optional<bool> rx;
    std::optional<bool> tx;
};

/// @return the adaptive switches in an output of `ethtool -c`, translated or not
AdaptiveCoalescing readAdaptive(const std::string& output);

}  // namespace kvl::provider

#endif
