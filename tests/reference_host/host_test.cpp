#include "tests/reference_host/host_test.h"

#include <cstdlib>

#include "reference_host/trace_log.h"
#include "reference_host/trace_observer.h"
#include "reference_host/wait_observer.h"

namespace kvl::test {

void HostTest::SetUp() {
    setVariable("KVL_INSTALL_PATH", scratch_.path());
    ::unsetenv("KVL_TRACE_FILE");
    ::unsetenv("KVL_TRACE_LEVELS");
    host::reloadTraceSettings();
}

void HostTest::TearDown() {
    host::setTraceObserver({});
    host::setWaitObserver({});
}

void HostTest::setVariable(const char* name, const std::string& value) {
    ::setenv(name, value.c_str(), 1);
}

}  // namespace kvl::test
