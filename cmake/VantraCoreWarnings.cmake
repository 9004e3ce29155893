# The warnings every target of this tree is compiled with, linked privately so that they never reach
# the installed package or its consumers.
add_library(VantraCoreWarnings INTERFACE)
target_compile_options(VantraCoreWarnings INTERFACE -Wall -Wextra -Wpedantic)
