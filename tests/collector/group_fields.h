#ifndef KVL_TESTS_COLLECTOR_GROUP_FIELDS_H
#define KVL_TESTS_COLLECTOR_GROUP_FIELDS_H

#include <vector>

#include "collector/records.h"

namespace kvl::test {

using Fields = std::vector<int EthtoolResult::*>;

/// The numbers of each group of driver settings: -k, -a, -g, -c.
inline std::vector<Fields> groupFields() {
    using R = EthtoolResult;
    return {
        {&R::rcs, &R::tcs, &R::sg, &R::tso, &R::ufo, &R::gso, &R::gro, &R::lro, &R::rvo, &R::tvo, &R::nf, &R::rh},
        {&R::autonego, &R::pause_rx, &R::pause_tx},
        {&R::pre_rx, &R::pre_mini, &R::pre_jumbo, &R::pre_tx, &R::cur_rx, &R::cur_mini, &R::cur_jumbo, &R::cur_tx},
        {&R::adaptive_rx, &R::adaptive_tx, &R::sbu, &R::si,  &R::prl, &R::prh, &R::ru,  &R::rf,
         &R::rui,         &R::rfi,         &R::tu,  &R::tf,  &R::tui, &R::tfi, &R::rul, &R::rfl,
         &R::tul,         &R::tfl,         &R::ruh, &R::rfh, &R::tuh, &R::tfh},
    };
}

}  // namespace kvl::test

#endif
