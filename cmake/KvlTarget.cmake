option(KVL_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

# What every target of this project is compiled with. Includes are written relative to src/ (the library) or to
# the top folder (everything else).
add_library(kvl_flags INTERFACE)
target_compile_options(kvl_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(KVL_SANITIZE)
    target_compile_options(kvl_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
    target_link_options(kvl_flags INTERFACE -fsanitize=address,undefined)
endif()
