#include <exception>
#include <iostream>

#include "machines/private_root.h"
#include "provider/commands/command_line.h"
#include "provider/machine/process_start.h"
#include "provider/provider_error.h"

namespace {

using namespace kvl::provider;

int run(const Arguments& arguments) {
    int exitCode = kWrongUsage;
    try {
        const Request request = readCommandLine(arguments);
        exitCode = request.failureCode;
        return request.run();
    } catch (const WrongUsage& error) {
        std::cerr << "kvl: " << error.what() << '\n';
        return kWrongUsage;
    } catch (const std::exception& error) {
        std::cerr << "kvl: " << error.what() << '\n';
        return exitCode;
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
