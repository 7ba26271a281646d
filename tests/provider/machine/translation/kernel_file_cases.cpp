#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
std::vector<TranslationCase> kernelFileCases() {
    return {
        {"any command: carriage returns at line ends", "/sbin/lspci -mns 02:00.0",
         "02:00.0 \"0200\" \"8086\" \"10c9\"\r\r\n\r\nlast\r", "02:00.0 \"0200\" \"8086\" \"10c9\"\n\nlast"},
    };
}

}  // namespace kvl::test
