#include <exception>
#include <iostream>

#include "machines/private_root.h"
#include "provider/command_line.h"
#include "provider/machine/process_start.h"
#include "provider/provider_error.h"

namespace {

using namespace kvl::provider;

int run(const Arguments& arguments) {
    try {
        return readCommandLine(arguments).run();
    } catch (const ProviderError& error) {
        std::cerr << "kvl: " << error.what() << '\n';
        return error.exitCode();
    } catch (const std::exception& error) {
        std::cerr << "kvl: " << error.what() << '\n';
        return kNothingCollected;
    }
}

}  // namespace

int main(int argc, char** argv) {
    beginProcess();
    if (kvl::machines::insidePrivateRoot()) {
        kvl::machines::linkOwnProcess();
    }
    return run(Arguments(argv + 1, argv + argc));
}
