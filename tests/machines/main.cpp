#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

// replay() runs this executable again, on a recorded server. It then does what the script in its second argument says,
// as a provider would run its commands.
int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--as-provider") {
        return WEXITSTATUS(std::system(argv[2]));
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
